// The device dialog: how it finds, opens and fills in the devices, and what each failure leaves usable.
#include "DeviceDialogWorld.h"

namespace kestrum {
namespace {

using Lines = std::vector<String>;

class frmDeviceTest : public DeviceDialogTest {
  protected:
    frmDeviceTest() {
        Language(
            "<s name=\"frmDevice\">"
            "<e name=\"msgDvExists\">A DV camera</e><e name=\"msgNoAudio\">No microphone</e>"
            "<e name=\"msgDeviceLocked\">Locked</e><e name=\"msgDeviceLockedForPPT\">Locked beside the show</e>"
            "<e name=\"msgGetVolumeError\">No volume</e></s>");
    }
    Lines Opens() const { return world.transcript.Only(u"ksLib.CheckAVDevice"); }
    String VideoMessage() { return Dialog().lVideoMsg.Visible() ? Dialog().lVideoMsg.Caption() : String(); }
    void ExpectMicrophoneWorks(bool works) {
        EXPECT_EQ(Dialog().cmdSave.Enabled(), works);
        EXPECT_EQ(Dialog().cmdRecord.Enabled(), works);
        EXPECT_EQ(Dialog().SldVolLevel.Enabled(), works);
        EXPECT_EQ(Dialog().tmrGetVol.Enabled(), works);
    }
};

// --- load ------------------------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, Loaded_LooksAtTheDevicesAfterATenthOfASecond) {
    Dialog().Show();
    EXPECT_EQ(Dialog().cmbAudioQuality.Items(), (Lines{u"best", u"good", u"normal"}));
    world.loop.Advance(99);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksResetAVDevice"));
    EXPECT_FALSE(Dialog().cmdSave.Enabled()) << "nothing to save yet";
    world.loop.Advance(1);
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksResetAVDevice"));
    EXPECT_FALSE(Dialog().tmrInitDevice.Enabled());
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, Loaded_ShowsThatItIsLooking_UntilItHasLooked) {
    Set(u"videoSize", u"240x180");
    bool seen = false;
    world.ksLib.checkAVDevice = -1;
    world.box.AnswerAfter(0, host::BoxAnswer::Ok,
                          [&] { seen = Dialog().picDeviceChecking.Visible() && Dialog().lDeviceChecking.Visible(); });
    Opened();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(Dialog().picDeviceChecking.Visible());
    EXPECT_FALSE(Dialog().lDeviceChecking.Visible());
}

TEST_F(frmDeviceTest, QualityList_ComesFromTheLanguageFile_OneEntryALine) {
    Language("<s name=\"frmDevice\"><e name=\"audioQualityList\">A\\nB\\nC</e></s>");
    EXPECT_EQ(Opened().cmbAudioQuality.Items(), (Lines{u"A", u"B", u"C"}));
}

TEST_F(frmDeviceTest, SavedChoice_IsChosenAndOpened_InOrder) {
    Set(u"audioDevice", u"Mic B");
    Set(u"videoDevice", u"Cam B");
    Set(u"videoSize", u"320x240");
    Opened();
    EXPECT_EQ(world.transcript.Only(u"ksLib.ks"),
              (Lines{u"ksLib.ksResetAVDevice", u"ksLib.ksSetVideoDevice Cam B", u"ksLib.ksSetAudioDevice Mic B"}));
    EXPECT_EQ(Opens(), Lines{u"ksLib.CheckAVDevice 320 240 Cam B"});
    EXPECT_EQ(Dialog().cmbVideoDevice.Items(), (Lines{u"Cam A", u"Cam B"}));
    EXPECT_EQ(Dialog().cmbVideoDevice.Text(), u"Cam B");
    EXPECT_EQ(Dialog().cmbAudioDevice.Text(), u"Mic B");
    EXPECT_EQ(Dialog().cmbVideoSize.Items(), (Lines{u"160x120", u"240x180", u"320x240"}));
    EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"320x240");
    EXPECT_TRUE(Dialog().chkVideo.Checked());
    EXPECT_TRUE(Dialog().picVideo.Visible());
    EXPECT_EQ(VideoMessage(), u"");
}

TEST_F(frmDeviceTest, Preview_IsDrawnIntoAWindowOfThePictureAlone) {
    Opened();
    EXPECT_NE(world.ksLib.previewWindow, 0u);
    EXPECT_EQ(world.ksLib.previewWindow, Dialog().picVideo.Surface());
    EXPECT_NE(world.ksLib.previewWindow, Dialog().Window());
}

TEST_F(frmDeviceTest, UnknownOrEmptySize_LeavesTheCameraOff) {
    for (const String& size : {String(), String(u"640x480")}) {
        Set(u"videoSize", size);
        Opened();
        EXPECT_FALSE(Dialog().chkVideo.Checked());
        EXPECT_TRUE(Dialog().chkVideo.Enabled());
        EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"");
        EXPECT_EQ(Dialog().picVideo.Width(), 240);
        EXPECT_EQ(Dialog().picVideo.Height(), 180);
        EXPECT_EQ(Opens().back(), u"ksLib.CheckAVDevice 240 180 ") << "a camera that is off is not opened";
        EXPECT_EQ(VideoMessage(), u"Video device not enabled");
        EXPECT_FALSE(Dialog().picVideo.Visible());
        Dialog().Unload();
    }
}

TEST_F(frmDeviceTest, UnpluggedCamera_IsReplacedByTheFirst) {
    Set(u"videoDevice", u"Gone");
    Set(u"videoSize", u"160x120");
    EXPECT_EQ(Opened().cmbVideoDevice.Text(), u"Cam A");
}

TEST_F(frmDeviceTest, LowVolumeDetection_IsOnUnlessSaved) {
    EXPECT_TRUE(Opened().chkLowVolDetect.Checked());
    Dialog().Unload();
    Set(u"chkLowVolDetect", u"0");
    EXPECT_FALSE(Opened().chkLowVolDetect.Checked());
}

TEST_F(frmDeviceTest, SystemSound_ThatCannotBeRecorded_IsDisabledAndSavedAsOff) {
    Set(u"chkRecSystemAudio", u"1");
    EXPECT_TRUE(Opened().chkRecSystemAudio.Checked());
    EXPECT_TRUE(Dialog().chkRecSystemAudio.Enabled());
    Dialog().Unload();
    world.recSystemAudio.canRecord = 0;
    EXPECT_FALSE(Opened().chkRecSystemAudio.Enabled());
    EXPECT_FALSE(Dialog().chkRecSystemAudio.Checked());
    EXPECT_EQ(Saved(u"chkRecSystemAudio"), u"0");
}

TEST_F(frmDeviceTest, SystemSound_BelowSystemVersion60_IsDisabled) {
    support.g_OsVersion = 60;
    EXPECT_TRUE(Opened().chkRecSystemAudio.Enabled());
    Dialog().Unload();
    support.g_OsVersion = 52;
    Set(u"chkRecSystemAudio", u"1");
    EXPECT_FALSE(Opened().chkRecSystemAudio.Enabled());
    EXPECT_EQ(Saved(u"chkRecSystemAudio"), u"0");
}

TEST_F(frmDeviceTest, Quality_OfNoMedia_IsThePreference) {
    for (const auto& [saved, entry] :
         {std::pair(String(), 2), {String(u"96"), 0}, {String(u"64"), 1}, {String(u"32"), 2}, {String(u"128"), 2}}) {
        if (!saved.empty()) Set(u"audioBitrate", saved);
        EXPECT_EQ(Opened().cmbAudioQuality.ListIndex(), entry) << host::ToUtf8(saved);
        EXPECT_TRUE(Dialog().cmbAudioQuality.Enabled());
        EXPECT_FALSE(Dialog().lAudioQualityHelp.Visible());
        Dialog().Unload();
    }
}

// --- refresh ---------------------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, Refresh_ClosesTheDevices_AndLooksAgain_WithTheCurrentChoice) {
    Set(u"videoSize", u"240x180");
    Opened().cmbVideoDevice.SelectText(u"Cam B");
    world.ksLib.audioDevices = u"Mic B##0_&&_Mic C##0";
    world.transcript.Clear();
    String shown;
    world.ksLib.checkAVDevice = -1;
    world.box.AnswerAfter(0, host::BoxAnswer::Ok, [&] { shown = Dialog().lDeviceChecking.Caption(); });
    EXPECT_TRUE(Dialog().Click(u"cmdRefresh"));
    EXPECT_EQ(shown, u"Refreshing Device ...");
    EXPECT_EQ(world.transcript.Lines().front(), u"ksLib.CloseAVDevice");
    EXPECT_EQ(world.transcript.Lines()[1], u"ksLib.ksResetAVDevice");
    EXPECT_EQ(Dialog().cmbVideoDevice.Text(), u"Cam B");
    EXPECT_EQ(Dialog().cmbAudioDevice.Text(), u"Mic B") << "the first, for the chosen one is gone";
}

TEST_F(frmDeviceTest, RefusedReset_IsTold_AndStopsTheRefresh) {
    Opened();
    world.transcript.Clear();
    world.faults.FailCall(u"ksLib.ksResetAVDevice", 1, sim::Once);
    Dialog().Click(u"cmdRefresh");
    EXPECT_EQ(LastBox(), u"ResetAVDevice Error!");
    EXPECT_TRUE(Opens().empty());
    ExpectMicrophoneWorks(false);
    EXPECT_FALSE(Dialog().lDeviceChecking.Visible());
    EXPECT_TRUE(Dialog().PressEscape()) << "cancel always works";
}

TEST_F(frmDeviceTest, DvCamera_WinsOverTheSavedOne_BringsItsSound_AndIsToldOnce) {
    world.ksLib.videoDevices = u"Cam A##0_&&_Camcorder##DV";
    Set(u"videoDevice", u"Cam A");
    Set(u"videoSize", u"240x180");
    Opened();
    EXPECT_EQ(Dialog().cmbVideoDevice.Items(), Lines{u"Camcorder"});
    EXPECT_EQ(Dialog().cmbAudioDevice.Items(), Lines{u"(None)"});
    EXPECT_FALSE(Dialog().cmbVideoDevice.Enabled());
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksSetAudioDevice"));
    EXPECT_EQ(LastBox(), u"A DV camera");
    Dialog().Click(u"cmdRefresh");
    EXPECT_EQ(world.box.Shown().size(), 1u);
    Dialog().Click(u"chkVideo");
    EXPECT_FALSE(Dialog().cmbVideoDevice.Enabled());
    Dialog().Click(u"chkVideo");
    EXPECT_FALSE(Dialog().cmbVideoDevice.Enabled()) << "the list stays disabled";
    EXPECT_TRUE(Dialog().cmbVideoSize.Enabled());
}

TEST_F(frmDeviceTest, DvCameraThatIsSwitchedOff_IsOpenedForItsSound) {
    world.ksLib.videoDevices = u"Camcorder##DV";
    Opened();
    EXPECT_EQ(Opens(), Lines{u"ksLib.CheckAVDevice 240 180 Camcorder"});
}

TEST_F(frmDeviceTest, WithoutACamera_VideoIsOff_AndSaysSo) {
    world.ksLib.videoDevices = u"";
    Set(u"videoSize", u"240x180");
    Opened();
    EXPECT_EQ(Dialog().cmbVideoDevice.Items(), Lines{u"(None)"});
    EXPECT_FALSE(Dialog().chkVideo.Checked());
    EXPECT_FALSE(Dialog().chkVideo.Enabled());
    EXPECT_FALSE(Dialog().cmbVideoSize.Enabled());
    EXPECT_FALSE(Dialog().picVideo.Enabled());
    EXPECT_EQ(VideoMessage(), u"No video device");
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, CameraThatIsPluggedIn_CanBeSwitchedOnAfterARefresh) {
    world.ksLib.videoDevices = u"";
    Opened();
    world.ksLib.videoDevices = u"Cam A##0";
    Dialog().Click(u"cmdRefresh");
    EXPECT_EQ(VideoMessage(), u"Video device not enabled");
    EXPECT_TRUE(Dialog().Click(u"chkVideo"));
    EXPECT_EQ(Opens().back(), u"ksLib.CheckAVDevice 240 180 Cam A");
    EXPECT_EQ(VideoMessage(), u"");
}

TEST_F(frmDeviceTest, WithoutAMicrophone_ItIsTold_AndTheDialogStays) {
    world.ksLib.audioDevices = u"";
    world.ksLib.checkAVDevice = -1;
    Opened();
    EXPECT_EQ(Dialog().cmbAudioDevice.Items(), Lines{u"(None)"});
    EXPECT_EQ(LastBox(), u"No microphone");
    EXPECT_EQ(Opens().size(), 2u);
    EXPECT_EQ(world.transcript.Count(u"ksLib.ksResetAVDevice"), 2);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksSetAudioDevice"));
    ExpectMicrophoneWorks(false);
    EXPECT_TRUE(Dialog().Click(u"cmdCancel"));
}

TEST_F(frmDeviceTest, DevicesThatCannotBeAskedFor_AreNone) {
    world.faults.FailCall(u"ksLib.ksQuery*", 1, sim::ForEver);
    Opened();
    EXPECT_EQ(Dialog().cmbVideoDevice.Items(), Lines{u"(None)"});
    EXPECT_EQ(Dialog().cmbAudioDevice.Items(), Lines{u"(None)"});
}

TEST_F(frmDeviceTest, MicrophoneThatOpensAtTheSecondTry_IsFine) {
    world.faults.FailCall(u"ksLib.CheckAVDevice", 1, sim::Once);
    Opened();
    EXPECT_EQ(world.transcript.Only(u"ksLib.ks"),
              (Lines{u"ksLib.ksResetAVDevice", u"ksLib.ksSetVideoDevice Cam A", u"ksLib.ksSetAudioDevice Mic A",
                     u"ksLib.ksResetAVDevice", u"ksLib.ksSetAudioDevice Mic A"}));
    EXPECT_TRUE(world.box.Shown().empty());
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, CameraThatFails_IsTold_AndTheRestCanBeSaved) {
    Set(u"videoSize", u"240x180");
    world.ksLib.checkAVDevice = 1;
    Opened();
    EXPECT_EQ(VideoMessage(), u"Fail to open video device");
    EXPECT_TRUE(world.box.Shown().empty());
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, ResultTwo_SavesTheSizeAsItStandsInTheList) {
    Set(u"videoSize", u"240x180");
    world.ksLib.checkAVDevice = 3;
    Opened();
    Dialog().Select(u"cmbVideoSize", 0);
    EXPECT_EQ(Saved(u"videoSize"), u"240x180") << "3 saves nothing";
    world.ksLib.checkAVDevice = 2;
    Dialog().Select(u"cmbVideoSize", 2);
    EXPECT_EQ(Saved(u"videoSize"), u"320x240");
}

TEST_F(frmDeviceTest, ResultTwo_WithTheCameraOff_SwitchesNoneOn) {
    world.ksLib.checkAVDevice = 2;
    Opened();
    EXPECT_EQ(Saved(u"videoSize"), u"");
}

TEST_F(frmDeviceTest, RefusedCamera_IsTold_AndTheDialogGoesOn) {
    world.faults.FailCall(u"ksLib.ksSetVideoDevice", 1, sim::Once);
    Opened();
    EXPECT_EQ(LastBox(), u"SetVideoDevice Error!");
    ExpectMicrophoneWorks(true);
}

// --- another microphone ----------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, AnotherMicrophone_IsOpenedOnce) {
    Opened();
    world.transcript.Clear();
    EXPECT_TRUE(Dialog().Select(u"cmbAudioDevice", 1));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksSetAudioDevice Mic B"));
    EXPECT_EQ(Opens().size(), 1u);
    EXPECT_FALSE(devices.deviceLocked);
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, AnotherMicrophoneThatIsLocked_IsTold_AndNotTriedAgain) {
    Opened();
    world.transcript.Clear();
    world.faults.FailCall(u"ksLib.CheckAVDevice", 1, sim::Once);
    Dialog().Select(u"cmbAudioDevice", 1);
    EXPECT_EQ(LastBox(), u"Locked beside the show");
    EXPECT_EQ(Opens().size(), 1u);
    EXPECT_TRUE(devices.deviceLocked);
    ExpectMicrophoneWorks(false);
    support.projectSource = u"KTR";
    world.faults.FailCall(u"ksLib.CheckAVDevice", 1, sim::Once);
    Dialog().Select(u"cmbAudioDevice", 0);
    EXPECT_EQ(LastBox(), u"Locked");
    Dialog().Click(u"cmdRefresh");
    EXPECT_FALSE(devices.deviceLocked) << "the devices opened";
    ExpectMicrophoneWorks(true);
}

TEST_F(frmDeviceTest, AfterAnotherMicrophone_ARefreshTriesTwiceAgain) {
    Opened();
    Dialog().Select(u"cmbAudioDevice", 1);
    world.transcript.Clear();
    world.faults.FailCall(u"ksLib.CheckAVDevice", 1, sim::Once);
    Dialog().Click(u"cmdRefresh");
    EXPECT_EQ(Opens().size(), 2u);
    EXPECT_TRUE(world.box.Shown().empty());
}

// --- the camera ------------------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, SwitchingTheCameraOff_HidesItAndItsChoices) {
    Set(u"videoSize", u"240x180");
    Opened();
    world.transcript.Clear();
    EXPECT_TRUE(Dialog().Click(u"chkVideo"));
    for (const ui::Control* control : std::initializer_list<const ui::Control*>{
             &Dialog().lCamera, &Dialog().lVideoSize, &Dialog().cmbVideoSize, &Dialog().cmbVideoDevice}) {
        EXPECT_FALSE(control->Enabled()) << host::ToUtf8(control->Name());
    }
    EXPECT_FALSE(Dialog().picVideo.Visible());
    EXPECT_EQ(VideoMessage(), u"Video device not enabled");
    EXPECT_TRUE(Opens().empty());
}

TEST_F(frmDeviceTest, SwitchingTheCameraOn_SaysSoAndRefreshes) {
    Opened();
    world.transcript.Clear();
    String message;
    world.faults.FailCall(u"ksLib.ksSetVideoDevice", 1, sim::Once);
    world.box.AnswerAfter(0, host::BoxAnswer::Ok, [&] { message = VideoMessage(); });
    EXPECT_TRUE(Dialog().Click(u"chkVideo"));
    EXPECT_EQ(message, u"Initializing video device ...");
    EXPECT_EQ(world.transcript.Lines().front(), u"ksLib.CloseAVDevice");
    EXPECT_EQ(Opens(), Lines{u"ksLib.CheckAVDevice 240 180 Cam A"});
    EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"240x180");
    EXPECT_TRUE(Dialog().cmbVideoDevice.Enabled());
    EXPECT_EQ(VideoMessage(), u"");
}

TEST_F(frmDeviceTest, CameraThatIsSwitchedOnWhileTheMicrophoneFails_DoesNotSayThatItIsComing) {
    Opened();
    world.ksLib.checkAVDevice = -1;
    Dialog().Click(u"chkVideo");
    EXPECT_EQ(VideoMessage(), u"Fail to open video device");
}

TEST_F(frmDeviceTest, AnotherSize_ResizesThePictureAndReopensTheCamera) {
    Set(u"videoSize", u"240x180");
    Opened();
    world.transcript.Clear();
    EXPECT_TRUE(Dialog().Select(u"cmbVideoSize", 0));
    EXPECT_EQ(Dialog().picVideo.Width(), 160);
    EXPECT_EQ(Dialog().picVideo.Height(), 120);
    EXPECT_EQ(world.transcript.Lines(), (Lines{u"ksLib.CloseAVDevice", u"ksLib.CheckAVDevice 160 120 Cam A"}));
}

TEST_F(frmDeviceTest, AnotherCamera_IsSetAndOpened) {
    Set(u"videoSize", u"240x180");
    Opened();
    world.transcript.Clear();
    EXPECT_TRUE(Dialog().Select(u"cmbVideoDevice", 1));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksSetVideoDevice Cam B"));
    EXPECT_EQ(Opens(), Lines{u"ksLib.CheckAVDevice 240 180 Cam B"});
}

// --- the volume ------------------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, Volume_IsProbedAndShown_AndTheLevelRuns) {
    world.ksLib.volumeScale = 7;
    Opened();
    EXPECT_EQ(world.transcript.Only(u"ksLib.SetVolumeScale"),
              (Lines{u"ksLib.SetVolumeScale 8", u"ksLib.SetVolumeScale 7"}));
    EXPECT_EQ(Dialog().SldVolLevel.Value(), 7);
    world.ksLib.audioVolume = 50;
    world.loop.Advance(199);
    EXPECT_EQ(Dialog().InputLevel.Lit(), 0);
    world.loop.Advance(1);
    EXPECT_EQ(Dialog().InputLevel.Lit(), Dialog().InputLevel.Bars() / 2);
}

TEST_F(frmDeviceTest, VolumeAtTheTop_IsProbedDownwards) {
    world.ksLib.volumeScale = 10;
    Opened();
    EXPECT_EQ(world.transcript.Only(u"ksLib.SetVolumeScale"),
              (Lines{u"ksLib.SetVolumeScale 9", u"ksLib.SetVolumeScale 10"}));
}

TEST_F(frmDeviceTest, VolumeThatDoesNotObey_IsTold_AndTheSliderIsClosed) {
    for (const bool readable : {true, false}) {
        if (readable) world.faults.FailCall(u"ksLib.SetVolumeScale", 1, sim::ForEver);
        if (!readable) world.ksLib.volumeScale = -1;
        Opened();
        EXPECT_TRUE(Dialog().lVolumeMsg.Visible());
        EXPECT_EQ(Dialog().lVolumeMsg.Caption(), u"No volume");
        EXPECT_FALSE(Dialog().SldVolLevel.Enabled());
        EXPECT_FALSE(Dialog().tmrGetVol.Enabled());
        EXPECT_TRUE(Dialog().cmdSave.Enabled()) << "it records all the same";
        Dialog().Unload();
        world.faults.Clear();
    }
}

TEST_F(frmDeviceTest, SliderAndSwitches_GoToTheLibraryAtEachStep) {
    world.ksLib.mixerSwitches = u"Boost;Mute;Third";
    world.ksLib.MixerSet(1, 1);
    Opened();
    EXPECT_TRUE(Dialog().Check1_0.Visible());
    EXPECT_EQ(Dialog().Check1_1.Caption(), u"Mute");
    EXPECT_TRUE(Dialog().Check1_1.Checked());
    Dialog().Slide(u"SldVolLevel", 3);
    Dialog().Slide(u"SldVolLevel", 4);
    Dialog().Click(u"Check1(0)");
    Dialog().Click(u"Check1(1)");
    EXPECT_TRUE(world.transcript.Has(u"ksLib.SetVolumeScale 3"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.SetVolumeScale 4"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.MixerSet 0 1"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.MixerSet 1 0"));
}

TEST_F(frmDeviceTest, MicrophoneWithoutSwitches_ShowsNone_AfterOneThatHadSome) {
    Opened();
    EXPECT_TRUE(Dialog().Check1_0.Visible());
    world.ksLib.mixerSwitches = u"";
    Dialog().Select(u"cmbAudioDevice", 1);
    EXPECT_FALSE(Dialog().Check1_0.Visible());
    EXPECT_FALSE(Dialog().Check1_1.Visible());
}

// --- the end ---------------------------------------------------------------------------------------------------------

TEST_F(frmDeviceTest, Unloaded_ClosesTheDevices_AndLeavesNoTimer) {
    Opened();
    Dialog().Click(u"cmdCancel");
    EXPECT_EQ(world.transcript.Lines().back(), u"ksLib.CloseAVDevice");
    EXPECT_EQ(world.loop.TimerCount(u"frmDevice.tmrGetVol"), 0);
    EXPECT_EQ(Saved(u"audioDevice"), u"");
}

TEST_F(frmDeviceTest, ClosedWhileABoxIsUp_OpensNothingAnyMore) {
    world.ksLib.videoDevices = u"Camcorder##DV";
    world.box.AnswerAfter(10, host::BoxAnswer::Ok, [&] { Dialog().Unload(); });
    Opened();
    EXPECT_TRUE(Opens().empty());
    EXPECT_FALSE(forms.IsFormLoaded(u"frmDevice"));
    EXPECT_EQ(world.loop.TimerCount(u"frmDevice.tmrGetVol"), 0);
}

TEST_F(frmDeviceTest, SecondRefreshWhileABoxIsUp_IsIgnored) {
    Opened();
    world.transcript.Clear();
    world.ksLib.checkAVDevice = -1;
    world.box.AnswerAfter(10, host::BoxAnswer::Ok, [&] { Dialog().Click(u"cmdRefresh"); });
    Dialog().Click(u"cmdRefresh");
    EXPECT_EQ(world.transcript.Count(u"ksLib.CloseAVDevice"), 1);
    EXPECT_EQ(world.box.Shown().size(), 1u);
}

}  // namespace
}  // namespace kestrum
