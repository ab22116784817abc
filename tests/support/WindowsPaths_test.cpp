// The shared routines on a desk whose paths are written as on Windows. The rules are the same on every platform.
#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "support/Context.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

using namespace modGlobal;

struct WindowsPaths : ::testing::Test {
    sim::World world{sim::PathStyle::Windows};
    ui::Forms forms{world.presenter, world.loop};
    support::State state;
    support::Context c{world.host(), forms, state};
};

TEST_F(WindowsPaths, Join_PutsOneSeparatorBetween) {
    EXPECT_EQ(Join(c, u"C:\\a", u"b"), u"C:\\a\\b");
    EXPECT_EQ(Join(c, u"C:\\a\\", u"\\b"), u"C:\\a\\b");
    EXPECT_EQ(Join(c, u"C:", u"b"), u"C:\\b");
    EXPECT_EQ(Join(c, u"C:\\", u"b"), u"C:\\b");
    EXPECT_EQ(Join(c, u"\\\\server\\share\\", u"b"), u"\\\\server\\share\\b");
}

TEST_F(WindowsPaths, DoubledBackslashes_AreReducedToOne_ButInFrontOfANetworkPath) {
    EXPECT_EQ(CollapseSeparators(c, u"C:\\a\\\\b\\\\\\c"), u"C:\\a\\b\\c");
    EXPECT_EQ(CollapseSeparators(c, u"\\\\server\\\\share"), u"\\\\server\\share");
    EXPECT_EQ(CollapseSeparators(c, u"C:\\a//b"), u"C:\\a//b");
}

TEST_F(WindowsPaths, PathParts) {
    EXPECT_EQ(FileNameOf(c, u"C:\\a\\b.pptx"), u"b.pptx");
    EXPECT_EQ(FolderOf(c, u"C:\\a\\b.pptx"), u"C:\\a");
    EXPECT_EQ(FolderOf(c, u"C:\\b.pptx"), u"C:");
    EXPECT_EQ(FolderOf(c, u"\\\\server\\share\\b.pptx"), u"\\\\server\\share");
    EXPECT_EQ(WithoutExtension(c, u"C:\\a.b\\c"), u"C:\\a.b\\c");
    EXPECT_EQ(WithoutExtension(c, u"C:\\a.b\\c.tar.gz"), u"C:\\a.b\\c.tar");
    EXPECT_EQ(PackagePathOf(u"C:\\talks\\Lecture 1.PPTX"), u"C:\\talks\\Lecture 1.ktr");
}

TEST_F(WindowsPaths, ASlash_SeparatesToo_SoThatNoStoredNameLeavesItsFolder) {
    EXPECT_EQ(FileNameOf(c, u"../../Documents/a.gif"), u"a.gif");
    EXPECT_EQ(FileNameOf(c, u"..\\../a.gif"), u"a.gif");
    EXPECT_EQ(FolderOf(c, u"C:/talks/deck.pptx"), u"C:/talks");
}

TEST_F(WindowsPaths, FreeSpace_IsThatOfTheDrive_AndOfANetworkPathJustEnough) {
    world.fs.AddDrive(u"E:\\", host::DriveType::Removable, 7LL << 20);
    EXPECT_EQ(GetFreeSpaceMB(c, u"E:\\talks\\deck.ktr"), 7);
    EXPECT_EQ(GetFreeSpaceMB(c, u"E:"), 7);
    EXPECT_EQ(GetFreeSpaceMB(c, u"\\\\server\\share\\deck.ktr"), 101);
}

TEST_F(WindowsPaths, NotEnoughSpace_IsToldWithTheDrivesLetter) {
    world.fs.AddDrive(u"E:\\", host::DriveType::Removable, 7LL << 20);
    EXPECT_FALSE(CheckFreeSpace(c, u"E:\\talks", 8.0 * (1 << 20), false));
    EXPECT_EQ(world.box.Shown().at(0).text,
              u"There is not enough space on drive \"E:\"! The free space must bigger than \"8\" MB for this action.");
}

TEST_F(WindowsPaths, MakeFolderTree_BeginsAtTheDriveOrTheShare) {
    EXPECT_TRUE(MakeFolderTree(c, u"C:\\new\\deep\\folder"));
    EXPECT_TRUE(world.fs.FolderExists(u"C:\\new\\deep\\folder"));
    world.fs.PutFolder(u"\\\\server\\share");
    EXPECT_TRUE(MakeFolderTree(c, u"\\\\server\\share\\a\\b"));
    EXPECT_FALSE(MakeFolderTree(c, u"E:\\a")) << "no such drive";
    EXPECT_FALSE(MakeFolderTree(c, u"\\\\nobody\\share\\a"));
}

TEST_F(WindowsPaths, FoldersAndFiles_AreMadeMovedAndDeleted) {
    const String folder = world.places.temp + u"\\work";
    EXPECT_EQ(MakeFolder(c, folder), 0);
    EXPECT_EQ(MakeFolder(c, u"C:\\straight below the drive"), 0);
    EXPECT_EQ(MakeFolder(c, u"C:\\missing\\work"), 1);
    EXPECT_TRUE(TestFolderWritable(c, folder));
    world.fs.Put(folder + u"\\a.txt", "x");
    EXPECT_TRUE(SafeMoveFile(c, folder + u"\\a.txt", folder + u"\\b.txt", true));
    EXPECT_EQ(world.fs.ListFolder(folder), (std::vector<String>{u"b.txt"}));
    EXPECT_TRUE(DeleteFolder(c, folder));
    EXPECT_FALSE(world.fs.FolderExists(folder));
}

}  // namespace
}  // namespace kestrum
