#include "adapters/linux/LinuxFileSystem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "adapters/linux/DriveKind.h"
#include "host/Error.h"
#include "real/ChildProcess.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;

class LinuxFileSystemTest : public testing::Test {
  protected:
    String In(const std::string& name) const { return host::FromUtf8(folder / name); }
    void Put(const std::string& name, const std::string& text) const { real::WriteText(folder / name, text); }
    std::string Text(const std::string& name) const { return real::ReadText(folder / name); }

    template <class Statement>
    host::ErrorNumber NumberOfFailure(Statement&& statement) {
        try {
            statement();
        } catch (const host::Error& error) {
            return error.Number();
        }
        ADD_FAILURE() << "did not fail";
        return host::ErrorNumber::Automation;
    }

    LinuxFileSystem files;
    real::TempFolder folder;
};

TEST_F(LinuxFileSystemTest, WriteAndRead_KeepBytesAndUnicodeNames) {
    const std::string bytes("a\0b\r\n\xFF", 6);
    files.WriteFile(In("讲座 \U0001F4FD.ksp"), bytes);
    EXPECT_TRUE(files.FileExists(In("讲座 \U0001F4FD.ksp")));
    EXPECT_EQ(files.ReadFile(In("讲座 \U0001F4FD.ksp")), bytes);
    EXPECT_EQ(files.FileSize(In("讲座 \U0001F4FD.ksp")), 6);
    files.WriteFile(In("讲座 \U0001F4FD.ksp"), "x");
    files.AppendFile(In("讲座 \U0001F4FD.ksp"), "y");
    files.AppendFile(In("new"), "z");
    EXPECT_EQ(Text("讲座 \U0001F4FD.ksp"), "xy");
    EXPECT_EQ(Text("new"), "z");
}

TEST_F(LinuxFileSystemTest, Questions_AboutWhatIsMissing_AnswerNo) {
    EXPECT_FALSE(files.FileExists(In("none")));
    EXPECT_FALSE(files.FolderExists(In("none")));
    EXPECT_EQ(files.FileSize(In("none")), 0);
    EXPECT_FALSE(files.FileExists(host::FromUtf8(folder.Path().string())));
}

TEST_F(LinuxFileSystemTest, WriteFile_OnAFullDisk_TellsSo) {
    if (access("/dev/full", W_OK) != 0) FAIL() << "this system has no /dev/full";
    EXPECT_EQ(NumberOfFailure([&] { files.WriteFile(u"/dev/full", "x"); }), host::ErrorNumber::DiskFull);
}

TEST_F(LinuxFileSystemTest, ReadFile_OfAMissingFile_NamesItInTheSentence) {
    try {
        files.ReadFile(In("gone.ksp"));
        FAIL();
    } catch (const host::Error& error) {
        EXPECT_EQ(error.Number(), host::ErrorNumber::FileNotFound);
        EXPECT_NE(error.Description().find(u"gone.ksp"), String::npos);
    }
}

TEST_F(LinuxFileSystemTest, CopyFile_ReplacesALongerTarget) {
    Put("a", "short");
    Put("b", "something longer");
    files.CopyFile(In("a"), In("b"));
    EXPECT_EQ(Text("b"), "short");
    EXPECT_EQ(Text("a"), "short");
}

TEST_F(LinuxFileSystemTest, CopyFile_OntoItself_LosesNothing) {
    Put("a", "kept");
    stdfs::create_symlink("a", folder / "link");
    files.CopyFile(In("a"), In("link"));
    EXPECT_EQ(Text("a"), "kept");
}

TEST_F(LinuxFileSystemTest, CopyFile_ThatFails_LeavesNoHalfTarget) {
    Put("a", "text");
    EXPECT_EQ(NumberOfFailure([&] { files.CopyFile(In("a"), In("no folder/b")); }), host::ErrorNumber::FileNotFound);
    stdfs::create_directory(folder / "d");
    (void)NumberOfFailure([&] { files.CopyFile(In("d"), In("b")); });
    EXPECT_FALSE(stdfs::exists(folder / "b"));
}

TEST_F(LinuxFileSystemTest, MoveFile_RenamesButNeverOntoAnother) {
    Put("a", "1");
    Put("b", "2");
    EXPECT_EQ(NumberOfFailure([&] { files.MoveFile(In("a"), In("b")); }), host::ErrorNumber::FileAlreadyOpen);
    EXPECT_EQ(Text("a") + Text("b"), "12");
    files.MoveFile(In("a"), In("c"));
    EXPECT_EQ(Text("c"), "1");
    EXPECT_FALSE(files.FileExists(In("a")));
}

TEST_F(LinuxFileSystemTest, MoveFile_AcrossFileSystems_CopiesThenDeletes) {
    const std::string elsewhere = "/dev/shm/kestrum-move-" + std::to_string(getpid());
    struct stat here {
    }, there{};
    ASSERT_EQ(stat(folder.Path().c_str(), &here), 0);
    ASSERT_EQ(stat("/dev/shm", &there), 0);
    ASSERT_NE(here.st_dev, there.st_dev) << "the temporary folder must not lie on /dev/shm";
    Put("a", "moved");
    files.MoveFile(In("a"), host::FromUtf8(elsewhere));
    EXPECT_EQ(real::ReadText(elsewhere), "moved");
    EXPECT_FALSE(files.FileExists(In("a")));
    Put("b", "other");
    EXPECT_EQ(NumberOfFailure([&] { files.MoveFile(In("b"), host::FromUtf8(elsewhere)); }),
              host::ErrorNumber::FileAlreadyOpen);
    EXPECT_EQ(real::ReadText(elsewhere), "moved");
    EXPECT_EQ(Text("b"), "other");
    unlink(elsewhere.c_str());
}

TEST_F(LinuxFileSystemTest, DeleteFile_TakesAReadOnlyOne_AndFailsForAMissingOne) {
    Put("a", "x");
    chmod((folder / "a").c_str(), 0444);
    files.DeleteFile(In("a"));
    EXPECT_EQ(NumberOfFailure([&] { files.DeleteFile(In("a")); }), host::ErrorNumber::FileNotFound);
}

TEST_F(LinuxFileSystemTest, CreateFolder_NeedsItsParentAndAFreeName) {
    files.CreateFolder(In("d"));
    EXPECT_TRUE(files.FolderExists(In("d")));
    (void)NumberOfFailure([&] { files.CreateFolder(In("d")); });
    (void)NumberOfFailure([&] { files.CreateFolder(In("x/y")); });
}

TEST_F(LinuxFileSystemTest, CopyFolder_MergesTrees) {
    stdfs::create_directories(folder / "from/sub");
    Put("from/a", "new");
    Put("from/sub/b", "b");
    stdfs::create_directories(folder / "to");
    Put("to/a", "old");
    Put("to/c", "kept");
    files.CopyFolder(In("from"), In("to"));
    EXPECT_EQ(Text("to/a") + Text("to/sub/b") + Text("to/c"), "newbkept");
}

TEST_F(LinuxFileSystemTest, DeleteFolder_NeverFollowsALinkOut) {
    stdfs::create_directories(folder / "outside");
    Put("outside/precious", "kept");
    stdfs::create_directories(folder / "work/sub");
    stdfs::create_directory_symlink(folder / "outside", folder / "work/link");
    stdfs::create_symlink(folder / "outside/precious", folder / "work/sub/link");
    files.DeleteFolder(In("work"));
    EXPECT_FALSE(files.FolderExists(In("work")));
    EXPECT_EQ(Text("outside/precious"), "kept");
}

TEST_F(LinuxFileSystemTest, DeleteFolder_GivenALink_RefusesAndTouchesNothing) {
    stdfs::create_directories(folder / "outside");
    Put("outside/precious", "kept");
    stdfs::create_directory_symlink(folder / "outside", folder / "link");
    (void)NumberOfFailure([&] { files.DeleteFolder(In("link")); });
    EXPECT_EQ(Text("outside/precious"), "kept");
}

TEST_F(LinuxFileSystemTest, ListFolder_IsSortedByCodeUnit) {
    for (const char* name : {"b", "B", "é", "a10", "a2"}) Put(name, "");
    stdfs::create_directory(folder / "c");
    EXPECT_EQ(files.ListFolder(host::FromUtf8(folder.Path().string())),
              (std::vector<String>{u"B", u"a10", u"a2", u"b", u"c", u"é"}));
}

TEST_F(LinuxFileSystemTest, OrdinaryUser_DeletesAndUnlocksReadOnlyTrees) {
    stdfs::create_directories(folder / "work/locked");
    Put("work/locked/file", "x");
    chmod((folder / "work/locked/file").c_str(), 0444);
    chmod((folder / "work/locked").c_str(), 0555);
    const pid_t child = fork();
    if (child == 0) {
        // The super-user may write anything: the question is what another user can do with files of his own.
        constexpr uid_t kNobody = 65534;
        if (getuid() == 0) {
            for (const char* name : {"", "work", "work/locked", "work/locked/file"}) {
                if (chown((folder / name).c_str(), kNobody, kNobody) != 0) _exit(10);
            }
            if (setuid(kNobody) != 0) _exit(11);
        }
        try {
            if (access((folder / "work/locked/file").c_str(), W_OK) == 0) _exit(12);
            files.ClearReadOnlyTree(In("work"));
            if (access((folder / "work/locked/file").c_str(), W_OK) != 0) _exit(13);
            files.DeleteFolder(In("work"));
            _exit(0);
        } catch (const host::Error&) {
            _exit(14);
        }
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(stdfs::exists(folder / "work"));
}

TEST_F(LinuxFileSystemTest, FreeBytes_OfAPathToCome_AreThoseOfItsFolder) {
    EXPECT_GT(files.FreeBytes(In("a/b/c.ktr")), 0);
    EXPECT_EQ(files.FreeBytes(u"/proc/none"), 0);
}

TEST_F(LinuxFileSystemTest, DriveType_IsToldByTheFileSystem) {
    EXPECT_EQ(files.DriveType(u"/dev/shm/to/come"), host::DriveType::RamDisk);
    EXPECT_EQ(files.DriveType(u"//server/share/a"), host::DriveType::Network);
    EXPECT_EQ(KindOfFileSystem("nfs4"), host::DriveType::Network);
    EXPECT_EQ(KindOfFileSystem("cifs"), host::DriveType::Network);
    EXPECT_EQ(KindOfFileSystem("fuse.sshfs"), host::DriveType::Network);
    EXPECT_EQ(KindOfFileSystem("iso9660"), host::DriveType::Cd);
    EXPECT_EQ(KindOfFileSystem("ext4"), host::DriveType::Unknown);
}

TEST_F(LinuxFileSystemTest, NetworkPath_HasTwoSeparatorsInFront) {
    EXPECT_TRUE(files.IsNetworkPath(u"//server/share"));
    EXPECT_FALSE(files.IsNetworkPath(u"/home/x"));
    EXPECT_FALSE(files.IsNetworkPath(u""));
}

TEST_F(LinuxFileSystemTest, FileTime_IsTheLastChangeInLocalTime) {
    Put("a", "x");
    const timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, (folder / "a").c_str(), times, 0), 0);
    const host::DateTime at = files.FileTime(In("a"));
    std::tm parts{};
    localtime_r(&times[1].tv_sec, &parts);
    EXPECT_EQ(at.year, 2001);
    EXPECT_EQ(at.hour, parts.tm_hour);
    EXPECT_EQ(at.minute, 46);
    EXPECT_EQ(at.millisecond, 250);
    (void)NumberOfFailure([&] { files.FileTime(In("none")); });
}

TEST_F(LinuxFileSystemTest, TemporaryNames_DifferAndLookAlike) {
    const String first = files.TemporaryName();
    EXPECT_NE(first, files.TemporaryName());
    EXPECT_TRUE(first.starts_with(u"rad"));
    EXPECT_TRUE(first.ends_with(u".tmp"));
}

TEST_F(LinuxFileSystemTest, SetCurrentFolder_MovesTheProcess) {
    const auto before = stdfs::current_path();
    files.SetCurrentFolder(host::FromUtf8(folder.Path().string()));
    EXPECT_EQ(stdfs::current_path(), stdfs::canonical(folder.Path()));
    stdfs::current_path(before);
}

}  // namespace
}  // namespace kestrum::platform
