// Every routine that writes a project file, with the n-th file call failing, once and for ever: the old file or the new
// one is whole each time, and the user was told what the rules tell.
#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "project/modKspXml.h"

namespace kestrum {
namespace {

using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using test::ReplacedOnce;
using Texts = std::vector<String>;
using Arm = std::function<void(sim::Faults&)>;

const String kXml = ProjectWorld::InWork(u"project.xml");

/// A desk with a project of one entry on disk; the one in memory has got a second.
struct Desk : ProjectWorld {
    Desk() {
        EXPECT_TRUE(Load(ProjectText(Item("1", "0"))));
        EXPECT_TRUE(ksp.Save(u""));
        old = Bytes(kProjectFile);
        ksp.AddIndex(u"2", u"5000", u"", u"", u"", u"", false, 0);
    }

    std::string Bytes(const String& file) const { return world.fs.Bytes(file); }
    static bool IsNew(const std::string& text) {
        return text.find("<pos>5000</pos>") != std::string::npos && text.ends_with("</kestrum>");
    }
    bool Failed(const String& call) const {
        const auto& calls = world.faults.Injected();
        return std::find(calls.begin(), calls.end(), call) != calls.end();
    }

    CProjectFile& ksp = project.g_Project;
    std::string old;
};

/// After a save of `file` that held `old` before: what is on disk and what was told fit together.
void ExpectWholeAndTold(const Desk& desk, const String& file, const std::string& old, bool result) {
    SCOPED_TRACE(desk.Story());
    const std::string now = desk.Bytes(file), fresh = desk.Bytes(file + u".tmp");
    EXPECT_TRUE(now == old || Desk::IsNew(now) || (now.empty() && Desk::IsNew(fresh)));
    EXPECT_EQ(Desk::IsNew(desk.Bytes(desk.ksp.WrittenTo())), !desk.ksp.WrittenTo().empty());
    if (desk.Failed(u"fs.WriteFile")) {
        ASSERT_EQ(desk.Boxes().size(), 1U);
        EXPECT_EQ(desk.world.box.Shown()[0].title, u"ksp.Save");
        EXPECT_EQ(desk.Boxes()[0].rfind(u"Save FileName: ", 0), 0U);
        EXPECT_TRUE(result) << "the caller is told success";
        EXPECT_EQ(desk.ksp.WrittenTo(), u"");
        EXPECT_EQ(now, old);
    } else if (desk.Failed(u"fs.DeleteFile")) {
        EXPECT_EQ(desk.Boxes(), Texts{u"Save 'project.ksp' error! The updated project is saved as 'project.ksp.tmp'"});
        EXPECT_FALSE(result);
        EXPECT_EQ(desk.ksp.WrittenTo(), file + u".tmp");
    } else {
        EXPECT_EQ(desk.Boxes(), Texts{});
        EXPECT_TRUE(result);
        EXPECT_FALSE(desk.ksp.WrittenTo().empty());
    }
}

TEST(CProjectFileFaults, Save_LeavesTheOldOrTheNewFileWholeAndTells) {
    const int runs = sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Desk desk;
        arm(desk.world.faults);
        const bool result = desk.ksp.Save(u"");
        ExpectWholeAndTold(desk, ProjectWorld::kProjectFile, desk.old, result);
    });
    EXPECT_GE(runs, 6) << "writing, deleting and moving can fail, once and for ever";
}

TEST(CProjectFileFaults, Save_ToANewName_LeavesNothingOrTheNewFileAndTells) {
    const int runs = sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Desk desk;
        arm(desk.world.faults);
        const bool result = desk.ksp.Save(kXml);
        ExpectWholeAndTold(desk, kXml, "", result);
        EXPECT_EQ(desk.Bytes(ProjectWorld::kProjectFile), desk.old);
    });
    EXPECT_GE(runs, 4);
}

TEST(CProjectFileFaults, SaveToXml_LeavesTheOldOrTheNewFileWholeAndTells) {
    const int runs = sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Desk desk;
        desk.world.fs.Put(kXml, "old player file");
        arm(desk.world.faults);
        const bool result = desk.ksp.SaveToXml(kXml);
        ExpectWholeAndTold(desk, kXml, "old player file", result);
        EXPECT_EQ(desk.Bytes(ProjectWorld::kProjectFile), desk.old);
    });
    EXPECT_GE(runs, 6);
}

TEST(CProjectFileFaults, Save_AgainAfterAFault_NeverLosesWhatTheFirstWrote) {
    sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        Desk desk;
        arm(desk.world.faults);
        desk.ksp.Save(u"");
        const bool wasNew = !desk.ksp.WrittenTo().empty();
        desk.ksp.Save(u"");
        SCOPED_TRACE(desk.Story());
        const std::string now = desk.Bytes(ProjectWorld::kProjectFile);
        const std::string fresh = desk.Bytes(String(ProjectWorld::kProjectFile) + u".tmp");
        EXPECT_TRUE(now == desk.old || Desk::IsNew(now) || (now.empty() && Desk::IsNew(fresh)));
        // An old file that stays in the way is whole; once it is gone, what took its place is all there is.
        if (wasNew && !desk.Failed(u"fs.DeleteFile")) {
            EXPECT_TRUE(Desk::IsNew(now) || Desk::IsNew(fresh));
        }
        desk.world.faults.Clear();
        EXPECT_TRUE(desk.ksp.Save(u"")) << "when the disk is well again, so is the file";
        EXPECT_TRUE(Desk::IsNew(desk.Bytes(ProjectWorld::kProjectFile)));
        EXPECT_FALSE(desk.world.fs.FileExists(String(ProjectWorld::kProjectFile) + u".tmp"));
    });
}

TEST(CProjectFileFaults, Save_WhenTheMoveFailedAndThenTheDiskIsFull_KeepsTheFirstText) {
    Desk desk;
    desk.world.faults.FailCall(u"fs.MoveFile", 1, sim::Once);
    EXPECT_TRUE(desk.ksp.Save(u""));
    const String fresh = String(ProjectWorld::kProjectFile) + u".tmp";
    EXPECT_EQ(desk.ksp.WrittenTo(), fresh);
    EXPECT_FALSE(desk.world.fs.FileExists(ProjectWorld::kProjectFile));
    desk.world.faults.FailCall(u"fs.WriteFile", 1, sim::Once);
    desk.ksp.Save(u"");
    EXPECT_TRUE(Desk::IsNew(desk.Bytes(ProjectWorld::kProjectFile))) << "moved home before the new text was tried";
}

TEST(CProjectFileFaults, Load_WithACorrectionToWrite_LeavesTheOldOrTheNewFileWhole) {
    const std::string text = ReplacedOnce(ProjectText(Item("1", "0")), "<bitrate>96</bitrate>\n<size></size>",
                                          "<bitrate>128</bitrate><size>240x180</size>");
    const int runs = sim::FaultSweep(u"fs.*", [&](const Arm& arm) {
        ProjectWorld w;
        w.world.box.AnswerAll();
        w.world.fs.Put(ProjectWorld::kProjectFile, text);
        arm(w.world.faults);
        w.project.g_Project.Load(ProjectWorld::kProjectFile);
        SCOPED_TRACE(w.Story());
        const auto isNew = [](const std::string& bytes) {
            return bytes.find("<bitrate>192</bitrate>") != std::string::npos && bytes.ends_with("</kestrum>");
        };
        const std::string now = w.world.fs.Bytes(ProjectWorld::kProjectFile);
        const std::string fresh = w.world.fs.Bytes(String(ProjectWorld::kProjectFile) + u".tmp");
        EXPECT_TRUE(now == text || isNew(now) || (now.empty() && isNew(fresh)));
        if (now == text) {
            EXPECT_NE(w.Boxes(), Texts{}) << "a correction that is not on disk was told";
        }
    });
    EXPECT_GE(runs, 8) << "the reading fails too";
}

TEST(CProjectFileFaults, Load_OfAnOldProject_WorksWithoutTheCursorScript) {
    const int runs = sim::FaultSweep(u"fs.*", [](const Arm& arm) {
        ProjectWorld w;
        w.world.box.AnswerAll();
        const std::string text = ReplacedOnce(ProjectText(Item("1", "0")), "<showcursor>1</showcursor>", "");
        w.world.fs.Put(ProjectWorld::kProjectFile, text);
        arm(w.world.faults);
        EXPECT_TRUE(w.project.g_Project.Load(ProjectWorld::kProjectFile));
        EXPECT_EQ(w.world.fs.Bytes(ProjectWorld::kProjectFile), text);
        if (w.Boxes().empty()) {
            EXPECT_EQ(w.Titles(), Texts{u"1"});
        }
    });
    EXPECT_GE(runs, 4);
}

TEST(CProjectFileFaults, SaveXmlPretty_LeavesTheOldOrTheNewFileWholeAndRaises) {
    const String file = ProjectWorld::InWork(u"imsmanifest.xml");
    const std::string fresh = "<new>\r\n<a/>\r\n</new>";
    const int runs = sim::FaultSweep(u"fs.*", [&](const Arm& arm) {
        ProjectWorld w;
        w.world.fs.Put(file, "<old/>");
        modXml::Document document = modXml::Document::Parse(u"<new><a/></new>");
        arm(w.world.faults);
        bool raised = false;
        try {
            modKspXml::SaveXmlPretty(w.world.fs, document, file);
        } catch (const host::Error&) {
            raised = true;
        }
        EXPECT_EQ(raised, !w.world.faults.Injected().empty()) << w.Story();
        const std::string now = w.world.fs.Bytes(file);
        EXPECT_TRUE(now == "<old/>" || now == fresh || (now.empty() && w.world.fs.Bytes(file + u".tmp") == fresh));
        if (!raised) {
            EXPECT_EQ(now, fresh);
        }
    });
    EXPECT_GE(runs, 6);
}

}  // namespace
}  // namespace kestrum
