// A real Impress on a display of its own, with a window manager, and a log of what it tells. Starting one takes a
// second or two, so that a test suite shares one.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Places.h"
#include "adapters/impress/ImpressOffice.h"
#include "adapters/linux/EventLoop.h"
#include "adapters/sim/Monitors.h"
#include "adapters/sim/Trace.h"
#include "real/ChildProcess.h"
#include "real/XvfbServer.h"

namespace kestrum::impress {

namespace fs = std::filesystem;

/// Folder that goes away with the test.
class TempFolder {
  public:
    TempFolder() {
        std::string name = (fs::temp_directory_path() / "impress test XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TempFolder() { fs::remove_all(m_path); }
    const fs::path& Path() const { return m_path; }
    /// A copy of the sample lecture under `name`; gives its path.
    fs::path CopyOfLecture(const std::string& name) const {
        fs::copy_file(std::string(places::kSource) + "/samples/lecture.pptx", m_path / name);
        return m_path / name;
    }

  private:
    fs::path m_path;
};

inline String Text(const fs::path& path) {
    return host::FromUtf8(path.string());
}

/// Writes each event as a line; a test may act inside one.
class EventLog : public host::IApplicationEvents {
  public:
    explicit EventLog(host::IApplication& application) : m_application(application) {
        m_subscription = application.Subscribe(*this);
    }
    void SlideShowBegin(host::ISlideShowWindow&) override { Add("begin" + Shows()); }
    void SlideShowNextSlide(host::ISlideShowWindow& window) override {
        Add("slide " + std::to_string(window.View()->CurrentShowPosition()));
        if (onSlide) onSlide(window);
    }
    void SlideShowEnd(host::IPresentation& presentation) override { Add("end" + Shows() + Name(presentation)); }
    void PresentationClose(host::IPresentation& presentation) override { Add("close" + Shows() + Name(presentation)); }

    std::vector<std::string> lines;
    std::function<void(host::ISlideShowWindow&)> onSlide;

  private:
    void Add(std::string line) { lines.push_back(std::move(line)); }
    std::string Shows() { return " (" + std::to_string(m_application.SlideShowWindowCount()) + " shows)"; }
    static std::string Name(host::IPresentation& presentation) {
        return " " + fs::path(host::ToUtf8(presentation.FullName())).filename().string();
    }

    host::IApplication& m_application;
    std::unique_ptr<host::ISubscription> m_subscription;
};

class OfficeDesk {
  public:
    static constexpr int kWidth = 1280, kHeight = 720;

    OfficeDesk() : m_display(kWidth, kHeight) {
        real::ChildProcess::Options quiet;
        quiet.quiet = true;
        quiet.env = {{"DISPLAY", m_display.Name()}};
        m_windowManager = real::ChildProcess({"openbox"}, quiet);
        options.display = m_display.Name();
        options.vclPlugin = "gen";
        office = ImpressOffice::Start(options, loop, monitors);
    }

    host::IApplication& App() { return office->Application(); }
    std::unique_ptr<host::ISlideShowWindow> Run() { return App().ActivePresentation()->SlideShowSettings()->Run(); }
    /// Pumps until `done` or for a minute.
    bool PumpUntil(const std::function<bool()>& done) {
        return real::WaitFor([&] {
            loop.DoEvents();
            return done();
        });
    }
    /// Types a key into the window that has the keyboard.
    void Key(const std::string& name) {
        real::ChildProcess::Options environment;
        environment.env = {{"DISPLAY", m_display.Name()}};
        real::ChildProcess({"xdotool", "key", name}, environment).WaitForEnd();
    }
    /// Types a key until it works: a show ignores the keyboard until its slide is drawn.
    void KeyUntil(const std::string& name, const std::function<bool()>& done) {
        for (int attempt = 0; attempt < 10 && !done(); ++attempt) {
            Key(name);
            real::WaitFor(
                [&] {
                    loop.DoEvents();
                    return done();
                },
                5);
        }
        EXPECT_TRUE(done()) << name;
    }
    const std::string& Display() const { return m_display.Name(); }

  private:
    real::XvfbServer m_display;
    real::ChildProcess m_windowManager;
    sim::Transcript m_transcript;

  public:
    sim::Trace trace;
    platform::EventLoop loop{trace};
    sim::Monitors monitors{m_transcript};
    OfficeOptions options;
    std::unique_ptr<ImpressOffice> office;
};

}  // namespace kestrum::impress
