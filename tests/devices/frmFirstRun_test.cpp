// The question of the first run.
#include "devices/frmFirstRun.h"

#include "DevicesWorld.h"

namespace kestrum {
namespace {

class frmFirstRunTest : public DevicesTest {
  protected:
    frmFirstRunTest() { world.ksLib.audioDevices = u"Built-in##0_&&_Desk microphone##0"; }
    frmFirstRun& Form() { return forms.Get<frmFirstRun>(c); }
    frmFirstRun& Shown() {
        Form().Show();
        world.loop.Advance(50);
        return Form();
    }
    String Saved(const String& key) const { return world.settings.Get(u"configure", key); }
};

TEST_F(frmFirstRunTest, IsDue_UntilItWasAnswered_OrAMicrophoneWasChosenElsewhere) {
    EXPECT_TRUE(frmFirstRun::IsDue(c));
    world.settings.Set(u"configure", u"audioDevice", u"Desk microphone");
    EXPECT_FALSE(frmFirstRun::IsDue(c));
    world.settings.Set(u"configure", u"audioDevice", u"");
    world.settings.Set(u"configure", u"firstRunDone", u"1");
    EXPECT_FALSE(frmFirstRun::IsDue(c));
}

TEST_F(frmFirstRunTest, OffersTheMicrophones_AndListensToTheFirst) {
    world.ksLib.audioVolume = 50;
    Shown();
    EXPECT_EQ(Form().cmbAudioDevice.Items(), (std::vector<String>{u"Built-in", u"Desk microphone"}));
    EXPECT_EQ(Form().cmbAudioDevice.Text(), u"Built-in");
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksSetAudioDevice Built-in"));
    world.loop.Advance(100);
    EXPECT_EQ(Form().InputLevel.Lit(), Form().InputLevel.Bars() / 2);
    EXPECT_FALSE(Form().lNote.Visible());
}

TEST_F(frmFirstRunTest, AnotherChoice_IsListenedTo_AndKeptByContinue) {
    Shown();
    Form().Select(u"cmbAudioDevice", 1);
    EXPECT_TRUE(world.transcript.Has(u"ksLib.ksSetAudioDevice Desk microphone"));
    Form().PressEnter();
    EXPECT_EQ(Saved(u"audioDevice"), u"Desk microphone");
    EXPECT_EQ(Saved(u"firstRunDone"), u"1");
    EXPECT_EQ(devices.g_DialogResult, 1);
    EXPECT_FALSE(Form().IsLoaded());
    EXPECT_TRUE(world.transcript.Has(u"ksLib.CloseAVDevice"));
}

TEST_F(frmFirstRunTest, Skip_ByEscapeToo_KeepsNothing_AndCounts) {
    Shown();
    Form().PressEscape();
    EXPECT_EQ(Saved(u"audioDevice"), u"");
    EXPECT_FALSE(frmFirstRun::IsDue(c));
    EXPECT_EQ(devices.g_DialogResult, 1);
}

TEST_F(frmFirstRunTest, CloseButtonOfTheFrame_LeavesTheQuestion) {
    Shown();
    Form().CloseByUser();
    EXPECT_TRUE(frmFirstRun::IsDue(c));
    EXPECT_EQ(devices.g_DialogResult, 2);
}

TEST_F(frmFirstRunTest, WithoutAMicrophone_ItSaysSo_AndGoesOn) {
    world.ksLib.audioDevices.clear();
    Shown();
    EXPECT_TRUE(Form().lNote.Visible());
    EXPECT_FALSE(Form().cmbAudioDevice.Enabled());
    Form().Click(u"cmdSave");
    EXPECT_EQ(Saved(u"audioDevice"), u"");
    EXPECT_FALSE(frmFirstRun::IsDue(c));
}

TEST_F(frmFirstRunTest, MicrophoneThatCannotBeOpened_IsTold_UntilAnotherIsChosen) {
    world.ksLib.checkAVDevice = -1;
    Shown();
    EXPECT_TRUE(Form().lNote.Visible());
    EXPECT_FALSE(Form().tmrGetVol.Enabled());
    world.ksLib.checkAVDevice = 3;
    Form().Select(u"cmbAudioDevice", 1);
    EXPECT_FALSE(Form().lNote.Visible());
    EXPECT_TRUE(Form().tmrGetVol.Enabled());
}

TEST_F(frmFirstRunTest, ClosedBeforeItsDevicesWereLookedAt_LeavesNothingOpen) {
    Form().Show();
    Form().PressEscape();
    world.loop.Advance(1000);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksSetAudioDevice Built-in"));
}

// --- the monitor of the shows --------------------------------------------------------------------------------------

class MonitorQuestion : public frmFirstRunTest {
  protected:
    MonitorQuestion() { world.app.Open(sim::Deck::Titled(u"/home/anna/talk.pptx", {u"One"})); }
    void Offer() { Form().OfferMonitors(world.app.ActivePresentation()->SlideShowSettings()); }
};

TEST_F(MonitorQuestion, WithOneMonitor_IsNotAsked) {
    Offer();
    EXPECT_FALSE(Form().cmbMonitor.Visible());
    Shown().PressEnter();
    EXPECT_EQ(world.app.showMonitor, 0);
}

TEST_F(MonitorQuestion, OffersEachByNameAndSize_WithTheHostsOwnChoiceInFront) {
    world.monitors.AddRight(1024, 768);
    Offer();
    EXPECT_TRUE(Form().cmbMonitor.Visible());
    EXPECT_EQ(Form().cmbMonitor.Items(),
              (std::vector<String>{u"Automatic", u"Monitor 1 (1920x1080)", u"Monitor 2 (1024x768)"}));
    EXPECT_EQ(Form().cmbMonitor.ListIndex(), 0);
    Shown().Select(u"cmbMonitor", 2);
    Form().PressEnter();
    EXPECT_EQ(world.app.showMonitor, 2);
}

TEST_F(MonitorQuestion, ShowsWhatTheHostHas_AndSkipLeavesIt) {
    world.monitors.AddRight(1024, 768);
    world.app.showMonitor = 1;
    Offer();
    EXPECT_EQ(Form().cmbMonitor.ListIndex(), 1);
    Shown().Select(u"cmbMonitor", 2);
    Form().PressEscape();
    EXPECT_EQ(world.app.showMonitor, 1);
}

TEST_F(MonitorQuestion, MonitorThatIsGone_IsAutomatic) {
    world.monitors.AddRight(1024, 768);
    world.app.showMonitor = 3;
    Offer();
    EXPECT_EQ(Form().cmbMonitor.ListIndex(), 0);
}

TEST_F(MonitorQuestion, HostThatRefuses_DoesNotKeepAnybodyFromRecording) {
    world.monitors.AddRight(1024, 768);
    Offer();
    Shown().Select(u"cmbMonitor", 2);
    world.faults.FailCall(u"app.SetShowMonitor", 1, sim::Once);
    Form().PressEnter();
    EXPECT_FALSE(frmFirstRun::IsDue(c));
    EXPECT_EQ(devices.g_DialogResult, 1);
}

}  // namespace
}  // namespace kestrum
