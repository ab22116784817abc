// The batch subcommands of `ksmedia`. Each takes the words behind its name, writes to standard output, throws a
// std::exception with a sentence for the user, and returns the exit code: 0 done, 1 the answer is "not sound",
// 2 wrong words.
#pragma once

#include <string>
#include <vector>

namespace kestrum::media {

/// A summary of a package, one "name: value" a line.
int InfoCommand(const std::vector<std::string>& words);
/// The positions of the key frames.
int KeysCommand(const std::vector<std::string>& words);
/// Verifies a package and says what was recovered; its percentage goes to standard error.
int VerifyCommand(const std::vector<std::string>& words);
/// The sound sources and cameras, with TABs between name, kind and description.
int DevicesCommand(const std::vector<std::string>& words);
/// Serves the channel whose file descriptor is given.
int ServeCommand(const std::vector<std::string>& words);

}  // namespace kestrum::media
