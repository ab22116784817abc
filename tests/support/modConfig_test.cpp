#include "support/modConfig.h"

#include "SupportWorld.h"

namespace kestrum {
namespace {

using namespace modConfig;

class modConfigTest : public SupportTest {};

TEST_F(modConfigTest, GetSetting_OfAKeyNeverSet_IsTheDefault) {
    EXPECT_EQ(GetSetting(c, u"configure", u"audioBitrate", u"32"), u"32");
}

TEST_F(modConfigTest, GetSetting_OfAStoredEmptyText_IsEmpty) {
    SaveSetting(c, u"configure", u"videoSize", u"");
    EXPECT_EQ(GetSetting(c, u"configure", u"videoSize", u"160x120"), u"");
}

TEST_F(modConfigTest, SaveSetting_StoresUnderTheApplicationsName) {
    SaveSetting(c, u"configure", u"audioBitrate", u"64");
    EXPECT_EQ(world.settings.Read(u"Larkspin5", u"configure", u"audioBitrate"), u"64");
}

TEST_F(modConfigTest, TouchTimeAndTouchtime_AreDistinct) {
    SaveSetting(c, u"configure", u"touchTime", u"2024/1/2 03:04:05");
    SaveSetting(c, u"tokens\\PowerPoint", u"touchtime", u"4711");
    EXPECT_EQ(GetSetting(c, u"configure", u"touchTime", u""), u"2024/1/2 03:04:05");
    EXPECT_EQ(GetSetting(c, u"configure", u"touchtime", u"none"), u"none");
    EXPECT_EQ(GetSetting(c, u"tokens\\PowerPoint", u"touchtime", u"0"), u"4711");
}

TEST_F(modConfigTest, HexSetting_OfANonAsciiName_ComesBack) {
    const String name = u"Zoë Müller 講義 \U0001F393";
    SaveHexSetting(c, u"configure", u"account", name);
    EXPECT_EQ(GetHexSetting(c, u"configure", u"account", u""), name);
    const String stored = GetSetting(c, u"configure", u"account", u"");
    EXPECT_TRUE(stored.starts_with(u"&H5A006F00EB00"));
}

TEST_F(modConfigTest, HexSetting_OfTheMarkAlone_IsTheDefault) {
    SaveSetting(c, u"configure", u"folderName", u"&H");
    EXPECT_EQ(GetHexSetting(c, u"configure", u"folderName", u"test"), u"test");
}

TEST_F(modConfigTest, HexSetting_ReadsAPlainTextOfAnOlderVersion_ButLosesShortOnes) {
    SaveSetting(c, u"configure", u"folderID", u"125");
    EXPECT_EQ(GetHexSetting(c, u"configure", u"folderID", u"1"), u"125");
    SaveSetting(c, u"configure", u"folderID", u"25");
    EXPECT_EQ(GetHexSetting(c, u"configure", u"folderID", u"1"), u"1");
}

TEST_F(modConfigTest, HexSetting_OfAKeyNeverSet_IsTheDefault_EvenOneInHexadecimalForm) {
    EXPECT_EQ(GetHexSetting(c, u"configure", u"photoPath", u""), u"");
    EXPECT_EQ(GetHexSetting(c, u"configure", u"serverIP", u"lectures.example.org"), u"lectures.example.org");
}

TEST_F(modConfigTest, SaveHexSetting_OfAnEmptyText_KeepsTheKeyWithAnEmptyText) {
    SaveHexSetting(c, u"configure", u"password", u"secret");
    SaveHexSetting(c, u"configure", u"password", u"");
    EXPECT_EQ(world.settings.Read(u"Larkspin5", u"configure", u"password"), u"");
    EXPECT_EQ(GetHexSetting(c, u"configure", u"password", u"old"), u"old");
}

TEST_F(modConfigTest, AnUnreadableStore_GivesDefaults) {
    SaveSetting(c, u"configure", u"audioBitrate", u"64");
    world.faults.FailCall(u"settings.Read", 1, sim::ForEver);
    EXPECT_EQ(GetSetting(c, u"configure", u"audioBitrate", u"32"), u"32");
}

TEST_F(modConfigTest, AnUnwritableStore_SaysSo_AndDisturbsNobody) {
    EXPECT_TRUE(SaveSetting(c, u"configure", u"audioBitrate", u"64"));
    world.faults.FailCall(u"settings.Write", 1, sim::ForEver);
    EXPECT_FALSE(SaveSetting(c, u"configure", u"audioBitrate", u"96"));
    EXPECT_FALSE(SaveHexSetting(c, u"configure", u"account", u"anna"));
    EXPECT_EQ(GetSetting(c, u"configure", u"audioBitrate", u"32"), u"64");
}

}  // namespace
}  // namespace kestrum
