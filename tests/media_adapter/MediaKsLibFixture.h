// The media library with its real worker, a real display and a real sound server: one recording after the other.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "Places.h"
#include "adapters/linux/EventLoop.h"
#include "adapters/linux/TraceLog.h"
#include "adapters/media/MediaKsLib.h"
#include "real/Children.h"
#include "real/PulseServer.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"

namespace kestrum::adapters {

using host::FromUtf8;
using host::ToUtf8;
using namespace kestrum::real;

constexpr int kWidth = 640, kHeight = 480;
inline const std::string kWorker = std::string(places::kInstall) + "/ksmedia";

inline void Sleep(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class MediaKsLibTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(std::string(places::kSource) + "/install/default.ksp", Path("project.ksp"));
        WriteText(Path("inteIndex.txt"), "text for the editor");
    }

    std::string Path(const std::string& name) const { return m_folder / name; }
    String Package() const { return FromUtf8(Path("week 1 課程.ktr")); }

    /// Everything up to the start, in the order of the recording driver.
    void Prepare() {
        String devices;
        ASSERT_NE(m_lib.ksResetAVDevice(), 0);
        ASSERT_EQ(m_lib.ksQueryAudioDevice(devices), 1);
        OpenForRecording();
    }
    /// The devices are reset and, for a camera, chosen.
    void OpenForRecording() {
        ASSERT_NE(m_lib.ksSetAudioDevice(u"Microphone"), 0);
        m_lib.EncoderSetFilename(Package(), FromUtf8(Path("project.ksp")), FromUtf8(Path("inteIndex.txt")));
        m_lib.SetCaptureArea(0, 0, kWidth - 1, kHeight - 1);
        m_lib.SetCaptureFrameRate(10);
        m_lib.EnableRecSystemAudio(0);
        m_lib.EncoderInitDevice();
        ASSERT_NE(m_lib.EncoderQueryDevice(), 0);
    }
    void Record() {
        Prepare();
        ASSERT_NE(m_lib.EncoderStart(0), 0);
    }
    void Stop() { m_lib.EncoderStop(1200); }

    std::vector<std::int32_t> ListedKeys() {
        EXPECT_EQ(m_lib.ListIndex(Package(), FromUtf8(Path("media.key"))), 0);
        std::istringstream lines(ReadText(Path("media.key")));
        std::vector<std::int32_t> keys;
        for (std::int32_t key = 0; lines >> key;) keys.push_back(key);
        return keys;
    }
    host::StoredFiles Targets() const {
        return {FromUtf8(Path("out.ksp")), FromUtf8(Path("out.cursor")), FromUtf8(Path("out.photo")),
                FromUtf8(Path("out.txt"))};
    }
    static String JournalLine(std::int32_t position, const String& title) {
        return FromUtf8(std::to_string(position)) + u"\t2026/1/5 9:00:00\t" + title + u"\t\n";
    }

    XvfbServer m_display{kWidth, kHeight};
    PulseServer m_sound;
    ScopedEnv m_displayEnv = m_display.Use();
    ScopedEnv m_soundEnv = m_sound.Use();
    TempFolder m_folder;
    TestWindow m_window{m_display.Name(), 0, 0, kWidth, kHeight};
    platform::TraceLog m_trace;
    platform::EventLoop m_loop{m_trace};
    WorkerLink m_worker{kWorker, m_loop};
    MediaKsLib m_lib{m_worker};
};

}  // namespace kestrum::adapters
