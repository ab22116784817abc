#include "support/modLog.h"

#include "SupportWorld.h"

namespace kestrum {
namespace {

using modLog::ShowStepError;
using modLog::WriteErrLog;

class modLogTest : public SupportTest {
  protected:
    const String file = u"/tmp/user/scratch/err_log.txt";
    std::string Log() const { return world.fs.Bytes(file); }
};

TEST_F(modLogTest, StepError_WithATitle_NamesTheStep) {
    state.currentStep = u"index.item(2).pos";
    ShowStepError(c, u"Type mismatch", u"Load project.ksp");
    EXPECT_EQ(LastBox(), u"index.item(2).pos: Type mismatch");
    EXPECT_EQ(world.box.Shown().back().title, u"Load project.ksp");
}

TEST_F(modLogTest, StepError_WithoutATitle_ShowsTheDescriptionAlone) {
    state.currentStep = u"index";
    ShowStepError(c, u"Type mismatch", u"");
    EXPECT_EQ(LastBox(), u"Type mismatch");
    EXPECT_EQ(world.box.Shown().back().title, u"Kestrum for PowerPoint");
}

TEST_F(modLogTest, TheFirstLineOfARun_OpensASection) {
    WriteErrLog(c, u"one");
    WriteErrLog(c, u"zwei ü");
    EXPECT_TRUE(Log().starts_with("\r\n=== Begin ("));
    EXPECT_NE(Log().find(") ===\r\none\r\nzwei \xC3\xBC\r\n"), std::string::npos);
}

TEST_F(modLogTest, AnEarlierLog_IsKept) {
    world.fs.Put(file, "old\r\n");
    WriteErrLog(c, u"new");
    EXPECT_TRUE(Log().starts_with("old\r\n\r\n=== Begin ("));
}

TEST_F(modLogTest, ALogAtTheLimit_StaysWhole) {
    world.fs.Put(file, "a" + std::string(32767, 'x'));
    WriteErrLog(c, u"new");
    EXPECT_EQ(Log()[0], 'a');
}

TEST_F(modLogTest, ALogOverTheLimit_IsCutToItsNewestPart_OnceARun) {
    world.fs.Put(file, "ab" + std::string(32767, 'x'));
    WriteErrLog(c, u"new");
    EXPECT_EQ(Log()[0], 'b');
    EXPECT_EQ(Log().find("\r\n=== Begin"), 32768u);
    WriteErrLog(c, u"later");
    EXPECT_EQ(Log()[0], 'b') << "a long run may pass the limit";
}

TEST_F(modLogTest, TheLimit_CountsCharactersAndNotBytes) {
    std::string text = "a";
    for (int i = 0; i < 32767; ++i) text += "\xC3\xBC";
    world.fs.Put(file, text);
    WriteErrLog(c, u"new");
    EXPECT_EQ(Log()[0], 'a');
}

TEST_F(modLogTest, Failures_NeverDisturbTheCaller) {
    for (const String call : {u"fs.ReadFile", u"fs.WriteFile", u"fs.AppendFile"}) {
        state.logBegun = false;
        world.fs.Put(file, std::string(40000, 'x'));
        world.faults.FailCall(call, 1, sim::ForEver);
        EXPECT_NO_THROW(WriteErrLog(c, u"line"));
        world.faults.Clear();
    }
}

TEST_F(modLogTest, WithoutAWorkFolder_NothingIsWritten) {
    state.workFolder.clear();
    const auto before = world.fs.All();
    WriteErrLog(c, u"line");
    EXPECT_EQ(world.fs.All(), before);
}

}  // namespace
}  // namespace kestrum
