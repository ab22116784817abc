// A scripted world with the states and the forms that the device room needs.
#pragma once

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "devices/Context.h"

namespace kestrum {

class DevicesTest : public ::testing::Test {
  protected:
    DevicesTest() {
        support.g_HostMode = u"PPT";
        support.g_OsVersion = 63;
    }
    void TearDown() override { EXPECT_TRUE(world.presenter.LeftOverActs().empty()); }

    /// Text of the box shown last, empty if there was none.
    String LastBox() const { return world.box.Shown().empty() ? String() : world.box.Shown().back().text; }
    void Language(const std::string& sections) { world.fs.Put(u"/opt/kestrum/res.xml", "<res>" + sections + "</res>"); }

    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    support::State support;
    project::State project{support::Context{world.host(), forms, support}};
    devices::State devices;
    devices::Context c{{{world.host(), forms, support}, project}, devices};
};

}  // namespace kestrum
