// What a recording added reaches the package even when the project file gives trouble.
#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "project/modProject.h"

namespace kestrum {
namespace {

using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using test::ReplacedOnce;
using Texts = std::vector<String>;

class CProjectFileStoreTest : public testing::Test {
  protected:
    /// A lecture with one entry is open, and a recording has added a second.
    void OpenAndRecord(const std::string& text) {
        w.PutPackage(text, 60000, {0, 5000});
        w.world.box.AnswerAll();
        ASSERT_TRUE(w.Load(text));
        w.project.g_Project.AddIndex(u"recorded", u"5000", u"", u"", u"", u"", false, 0);
    }
    bool PackageHoldsTheRecording() const {
        return w.StoredProject().find("<title>recorded</title>") != std::string::npos &&
               w.StoredProject().ends_with("</kestrum>");
    }

    ProjectWorld w;
};

TEST_F(CProjectFileStoreTest, AnOldFileThatCannotBeDeleted_IsToldAndTheNewOneStored) {
    OpenAndRecord(ProjectText(Item("a", "0")));
    w.world.faults.FailCall(u"fs.DeleteFile", 1, sim::ForEver);
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.Boxes(), Texts{u"Save 'project.ksp' error! The updated project is saved as 'project.ksp.tmp'"});
    EXPECT_TRUE(PackageHoldsTheRecording());
}

TEST_F(CProjectFileStoreTest, ANewFileThatCannotBeMoved_IsStoredFromWhereItLies) {
    OpenAndRecord(ProjectText(Item("a", "0")));
    w.world.faults.FailCall(u"fs.MoveFile", 1, sim::ForEver);
    modProject::SaveProject(w.c);
    EXPECT_TRUE(PackageHoldsTheRecording());
}

TEST_F(CProjectFileStoreTest, AnElementThatTheFileLacks_IsToldAndMadeRatherThanLosingTheRecording) {
    OpenAndRecord(ReplacedOnce(ProjectText(Item("a", "0")), "<realcursor>0</realcursor>", ""));
    const std::size_t before = w.Boxes().size();
    modProject::SaveProject(w.c);
    ASSERT_EQ(w.Boxes().size(), before + 1) << "told once";
    EXPECT_EQ(w.Boxes().back().rfind(u"configure: ", 0), 0U);
    EXPECT_TRUE(PackageHoldsTheRecording());
    EXPECT_NE(w.StoredProject().find("<realcursor>0</realcursor>"), std::string::npos);
}

TEST_F(CProjectFileStoreTest, AFullDisk_LeavesThePackagesOwn) {
    OpenAndRecord(ProjectText(Item("a", "0")));
    const std::string stored = w.StoredProject();
    w.world.faults.FailCall(u"fs.WriteFile", 1, sim::ForEver);
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.StoredProject(), stored);
    EXPECT_EQ(w.Boxes().size(), 1U);
}

TEST_F(CProjectFileStoreTest, AFileThatCouldNotBeRead_NeverReplacesThePackagesOwn) {
    OpenAndRecord(ProjectText(Item("a", "0")));
    const std::string stored = w.StoredProject();
    w.Load("not a project");
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.StoredProject(), stored);
}

}  // namespace
}  // namespace kestrum
