// Microphones, preview level, mixer and audio test of the media library, against the real worker and a private sound
// server.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "Places.h"
#include "adapters/linux/EventLoop.h"
#include "adapters/linux/TraceLog.h"
#include "adapters/media/MediaKsLib.h"
#include "adapters/media/MediaRecSystemAudio.h"
#include "real/PulseServer.h"

namespace kestrum::adapters {
namespace {

using host::FromUtf8;
using host::ToUtf8;
using namespace kestrum::real;

void Sleep(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class MediaDevices : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(m_lib.ksSetAudioDevice(u"Microphone"), 0); }

    void LoadMicrophone(const std::string& name, const std::string& description) {
        ASSERT_EQ(m_sound
                      .Control({"load-module", "module-remap-source", "master=speaker.monitor", "source_name=" + name,
                                "source_properties=\"device.description='" + description + "'\""})
                      .code,
                  0);
    }
    String Devices() {
        String text;
        return m_lib.ksQueryAudioDevice(text) == 1 ? text : u"no devices";
    }
    String File(const char* name) const { return FromUtf8(m_folder / name); }
    std::int32_t Preview() { return m_lib.CheckAVDevice(0, 0, 0, u""); }
    /// What the desktop shows of the microphone.
    std::string Shown(const char* what) const { return m_sound.Control({what, PulseServer::kMicrophone}).output; }
    std::string Tone() {
        PulseServer::WriteTone(m_folder / "tone.wav", 440, 120);
        return m_folder / "tone.wav";
    }

    PulseServer m_sound;
    ScopedEnv m_soundEnv = m_sound.Use();
    TempFolder m_folder;
    platform::TraceLog m_trace;
    platform::EventLoop m_loop{m_trace};
    WorkerLink m_worker{std::string(places::kInstall) + "/ksmedia", m_loop};
    MediaKsLib m_lib{m_worker};
};

// --- Names ---------------------------------------------------------------------------------------------------------

TEST_F(MediaDevices, SystemSound_IsNoMicrophone) {
    EXPECT_EQ(Devices(), u"Microphone##0");
    EXPECT_NE(MediaRecSystemAudio(m_worker).CanRecordSystemAudio(), 0);
}

TEST_F(MediaDevices, FirstEntry_IsTheDesktopsDefault_AndTwinsKeepTheirNames) {
    LoadMicrophone("zz_twin", "Microphone");
    EXPECT_EQ(Devices(), u"Microphone##0_&&_Microphone (2)##0");
    ASSERT_EQ(m_sound.Control({"set-default-source", "zz_twin"}).code, 0);
    EXPECT_EQ(Devices(), u"Microphone (2)##0_&&_Microphone##0");
}

TEST_F(MediaDevices, NameWithTheSignsOfTheText_DoesNotBreakIt) {
    LoadMicrophone("zz_odd", "Desk##1_&&_left#");
    EXPECT_EQ(Devices(), u"Microphone##0_&&_Desk 1 left##0");
    EXPECT_NE(m_lib.ksSetAudioDevice(u"Desk 1 left"), 0);
}

TEST_F(MediaDevices, ManyDevices_FillTheTextWithWholeEntriesOnly) {
    for (int i = 10; i < 30; ++i)
        LoadMicrophone("zz_" + std::to_string(i), std::to_string(i) + " " + std::string(60, 'x'));
    const std::string text = ToUtf8(Devices());
    EXPECT_LE(text.size(), 1023U);
    EXPECT_GT(text.size(), 900U);
    EXPECT_EQ(text.substr(text.size() - 3), "##0");
}

TEST(DeviceNames, LongName_IsCutBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 60; ++i) name += "麥";
    const auto devices = NameDevices({{name, "id"}});
    EXPECT_LE(devices[0].shownName.size(), 90U);
    EXPECT_EQ(devices[0].shownName.size() % std::string("麥").size(), 0U);
    EXPECT_EQ(DeviceText(devices), FromUtf8(devices[0].shownName) + u"##0");
}

TEST(DeviceNames, EmptyOrUnreadableName_IsTheDevicesOwn) {
    EXPECT_EQ(NameDevices({{"", "alsa_input.usb"}})[0].shownName, "alsa_input.usb");
    EXPECT_EQ(NameDevices({{"###", "alsa_input.usb"}})[0].shownName, "alsa_input.usb");
    EXPECT_EQ(NameDevices({{"A\nB\tC", "id"}})[0].shownName, "A B C");
}

// --- Preview -------------------------------------------------------------------------------------------------------

TEST_F(MediaDevices, Preview_TellsTheLevelUntilItIsClosed) {
    const auto tone = m_sound.Play(Tone());
    EXPECT_EQ(m_lib.GetAudioVolume(), 0);
    EXPECT_EQ(Preview(), 3);
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() > 60; }));
    EXPECT_LE(m_lib.GetAudioVolume(), 100);
    m_lib.CloseAVDevice();
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() == 0; }));
}

TEST_F(MediaDevices, Preview_OpenedTwice_ClosedOnce_IsClosed) {
    EXPECT_EQ(Preview(), 3);
    EXPECT_EQ(Preview(), 3);
    m_lib.CloseAVDevice();
    m_lib.CloseAVDevice();
    EXPECT_TRUE(WaitFor([&] {
        return m_sound.Control({"list", "short", "source-outputs"}).output.find("mic") == std::string::npos;
    }));
    EXPECT_EQ(m_lib.GetAudioVolume(), 0);
}

TEST_F(MediaDevices, PreviewWithoutTheMicrophone_IsNoSound) {
    ASSERT_EQ(m_sound.Control({"unload-module", "module-remap-source"}).code, 0);
    EXPECT_EQ(Preview(), -1);
    m_lib.ksResetAVDevice();
    EXPECT_EQ(Preview(), -1) << "nothing was chosen";
    m_lib.CloseAVDevice();
}

TEST_F(MediaDevices, PreviewWithoutASoundServer_IsNoSoundAndDoesNotHang) {
    m_sound.Kill();
    EXPECT_EQ(Preview(), -1);
    EXPECT_EQ(Devices(), u"no devices");
    EXPECT_LT(m_lib.GetVolumeScale(), 0);
    EXPECT_EQ(m_lib.SetVolumeScale(5), 0);
    EXPECT_EQ(m_lib.CreateAudioMixer(), u"");
}

TEST_F(MediaDevices, MicrophonePulledOutDuringThePreview_IsSilentAndHeardAgainWhenItIsBack) {
    const auto tone = m_sound.Play(Tone());
    ASSERT_EQ(Preview(), 3);
    ASSERT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() > 60; }));
    ASSERT_EQ(m_sound.Control({"unload-module", "module-remap-source"}).code, 0);
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() == 0; }));
    ASSERT_EQ(m_sound.Control({"load-module", "module-remap-source", "master=micbus.monitor", "source_name=mic"}).code,
              0);
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() > 60; }));
}

// --- Level ---------------------------------------------------------------------------------------------------------

class MediaLevel : public MediaDevices {
  protected:
    /// The loudest level of a sound file played into the microphone.
    std::int32_t LoudestOf(const std::string& wavFile) {
        const auto player = m_sound.Play(wavFile);
        if (Preview() != 3) return -1;
        std::int32_t loudest = 0;
        for (int look = 0; look < 20; ++look) {
            Sleep(200);
            loudest = std::max(loudest, m_lib.GetAudioVolume());
        }
        m_lib.CloseAVDevice();
        return loudest;
    }
    std::string Speech(double volume) {
        const std::string plain = m_folder / "speech.wav", file = m_folder / "quiet.wav";
        real::Run(
            {"espeak-ng", "-v", "en", "-w", plain,
             "Good morning, and welcome to the first lecture of this term. Today we look at the sound of a voice."});
        real::Run({"sox", plain, "-r", "48000", "-c", "2", file, "norm", "-6", "vol", std::to_string(volume)});
        return file;
    }
    /// White noise at so many dB below the loudest.
    std::string Noise(int decibels) {
        const std::string file = m_folder / "noise.wav";
        real::Run({"sox", "-n", "-r", "48000", "-c", "2", file, "synth", "30", "whitenoise", "norm",
                   std::to_string(-decibels)});
        return file;
    }
};

TEST_F(MediaLevel, Speech_ExceedsSilence_EvenFromAMicrophoneThatIsSetLow) {
    const std::int32_t normal = LoudestOf(Speech(1)), low = LoudestOf(Speech(0.05));
    RecordProperty("normal", normal);
    RecordProperty("low", low);
    EXPECT_GT(normal, 50);
    EXPECT_GT(low, 5);
    EXPECT_LT(low, normal);
}

TEST_F(MediaLevel, NoiseOfARoom_IsSilence) {
    EXPECT_LE(LoudestOf(Noise(42)), 5);
}

// --- Mixer ---------------------------------------------------------------------------------------------------------

TEST_F(MediaDevices, VolumeSteps_AreTensOfPercentOfWhatTheDesktopShows) {
    for (const std::int32_t step : {0, 3, 10, 7}) {
        EXPECT_NE(m_lib.SetVolumeScale(step), 0) << step;
        EXPECT_EQ(m_lib.GetVolumeScale(), step);
        EXPECT_NE(Shown("get-source-volume").find(" " + std::to_string(10 * step) + "%"), std::string::npos)
            << Shown("get-source-volume");
    }
    ASSERT_EQ(m_sound.Control({"set-source-volume", "mic", "44%"}).code, 0);
    EXPECT_EQ(m_lib.GetVolumeScale(), 4);
    ASSERT_EQ(m_sound.Control({"set-source-volume", "mic", "150%"}).code, 0);
    EXPECT_EQ(m_lib.GetVolumeScale(), 10);
}

TEST_F(MediaDevices, VolumeOfAMicrophoneThatHasGone_IsAFailureAndNotAnotherOnes) {
    LoadMicrophone("other", "Other");
    ASSERT_EQ(m_sound.Control({"set-source-volume", "other", "30%"}).code, 0);
    m_lib.ksSetAudioDevice(u"Other");
    EXPECT_EQ(m_lib.GetVolumeScale(), 3);
    m_lib.ksSetAudioDevice(u"Microphone");
    ASSERT_EQ(m_sound.Control({"unload-module", "module-remap-source"}).code, 0);
    EXPECT_EQ(m_lib.SetVolumeScale(8), 0);
    EXPECT_LT(m_lib.GetVolumeScale(), 0);
    EXPECT_EQ(m_lib.CreateAudioMixer(), u"");
}

TEST_F(MediaDevices, StepsBeyondTheScale_AreRefused) {
    EXPECT_EQ(m_lib.SetVolumeScale(11), 0);
    EXPECT_EQ(m_lib.SetVolumeScale(-1), 0);
}

TEST_F(MediaDevices, Switch_IsOnWhileTheMicrophoneIsNotMuted) {
    EXPECT_EQ(m_lib.CreateAudioMixer(), u"Microphone on");
    EXPECT_EQ(m_lib.MixerGet(0), 1);
    m_lib.MixerSet(0, 0);
    EXPECT_EQ(m_lib.MixerGet(0), 0);
    EXPECT_NE(Shown("get-source-mute").find("yes"), std::string::npos);
    m_lib.MixerSet(0, 1);
    EXPECT_NE(Shown("get-source-mute").find("no"), std::string::npos);
    m_lib.MixerSet(1, 0);
    EXPECT_EQ(m_lib.MixerGet(0), 1) << "there is one switch only";
    EXPECT_EQ(m_lib.MixerGet(1), 0);
}

TEST_F(MediaDevices, MutedMicrophone_HasNoLevel) {
    const auto tone = m_sound.Play(Tone());
    ASSERT_EQ(Preview(), 3);
    ASSERT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() > 60; }));
    m_lib.MixerSet(0, 0);
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() == 0; }));
}

// --- Audio test ----------------------------------------------------------------------------------------------------

TEST_F(MediaDevices, AudioTest_RecordsWhatIsSaidAndPlaysItBack) {
    const auto tone = m_sound.Play(Tone());
    m_lib.StartTestRecordAudio(File("test 聲.raw"));
    ASSERT_TRUE(WaitFor([&] { return m_lib.GetTestRecordTime() > 2000; }));
    m_lib.StopTestRecordAudio();
    EXPECT_EQ(m_lib.GetTestRecordTime(), 0);
    const std::string recorded = ReadText(m_folder / "test 聲.raw");
    EXPECT_GE(recorded.size(), 2U * 2 * 48000);
    EXPECT_EQ(recorded.size() % 2, 0U);
    const auto* samples = reinterpret_cast<const std::int16_t*>(recorded.data());
    EXPECT_GT(*std::max_element(samples, samples + recorded.size() / 2), 8000);

    m_lib.PlayTestAudio(File("test 聲.raw"));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() > 1000; }));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() < 0; })) << "the end";
    EXPECT_LT(m_lib.GetPlayTestTime(), 0);
    m_lib.StopTestAudio();
}

TEST_F(MediaDevices, PlayedTest_IsHeardOnTheDefaultOutput) {
    ASSERT_EQ(m_sound.Control({"set-default-sink", "micbus"}).code, 0);
    std::string samples;
    for (int i = 0; i < 48000 * 5; ++i) {
        const auto sample = static_cast<std::int16_t>(16000 * std::sin(i * 0.05));
        samples.append(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
    WriteText(m_folder / "loud.raw", samples);
    ASSERT_EQ(Preview(), 3);
    m_lib.PlayTestAudio(File("loud.raw"));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() > 60; }));
    m_lib.StopTestAudio();
    EXPECT_LT(m_lib.GetPlayTestTime(), 0);
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetAudioVolume() == 0; })) << "stopped at once";
}

TEST_F(MediaDevices, TestStoppedAtOnce_LeavesAFileThatStillPlays) {
    m_lib.StartTestRecordAudio(File("short.raw"));
    m_lib.StopTestRecordAudio();
    EXPECT_TRUE(std::filesystem::exists(m_folder / "short.raw"));
    m_lib.PlayTestAudio(File("short.raw"));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() < 0; }));
    WriteText(m_folder / "short.raw", std::string(20, '\1'));
    m_lib.PlayTestAudio(File("short.raw"));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() < 0; })) << "shorter than a buffer";
}

TEST_F(MediaDevices, MissingOrEmptyTestFile_IsAtItsEndAtOnce) {
    m_lib.PlayTestAudio(File("there is none.raw"));
    EXPECT_LT(m_lib.GetPlayTestTime(), 0);
    WriteText(m_folder / "empty.raw", "");
    m_lib.PlayTestAudio(File("empty.raw"));
    EXPECT_LT(m_lib.GetPlayTestTime(), 0);
    EXPECT_EQ(m_lib.GetTestRecordTime(), 0) << "nothing is recorded";
}

TEST_F(MediaDevices, TestOnAFullDisk_DoesNotHang) {
    m_lib.StartTestRecordAudio(u"/dev/full");
    Sleep(500);
    EXPECT_EQ(m_lib.GetTestRecordTime(), 0);
    m_lib.StopTestRecordAudio();
    m_lib.StartTestRecordAudio(u"/no/such/folder/test.raw");
    EXPECT_EQ(m_lib.GetTestRecordTime(), 0);
    m_lib.StopTestRecordAudio();
    EXPECT_NE(m_lib.ksResetAVDevice(), 0) << "the worker answers";
}

TEST_F(MediaDevices, TestWhoseSoundServerDies_Ends) {
    WriteText(m_folder / "long.raw", std::string(48000 * 2 * 60, '\0'));
    m_lib.PlayTestAudio(File("long.raw"));
    ASSERT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() > 0; }));
    m_lib.StartTestRecordAudio(File("new.raw"));
    ASSERT_TRUE(WaitFor([&] { return m_lib.GetTestRecordTime() > 0; }));
    m_sound.Kill();
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() < 0; }));
    m_lib.StopTestRecordAudio();
    m_lib.PlayTestAudio(File("new.raw"));
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetPlayTestTime() < 0; })) << "nobody to play it";
}

}  // namespace
}  // namespace kestrum::adapters
