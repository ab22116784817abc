// What a program reads of the devices.
#include "apps/commandline/DeviceList.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"

namespace kestrum::app {
namespace {

class DeviceListTest : public ::testing::Test {
  protected:
    std::string Printed(bool json) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(RunDeviceList(c, console, json), 0);
        return testing::internal::GetCapturedStdout();
    }
    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    support::State state;
    support::Context c{world.host(), forms, state};
    Console console;
};

TEST_F(DeviceListTest, ForPeople_IsALineADevice) {
    world.ksLib.audioDevices = u"Mic A##0_&&_Mic B##0";
    EXPECT_EQ(Printed(false),
              "Microphones:\n  Mic A\n  Mic B\nCameras:\n  none\nThe computer's own sound can be recorded.\n");
}

TEST_F(DeviceListTest, ForPrograms_IsOneLineOfJson) {
    world.ksLib.videoDevices = u"Cam \"A\"##DV";
    world.recSystemAudio.canRecord = 0;
    EXPECT_EQ(Printed(true),
              "{\"microphones\":[{\"name\":\"Microphone\",\"kind\":\"0\"}],\"cameras\":[{\"name\":\"Cam "
              "\\\"A\\\"\",\"kind\":\"DV\"}],\"system_sound\":false}\n");
}

TEST_F(DeviceListTest, DevicesThatCannotBeAskedFor_AreNone) {
    world.faults.FailCall(u"ksLib.ksQueryAudioDevice", 1, sim::Once);
    EXPECT_TRUE(LookAtDevices(c).microphones.empty());
    EXPECT_TRUE(LookAtDevices(c).cameras.empty());
}

}  // namespace
}  // namespace kestrum::app
