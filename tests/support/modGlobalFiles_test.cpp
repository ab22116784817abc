// Paths and file helpers.
#include "SupportWorld.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

using namespace modGlobal;

class modGlobalFilesTest : public SupportTest {
  protected:
    const String folder = u"/home/anna/lectures";
    void SetUp() override { world.fs.PutFolder(folder); }
};

TEST_F(modGlobalFilesTest, Join_PutsOneSeparatorBetween) {
    EXPECT_EQ(Join(c, u"/a/b", u"c"), u"/a/b/c");
    EXPECT_EQ(Join(c, u"/a/b/", u"/c"), u"/a/b/c");
    EXPECT_EQ(Join(c, u"/", u"c"), u"/c");
    EXPECT_EQ(Join(c, u"", u"c"), u"c") << "an unset folder must not become the root";
    EXPECT_EQ(Join(c, u"//server/share/", u"c"), u"//server/share/c");
}

TEST_F(modGlobalFilesTest, CollapseSeparators_KeepsTheFrontOfANetworkPath) {
    EXPECT_EQ(CollapseSeparators(c, u"/a//b///c"), u"/a/b/c");
    EXPECT_EQ(CollapseSeparators(c, u"//server//share"), u"//server/share");
}

TEST_F(modGlobalFilesTest, PathParts) {
    EXPECT_EQ(FileNameOf(c, u"/a/b.pptx"), u"b.pptx");
    EXPECT_EQ(FileNameOf(c, u"b.pptx"), u"b.pptx");
    EXPECT_EQ(FolderOf(c, u"/a/b.pptx"), u"/a");
    EXPECT_EQ(FolderOf(c, u"b.pptx"), u"");
    EXPECT_EQ(FolderOf(c, u"/b.pptx"), u"/") << "a file of the root lies in the root";
    EXPECT_EQ(WithoutExtension(c, u"/a.b/c.tar.gz"), u"/a.b/c.tar");
    EXPECT_EQ(WithoutExtension(c, u"/a.b/c"), u"/a.b/c");
}

TEST_F(modGlobalFilesTest, PackagePath_CutsFiveCharactersOfPptxAndFourOfAnythingElse) {
    EXPECT_EQ(PackagePathOf(u"/a/Lecture 1.pptx"), u"/a/Lecture 1.ktr");
    EXPECT_EQ(PackagePathOf(u"/a/Lecture 1.PPTX"), u"/a/Lecture 1.ktr");
    EXPECT_EQ(PackagePathOf(u"/a/lecture.ppt"), u"/a/lecture.ktr");
    EXPECT_EQ(PackagePathOf(u"/a/lecture.odp"), u"/a/lecture.ktr");
    EXPECT_EQ(PackagePathOf(u"/a/lecture.pptm"), u"/a/lecture..ktr");
    EXPECT_EQ(PackagePathOf(u"abc"), u".ktr");
}

TEST_F(modGlobalFilesTest, SafeCopyFile_ReplacesAReadOnlyTarget) {
    world.fs.Put(folder + u"/a", "new");
    world.fs.Put(folder + u"/b", "old");
    world.fs.SetReadOnly(folder + u"/b", true);
    EXPECT_TRUE(SafeCopyFile(c, folder + u"/a", folder + u"/b"));
    EXPECT_EQ(world.fs.Bytes(folder + u"/b"), "new");
    EXPECT_EQ(world.fs.Bytes(folder + u"/a"), "new");
}

TEST_F(modGlobalFilesTest, SafeCopyFile_WithoutASourceOrOnAFailure_IsFalse) {
    EXPECT_FALSE(SafeCopyFile(c, folder + u"/a", folder + u"/b"));
    world.fs.Put(folder + u"/a", "new");
    world.faults.FailCall(u"fs.CopyFile", 1, sim::Once);
    EXPECT_FALSE(SafeCopyFile(c, folder + u"/a", folder + u"/b"));
}

TEST_F(modGlobalFilesTest, SafeMoveFile_ReplacesAReadOnlyTarget) {
    world.fs.Put(folder + u"/a", "new");
    world.fs.Put(folder + u"/b", "old");
    world.fs.SetReadOnly(folder + u"/b", true);
    EXPECT_TRUE(SafeMoveFile(c, folder + u"/a", folder + u"/b", false));
    EXPECT_EQ(world.fs.Bytes(folder + u"/b"), "new");
    EXPECT_FALSE(world.fs.FileExists(folder + u"/a"));
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(modGlobalFilesTest, SafeMoveFile_WithoutASource_TellsUnlessSilent) {
    EXPECT_FALSE(SafeMoveFile(c, folder + u"/a", folder + u"/b", true));
    EXPECT_TRUE(world.box.Shown().empty());
    EXPECT_FALSE(SafeMoveFile(c, folder + u"/a", folder + u"/b", false));
    EXPECT_EQ(LastBox(), u"Move File Error: The source file /home/anna/lectures/a does not exist");
}

TEST_F(modGlobalFilesTest, SafeMoveFile_OnAFailure_TellsTheReasonUnlessSilent) {
    world.fs.Put(folder + u"/a", "new");
    world.faults.FailCall(u"fs.MoveFile", 1, sim::ForEver);
    EXPECT_FALSE(SafeMoveFile(c, folder + u"/a", folder + u"/b", true));
    EXPECT_TRUE(world.box.Shown().empty());
    EXPECT_FALSE(SafeMoveFile(c, folder + u"/a", folder + u"/b", false));
    EXPECT_TRUE(LastBox().starts_with(u"Move File Error:"));
    EXPECT_GT(LastBox().size(), String(u"Move File Error:").size());
}

TEST_F(modGlobalFilesTest, SafeDeleteFile_CountsAMissingFileAsSuccess) {
    EXPECT_TRUE(SafeDeleteFile(c, folder + u"/a"));
    world.fs.Put(folder + u"/a", "x");
    world.fs.SetReadOnly(folder + u"/a", true);
    EXPECT_TRUE(SafeDeleteFile(c, folder + u"/a"));
    EXPECT_FALSE(world.fs.FileExists(folder + u"/a"));
    world.fs.Put(folder + u"/a", "x");
    world.faults.FailCall(u"fs.DeleteFile", 1, sim::Once);
    EXPECT_FALSE(SafeDeleteFile(c, folder + u"/a"));
}

TEST_F(modGlobalFilesTest, DeleteFolder_TakesAllContent) {
    world.fs.Put(folder + u"/sub/deep/a", "x");
    EXPECT_TRUE(DeleteFolder(c, folder + u"/sub"));
    EXPECT_FALSE(world.fs.FolderExists(folder + u"/sub"));
    EXPECT_TRUE(DeleteFolder(c, folder + u"/sub"));
    world.faults.FailCall(u"fs.DeleteFolder", 1, sim::Once);
    EXPECT_FALSE(DeleteFolder(c, folder));
}

TEST_F(modGlobalFilesTest, MakeFolder_OnAnExistingFolder_DestroysWhatItHolds) {
    world.fs.Put(folder + u"/out/old", "x");
    EXPECT_EQ(MakeFolder(c, folder + u"/out"), 0);
    EXPECT_TRUE(world.fs.FolderExists(folder + u"/out"));
    EXPECT_FALSE(world.fs.FileExists(folder + u"/out/old"));
}

TEST_F(modGlobalFilesTest, MakeFolder_TellsTheStageThatFailed) {
    EXPECT_EQ(MakeFolder(c, folder + u"/missing/out"), 1);
    world.fs.PutFolder(folder + u"/out");
    world.faults.FailCall(u"fs.DeleteFolder", 1, sim::Once);
    EXPECT_EQ(MakeFolder(c, folder + u"/out"), 2);
    world.faults.Clear();
    world.faults.FailCall(u"fs.CreateFolder", 1, sim::Once);
    EXPECT_EQ(MakeFolder(c, folder + u"/out"), 3);
}

TEST_F(modGlobalFilesTest, EnsureFolder_ShowsTheBoxOfItsStage) {
    Language(
        "<s name=\"frmCommon\"><e name=\"msgParentFolderNotExist\">no parent of %s</e>"
        "<e name=\"msgDeleteFolder\">cannot delete</e><e name=\"msgCreateFolder\">cannot create in %s</e></s>");
    EXPECT_FALSE(EnsureFolder(c, folder + u"/missing/out"));
    EXPECT_EQ(LastBox(), u"no parent of /home/anna/lectures/missing/out");
    world.fs.PutFolder(folder + u"/out");
    world.faults.FailCall(u"fs.DeleteFolder", 1, sim::Once);
    EXPECT_FALSE(EnsureFolder(c, folder + u"/out"));
    EXPECT_EQ(LastBox(), u"cannot delete");
    world.faults.Clear();
    world.faults.FailCall(u"fs.CreateFolder", 1, sim::Once);
    EXPECT_FALSE(EnsureFolder(c, folder + u"/out"));
    EXPECT_EQ(LastBox(), u"cannot create in /home/anna/lectures");
    world.faults.Clear();
    EXPECT_TRUE(EnsureFolder(c, folder + u"/out"));
    EXPECT_EQ(world.box.Shown().size(), 3u);
}

TEST_F(modGlobalFilesTest, MakeFolderTree_MakesMissingParentsAndKeepsContent) {
    EXPECT_TRUE(MakeFolderTree(c, folder + u"/a/b/c"));
    EXPECT_TRUE(world.fs.FolderExists(folder + u"/a/b/c"));
    world.fs.Put(folder + u"/a/b/file", "x");
    EXPECT_TRUE(MakeFolderTree(c, folder + u"/a/b"));
    EXPECT_TRUE(world.fs.FileExists(folder + u"/a/b/file"));
    world.fs.SetUnwritable(folder, true);
    EXPECT_FALSE(MakeFolderTree(c, folder + u"/x/y"));
}

TEST_F(modGlobalFilesTest, FileSizes_OfAMissingFile_AreZero) {
    EXPECT_EQ(GetFileSizeBytes(c, folder + u"/a"), 0);
    EXPECT_EQ(GetFileSizeKB(c, folder + u"/a"), 0);
    world.fs.Put(folder + u"/a", std::string(1536, 'x'));
    EXPECT_EQ(GetFileSizeBytes(c, folder + u"/a"), 1536);
    EXPECT_EQ(GetFileSizeKB(c, folder + u"/a"), 2) << "1.5 goes to the even number";
    world.fs.Put(folder + u"/a", std::string(2560, 'x'));
    EXPECT_EQ(GetFileSizeKB(c, folder + u"/a"), 2) << "2.5 too";
}

TEST_F(modGlobalFilesTest, TestFolderWritable_LeavesNothingAndTouchesNoFileOfTheUser) {
    world.fs.Put(folder + u"/tmp.txt", "notes for the exam");
    EXPECT_TRUE(TestFolderWritable(c, folder));
    EXPECT_EQ(world.fs.Bytes(folder + u"/tmp.txt"), "notes for the exam");
    EXPECT_EQ(world.fs.ListFolder(folder).size(), 1u);
    world.fs.SetUnwritable(folder, true);
    EXPECT_FALSE(TestFolderWritable(c, folder));
    EXPECT_FALSE(TestFolderWritable(c, u"/no/such/folder"));
}

TEST_F(modGlobalFilesTest, FreeSpace_CountsMegabytes_AndANetworkPathAsJustEnough) {
    world.fs.AddDrive(u"/home", host::DriveType::Fixed, 150 * 1024 * 1024 + 700 * 1024);
    EXPECT_EQ(GetFreeSpaceMB(c, folder), 151);
    EXPECT_EQ(GetFreeSpaceMB(c, u"//server/share"), 101);
}

TEST_F(modGlobalFilesTest, ClearReadOnly_MakesTheWholeTreeWritable) {
    world.fs.Put(folder + u"/sub/a", "x");
    world.fs.SetReadOnly(folder + u"/sub/a", true);
    EXPECT_TRUE(ClearReadOnly(c, folder));
    EXPECT_FALSE(world.fs.IsReadOnly(folder + u"/sub/a"));
}

TEST_F(modGlobalFilesTest, CheckFreeSpace_WithEnough_AsksNothing) {
    world.fs.AddDrive(u"/home", host::DriveType::Fixed, 10 * 1024 * 1024);
    EXPECT_TRUE(CheckFreeSpace(c, folder, 10.0 * 1024 * 1024, true));
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(modGlobalFilesTest, CheckFreeSpace_WithoutEnough_TellsWhereAndHowMuch) {
    world.fs.AddDrive(u"/home", host::DriveType::Fixed, 9 * 1024 * 1024);
    EXPECT_FALSE(CheckFreeSpace(c, folder, 10.4 * 1024 * 1024, false));
    EXPECT_EQ(LastBox(),
              u"There is not enough space on drive \"/home/anna/lectures\"! The free space must bigger than \"10\" MB "
              u"for this action.");
    EXPECT_EQ(world.box.Shown().back().buttons, host::BoxButtons::Ok);
}

TEST_F(modGlobalFilesTest, CheckFreeSpace_OnRetry_LooksAgain) {
    world.fs.AddDrive(u"/home", host::DriveType::Fixed, 9 * 1024 * 1024);
    world.box.Answer(host::BoxAnswer::Retry);
    world.box.AnswerAfter(0, host::BoxAnswer::Retry,
                          [&] { world.fs.AddDrive(u"/home", host::DriveType::Fixed, 20 * 1024 * 1024); });
    EXPECT_TRUE(CheckFreeSpace(c, folder, 10.0 * 1024 * 1024, true));
    EXPECT_EQ(world.box.Shown().size(), 2u);
}

TEST_F(modGlobalFilesTest, CheckFreeSpace_OnCancel_GivesUp) {
    world.fs.AddDrive(u"/home", host::DriveType::Fixed, 0);
    world.box.Answer(host::BoxAnswer::Cancel);
    EXPECT_FALSE(CheckFreeSpace(c, folder, 1.0 * 1024 * 1024, true));
}

}  // namespace
}  // namespace kestrum
