// Collects the skipped statements and notes.
#pragma once

#include <vector>

#include "host/ITrace.h"

namespace kestrum::sim {

class Trace : public host::ITrace {
  public:
    void Skipped(const host::Error& error) override { skipped.push_back(error.Source() + u": " + error.Description()); }
    void Note(const String& line) override { notes.push_back(line); }

    std::vector<String> skipped;
    std::vector<String> notes;
};

}  // namespace kestrum::sim
