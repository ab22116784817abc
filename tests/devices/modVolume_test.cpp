// Low-volume detection, probe and switches.
#include "devices/modVolume.h"

#include "DevicesWorld.h"
#include "devices/frmVolMsg.h"

namespace kestrum {
namespace {

using namespace modVolume;

class modVolumeTest : public DevicesTest {
  protected:
    bool Tick() { return CheckLowVolume(c, false, kSilenceLimit, kVolumeThreshold); }
    void Start() { EXPECT_TRUE(CheckLowVolume(c, true, kSilenceLimit, kVolumeThreshold)); }
    bool DialogIsUp() { return forms.IsFormLoaded(u"frmVolMsg"); }
};

TEST_F(modVolumeTest, TheDialogOpensAtThe51stSilentTick) {
    Start();
    for (int i = 1; i <= 50; ++i) ASSERT_TRUE(Tick()) << i;
    EXPECT_FALSE(DialogIsUp());
    EXPECT_FALSE(Tick());
    EXPECT_TRUE(DialogIsUp());
    EXPECT_TRUE(forms.Find(u"frmVolMsg")->IsVisible());
    EXPECT_EQ(devices.silenceCounter, 0);
}

TEST_F(modVolumeTest, ALevelOfFive_IsSilence_AndSixEndsTheTest) {
    Start();
    devices.g_AudioLevel = 5;
    EXPECT_TRUE(Tick());
    devices.g_AudioLevel = 6;
    EXPECT_FALSE(Tick());
    EXPECT_FALSE(DialogIsUp());
}

TEST_F(modVolumeTest, SoundAtThe50thTick_EndsTheTestWithoutADialog) {
    Start();
    for (int i = 1; i <= 49; ++i) Tick();
    devices.g_AudioLevel = 40;
    EXPECT_FALSE(Tick());
    EXPECT_FALSE(DialogIsUp());
}

TEST_F(modVolumeTest, SoundAtThe51stTick_IsTooLate) {
    Start();
    for (int i = 1; i <= 50; ++i) Tick();
    devices.g_AudioLevel = 40;
    EXPECT_FALSE(Tick());
    EXPECT_TRUE(DialogIsUp()) << "the limit is looked at before the level";
}

TEST_F(modVolumeTest, AReset_CountsAnew) {
    Start();
    for (int i = 1; i <= 50; ++i) Tick();
    Start();
    EXPECT_TRUE(Tick());
    EXPECT_FALSE(DialogIsUp());
}

TEST_F(modVolumeTest, Probe_GoesOneStepUpAndBack_AtTheTopOneDown) {
    EXPECT_TRUE(ProbeVolume(c, 5));
    EXPECT_TRUE(ProbeVolume(c, 10));
    EXPECT_EQ(world.transcript.Only(u"ksLib.SetVolumeScale"),
              (std::vector<String>{u"ksLib.SetVolumeScale 6", u"ksLib.SetVolumeScale 5", u"ksLib.SetVolumeScale 9",
                                   u"ksLib.SetVolumeScale 10"}));
}

TEST_F(modVolumeTest, Probe_OfADeviceThatDoesNotObey_IsFalse) {
    world.faults.FailCall(u"ksLib.SetVolumeScale", 1, sim::ForEver);
    EXPECT_FALSE(ProbeVolume(c, 5));
}

TEST_F(modVolumeTest, Switches_AreAtMostTwo_AndNoneForAnEmptyText) {
    EXPECT_TRUE(MixerSwitches(u"").empty());
    EXPECT_EQ(MixerSwitches(u"Boost"), std::vector<String>{u"Boost"});
    EXPECT_EQ(MixerSwitches(u"A;B;C"), (std::vector<String>{u"A", u"B"}));
    EXPECT_TRUE(MixerSwitches(String(4, u'\0')).empty());
}

}  // namespace
}  // namespace kestrum
