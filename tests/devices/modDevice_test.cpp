#include "devices/modDevice.h"

#include "DevicesWorld.h"

namespace kestrum {
namespace {

using namespace modDevice;

class modDeviceTest : public DevicesTest {
  protected:
    void Select(bool keepCurrent, bool quiet) { SelectDevices(c, keepCurrent, quiet, video, audio, videos, audios); }
    DeviceList videos{{u"Cam A", u"0"}, {u"Cam B", u"0"}};
    DeviceList audios{{u"Mic A", u"0"}, {u"Mic B", u"0"}};
    DeviceRecord video, audio;
};

TEST_F(modDeviceTest, DeviceText_WithoutASeparator_IsOneDevice) {
    EXPECT_EQ(ParseDeviceText(u"Mic##0"), (DeviceList{{u"Mic", u"0"}}));
    EXPECT_EQ(ParseDeviceText(u"Mic"), (DeviceList{{u"Mic", u""}}));
    EXPECT_EQ(ParseDeviceText(u""), DeviceList{DeviceRecord{}});
}

TEST_F(modDeviceTest, DeviceText_EndsAtTheFirstZero) {
    const String text = u"A##0_&&_B##DV" + String(3, u'\0') + u"_&&_C##0";
    EXPECT_EQ(ParseDeviceText(text), (DeviceList{{u"A", u"0"}, {u"B", u"DV"}}));
}

TEST_F(modDeviceTest, Query_ThatFails_GivesOneEmptyRecord) {
    world.faults.FailCall(u"ksLib.ksQueryAudioDevice", 1, sim::Once);
    DeviceList list{{u"old", u""}};
    EXPECT_FALSE(QueryDevices(c, list, u"audio"));
    EXPECT_EQ(list, DeviceList{DeviceRecord{}});
}

TEST_F(modDeviceTest, Query_AsksForItsKind) {
    world.ksLib.videoDevices = u"Cam##0";
    world.ksLib.audioDevices = u"Mic##0_&&_Line##0";
    DeviceList list;
    EXPECT_TRUE(QueryDevices(c, list, u"video"));
    EXPECT_EQ(list, (DeviceList{{u"Cam", u"0"}}));
    EXPECT_TRUE(QueryDevices(c, list, u"audio"));
    EXPECT_EQ(list.size(), 2u);
}

TEST_F(modDeviceTest, TheSavedDevices_AreChosen) {
    video.name = u"Cam B";
    audio.name = u"Mic B";
    Select(false, false);
    EXPECT_EQ(video.name, u"Cam B");
    EXPECT_EQ(audio.name, u"Mic B");
}

TEST_F(modDeviceTest, AnUnpluggedCamera_IsReplacedByTheFirst_UnlessQuiet) {
    video.name = u"Gone";
    audio.name = u"Gone too";
    Select(false, false);
    EXPECT_EQ(video.name, u"Cam A");
    EXPECT_EQ(audio.name, u"Mic A");
    video.name = u"Gone";
    Select(false, true);
    EXPECT_EQ(video.name, u"");
    EXPECT_EQ(audio.name, u"Mic A");
}

TEST_F(modDeviceTest, ADvCamera_WinsOverTheSavedOne_AndNeedsNoMicrophone) {
    videos.push_back({u"Camcorder", u"DV"});
    video.name = u"Cam A";
    audio.name = u"Mic A";
    world.faults.FailCall(u"ksLib.ksSetAudioDevice", 1, sim::ForEver);
    Select(true, false);
    EXPECT_EQ(video.name, u"Camcorder");
    EXPECT_EQ(audio.name, u"");
    EXPECT_TRUE(world.box.Shown().empty()) << "no audio device is set";
}

TEST_F(modDeviceTest, KeepCurrent_ChoosesNoCamera) {
    video.name = u"Cam B";
    Select(true, false);
    EXPECT_EQ(video.name, u"");
    EXPECT_EQ(audio.name, u"Mic A");
}

TEST_F(modDeviceTest, ARefusedCamera_LeavesTheRecordsAsTheyWere) {
    world.faults.FailCall(u"ksLib.ksSetVideoDevice", 1, sim::Once);
    video = {u"Gone", u"x"};
    audio = {u"Mic B", u"y"};
    Select(false, false);
    EXPECT_EQ(LastBox(), u"SetVideoDevice Error!");
    EXPECT_EQ(video, (DeviceRecord{u"Gone", u"x"}));
    EXPECT_EQ(audio, (DeviceRecord{u"Mic B", u"y"}));
}

TEST_F(modDeviceTest, ARefusedMicrophone_LeavesTheRecordsAsTheyWere) {
    world.faults.FailCall(u"ksLib.ksSetAudioDevice", 1, sim::Once);
    video = {u"Cam B", u"x"};
    Select(false, false);
    EXPECT_EQ(LastBox(), u"SetAudioDevice Error!");
    EXPECT_EQ(video, (DeviceRecord{u"Cam B", u"x"}));
    EXPECT_EQ(audio, DeviceRecord{});
}

TEST_F(modDeviceTest, Init_TellsWhatThereIs) {
    world.ksLib.videoDevices = u"";
    world.ksLib.audioDevices = u"";
    EXPECT_EQ(InitDevices(c, false), kNoAudio);
    world.ksLib.audioDevices = u"Mic##0";
    EXPECT_EQ(InitDevices(c, false), kAudioOnly);
    world.ksLib.videoDevices = u"Cam##0";
    EXPECT_EQ(InitDevices(c, false), kAudioAndVideo);
    world.ksLib.videoDevices = u"Cam##0_&&_Camcorder##DV";
    EXPECT_EQ(InitDevices(c, false), kDvCamera);
    world.ksLib.videoDevices = u"Cam##0";
    world.ksLib.audioDevices = u"";
    EXPECT_EQ(InitDevices(c, false), kNoAudio) << "a camera alone cannot record";
}

TEST_F(modDeviceTest, Init_UsesTheSavedChoice) {
    world.ksLib.audioDevices = u"Mic A##0_&&_Mic B##0";
    world.settings.Set(u"configure", u"audioDevice", u"Mic B");
    EXPECT_EQ(InitDevices(c, false), kAudioOnly);
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksSetAudioDevice Mic B"));
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksSetAudioDevice Mic A"));
}

}  // namespace
}  // namespace kestrum
