// A scripted world with the session state and the forms that the support room needs.
#pragma once

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "support/Context.h"

namespace kestrum {

class SupportTest : public ::testing::Test {
  protected:
    SupportTest() {
        state.applicationTitle = u"Kestrum for PowerPoint";
        state.g_HostMode = u"PPT";
        state.g_OsVersion = 63;
        state.workFolder = u"/tmp/user/scratch";
        world.fs.PutFolder(state.workFolder);
    }
    void TearDown() override { EXPECT_TRUE(world.presenter.LeftOverActs().empty()); }

    /// A language file with these sections (XML) as its content.
    void Language(const std::string& sections) {
        world.fs.Put(u"/opt/kestrum/res.xml",
                     "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<res>" + sections + "</res>");
    }
    /// Text of the box shown last, empty if there was none.
    String LastBox() const { return world.box.Shown().empty() ? String() : world.box.Shown().back().text; }

    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    support::State state;
    support::Context c{world.host(), forms, state};
};

}  // namespace kestrum
