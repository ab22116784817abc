#include "adapters/linux/LinuxShellFolders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "real/ChildProcess.h"

namespace kestrum::platform {
namespace {

using real::ScopedEnv;

class LinuxShellFoldersTest : public testing::Test {
  protected:
    real::TempFolder home;
    ScopedEnv homeVariable{"HOME", home.Path().string()};
    ScopedEnv config{"XDG_CONFIG_HOME", ""};
    ScopedEnv data{"XDG_DATA_HOME", ""};
    LinuxShellFolders folders;

    String InHome(const std::string& name) const { return host::FromUtf8(home / name); }
};

TEST_F(LinuxShellFoldersTest, Temp_IsTmpdirOrTmp) {
    {
        const ScopedEnv temp("TMPDIR", "/var/x");
        EXPECT_EQ(folders.Environment(u"temp"), u"/var/x");
    }
    const ScopedEnv temp("TMPDIR", "");
    EXPECT_EQ(folders.Environment(u"temp"), u"/tmp");
}

TEST_F(LinuxShellFoldersTest, AppData_IsTheConfigurationFolder_ARelativeOneCountsAsUnset) {
    EXPECT_EQ(folders.Environment(u"appdata"), InHome(".config"));
    const ScopedEnv relative("XDG_CONFIG_HOME", "rel");
    EXPECT_EQ(folders.Environment(u"appdata"), InHome(".config"));
    const ScopedEnv absolute("XDG_CONFIG_HOME", "/c");
    EXPECT_EQ(folders.Environment(u"appdata"), u"/c");
}

TEST_F(LinuxShellFoldersTest, OtherVariables_ReadAsThemselves_UnsetOnesAsEmpty) {
    const ScopedEnv own("KESTRUM_TEST_VALUE", "文");
    EXPECT_EQ(folders.Environment(u"KESTRUM_TEST_VALUE"), u"文");
    EXPECT_EQ(folders.Environment(u"KESTRUM_TEST_NOT_SET"), u"");
}

TEST_F(LinuxShellFoldersTest, SpecialFolders_FollowTheUsersOwnChoice) {
    EXPECT_EQ(folders.SpecialFolder(28), InHome(".local/share"));
    EXPECT_EQ(folders.SpecialFolder(5), InHome("Documents"));
    std::filesystem::create_directories(home.Path() / ".config");
    real::WriteText(home / ".config/user-dirs.dirs", "# x\nXDG_DOCUMENTS_DIR=\"$HOME/文档\"\nXDG_VIDEOS_DIR=\"/v\"\n");
    EXPECT_EQ(folders.SpecialFolder(5), InHome("文档"));
    EXPECT_EQ(folders.SpecialFolder(14), u"/v");
    EXPECT_EQ(folders.SpecialFolder(40), host::FromUtf8(home.Path().string()));
    EXPECT_EQ(folders.SpecialFolder(9999), u"");
}

TEST_F(LinuxShellFoldersTest, OsVersion_IsTheNewest) {
    EXPECT_EQ(folders.OsVersionCode(), 63);
}

TEST_F(LinuxShellFoldersTest, Language_ComesFromTheFirstLocaleVariableSet) {
    const ScopedEnv all("LC_ALL", ""), messages("LC_MESSAGES", ""), lang("LANG", "zh_TW.UTF-8");
    EXPECT_EQ(folders.PrimaryLanguage(), 4);
    {
        const ScopedEnv first("LC_ALL", "de_DE@euro");
        EXPECT_EQ(folders.PrimaryLanguage(), 7);
    }
    for (const char* english : {"C", "C.UTF-8", "en_US.UTF-8", "xx_YY", ""}) {
        const ScopedEnv language("LANG", english);
        EXPECT_EQ(folders.PrimaryLanguage(), 9) << english;
    }
}

TEST_F(LinuxShellFoldersTest, RuntimeFolder_WithoutALogin_IsPrivateToTheUser) {
    const ScopedEnv runtime("XDG_RUNTIME_DIR", ""), temp("TMPDIR", home.Path().string());
    const std::string folder = RuntimeFolder();
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace kestrum::platform
