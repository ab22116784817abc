// The recorder against a real display and a real sound server; what it wrote is read back by FFmpeg and by the package
// library.
#include "media/capture/Recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "media/capture/CaptureError.h"
#include "media/capture/Screen.h"
#include "media/capture/SoundSources.h"
#include "media/package/Package.h"
#include "real/MediaProbe.h"
#include "real/PulseServer.h"
#include "real/TestWindow.h"
#include "real/TonePlayer.h"
#include "real/XvfbServer.h"

namespace kestrum::media {
namespace {

using namespace kestrum::real;

constexpr int kWidth = 640, kHeight = 480;
constexpr std::uint32_t kRed = 0xC02020, kGreen = 0x20A040, kBlue = 0x2040C0, kWhite = 0xFFFFFF, kBlack = 0;

void Sleep(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class CaptureRecorder : public ::testing::Test {
  protected:
    // A display begins with the pointer in its middle, where the tests look.
    void SetUp() override { m_window.MovePointer(4, 4); }
    RecorderSettings Settings() const {
        RecorderSettings settings;
        settings.display = m_display.Name();
        settings.area = {0, 0, kWidth, kHeight};
        settings.soundSources = {PulseServer::kMicrophone};
        return settings;
    }
    std::string Package() const { return m_folder / "lecture 課程.ktr"; }
    std::unique_ptr<Recorder> Begin(const RecorderSettings& settings) {
        auto recorder =
            std::make_unique<Recorder>(settings, [this](int level) { m_loudest = std::max(+m_loudest, level); });
        recorder->OpenDevices();
        recorder->Start(Package(), {});
        return recorder;
    }
    /// Shows a colour, waits until the screen has been painted, and asks for a key frame of it.
    std::int64_t Show(Recorder& recorder, std::uint32_t colour) {
        m_window.Fill(colour);
        return recorder.AddKeyFrame();
    }

    XvfbServer m_display{kWidth, kHeight};
    PulseServer m_sound;
    ScopedEnv m_pulseEnv = m_sound.Use();
    TempFolder m_folder;
    TestWindow m_window{m_display.Name(), 0, 0, kWidth, kHeight};
    std::atomic<int> m_loudest{0};
};

TEST_F(CaptureRecorder, KeyFramesLieWhereTheyWerePromisedAndShowWhatWasOnTheScreen) {
    m_window.Fill(kWhite);
    auto recorder = Begin(Settings());
    std::vector<std::int64_t> promised = {0};
    for (const auto colour : {kRed, kGreen, kBlue}) {
        Sleep(400);
        promised.push_back(Show(*recorder, colour));
    }
    Sleep(400);
    recorder->Stop();

    EXPECT_EQ(KeyFrames(Package()), promised);
    EXPECT_EQ(PacketPositions(Package(), "v", true), promised);
    EXPECT_TRUE(IsNear(ColourAt(Package(), 0), kWhite));
    EXPECT_TRUE(IsNear(ColourAt(Package(), promised[1]), kRed));
    EXPECT_TRUE(IsNear(ColourAt(Package(), promised[2]), kGreen));
    EXPECT_TRUE(IsNear(ColourAt(Package(), promised[3]), kBlue));
    EXPECT_GT(LengthMs(Package()), promised.back());
}

TEST_F(CaptureRecorder, KeyFramesAskedForInOneMillisecondAllHavePositionsOfTheirOwn) {
    auto recorder = Begin(Settings());
    std::vector<std::int64_t> promised = {0};
    for (int i = 0; i < 20; ++i) promised.push_back(recorder->AddKeyFrame());
    recorder->Stop();
    EXPECT_TRUE(std::is_sorted(promised.begin(), promised.end()));
    EXPECT_EQ(std::adjacent_find(promised.begin(), promised.end()), promised.end());
    EXPECT_EQ(KeyFrames(Package()), promised);
}

TEST_F(CaptureRecorder, WhatIsDrawnBetweenKeyFramesIsRecordedWithoutBeingAskedFor) {
    m_window.Fill(kWhite);
    auto recorder = Begin(Settings());
    Sleep(300);
    m_window.Fill(kGreen);
    ASSERT_TRUE(WaitFor([&] { return recorder->Statistics().pictures >= 2; }));
    recorder->Stop();
    EXPECT_EQ(KeyFrames(Package()), std::vector<std::int64_t>{0});
    EXPECT_TRUE(IsNear(ColourAt(Package(), LengthMs(Package())), kGreen));
}

TEST_F(CaptureRecorder, StillScreenCostsAPictureEveryFiveSecondsAndTheLengthGoesOn) {
    auto recorder = Begin(Settings());
    ASSERT_TRUE(WaitFor([&] { return recorder->Statistics().pictures >= 2; }));
    const auto statistics = recorder->Statistics();
    recorder->Stop();
    EXPECT_EQ(statistics.changedPictures, 1);
    const auto pictures = PacketPositions(Package(), "v", false);
    ASSERT_GE(pictures.size(), 2U);
    EXPECT_GE(pictures[1], 5000);
    EXPECT_GE(LengthMs(Package()), 5000);
}

TEST_F(CaptureRecorder, PointerIsPartOfThePicture) {
    m_window.Fill(kWhite);
    m_window.MovePointer(10, 10);
    auto recorder = Begin(Settings());
    Sleep(200);
    m_window.MovePointer(kWidth / 2, kHeight / 2);
    ASSERT_TRUE(WaitFor([&] { return recorder->Statistics().changedPictures >= 2; }));
    recorder->Stop();
    // The display's own pointer is a black cross.
    EXPECT_TRUE(IsNear(ColourAt(Package(), 0), kWhite));
    EXPECT_FALSE(IsNear(ColourAt(Package(), LengthMs(Package())), kWhite));
}

TEST_F(CaptureRecorder, SoundIsRecordedAndItsLevelTold) {
    PulseServer::WriteTone(m_folder / "tone.wav", 440, 30);
    const auto tone = m_sound.Play(m_folder / "tone.wav");
    auto recorder = Begin(Settings());
    ASSERT_TRUE(WaitFor([&] { return m_loudest > 40; }));
    Sleep(500);
    recorder->Stop();
    const auto samples = Samples(Package());
    ASSERT_FALSE(samples.empty());
    EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 8000);
    EXPECT_LE(m_loudest, 100);
}

/// Where on the time line the recorded picture turns white.
std::vector<double> FlashStarts(const std::string& file) {
    std::vector<double> starts;
    bool wasWhite = false;
    for (const auto& picture : Pictures(file)) {
        const bool isWhite = picture.colour.red > 128;
        if (isWhite && !wasWhite) starts.push_back(static_cast<double>(picture.ms));
        wasWhite = isWhite;
    }
    return starts;
}

/// Where on the time line the recorded sound becomes loud after half a second of silence.
std::vector<double> BeepStarts(const std::string& file) {
    std::vector<double> starts;
    const auto samples = Samples(file);
    constexpr std::size_t kSilence = 24000;
    std::size_t lastLoud = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) < 4000) continue;
        if (i - lastLoud > kSilence) starts.push_back(static_cast<double>(i) / 48);
        lastLoud = i;
    }
    return starts;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

TEST_F(CaptureRecorder, FlashAndBeepStayWithinFortyMilliseconds) {
    // What is compared is how far apart a flash and a beep are in the file and how far apart they really were: on a
    // busy machine the test's own flash comes late now and then, and the median leaves odd ones out.
    TonePlayer player(m_sound.Address(), "micbus");
    m_window.Fill(kBlack);
    auto settings = Settings();
    settings.framesPerSecond = 30;
    auto recorder = Begin(settings);
    std::vector<double> reallyApart;
    for (int i = 0; i < 5; ++i) {
        Sleep(1000);
        const std::int64_t heardNs = player.Beep();
        Sleep(static_cast<int>((heardNs - NowNs()) / 1'000'000));
        m_window.Fill(kWhite);
        reallyApart.push_back(static_cast<double>(NowNs() - heardNs) / 1e6);
        Sleep(300);
        m_window.Fill(kBlack);
    }
    Sleep(500);
    recorder->Stop();
    const auto flashes = FlashStarts(Package());
    const auto beeps = BeepStarts(Package());
    ASSERT_EQ(flashes.size(), reallyApart.size());
    ASSERT_EQ(beeps.size(), reallyApart.size());
    std::vector<double> errors;
    for (std::size_t i = 0; i < beeps.size(); ++i) errors.push_back(flashes[i] - beeps[i] - reallyApart[i]);
    RecordProperty("median_error_ms", std::to_string(Median(errors)));
    EXPECT_NEAR(Median(errors), 0, 40);
}

TEST_F(CaptureRecorder, SecondRecordingBeginsExactlyWhereTheFirstEnded) {
    m_window.Fill(kRed);
    auto recorder = Begin(Settings());
    Sleep(700);
    recorder->Stop();
    recorder.reset();
    const auto oldLength = LengthMs(Package());
    m_window.Fill(kBlue);
    recorder = Begin(Settings());
    Sleep(700);
    recorder->Stop();

    EXPECT_EQ(KeyFrames(Package()), (std::vector<std::int64_t>{0, oldLength}));
    EXPECT_TRUE(IsNear(ColourAt(Package(), oldLength - 1), kRed));
    EXPECT_TRUE(IsNear(ColourAt(Package(), oldLength), kBlue));
    EXPECT_GE(LengthMs(Package()), oldLength + 700);
    const auto sound = PacketPositions(Package(), "a", false);
    EXPECT_TRUE(std::is_sorted(sound.begin(), sound.end()));
    EXPECT_NE(std::find(sound.begin(), sound.end(), oldLength), sound.end()) << "the sound begins there too";
    EXPECT_EQ(WholeVerify(Package(), {}, {}).soundness, Soundness::kSound);
}

TEST_F(CaptureRecorder, AnotherScreenSizeAndSoundLayoutAreFittedToThePackage) {
    m_window.Fill(kRed);
    auto recorder = Begin(Settings());
    Sleep(300);
    recorder->Stop();
    recorder.reset();
    const auto oldLength = LengthMs(Package());
    m_window.Fill(kBlue);
    auto settings = Settings();
    settings.area = {100, 100, 320, 180};
    settings.stereo = true;
    recorder = Begin(settings);
    Sleep(300);
    recorder->Stop();

    const auto size = FrameSize(Package());
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, kWidth);
    EXPECT_EQ(size->height, kHeight);
    EXPECT_TRUE(IsNear(ColourAt(Package(), oldLength), kBlue));
    EXPECT_EQ(Describe(Package()).tracks->audio->channels, 1);
    EXPECT_EQ(Pictures(Package()).size(), PacketPositions(Package(), "v", false).size()) << "all can be decoded";
}

TEST_F(CaptureRecorder, LostMicrophoneBecomesSilenceAndComesBack) {
    TonePlayer player(m_sound.Address(), "micbus");
    auto recorder = Begin(Settings());
    Sleep(500);
    ASSERT_EQ(m_sound.Control({"unload-module", "module-remap-source"}).code, 0);
    ASSERT_TRUE(WaitFor([&] { return !recorder->Statistics().soundComplete; }));
    const auto bytesAtLoss = recorder->Statistics().audioBytes;
    ASSERT_TRUE(WaitFor([&] { return recorder->Statistics().audioBytes > bytesAtLoss; })) << "silence goes on";
    ASSERT_EQ(m_sound.Control({"load-module", "module-remap-source", "master=micbus.monitor", "source_name=mic"}).code,
              0);
    ASSERT_TRUE(WaitFor([&] { return recorder->Statistics().soundComplete; }));
    m_loudest = 0;
    player.Beep();
    ASSERT_TRUE(WaitFor([&] { return m_loudest > 30; })) << "the microphone is heard again";
    recorder->Stop();
    const auto sound = PacketPositions(Package(), "a", false);
    for (std::size_t i = 1; i < sound.size(); ++i) ASSERT_LE(sound[i] - sound[i - 1], 23) << "at " << sound[i];
}

TEST_F(CaptureRecorder, DeathOfTheSoundServerLeavesThePicturesRunning) {
    auto recorder = Begin(Settings());
    Sleep(300);
    m_sound.Kill();
    ASSERT_TRUE(WaitFor([&] { return !recorder->Statistics().soundComplete; }));
    m_window.Fill(kGreen);
    Sleep(500);
    EXPECT_EQ(recorder->State(), EncoderState::kRunning);
    recorder->Stop();
    EXPECT_TRUE(IsNear(ColourAt(Package(), LengthMs(Package())), kGreen));
}

TEST_F(CaptureRecorder, DeathOfTheDisplayIsAStateAndThePackageIsFinished) {
    m_window.Fill(kGreen);
    auto recorder = Begin(Settings());
    Sleep(300);
    m_display.Kill();
    ASSERT_TRUE(WaitFor([&] { return recorder->State() == EncoderState::kScreenError; }));
    EXPECT_EQ(recorder->AddKeyFrame(), -1);
    recorder->Stop();
    EXPECT_EQ(QuickVerify(Package()), Soundness::kSound);
    EXPECT_TRUE(IsNear(ColourAt(Package(), LengthMs(Package())), kGreen));
}

TEST_F(CaptureRecorder, NewScreenResolutionIsAState) {
    auto recorder = Begin(Settings());
    ASSERT_EQ(
        real::Run({"xrandr", "-display", m_display.Name(), "--setmonitor", "Other", "320/80x240/60+0+0", "screen"})
            .code,
        0);
    ASSERT_TRUE(WaitFor([&] { return recorder->State() == EncoderState::kResolutionChanged; }));
    recorder->Stop();
    EXPECT_EQ(QuickVerify(Package()), Soundness::kSound);
}

TEST_F(CaptureRecorder, AreaThatIsOddOrOffTheScreenIsRefusedBeforeAPackageIsMade) {
    for (const Area area :
         {Area{0, 0, 639, 480}, Area{0, 0, 640, 479}, Area{2, 0, 640, 480}, Area{-2, 0, 640, 480}, Area{0, 0, 0, 0}}) {
        auto settings = Settings();
        settings.area = area;
        try {
            Begin(settings);
            FAIL() << "accepted " << area.x << "," << area.y << " " << area.width << "x" << area.height;
        } catch (const CaptureError& error) {
            EXPECT_EQ(error.kind, CaptureErrorKind::kBadArea) << error.what();
        }
        EXPECT_FALSE(std::filesystem::exists(Package()));
    }
}

TEST_F(CaptureRecorder, UnknownDisplayAndSourceAreRefusedInASentence) {
    auto settings = Settings();
    settings.display = ":4711";
    EXPECT_THROW(Begin(settings), CaptureError);
    settings = Settings();
    settings.soundSources = {"no-such-source"};
    try {
        Begin(settings);
        FAIL() << "accepted";
    } catch (const CaptureError& error) {
        EXPECT_EQ(error.kind, CaptureErrorKind::kNoSound);
        EXPECT_STREQ(error.what(), "The sound source \"no-such-source\" cannot be opened.");
    }
    EXPECT_FALSE(std::filesystem::exists(Package()));
}

TEST_F(CaptureRecorder, TwoSourcesAreMixed) {
    auto settings = Settings();
    settings.soundSources = {PulseServer::kMicrophone, PulseServer::kSystemSound};
    TonePlayer system(m_sound.Address(), "speaker");
    auto recorder = Begin(settings);
    system.Beep();
    ASSERT_TRUE(WaitFor([&] { return m_loudest > 30; }));
    recorder->Stop();
}

TEST_F(CaptureRecorder, ProbeTellsAUniformPictureFromOne) {
    m_window.Fill(kBlack);
    const auto black = ProbePicture(m_display.Name(), {0, 0, kWidth, kHeight});
    EXPECT_TRUE(black.isUniform);
    EXPECT_EQ(black.colour, kBlack);
    m_window.FillArea(kRed, 600, 400, 2, 2);
    EXPECT_FALSE(ProbePicture(m_display.Name(), {0, 0, kWidth, kHeight}).isUniform);
}

TEST_F(CaptureRecorder, SoundSourcesTellMicrophonesFromSystemSound) {
    const auto sources = ListSoundSources();
    const auto find = [&](const std::string& name) {
        return *std::find_if(sources.begin(), sources.end(), [&](const auto& source) { return source.name == name; });
    };
    EXPECT_FALSE(find(PulseServer::kMicrophone).isSystemSound);
    EXPECT_EQ(find(PulseServer::kMicrophone).description, "Microphone");
    EXPECT_TRUE(find(PulseServer::kSystemSound).isSystemSound);
}

}  // namespace
}  // namespace kestrum::media
