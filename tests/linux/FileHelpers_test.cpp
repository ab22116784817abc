// The file helpers on the real file system: what a lecture folder can do to them.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/sim/World.h"
#include "real/ChildProcess.h"
#include "real/WithoutRights.h"
#include "support/modGlobal.h"
#include "support/modLog.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;
using namespace modGlobal;

class FileHelpersTest : public testing::Test {
  protected:
    String At(const std::string& name) const { return host::FromUtf8(folder / name); }
    std::string Text(const std::string& name) const { return real::ReadText(folder / name); }
    void Put(const std::string& name, const std::string& text) { real::WriteText(folder / name, text); }
    std::size_t Entries(const std::string& name) const {
        return static_cast<std::size_t>(std::distance(stdfs::directory_iterator(folder / name), {}));
    }
    /// Runs `body` as a user who may enter the folder but has no rights of root; 0 unless it said false.
    int WithoutRights(const std::function<bool()>& body) {
        chmod(folder.Path().c_str(), 0777);
        return real::WithoutRights(body);
    }
    /// Runs `body` in a child whose files cannot grow beyond `bytes`, as on a full disk.
    int OnAFullDisk(rlim_t bytes, const std::function<bool()>& body) {
        const pid_t child = fork();
        if (child == 0) {
            signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{bytes, bytes};
            setrlimit(RLIMIT_FSIZE, &limit);
            _exit(body() ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    real::TempFolder folder;
    sim::World world;
    LinuxFileSystem fs;
    host::Host ports = world.HostWith({.fs = &fs});
    ui::Forms forms{world.presenter, world.loop};
    support::State state;
    support::Context c{ports, forms, state};
};

TEST_F(FileHelpersTest, Copy_ReplacesAReadOnlyTarget_EvenForAnOrdinaryUser) {
    EXPECT_EQ(WithoutRights([&] {
                  Put("a", "new");
                  Put("b", "old");
                  chmod((folder / "b").c_str(), 0444);
                  return SafeCopyFile(c, At("a"), At("b")) && Text("b") == "new";
              }),
              0);
}

TEST_F(FileHelpersTest, Delete_TakesAReadOnlyFile_AndAMissingOneCountsAsGone) {
    EXPECT_EQ(WithoutRights([&] {
                  Put("a", "x");
                  chmod((folder / "a").c_str(), 0444);
                  return SafeDeleteFile(c, At("a")) && !stdfs::exists(folder / "a") && SafeDeleteFile(c, At("a"));
              }),
              0);
}

TEST_F(FileHelpersTest, FolderWithoutRights_IsNotWritable_AndKeepsItsFiles) {
    stdfs::create_directory(folder / "locked");
    Put("locked/a", "kept");
    Put("new", "other");
    chmod((folder / "locked").c_str(), 0555);
    chmod((folder / "locked/a").c_str(), 0444);
    EXPECT_EQ(WithoutRights([&] {
                  return !TestFolderWritable(c, At("locked")) && !SafeDeleteFile(c, At("locked/a")) &&
                         !SafeMoveFile(c, At("new"), At("locked/b"), true);
              }),
              0);
    EXPECT_EQ(Text("locked/a"), "kept");
    EXPECT_EQ(Text("new"), "other");
    chmod((folder / "locked").c_str(), 0755);
}

TEST_F(FileHelpersTest, AFolderInTheWayOfAFile_IsNeverReplaced) {
    Put("a", "x");
    stdfs::create_directories(folder / "target/inner");
    EXPECT_FALSE(SafeCopyFile(c, At("a"), At("target")));
    EXPECT_FALSE(SafeMoveFile(c, At("a"), At("target"), true));
    EXPECT_TRUE(SafeDeleteFile(c, At("target"))) << "there is no file of this name";
    EXPECT_TRUE(stdfs::is_directory(folder / "target/inner"));
    EXPECT_EQ(Text("a"), "x");
}

TEST_F(FileHelpersTest, AFileInTheWayOfAFolder_IsToldByItsStage) {
    Put("taken", "x");
    EXPECT_EQ(MakeFolder(c, At("taken")), 3);
    EXPECT_EQ(MakeFolder(c, At("taken/below")), 1);
    EXPECT_FALSE(MakeFolderTree(c, At("taken/below")));
    EXPECT_EQ(Text("taken"), "x");
}

TEST_F(FileHelpersTest, LinksThatLeadInACircle_FailWithoutAnEnd) {
    stdfs::create_symlink(folder / "b", folder / "a");
    stdfs::create_symlink(folder / "a", folder / "b");
    EXPECT_FALSE(SafeCopyFile(c, At("a"), At("c")));
    EXPECT_FALSE(SafeMoveFile(c, At("a"), At("c"), true));
    EXPECT_EQ(GetFileSizeBytes(c, At("a")), 0);
    stdfs::create_directory(folder / "round");
    stdfs::create_directory_symlink("..", folder / "round/up");
    EXPECT_TRUE(ClearReadOnly(c, At("round")));
    EXPECT_TRUE(DeleteFolder(c, At("round")));
    EXPECT_TRUE(stdfs::is_symlink(folder / "a")) << "what a link points to is not deleted";
}

TEST_F(FileHelpersTest, NamesOfFullLengthAndManyScripts_Work_LongerOnesFail) {
    const std::string longest(255, 'n'), tooLong(256, 'n');
    Put("a", "x");
    EXPECT_TRUE(SafeCopyFile(c, At("a"), At(longest)));
    EXPECT_FALSE(SafeCopyFile(c, At("a"), At(tooLong)));
    EXPECT_EQ(MakeFolder(c, At(tooLong)), 3);
    EXPECT_TRUE(SafeMoveFile(c, At(longest), At("講義 \U0001F393 'a' \"b\".ktr"), false));
    EXPECT_EQ(GetFileSizeBytes(c, At("講義 \U0001F393 'a' \"b\".ktr")), 1);
}

TEST_F(FileHelpersTest, MakeFolder_EmptiesAFolderWithReadOnlyContent) {
    EXPECT_EQ(WithoutRights([&] {
                  stdfs::create_directories(folder / "out/deep");
                  Put("out/deep/a", "x");
                  chmod((folder / "out/deep/a").c_str(), 0444);
                  chmod((folder / "out/deep").c_str(), 0555);
                  return MakeFolder(c, At("out")) == 0 && Entries("out") == 0;
              }),
              0);
}

TEST_F(FileHelpersTest, FullDisk_FailsACopy_WithoutHalfAFile_AndKeepsTheSource) {
    Put("a", std::string(100000, 'x'));
    EXPECT_EQ(OnAFullDisk(5000, [&] { return !SafeCopyFile(c, At("a"), At("b")); }), 0);
    EXPECT_FALSE(stdfs::exists(folder / "b"));
    EXPECT_EQ(GetFileSizeBytes(c, At("a")), 100000);
}

TEST_F(FileHelpersTest, Log_OnAFullDiskOrInALockedFolder_DisturbsNobody) {
    state.workFolder = At("work");
    stdfs::create_directory(folder / "work");
    Put("work/err_log.txt", std::string(40000, 'x'));
    EXPECT_EQ(OnAFullDisk(100,
                          [&] {
                              modLog::WriteErrLog(c, u"one");
                              modLog::WriteErrLog(c, u"two");
                              return true;
                          }),
              0);
    chmod((folder / "work").c_str(), 0555);
    EXPECT_EQ(WithoutRights([&] {
                  modLog::WriteErrLog(c, u"one");
                  return true;
              }),
              0);
    chmod((folder / "work").c_str(), 0755);
}

TEST_F(FileHelpersTest, Move_AcrossFileSystems_BringsTheWholeFile) {
    struct stat here {
    }, there{};
    if (stat("/dev/shm", &there) != 0 || stat(folder.Path().c_str(), &here) != 0 || here.st_dev == there.st_dev) {
        GTEST_FAIL() << "/dev/shm must be another file system than the folder of temporary files";
    }
    std::string pattern = "/dev/shm/kestrum-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    const std::string bytes(3000000, 'm');
    Put("a", bytes);
    EXPECT_TRUE(SafeMoveFile(c, At("a"), host::FromUtf8(pattern + "/b"), false));
    EXPECT_FALSE(stdfs::exists(folder / "a"));
    EXPECT_EQ(real::ReadText(pattern + "/b"), bytes);
    EXPECT_EQ(std::distance(stdfs::directory_iterator(pattern), {}), 1) << "no passing name is left";
    stdfs::remove_all(pattern);
}

TEST_F(FileHelpersTest, FreeSpace_IsThatOfTheFolderGiven) {
    struct statvfs info {};
    ASSERT_EQ(statvfs("/dev/shm", &info), 0);
    const double free = static_cast<double>(info.f_bavail) * static_cast<double>(info.f_frsize) / (1024.0 * 1024.0);
    EXPECT_NEAR(static_cast<double>(GetFreeSpaceMB(c, u"/dev/shm/not/yet/there")), free, free / 2 + 64);
    EXPECT_EQ(GetFreeSpaceMB(c, u"//server/share"), 101);
    EXPECT_FALSE(CheckFreeSpace(c, At("a"), 1e18, false));
    EXPECT_EQ(world.box.Shown().size(), 1U);
}

}  // namespace
}  // namespace kestrum::platform
