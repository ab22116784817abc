#include "adapters/sim/FileSystem.h"

#include <gtest/gtest.h>

namespace kestrum {
namespace {

struct SimFileSystem : ::testing::Test {
    sim::Faults faults;
    sim::EventLoop loop;
    sim::FileSystem fs{faults, loop};
};

TEST_F(SimFileSystem, Names_AreCaseSensitive_AndDoubledSeparatorsAreOne) {
    fs.Put(u"/home/a.txt", "x");
    EXPECT_TRUE(fs.FileExists(u"/home//a.txt"));
    EXPECT_FALSE(fs.FileExists(u"/home/A.txt"));
    EXPECT_TRUE(fs.FolderExists(u"/home/"));
}

TEST_F(SimFileSystem, NetworkPath_IsAPlaceOfItsOwn) {
    fs.Put(u"//server/share/a.txt", "x");
    EXPECT_TRUE(fs.FileExists(u"//server/share/a.txt"));
    EXPECT_FALSE(fs.FileExists(u"/server/share/a.txt"));
    EXPECT_TRUE(fs.IsNetworkPath(u"//server/share/a.txt"));
}

TEST_F(SimFileSystem, ReadOnlyFile_IsNotWritten_ButDeleted) {
    fs.Put(u"/a.txt", "old");
    fs.SetReadOnly(u"/a.txt", true);
    EXPECT_THROW(fs.WriteFile(u"/a.txt", "new"), host::Error);
    EXPECT_EQ(fs.Bytes(u"/a.txt"), "old");
    fs.DeleteFile(u"/a.txt");
    EXPECT_FALSE(fs.FileExists(u"/a.txt"));
}

TEST_F(SimFileSystem, NthWrite_Fails_AndLeavesAPart) {
    faults.FailCall(u"fs.WriteFile", 2, sim::Once);
    fs.WriteFile(u"/1", "aaaa");
    EXPECT_THROW(fs.WriteFile(u"/2", "bbbb"), host::Error);
    fs.WriteFile(u"/3", "cccc");
    EXPECT_EQ(fs.Bytes(u"/2"), "bb");
    EXPECT_EQ(fs.Bytes(u"/3"), "cccc");
}

TEST_F(SimFileSystem, FullDrive_RefusesAndKeepsTheOldFile) {
    fs.AddDrive(u"/stick", host::DriveType::Removable, 3);
    fs.WriteFile(u"/stick/a", "abc");
    EXPECT_THROW(fs.WriteFile(u"/stick/b", "d"), host::Error);
    EXPECT_EQ(fs.FreeBytes(u"/stick/new/file"), 0);
    EXPECT_EQ(fs.DriveType(u"/stick/a"), host::DriveType::Removable);
    fs.DeleteFile(u"/stick/a");
    EXPECT_EQ(fs.FreeBytes(u"/stick"), 3);
}

TEST_F(SimFileSystem, Move_RefusesAnExistingTarget) {
    fs.Put(u"/a", "1");
    fs.Put(u"/b", "2");
    EXPECT_THROW(fs.MoveFile(u"/a", u"/b"), host::Error);
    fs.MoveFile(u"/a", u"/c");
    EXPECT_EQ(fs.Bytes(u"/c"), "1");
    EXPECT_FALSE(fs.FileExists(u"/a"));
}

TEST_F(SimFileSystem, DeleteFolder_TakesTheContentAlong_AndOnlyThat) {
    fs.Put(u"/w/a/b.txt", "1");
    fs.Put(u"/work.txt", "2");
    fs.DeleteFolder(u"/w");
    EXPECT_FALSE(fs.FolderExists(u"/w/a"));
    EXPECT_TRUE(fs.FileExists(u"/work.txt"));
}

TEST_F(SimFileSystem, CreateFolder_NeedsItsParent) {
    EXPECT_THROW(fs.CreateFolder(u"/x/y"), host::Error);
    fs.SetUnwritable(u"/locked", true);
    EXPECT_THROW(fs.CreateFolder(u"/locked/y"), host::Error);
}

TEST_F(SimFileSystem, ListFolder_NamesDirectEntriesInOrder) {
    fs.Put(u"/w/b.txt", "");
    fs.Put(u"/w/a/x.txt", "");
    EXPECT_EQ(fs.ListFolder(u"/w"), (std::vector<String>{u"a", u"b.txt"}));
}

}  // namespace
}  // namespace kestrum
