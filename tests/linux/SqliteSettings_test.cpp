#include "adapters/linux/SqliteSettings.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>

#include "linux/RecordingTrace.h"
#include "real/ChildProcess.h"
#include "real/WithoutRights.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;

const String kApplication = u"Larkspin5";

class SqliteSettingsTest : public testing::Test {
  protected:
    std::optional<String> Read(const String& key) { return store.Read(kApplication, u"configure", key); }
    void Write(const String& key, const String& value) { store.Write(kApplication, u"configure", key, value); }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : stdfs::directory_iterator(stdfs::path(file).parent_path())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    bool IsSetAside() const {
        const auto names = Names();
        return std::any_of(names.begin(), names.end(),
                           [](const std::string& name) { return name.find("settings.sqlite.damaged-") == 0; });
    }

    real::TempFolder folder;
    const std::string file = folder / "kestrum/settings.sqlite";
    RecordingTrace trace;
    SqliteSettings store{file, trace};
};

TEST_F(SqliteSettingsTest, Values_ComeBack_EmptyOnesToo) {
    EXPECT_EQ(Read(u"account"), std::nullopt);
    Write(u"account", u"");
    Write(u"folderName", u"讲座 '\"; \U0001F4FD");
    EXPECT_EQ(Read(u"account"), u"");
    EXPECT_EQ(Read(u"folderName"), u"讲座 '\"; \U0001F4FD");
    Write(u"folderName", u"b");
    EXPECT_EQ(Read(u"folderName"), u"b");
}

TEST_F(SqliteSettingsTest, Keys_DifferByCaseSectionAndApplication) {
    store.Write(kApplication, u"tokens\\PowerPoint", u"touchtime", u"1");
    store.Write(kApplication, u"tokens\\Larkspin", u"touchtime", u"2");
    store.Write(u"Other", u"tokens\\Larkspin", u"touchtime", u"3");
    store.Write(kApplication, u"tokens\\Larkspin", u"touchTime", u"4");
    EXPECT_EQ(store.Read(kApplication, u"tokens\\PowerPoint", u"touchtime"), u"1");
    EXPECT_EQ(store.Read(kApplication, u"tokens\\Larkspin", u"touchtime"), u"2");
    EXPECT_EQ(store.Read(u"Other", u"tokens\\Larkspin", u"touchtime"), u"3");
    EXPECT_EQ(store.Read(kApplication, u"tokens\\Larkspin", u"touchTime"), u"4");
}

TEST_F(SqliteSettingsTest, File_IsReadableByItsUserAlone) {
    Write(u"password", u"&H7000");
    struct stat info {};
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(SqliteSettingsTest, Reading_MakesNoFile) {
    EXPECT_EQ(Read(u"x"), std::nullopt);
    EXPECT_FALSE(stdfs::exists(file));
}

TEST_F(SqliteSettingsTest, TwoProcessesWritingAtOnce_LoseNothing) {
    constexpr int kProcesses = 3, kValues = 10;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            try {
                for (int i = 0; i < kValues; ++i) {
                    Write(host::FromUtf8("k" + std::to_string(p) + "." + std::to_string(i)), u"v");
                    Write(u"shared", host::FromUtf8(std::to_string(p)));
                }
                _exit(0);
            } catch (const host::Error&) {
                _exit(1);
            }
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    for (int p = 0; p < kProcesses; ++p) {
        for (int i = 0; i < kValues; ++i) {
            EXPECT_EQ(Read(host::FromUtf8("k" + std::to_string(p) + "." + std::to_string(i))), u"v");
        }
    }
    EXPECT_TRUE(trace.lines.empty());
}

TEST_F(SqliteSettingsTest, AnotherProcessSeesAValueAtOnce) {
    Write(u"recording", u"1");
    const pid_t child = fork();
    if (child == 0) {
        if (Read(u"recording") != u"1") _exit(1);
        Write(u"recording", u"0");
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(Read(u"recording"), u"0");
}

TEST_F(SqliteSettingsTest, FileOfRubbish_IsSetAside_AndTheStoreGoesOn) {
    Write(u"a", u"1");
    real::WriteText(file, std::string(5000, 'x'));
    EXPECT_EQ(Read(u"a"), std::nullopt);
    Write(u"b", u"2");
    EXPECT_EQ(Read(u"b"), u"2");
    EXPECT_TRUE(IsSetAside());
    ASSERT_EQ(trace.lines.size(), 1u);
    EXPECT_NE(trace.lines[0].find(u"damaged"), String::npos);
}

TEST_F(SqliteSettingsTest, DamagedPages_AreSetAside_AndWhatIsReadableIsCarriedOver) {
    constexpr int kValues = 60;
    const String text(700, u'v');
    for (int i = 0; i < kValues; ++i) Write(host::FromUtf8("key" + std::to_string(1000 + i)), text);
    std::string bytes = real::ReadText(file);
    ASSERT_GT(bytes.size(), 40000u);
    // The last pages hold later keys or inner nodes; the first stay as they are.
    std::fill(bytes.end() - 12000, bytes.end(), '\x5A');
    real::WriteText(file, bytes);
    int readable = 0;
    for (int i = 0; i < kValues; ++i) {
        const auto value = Read(host::FromUtf8("key" + std::to_string(1000 + i)));
        if (value) {
            EXPECT_EQ(*value, text);
            ++readable;
        }
    }
    EXPECT_GT(readable, 0);
    Write(u"after", u"1");
    EXPECT_EQ(Read(u"after"), u"1");
    EXPECT_TRUE(IsSetAside());
}

TEST_F(SqliteSettingsTest, Write_WhereNothingCanBeStored_Fails_ButHoldsForTheSession) {
    real::WriteText(folder / "blocked", "a file, not a folder");
    SqliteSettings blocked(folder / "blocked/settings.sqlite", trace);
    EXPECT_THROW(blocked.Write(kApplication, u"s", u"k", u"v"), host::Error);
    EXPECT_EQ(blocked.Read(kApplication, u"s", u"k"), u"v");
    EXPECT_EQ(SqliteSettings(folder / "blocked/settings.sqlite", trace).Read(kApplication, u"s", u"k"), std::nullopt);
}

TEST_F(SqliteSettingsTest, ReadOnlyFolder_ReadsWhatIsStored_AndKeepsNewValuesForTheSession) {
    Write(u"audioBitrate", u"64");
    const std::string home = stdfs::path(file).parent_path();
    chmod(folder.Path().c_str(), 0755);
    chmod(file.c_str(), 0444);
    chmod(home.c_str(), 0555);
    const int code = real::WithoutRights([&] {
        bool refused = false;
        try {
            Write(u"audioBitrate", u"96");
        } catch (const host::Error& error) {
            refused = error.Number() == host::ErrorNumber::PermissionDenied;
        }
        SqliteSettings other(file, trace);
        return refused && Read(u"audioBitrate") == u"96" &&
               other.Read(kApplication, u"configure", u"audioBitrate") == u"64";
    });
    EXPECT_EQ(code, 0);
    chmod(home.c_str(), 0755);
    EXPECT_EQ(Read(u"audioBitrate"), u"64");
    EXPECT_FALSE(IsSetAside()) << "what cannot be written is not damaged";
}

TEST_F(SqliteSettingsTest, FolderThatCannotBeEntered_GivesDefaults) {
    Write(u"audioBitrate", u"64");
    const std::string home = stdfs::path(file).parent_path();
    chmod(folder.Path().c_str(), 0755);
    chmod(home.c_str(), 0);
    EXPECT_EQ(real::WithoutRights([&] { return !Read(u"audioBitrate"); }), 0);
    chmod(home.c_str(), 0755);
    EXPECT_EQ(Read(u"audioBitrate"), u"64");
}

TEST_F(SqliteSettingsTest, WriterKilledInMidWrite_LeavesAWholeValue_OldOrNew) {
    const auto text = [](int i) { return String(20000, static_cast<char16_t>(u'a' + i % 26)); };
    Write(u"folderName", text(0));
    for (int round = 0; round < 12; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; ++i) Write(u"folderName", text(i));
        }
        usleep(static_cast<useconds_t>(3000 + 2700 * round));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const auto value = Read(u"folderName");
        ASSERT_TRUE(value);
        ASSERT_EQ(value->size(), 20000U);
        ASSERT_EQ(*value, String(20000, value->front())) << "half of one value and half of another";
        Write(u"other", host::FromUtf8(std::to_string(round)));
        ASSERT_EQ(Read(u"other"), host::FromUtf8(std::to_string(round))) << "the dead writer's lock is gone";
    }
    EXPECT_FALSE(IsSetAside());
    EXPECT_TRUE(trace.lines.empty());
}

TEST_F(SqliteSettingsTest, ManyProcesses_NeverSeeHalfAValue) {
    const auto text = [](char16_t unit) { return String(9000, unit); };
    Write(u"shared", text(u'a'));
    std::vector<pid_t> children;
    for (const char16_t unit : {u'b', u'c', u'd'}) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        try {
            for (int i = 0; i < 15; ++i) Write(u"shared", text(unit));
            _exit(0);
        } catch (const host::Error&) {
            _exit(1);
        }
    }
    for (int i = 0; i < 60; ++i) {
        const auto value = Read(u"shared");
        ASSERT_TRUE(value);
        ASSERT_EQ(*value, text(value->front()));
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
}

TEST_F(SqliteSettingsTest, SeveralProcesses_ThatFindTheFileDamaged_SetItAsideOnce) {
    Write(u"a", u"1");
    real::WriteText(file, std::string(9000, '\x5A'));
    std::vector<pid_t> children;
    for (int p = 0; p < 4; ++p) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        try {
            Write(host::FromUtf8("k" + std::to_string(p)), u"v");
            _exit(0);
        } catch (const host::Error&) {
            _exit(1);
        }
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    for (int p = 0; p < 4; ++p) EXPECT_EQ(Read(host::FromUtf8("k" + std::to_string(p))), u"v");
    const auto names = Names();
    EXPECT_EQ(std::count_if(names.begin(), names.end(),
                            [](const std::string& name) { return name.find("damaged-") != std::string::npos; }),
              1);
}

TEST_F(SqliteSettingsTest, DiskThatTakesNoMore_CostsTheNewValueOnly) {
    Write(u"audioBitrate", u"64");
    const pid_t child = fork();
    if (child == 0) {
        // Nothing more fits into any file of this process, as on a full disk.
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            Write(u"account", String(60000, u'x'));
        } catch (const host::Error&) {
            _exit(Read(u"audioBitrate") == u"64" ? 0 : 2);
        }
        _exit(1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(Read(u"audioBitrate"), u"64");
    EXPECT_EQ(Read(u"account"), std::nullopt);
    EXPECT_FALSE(IsSetAside());
}

TEST_F(SqliteSettingsTest, DefaultFile_LiesInTheConfigurationFolder) {
    const real::ScopedEnv config("XDG_CONFIG_HOME", "/x/config");
    EXPECT_EQ(SqliteSettings::DefaultFile(), "/x/config/kestrum/settings.sqlite");
}

}  // namespace
}  // namespace kestrum::platform
