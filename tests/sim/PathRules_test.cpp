// The two ways of writing paths, and the scripted file system under Windows' one.
#include "adapters/sim/PathRules.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"

namespace kestrum {
namespace {

using sim::PathRules;
using sim::PathStyle;

TEST(PathRules, Linux_KnowsOneSeparator_AndCountsCase) {
    const PathRules rules(PathStyle::Linux);
    EXPECT_EQ(rules.Normal(u"/home//anna/", u"/"), u"/home/anna");
    EXPECT_EQ(rules.Normal(u"a\\b", u"/home"), u"/home/a\\b");
    EXPECT_EQ(rules.Normal(u"//server//share", u"/"), u"//server/share");
    EXPECT_FALSE(rules.Same(u"/a", u"/A"));
    EXPECT_FALSE(rules.IsNetworkPath(u"\\\\server"));
    EXPECT_TRUE(rules.IsName(u"a: \"b\"?"));
}

TEST(PathRules, Windows_TakesEitherSlash_AndTheCurrentDrive) {
    const PathRules rules(PathStyle::Windows);
    EXPECT_EQ(rules.Normal(u"C:\\Users\\\\Anna\\", u"C:"), u"C:\\Users\\Anna");
    EXPECT_EQ(rules.Normal(u"C:/Users/Anna", u"C:"), u"C:\\Users\\Anna");
    EXPECT_EQ(rules.Normal(u"\\temp", u"D:\\work"), u"D:\\temp");
    EXPECT_EQ(rules.Normal(u"a.txt", u"D:\\work"), u"D:\\work\\a.txt");
    EXPECT_EQ(rules.Normal(u"E:\\", u"C:"), u"E:");
    EXPECT_EQ(rules.Normal(u"\\\\server\\\\share\\x", u"C:"), u"\\\\server\\share\\x");
    EXPECT_TRUE(rules.Same(u"C:\\USERS", u"c:\\Users"));
}

TEST(PathRules, Windows_RootsAreDrivesAndShares) {
    const PathRules rules(PathStyle::Windows);
    EXPECT_EQ(rules.ParentOf(u"C:\\a\\b"), u"C:\\a");
    EXPECT_EQ(rules.ParentOf(u"C:\\a"), u"C:");
    EXPECT_EQ(rules.ParentOf(u"C:"), u"C:");
    EXPECT_EQ(rules.ParentOf(u"\\\\server\\share\\a"), u"\\\\server\\share");
    EXPECT_EQ(rules.ParentOf(u"\\\\server\\share"), u"\\\\server\\share");
    EXPECT_TRUE(rules.IsBelow(u"C:\\a", u"c:"));
    EXPECT_FALSE(rules.IsBelow(u"C:\\ab", u"C:\\a"));
}

TEST(PathRules, Windows_RefusesNamesThatNoFileCanHave) {
    const PathRules rules(PathStyle::Windows);
    for (const char16_t* name : {u"a:b", u"what?", u"\"a\"", u"a|b", u"<a>", u"a*", u"a.", u"a ", u"", u"a\tb"}) {
        EXPECT_FALSE(rules.IsName(name)) << host::ToUtf8(name);
    }
    EXPECT_TRUE(rules.IsName(u"Übung 1 (neu).pptx"));
}

struct WindowsFileSystem : ::testing::Test {
    sim::World world{PathStyle::Windows};
    sim::FileSystem& fs = world.fs;
};

TEST_F(WindowsFileSystem, OneFile_HasManyWritings_AndKeepsItsFirst) {
    fs.Put(u"C:\\Users\\Anna\\a.txt", "1");
    fs.WriteFile(u"c:/users/anna/A.TXT", "22");
    EXPECT_EQ(fs.Bytes(u"\\Users\\Anna\\a.txt"), "22");
    EXPECT_EQ(fs.ListFolder(u"C:\\Users\\Anna\\"), (std::vector<String>{u"AppData", u"a.txt"}));
}

TEST_F(WindowsFileSystem, ADriveThatIsNotThere_HoldsNothing) {
    EXPECT_FALSE(fs.FolderExists(u"E:\\"));
    EXPECT_THROW(fs.WriteFile(u"E:\\a.txt", "x"), host::Error);
    EXPECT_THROW(fs.CreateFolder(u"E:\\"), host::Error);
    fs.AddDrive(u"E:\\", host::DriveType::Removable, 3);
    fs.WriteFile(u"E:\\a.txt", "x");
    EXPECT_EQ(fs.FreeBytes(u"E:\\"), 2);
    EXPECT_EQ(fs.DriveType(u"e:\\a.txt"), host::DriveType::Removable);
    EXPECT_EQ(fs.DriveType(u"C:\\"), host::DriveType::Fixed);
}

TEST_F(WindowsFileSystem, ANameThatNoFileCanHave_IsRefused) {
    EXPECT_THROW(fs.WriteFile(u"C:\\Users\\Anna\\why?.txt", "x"), host::Error);
    EXPECT_THROW(fs.CreateFolder(u"C:\\Users\\Anna\\a:b"), host::Error);
}

TEST(SimProcesses, OnWindows_AProgramFileHasItsEnding) {
    sim::World world(PathStyle::Windows);
    world.processes.programs[u"tool"] = {};
    EXPECT_EQ(world.processes.ProgramName(u"tool"), u"tool.exe");
    EXPECT_TRUE(world.processes.Start(u"C:\\Program Files\\Kestrum\\tool.exe", {}));
    EXPECT_TRUE(world.processes.Start(u"tool", {})) << "a bare name is looked up with its ending";
    EXPECT_TRUE(world.processes.StartShell(u"\"C:\\Program Files\\Kestrum\\tool.exe\" /x"));
    EXPECT_THROW((void)world.processes.Start(u"C:\\Program Files\\Kestrum\\tool", {}), host::Error);
    EXPECT_EQ(world.processes.Runs(u"tool").size(), 3U);
}

}  // namespace
}  // namespace kestrum
