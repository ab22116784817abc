// Routines that keep failures to themselves, with every call of the outside failing in turn, once and from then on.
#include "SupportWorld.h"
#include "support/frmExecCmd.h"
#include "support/modExec.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modLog.h"

namespace kestrum {
namespace {

/// A world of its own for one run of a sweep.
struct Scene {
    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    support::State state;
    support::Context c{world.host(), forms, state};
    const String folder = u"/home/anna/work";

    Scene() {
        world.fs.PutFolder(folder);
        world.fs.Put(folder + u"/a", "content");
        world.fs.Put(folder + u"/b", "old");
        state.workFolder = folder;
    }
};

using Arm = std::function<void(sim::Faults&)>;

TEST(SupportFaultSweep, SafeMoveFile_NeverLosesTheContent) {
    const int faulty = sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Scene run;
        arm(run.world.faults);
        const bool moved = modGlobal::SafeMoveFile(run.c, run.folder + u"/a", run.folder + u"/b", true);
        run.world.faults.Clear();
        const String holder = run.folder + (moved ? u"/b" : u"/a");
        EXPECT_EQ(run.world.fs.Bytes(holder), "content");
    });
    EXPECT_GT(faulty, 3);
}

TEST(SupportFaultSweep, FileHelpers_AnswerWithAFlag) {
    sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Scene run;
        arm(run.world.faults);
        EXPECT_NO_THROW({
            modGlobal::SafeCopyFile(run.c, run.folder + u"/a", run.folder + u"/c");
            modGlobal::SafeDeleteFile(run.c, run.folder + u"/b");
            modGlobal::TestFolderWritable(run.c, run.folder);
            modGlobal::MakeFolderTree(run.c, run.folder + u"/x/y");
            modGlobal::EnsureFolder(run.c, run.folder + u"/x");
            modGlobal::ClearReadOnly(run.c, run.folder);
            modGlobal::DeleteFolder(run.c, run.folder);
            modGlobal::GetFreeSpaceMB(run.c, run.folder);
        });
    });
}

TEST(SupportFaultSweep, LogAndLanguage_NeverDisturbTheCaller) {
    sim::FaultSweep(u"*", [](const Arm& arm) {
        Scene run;
        run.world.fs.Put(run.folder + u"/err_log.txt", std::string(40000, 'x'));
        run.world.fs.Put(u"/opt/kestrum/res.xml", "<r><s name=\"a\"><e name=\"k\">text</e></s></r>");
        arm(run.world.faults);
        EXPECT_NO_THROW({
            modLog::WriteErrLog(run.c, u"one");
            modLog::WriteErrLog(run.c, u"two");
            const String text = modLanguage::GetResString(run.c, u"a", u"k", u"default");
            EXPECT_TRUE(text == u"text" || text == u"default");
        });
    });
}

TEST(SupportFaultSweep, ExecCmd_AlwaysComesBackToItsCaller) {
    sim::FaultSweep(u"*", [](const Arm& arm) {
        Scene run;
        run.world.fs.Put(u"/opt/kestrum/kseditor", "program");
        run.world.processes.programs[u"kseditor"] = {1000, 0, nullptr};
        arm(run.world.faults);
        auto& form = run.forms.Get<frmExecCmd>(run.c);
        form.InitCmd(u"/opt/kestrum/kseditor", {}, false);
        EXPECT_NO_THROW(form.ShowModal());
        EXPECT_FALSE(run.forms.IsFormLoaded(u"frmExecCmd"));
    });
}

}  // namespace
}  // namespace kestrum
