// A microphone or a sound server that goes in mid-recording: no media are lost, the user hears of it, and the package
// is whole.
#include <algorithm>
#include <cstdlib>

#include "media_adapter/MediaKsLibFixture.h"
#include "real/MediaProbe.h"
#include "real/TonePlayer.h"

namespace kestrum::adapters {
namespace {

class SoundLoss : public MediaKsLibTest {
  protected:
    void SetUp() override {
        MediaKsLibTest::SetUp();
        m_lib.SetDeviceNotice([this](const host::DeviceNotice& notice) {
            m_notices.push_back(ToUtf8(notice.device) + (notice.isBack ? " back" : " lost"));
        });
    }
    void TearDown() override { m_lib.SetDeviceNotice(nullptr); }

    bool WaitForNotices(const std::vector<std::string>& wanted) {
        return WaitFor([&] {
            m_loop.DoEvents();
            return m_notices == wanted;
        });
    }
    /// The package is whole, and its sound has no hole from the first to the last moment.
    void ExpectWhole() {
        const std::string file = ToUtf8(Package());
        EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
        EXPECT_EQ(m_lib.LastRecovery(), String());
        const auto sound = PacketPositions(file, "a", false);
        ASSERT_FALSE(sound.empty());
        for (std::size_t i = 1; i < sound.size(); ++i) ASSERT_LE(sound[i] - sound[i - 1], 23) << "at " << sound[i];
        EXPECT_LE(sound.front(), 23);
        EXPECT_NEAR(static_cast<double>(sound.back()), m_lib.GetLength(Package()), 100);
    }
    /// Whether something is heard between two positions of the package, in ms.
    bool IsHeard(std::int32_t from, std::int32_t to) {
        const auto samples = Samples(ToUtf8(Package()));
        const auto begin = std::min<std::size_t>(samples.size(), static_cast<std::size_t>(from) * 48);
        const auto end = std::min<std::size_t>(samples.size(), static_cast<std::size_t>(to) * 48);
        return std::any_of(samples.begin() + static_cast<std::ptrdiff_t>(begin),
                           samples.begin() + static_cast<std::ptrdiff_t>(end),
                           [](std::int16_t sample) { return std::abs(sample) > 2000; });
    }
    ChildProcess PlayTone() {
        PulseServer::WriteTone(Path("tone.wav"), 440, 300);
        return m_sound.Play(Path("tone.wav"));
    }
    bool WaitForLevel() {
        return WaitFor([&] { return m_lib.GetAudioVolume() > 60; });
    }

    std::vector<std::string> m_notices;
};

TEST_F(SoundLoss, UnpluggedMicrophone_IsSilence_IsTold_AndIsTakenAgain) {
    const auto tone = PlayTone();
    Record();
    ASSERT_TRUE(WaitForLevel());
    m_sound.Unplug();
    ASSERT_TRUE(WaitForNotices({"Microphone lost"}));
    Sleep(500);
    const std::int32_t whileLost = m_lib.AddKeyFrame();
    EXPECT_GT(whileLost, 0) << "the recording goes on";
    Sleep(1000);
    m_sound.PlugIn();
    ASSERT_TRUE(WaitForNotices({"Microphone lost", "Microphone back"}));
    ASSERT_TRUE(WaitForLevel());
    Sleep(500);
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), 0);
    ExpectWhole();
    EXPECT_TRUE(IsHeard(0, whileLost - 500));
    EXPECT_FALSE(IsHeard(whileLost, whileLost + 900));
    EXPECT_TRUE(IsHeard(m_lib.GetLength(Package()) - 500, m_lib.GetLength(Package())));
}

TEST_F(SoundLoss, MicrophoneThatStaysAway_LeavesAWholePackageOfFullLength) {
    Record();
    Sleep(500);
    m_sound.Unplug();
    ASSERT_TRUE(WaitForNotices({"Microphone lost"}));
    Sleep(2000);
    Stop();
    ExpectWhole();
    EXPECT_GE(m_lib.GetLength(Package()), 2500);
    EXPECT_EQ(m_lib.GetAudioVolume(), 0);
}

TEST_F(SoundLoss, LostMicrophone_IsNeverExchangedForAnother) {
    // The other microphone hears a tone, and is the default.
    PulseServer::WriteTone(Path("other.wav"), 880, 300);
    const auto tone = m_sound.Play(Path("other.wav"), "speaker");
    m_sound.Control({"load-module", "module-remap-source", "master=speaker.monitor", "source_name=other",
                     "source_properties=device.description=Other"});
    Record();
    m_sound.Control({"set-default-source", "other"});
    Sleep(500);
    m_sound.Unplug();
    ASSERT_TRUE(WaitForNotices({"Microphone lost"}));
    Sleep(1500);
    Stop();
    ExpectWhole();
    EXPECT_FALSE(IsHeard(0, m_lib.GetLength(Package()))) << "not one sample of the other microphone";
}

TEST_F(SoundLoss, AnotherDefaultMicrophone_ChangesNothing) {
    const auto tone = PlayTone();
    Record();
    ASSERT_TRUE(WaitForLevel());
    m_sound.Control({"load-module", "module-remap-source", "master=speaker.monitor", "source_name=other",
                     "source_properties=device.description=Other"});
    m_sound.Control({"set-default-source", "other"});
    Sleep(1500);
    m_loop.DoEvents();
    EXPECT_EQ(m_notices, std::vector<std::string>());
    ASSERT_TRUE(WaitForLevel());
    Stop();
    ExpectWhole();
    EXPECT_TRUE(IsHeard(m_lib.GetLength(Package()) - 500, m_lib.GetLength(Package())));
}

TEST_F(SoundLoss, SoundServerThatDiesAndComesBack_IsTakenAgain) {
    Record();
    Sleep(500);
    m_sound.Kill();
    ASSERT_TRUE(WaitForNotices({"Microphone lost"}));
    const std::int32_t whileDead = m_lib.AddKeyFrame();
    EXPECT_GT(whileDead, 0);
    Sleep(1000);
    m_sound.Start();
    ASSERT_TRUE(WaitForNotices({"Microphone lost", "Microphone back"}));
    const auto tone = PlayTone();
    ASSERT_TRUE(WaitForLevel());
    Sleep(500);
    Stop();
    ExpectWhole();
    EXPECT_FALSE(IsHeard(whileDead, whileDead + 900));
    EXPECT_TRUE(IsHeard(m_lib.GetLength(Package()) - 500, m_lib.GetLength(Package())));
}

TEST_F(SoundLoss, SoundServerThatHangs_IsALossOfSound_AndTheStopDoesNotHang) {
    Record();
    Sleep(500);
    m_sound.Freeze();
    ASSERT_TRUE(WaitForNotices({"Microphone lost"}));
    EXPECT_GT(m_lib.AddKeyFrame(), 0);
    EXPECT_EQ(m_lib.SetVolumeScale(5), 0) << "the mixer gives up";
    EXPECT_GT(m_lib.AddKeyFrame(), 0);
    m_sound.Thaw();
    ASSERT_TRUE(WaitForNotices({"Microphone lost", "Microphone back"}));
    m_sound.Freeze();
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), 0);
    m_sound.Thaw();
    ExpectWhole();
}

TEST_F(SoundLoss, LostSystemSound_IsToldByItsOwnName_AndTheMicrophoneGoesOn) {
    const auto tone = PlayTone();
    Prepare();
    m_lib.EncoderCloseDevice();
    m_lib.EnableRecSystemAudio(-1);
    m_lib.EncoderInitDevice();
    ASSERT_NE(m_lib.EncoderStart(0), 0);
    ASSERT_TRUE(WaitForLevel());
    m_sound.Unload("sink_name=speaker");
    ASSERT_TRUE(WaitFor([&] {
        m_loop.DoEvents();
        return !m_notices.empty();
    }));
    EXPECT_EQ(m_notices, std::vector<std::string>{"Monitor of Speaker lost"});
    Sleep(1500);
    EXPECT_TRUE(WaitForLevel());
    Stop();
    ExpectWhole();
    EXPECT_TRUE(IsHeard(m_lib.GetLength(Package()) - 500, m_lib.GetLength(Package())));
}

}  // namespace
}  // namespace kestrum::adapters
