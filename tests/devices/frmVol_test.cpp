// The two volume dialogs.
#include "DevicesWorld.h"
#include "devices/frmVolMsg.h"
#include "devices/frmVolSetting.h"

namespace kestrum {
namespace {

class frmVolTest : public DevicesTest {
  protected:
    frmVolTest() {
        Language(
            "<s name=\"frmConfig\"><e name=\"msgNoAudio\">No microphone</e></s>"
            "<s name=\"frmVolMsg\"><e name=\"lVolume\">Volume</e><e name=\"msgGetVolumeError\">No volume</e>"
            "<e name=\"msgLowVolDetect\">Off from now on</e></s>"
            "<s name=\"frmVolSetting\"><e name=\"msgGetVolumeError\">No\\nvolume</e></s>"
            "<s name=\"frmMsgBox\"/>");
        devices.g_DialogResult = 2;
    }
    frmVolMsg& Message() { return forms.Get<frmVolMsg>(c); }
    frmVolSetting& Setting() { return forms.Get<frmVolSetting>(c); }
    String Saved(const String& key) const { return world.settings.Get(u"configure", key); }
};

TEST_F(frmVolTest, Message_StandsAboveAllAndOutOfThePicture) {
    Message().Show();
    EXPECT_TRUE(Message().Style().topmost);
    EXPECT_TRUE(Message().Style().layered);
    EXPECT_LT(Message().Style().opacity, 255);
    EXPECT_TRUE(Message().Style().excludedFromCapture);
}

TEST_F(frmVolTest, Message_ShowsVolumeSwitchesAndLevel) {
    world.ksLib.volumeScale = 7;
    world.ksLib.MixerSet(0, 1);
    Message().Show();
    EXPECT_FALSE(Message().Check1_0.Visible());
    world.loop.Advance(50);
    EXPECT_EQ(Message().Slider1.Value(), 7);
    EXPECT_EQ(Message().lVolume.Caption(), u"Volume");
    EXPECT_TRUE(Message().Check1_0.Visible());
    EXPECT_EQ(Message().Check1_0.Caption(), u"Microphone");
    EXPECT_EQ(Message().Check1_0.Value(), 1);
    EXPECT_FALSE(Message().Check1_1.Visible());
    devices.g_AudioLevel = 50;
    world.loop.Advance(200);
    EXPECT_EQ(Message().InputLevel.Lit(), Message().InputLevel.Bars() / 2);
}

TEST_F(frmVolTest, Message_PassesSliderAndSwitchToTheLibrary) {
    Message().Show();
    world.loop.Advance(50);
    Message().Slide(u"Slider1", 9);
    Message().Click(u"Check1(0)");
    EXPECT_TRUE(world.transcript.Has(u"ksLib.SetVolumeScale 9"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.MixerSet 0 1"));
}

TEST_F(frmVolTest, Message_WithoutAMicrophone_TellsAndCloses) {
    world.ksLib.queryDevice = -1;
    Message().Show();
    world.loop.Advance(50);
    EXPECT_EQ(LastBox(), u"No microphone");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmVolMsg"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.DeleteAudioMixer"));
}

TEST_F(frmVolTest, Message_WithoutAVolume_SaysSoAndDisablesTheSlider) {
    world.ksLib.volumeScale = -1;
    Message().Show();
    world.loop.Advance(50);
    EXPECT_EQ(Message().lVolume.Caption(), u"No volume");
    EXPECT_FALSE(Message().Slider1.Enabled());
}

TEST_F(frmVolTest, Message_WithThePromptSet_SwitchesTheDetectionOff) {
    Message().Show();
    world.loop.Advance(50);
    world.presenter.Click(u"frmVolMsg", u"chkPrompt");
    world.presenter.Do(u"frmMsgBox", u"look", [](ui::Form& form) {
        EXPECT_EQ(form.Caption(), u"Low Volume Detection");
        EXPECT_TRUE(form.Style().topmost) << "it must not hide behind the dialog";
    });
    world.presenter.Click(u"frmMsgBox", u"cmdOK").Click(u"frmVolMsg", u"cmdOK");
    world.loop.Advance(100);
    EXPECT_FALSE(forms.IsFormLoaded(u"frmVolMsg"));
    EXPECT_EQ(Saved(u"chkLowVolDetect"), u"0");
    EXPECT_TRUE(world.transcript.Has(u"ksLib.DeleteAudioMixer"));
}

TEST_F(frmVolTest, Message_OnAnOlderSystem_ShowsNoTextForThePrompt) {
    support.g_OsVersion = 51;
    Message().Show();
    Message().Click(u"chkPrompt");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmMsgBox"));
    Message().Click(u"cmdOK");
    EXPECT_EQ(Saved(u"chkLowVolDetect"), u"0");
}

TEST_F(frmVolTest, Message_WithoutThePrompt_LeavesTheSettingAlone) {
    world.settings.Set(u"configure", u"chkLowVolDetect", u"1");
    Message().Show();
    Message().PressEnter();
    EXPECT_EQ(Saved(u"chkLowVolDetect"), u"1");
}

TEST_F(frmVolTest, Message_WhenTheSettingCannotBeSaved_ClosesAllTheSame) {
    support.g_OsVersion = 51;
    Message().Show();
    Message().Click(u"chkPrompt");
    world.faults.FailCall(u"settings.Write", 1, sim::ForEver);
    Message().Click(u"cmdOK");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmVolMsg"));
}

TEST_F(frmVolTest, Setting_ChecksTheDevicesInOrder_ThenShowsTheLevel) {
    world.ksLib.audioVolume = 100;
    world.ksLib.volumeScale = 4;
    Setting().Show();
    EXPECT_TRUE(Setting().Style().topmost);
    world.loop.Advance(50);
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.ksResetAVDevice"), world.transcript.IndexOf(u"ksLib.ksSetAudioDevice"));
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.ksSetAudioDevice"), world.transcript.IndexOf(u"ksLib.CheckAVDevice"));
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.CheckAVDevice"), world.transcript.IndexOf(u"ksLib.CreateAudioMixer"));
    EXPECT_FALSE(Setting().picCheckDevice.Visible());
    EXPECT_EQ(Setting().SldVolLevel.Value(), 4);
    EXPECT_EQ(Setting().InputLevel.Lit(), 0);
    world.loop.Advance(100);
    EXPECT_EQ(Setting().InputLevel.Lit(), Setting().InputLevel.Bars());
}

TEST_F(frmVolTest, Setting_Record_GoesOn_AndSavesWhetherToAskAgain) {
    Setting().Show();
    world.loop.Advance(50);
    Setting().Click(u"chkPrompt");
    Setting().PressEnter();
    EXPECT_EQ(devices.g_DialogResult, 1);
    EXPECT_EQ(Saved(u"chkSetVolBefRec"), u"0");
    devices.g_DialogResult = 2;
    Setting().Show();
    Setting().Click(u"cmdRec");
    EXPECT_EQ(devices.g_DialogResult, 1);
    EXPECT_EQ(Saved(u"chkSetVolBefRec"), u"1");
}

TEST_F(frmVolTest, Setting_CancelledOrClosed_LeavesTheResult) {
    Setting().Show();
    EXPECT_TRUE(Setting().PressEscape());
    EXPECT_EQ(devices.g_DialogResult, 2);
    Setting().Show();
    EXPECT_TRUE(Setting().CloseByUser());
    EXPECT_EQ(devices.g_DialogResult, 2);
    EXPECT_EQ(Saved(u"chkSetVolBefRec"), u"");
}

TEST_F(frmVolTest, Setting_WhenItGoes_WaitsAndClosesTheDevices) {
    Setting().Show();
    world.loop.Advance(150);
    const std::int64_t before = world.loop.Elapsed();
    Setting().Click(u"cmdCancel");
    EXPECT_EQ(world.loop.Elapsed() - before, 100);
    EXPECT_EQ(world.transcript.Lines().back(), u"ksLib.CloseAVDevice");
    EXPECT_EQ(world.loop.TimerCount(u"frmVolSetting.tmrGetVol"), 0);
}

TEST_F(frmVolTest, Setting_TellsWhatIsWrong) {
    world.faults.FailCall(u"ksLib.ksResetAVDevice", 1, sim::Once);
    world.ksLib.audioDevices = u"";
    world.ksLib.volumeScale = -1;
    Setting().Show();
    world.loop.Advance(50);
    EXPECT_TRUE(world.box.WasShown(u"ResetAVDevice Error!"));
    EXPECT_TRUE(world.box.WasShown(u"No microphone"));
    EXPECT_EQ(Setting().lVolume.Caption(), u"No\r\nvolume");
    EXPECT_FALSE(Setting().SldVolLevel.Enabled());
    EXPECT_TRUE(Setting().IsLoaded()) << "no failure ends the dialog";
}

TEST_F(frmVolTest, Setting_ClosedWhileABoxIsUp_OpensNoDeviceAnyMore) {
    world.ksLib.audioDevices = u"";
    world.box.AnswerAfter(10, host::BoxAnswer::Ok, [&] { Setting().Unload(); });
    Setting().Show();
    world.loop.Advance(200);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.CheckAVDevice"));
    EXPECT_FALSE(forms.IsFormLoaded(u"frmVolSetting"));
    EXPECT_EQ(world.loop.TimerCount(u"frmVolSetting.tmrGetVol"), 0);
}

}  // namespace
}  // namespace kestrum
