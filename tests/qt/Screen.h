// The display, the toolkit and the loop that the tests of one process share: Qt has one application a process, on one
// display. Made at the first use, taken down after the last test: Qt must not outlive main.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "adapters/qt/QtApplication.h"
#include "adapters/qt/QtEventLoop.h"
#include "linux/RecordingTrace.h"
#include "real/XvfbServer.h"

namespace kestrum::qt {

class Screen {
  public:
    static constexpr int kWidth = 1024, kHeight = 768;

    static Screen& Get() {
        if (!Instance()) Instance().reset(new Screen);
        return *Instance();
    }
    static void TakeDown() { Instance().reset(); }

    const std::string& Display() const { return m_server.Name(); }

    /// Pumps `loop` until `done`, at most a minute. False if it did not come.
    static bool PumpUntil(host::IEventLoop& loop, const std::function<bool()>& done) {
        bool late = false;
        const auto start = std::chrono::steady_clock::now();
        const auto look = loop.StartTimer(u"look", 10, host::TimerReentry::Entered, [&] {
            late = std::chrono::steady_clock::now() - start > std::chrono::minutes(1);
        });
        loop.RunUntil([&] { return late || done(); });
        return done();
    }

  private:
    static std::unique_ptr<Screen>& Instance() {
        static std::unique_ptr<Screen> screen;
        return screen;
    }

    Screen() : m_server(kWidth, kHeight), m_variable("DISPLAY", m_server.Name()), m_application(m_argc, m_argv) {}

    real::XvfbServer m_server;
    real::ScopedEnv m_variable;
    char m_name[8] = "kestrum";
    int m_argc = 1;
    char* m_argv[2] = {m_name, nullptr};
    QtApplication m_application;
};

class ScreenEnvironment : public testing::Environment {
  public:
    void TearDown() override { Screen::TakeDown(); }
};

inline testing::Environment* const kScreenEnvironment = testing::AddGlobalTestEnvironment(new ScreenEnvironment);

}  // namespace kestrum::qt
