// The dialogs with every call of the library and the settings failing in turn: no failure leaves a handler, and each
// dialog closes.
#include "DevicesWorld.h"
#include "devices/frmDevice.h"
#include "devices/frmVolMsg.h"
#include "devices/frmVolSetting.h"

namespace kestrum {
namespace {

struct Scene {
    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    support::State support;
    project::State project{support::Context{world.host(), forms, support}};
    devices::State devices;
    devices::Context c{{{world.host(), forms, support}, project}, devices};
};

using Arm = std::function<void(sim::Faults&)>;

TEST(DevicesFaultSweep, VolumeMessage_Closes) {
    sim::FaultSweep(u"*", [](const Arm& arm) {
        Scene run;
        arm(run.world.faults);
        run.forms.Get<frmVolMsg>(run.c).Show();
        EXPECT_NO_THROW(run.world.loop.Advance(1000));
        if (ui::Form* form = run.forms.Find(u"frmVolMsg")) {
            EXPECT_NO_THROW(form->Click(u"chkPrompt"));
            EXPECT_NO_THROW(form->Click(u"cmdOK"));
        }
        EXPECT_FALSE(run.forms.IsFormLoaded(u"frmVolMsg"));
    });
}

TEST(DevicesFaultSweep, VolumeSetting_LetsTheRecordingStart) {
    sim::FaultSweep(u"*", [](const Arm& arm) {
        Scene run;
        run.devices.g_DialogResult = 2;
        arm(run.world.faults);
        run.forms.Get<frmVolSetting>(run.c).Show();
        EXPECT_NO_THROW(run.world.loop.Advance(1000));
        EXPECT_TRUE(run.forms.Find(u"frmVolSetting")->Click(u"cmdRec"));
        EXPECT_EQ(run.devices.g_DialogResult, 1);
        EXPECT_FALSE(run.forms.IsFormLoaded(u"frmVolSetting"));
    });
}

TEST(DevicesFaultSweep, DeviceDialog_IsWorkedToItsEnd) {
    const int faulty = sim::FaultSweep(u"*", [](const Arm& arm) {
        Scene run;
        run.support.g_OsVersion = 63;
        run.world.ksLib.videoDevices = u"Cam A##0_&&_Cam B##0";
        run.world.settings.Set(u"configure", u"videoSize", u"240x180");
        arm(run.world.faults);
        frmDevice& dialog = run.forms.Get<frmDevice>(run.c);
        dialog.Show();
        EXPECT_NO_THROW(run.world.loop.Advance(1000));
        for (const StringView button : {u"cmdRefresh", u"cmdRecord", u"cmdStopRecord", u"cmdPlay"}) {
            EXPECT_NO_THROW(dialog.Click(button));
            EXPECT_NO_THROW(run.world.loop.Advance(500));
        }
        EXPECT_NO_THROW(dialog.Select(u"cmbVideoDevice", 1));
        EXPECT_NO_THROW(dialog.Select(u"cmbVideoSize", 0));
        EXPECT_NO_THROW(dialog.Click(u"cmdSave"));
        EXPECT_TRUE(!dialog.IsLoaded() || dialog.PressEscape());
        EXPECT_FALSE(run.forms.IsFormLoaded(u"frmDevice"));
    });
    EXPECT_GT(faulty, 10);
}

}  // namespace
}  // namespace kestrum
