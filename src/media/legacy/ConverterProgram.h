// What the converters of the install folder have in common: words in, a percentage on standard error, one sentence if
// it fails, and an end by a signal that leaves no half-made file.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "media/legacy/FileCopy.h"

namespace kestrum::media {

struct ConverterProgram {
    const char* name;
    const char* words;    ///< the words it takes, for its usage line
    const char* purpose;  ///< one sentence
    std::size_t count;    ///< of the words
    std::function<void(const std::vector<std::string>& words, const Watch& watch)> run;
};

/// The exit code: 0 done, or there was nothing to do; 1 failed, nothing was changed; 2 wrong words.
int RunConverterProgram(const ConverterProgram& program, int argc, char** argv);

}  // namespace kestrum::media
