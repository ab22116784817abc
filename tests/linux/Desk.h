// A private display whose user types and clicks with a real tool, and a loop that listens.
#pragma once

#include <gtest/gtest.h>

#include "adapters/linux/EventLoop.h"
#include "linux/RecordingTrace.h"
#include "real/XvfbServer.h"

namespace kestrum::platform {

class DeskTest : public testing::Test {
  protected:
    /// The words of xdotool.
    void Act(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "xdotool");
        ASSERT_EQ(real::Run(arguments).code, 0);
    }
    bool PumpUntil(const std::function<bool()>& done) {
        return real::WaitFor([&] {
            loop.DoEvents();
            return done();
        });
    }

    real::XvfbServer server;
    real::ScopedEnv variable = server.Use();
    RecordingTrace trace;
    EventLoop loop{trace};
};

}  // namespace kestrum::platform
