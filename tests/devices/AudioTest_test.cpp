// The test bench of both dialogs that carry it: record, play, and what is closed meanwhile.
#include "devices/AudioTest.h"

#include "DevicesWorld.h"
#include "devices/frmConfig.h"
#include "devices/frmDevice.h"

namespace kestrum {
namespace {

class AudioTestTest : public DevicesTest {
  protected:
    AudioTestTest() {
        world.ksLib.mixerSwitches = u"Boost;Mute";
        dialog.Show();
        world.loop.Advance(100);
        world.transcript.Clear();
    }
    void Record(std::int64_t ms) {
        ASSERT_TRUE(dialog.Click(u"cmdRecord"));
        world.loop.Advance(ms);
        ASSERT_TRUE(dialog.Click(u"cmdStopRecord"));
    }
    String File(const StringView call) const {
        const std::vector<String> lines = world.transcript.Only(u"ksLib." + String(call) + u" ");
        return lines.empty() ? String() : lines.back().substr(lines.back().find(u' ') + 1);
    }
    /// The controls of the busy state.
    std::vector<ui::Control*> Busy() {
        return {&dialog.lAudioQuality, &dialog.cmbAudioQuality, &dialog.cmdSave,        &dialog.cmdCancel,
                &dialog.cmdRefresh,    &dialog.chkLowVolDetect, &dialog.cmbAudioDevice, &dialog.chkRecSystemAudio,
                &dialog.Check1_0,      &dialog.Check1_1};
    }
    void ExpectAll(bool enabled) {
        for (const ui::Control* control : Busy())
            EXPECT_EQ(control->Enabled(), enabled) << host::ToUtf8(control->Name());
    }
    frmDevice& dialog = forms.Get<frmDevice>(c);
};

TEST_F(AudioTestTest, Record_WritesANewRawFileOfTheTempFolder_AndShowsItsTime) {
    EXPECT_FALSE(dialog.cmdPlay.Enabled()) << "nothing to play yet";
    EXPECT_FALSE(dialog.cmdStopRecord.Visible());
    dialog.Click(u"cmdRecord");
    EXPECT_FALSE(dialog.cmdRecord.Visible());
    EXPECT_TRUE(dialog.cmdStopRecord.Visible());
    const String file = File(u"StartTestRecordAudio");
    EXPECT_EQ(file.rfind(world.places.temp + u"/", 0), 0u) << host::ToUtf8(file);
    EXPECT_TRUE(file.ends_with(u".raw"));
    EXPECT_EQ(dialog.lTimeString.Caption(), u"00:00:00");
    world.loop.Advance(1999);
    EXPECT_EQ(dialog.lTimeString.Caption(), u"00:00:01");
    world.loop.Advance(101);
    EXPECT_EQ(dialog.lTimeString.Caption(), u"00:00:02");
    dialog.Click(u"cmdStopRecord");
    EXPECT_TRUE(dialog.cmdRecord.Visible());
    EXPECT_FALSE(dialog.cmdStopRecord.Visible());
    EXPECT_TRUE(dialog.cmdPlay.Enabled());
    EXPECT_EQ(world.fs.Bytes(file).size(), 2100u);
    EXPECT_EQ(world.loop.TimerCount(u"frmDevice.tmrGetRecTime"), 0);
}

TEST_F(AudioTestTest, PlayingToTheEnd_BringsTheButtonsBack) {
    Record(1500);
    ASSERT_TRUE(dialog.Click(u"cmdPlay"));
    EXPECT_EQ(File(u"PlayTestAudio"), File(u"StartTestRecordAudio"));
    EXPECT_FALSE(dialog.cmdPlay.Visible());
    EXPECT_TRUE(dialog.cmdStop.Visible());
    EXPECT_FALSE(dialog.cmdRecord.Enabled());
    world.loop.Advance(1400);
    EXPECT_EQ(dialog.lTimeString.Caption(), u"00:00:01");
    ExpectAll(false);
    world.loop.Advance(200);
    EXPECT_TRUE(dialog.cmdPlay.Visible());
    EXPECT_FALSE(dialog.cmdStop.Visible());
    EXPECT_TRUE(dialog.cmdRecord.Enabled());
    EXPECT_TRUE(world.transcript.Has(u"ksLib.StopTestAudio"));
    EXPECT_EQ(world.loop.TimerCount(u"frmDevice.tmrGetPlayTime"), 0);
    ExpectAll(true);
}

TEST_F(AudioTestTest, PlayingIsStopped_AtAnyMoment) {
    Record(5000);
    dialog.Click(u"cmdPlay");
    world.loop.Advance(700);
    EXPECT_TRUE(dialog.Click(u"cmdStop"));
    EXPECT_TRUE(dialog.cmdPlay.Visible());
    EXPECT_TRUE(dialog.cmdRecord.Enabled());
    ExpectAll(true);
}

TEST_F(AudioTestTest, RecordingThatIsStoppedAtOnce_StillPlays) {
    Record(0);
    EXPECT_TRUE(world.fs.FileExists(File(u"StartTestRecordAudio")));
    ASSERT_TRUE(dialog.Click(u"cmdPlay"));
    world.loop.Advance(100);
    EXPECT_TRUE(dialog.cmdPlay.Visible());
    ExpectAll(true);
}

TEST_F(AudioTestTest, SecondRecording_HasAFileOfItsOwn_AndTheFirstIsLeftBehind) {
    Record(300);
    const String first = File(u"StartTestRecordAudio");
    Record(400);
    const String second = File(u"StartTestRecordAudio");
    EXPECT_NE(first, second);
    EXPECT_EQ(world.fs.Bytes(first).size(), 300u);
    dialog.Click(u"cmdPlay");
    EXPECT_EQ(File(u"PlayTestAudio"), second);
}

TEST_F(AudioTestTest, BusyState_ClosesWhatWouldDisturb_AndGivesEachBackAsItWas) {
    ExpectAll(true);
    dialog.chkRecSystemAudio.SetEnabled(false);
    dialog.cmdRefresh.SetEnabled(false);
    dialog.Click(u"cmdRecord");
    ExpectAll(false);
    EXPECT_FALSE(dialog.cmdPlay.Enabled());
    EXPECT_FALSE(dialog.PressEscape());
    dialog.Click(u"cmdStopRecord");
    for (const ui::Control* control : Busy()) {
        const bool was = control != &dialog.chkRecSystemAudio && control != &dialog.cmdRefresh;
        EXPECT_EQ(control->Enabled(), was) << host::ToUtf8(control->Name());
    }
}

TEST_F(AudioTestTest, Quality_IsGivenBackOnlyWhileTheLectureIsEmpty) {
    support.packagePath = u"/home/anna/waves.ktr";
    support.workFolder = u"/tmp/user/scratch";
    dialog.Click(u"cmdRecord");
    sim::Package package;
    package.lengthMs = 1000;
    world.ksLib.Put(support.packagePath, package);
    dialog.Click(u"cmdStopRecord");
    EXPECT_FALSE(dialog.cmbAudioQuality.Enabled());
    EXPECT_FALSE(dialog.lAudioQuality.Enabled());
    EXPECT_TRUE(dialog.cmdSave.Enabled());
}

TEST_F(AudioTestTest, KeyboardFollowsTheButtonThatComes) {
    dialog.SetFocus(dialog.cmdRecord);
    dialog.Click(u"cmdRecord");
    EXPECT_EQ(dialog.Focus(), &dialog.cmdStopRecord);
    dialog.Click(u"cmdStopRecord");
    EXPECT_EQ(dialog.Focus(), &dialog.cmdRecord);
}

TEST_F(AudioTestTest, ClosingTheWindow_EndsTheTest) {
    dialog.Click(u"cmdRecord");
    world.loop.Advance(300);
    EXPECT_TRUE(dialog.CloseByUser());
    EXPECT_TRUE(world.transcript.Has(u"ksLib.StopTestRecordAudio"));
    dialog.Show();
    world.loop.Advance(100);
    EXPECT_TRUE(dialog.cmdRecord.Visible());
    EXPECT_FALSE(dialog.cmdPlay.Enabled());
    ExpectAll(true);
}

TEST_F(AudioTestTest, AnotherCamera_EndsTheTestBeforeTheDevicesClose) {
    world.ksLib.videoDevices = u"Cam A##0_&&_Cam B##0";
    dialog.Click(u"cmdRefresh");
    dialog.Click(u"chkVideo");
    world.transcript.Clear();
    dialog.Click(u"cmdRecord");
    EXPECT_TRUE(dialog.Select(u"cmbVideoDevice", 1));
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.StopTestRecordAudio"), world.transcript.IndexOf(u"ksLib.CloseAVDevice"));
    ExpectAll(true);
}

// --- the same bench among the preferences ----------------------------------------------------------------------------

class ConfigBenchTest : public DevicesTest {
  protected:
    ConfigBenchTest() { dialog.Show(); }
    frmConfig& dialog = forms.Get<frmConfig>(c);
};

TEST_F(ConfigBenchTest, RecordsFromTheSavedMicrophone_AndPlays) {
    world.ksLib.audioDevices = u"Mic A##0_&&_Mic B##0";
    world.ksLib.videoDevices = u"Cam A##0";
    world.settings.Set(u"configure", u"audioDevice", u"Mic B");
    ASSERT_TRUE(dialog.Click(u"cmdRecord"));
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.ksSetAudioDevice Mic B"),
              world.transcript.IndexOf(u"ksLib.StartTestRecordAudio"));
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksSetVideoDevice"));
    const std::vector<ui::Control*> busy = {&dialog.lAudioQuality, &dialog.cmbAudioQuality, &dialog.cmdSave,
                                            &dialog.cmdCancel,     &dialog.chkLowVolDetect, &dialog.chkRecSystemAudio};
    for (const ui::Control* control : busy) EXPECT_FALSE(control->Enabled()) << host::ToUtf8(control->Name());
    world.loop.Advance(1200);
    EXPECT_EQ(dialog.lTimeString.Caption(), u"00:00:01");
    ASSERT_TRUE(dialog.Click(u"cmdStopRecord"));
    for (const ui::Control* control : busy) EXPECT_TRUE(control->Enabled()) << host::ToUtf8(control->Name());
    ASSERT_TRUE(dialog.Click(u"cmdPlay"));
    world.loop.Advance(1400);
    EXPECT_TRUE(dialog.cmdPlay.Visible()) << "played to the end";
}

TEST_F(ConfigBenchTest, WithoutAMicrophone_TellsSo_AndStartsNothing) {
    world.ksLib.audioDevices = u"";
    dialog.Click(u"cmdRecord");
    EXPECT_EQ(LastBox(), u"No microphone can be used.");
    EXPECT_FALSE(world.transcript.Has(u"ksLib.StartTestRecordAudio"));
    EXPECT_TRUE(dialog.cmdRecord.Visible());
    EXPECT_TRUE(dialog.cmdSave.Enabled());
}

TEST_F(ConfigBenchTest, ClosingTheWindow_EndsTheTest) {
    dialog.Click(u"cmdRecord");
    EXPECT_TRUE(dialog.CloseByUser());
    EXPECT_TRUE(world.transcript.Has(u"ksLib.StopTestRecordAudio"));
}

}  // namespace
}  // namespace kestrum
