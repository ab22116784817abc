// A trace that a test can read.
#pragma once

#include <vector>

#include "host/ITrace.h"

namespace kestrum::platform {

struct RecordingTrace : host::ITrace {
    void Skipped(const host::Error& error) override { lines.push_back(error.Description()); }
    void Note(const String& line) override { lines.push_back(line); }

    std::vector<String> lines;
};

}  // namespace kestrum::platform
