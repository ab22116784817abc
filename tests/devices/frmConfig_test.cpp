// The preferences: what they read as, what is stored, and in which order.
#include "devices/frmConfig.h"

#include "DialogWorld.h"
#include "support/modConfig.h"

namespace kestrum {
namespace {

const String kPicture = u"/home/anna/pictures/me.at.work.jpeg";

class frmConfigTest : public DialogTest {
  protected:
    frmConfig& Dialog() { return forms.Get<frmConfig>(c); }
    /// Shows the dialog to a user who leaves it with Save.
    void SaveAtOnce() {
        world.presenter.Click(u"frmConfig", u"cmdSave");
        Dialog().ShowModal();
    }
};

TEST_F(frmConfigTest, WithNothingStored_EachChoiceHasItsDefault) {
    Dialog().Show();
    for (const ui::CheckBox* off :
         {&Dialog().chkAutoRecord, &Dialog().chkShowRecStatus, &Dialog().chkSkipPres, &Dialog().chkStartPen,
          &Dialog().chkHideTool, &Dialog().chkShowToolBarIndicator, &Dialog().chkHardware, &Dialog().chkLayeredWin,
          &Dialog().chkCloseAero, &Dialog().chkRecSystemAudio}) {
        EXPECT_EQ(off->Value(), 0) << host::ToUtf8(off->Name());
    }
    for (const ui::CheckBox* on : {&Dialog().chkSldRgnOnly, &Dialog().chkEnableHotKey, &Dialog().chkShowAfter,
                                   &Dialog().chkEditTitle, &Dialog().chkSetVolBefRec, &Dialog().chkLowVolDetect}) {
        EXPECT_EQ(on->Value(), 1) << host::ToUtf8(on->Name());
    }
    EXPECT_EQ(Dialog().cmbFrameRate.Text(), u"medium");
    EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"none") << "a webcam is never switched on by a look at the preferences";
    EXPECT_EQ(Dialog().cmbAudioQuality.Text(), u"32");
}

TEST_F(frmConfigTest, SavedAsItWas_StoresEveryDefault) {
    SaveAtOnce();
    const std::vector<std::pair<String, String>> expected = {
        {u"videoSize", u""},         {u"audioBitrate", u"32"},     {u"chkAutoRecord", u"0"},
        {u"chkShowRecStatus", u"0"}, {u"chkSkipPres", u"0"},       {u"chkStartPen", u"0"},
        {u"chkSldRgnOnly", u"1"},    {u"chkEnableHotKey", u"1"},   {u"chkShowAfter", u"1"},
        {u"chkEditTitle", u"1"},     {u"chkHideTool", u"0"},       {u"chkShowToolBarIndicator", u"0"},
        {u"chkSetVolBefRec", u"1"},  {u"chkLowVolDetect", u"1"},   {u"chkHardware", u"0"},
        {u"chkLayeredWin", u"0"},    {u"chkRecSystemAudio", u"0"}, {u"frameRateLevel", u"medium"}};
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(world.settings.Read(u"Larkspin5", u"configure", key), value) << host::ToUtf8(key);
    }
    EXPECT_EQ(world.faults.CountOf(u"settings.Write"), static_cast<int>(expected.size()));
    EXPECT_FALSE(forms.IsFormLoaded(u"frmConfig"));
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(frmConfigTest, WhatIsStored_IsShown) {
    Set(u"chkSkipPres", u"1");
    Set(u"chkEditTitle", u"0");
    Set(u"chkStartPen", u"rubbish");
    Set(u"frameRateLevel", u"low");
    Set(u"videoSize", u"240x180");
    Set(u"audioBitrate", u"96");
    Dialog().Show();
    EXPECT_TRUE(Dialog().chkSkipPres.Checked());
    EXPECT_FALSE(Dialog().chkEditTitle.Checked());
    EXPECT_FALSE(Dialog().chkStartPen.Checked());
    EXPECT_EQ(Dialog().cmbFrameRate.ListIndex(), 3);
    EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"240x180");
    EXPECT_EQ(Dialog().cmbAudioQuality.Text(), u"96");
}

TEST_F(frmConfigTest, WhatIsStoredWrong_IsShownAsItCounts) {
    Set(u"frameRateLevel", u"Best");
    Set(u"videoSize", u"640x480");
    Set(u"audioBitrate", u"128");
    Dialog().Show();
    EXPECT_EQ(Dialog().cmbFrameRate.Text(), u"medium") << "any other text is 10 pictures a second";
    EXPECT_EQ(Dialog().cmbVideoSize.ListIndex(), 0);
    EXPECT_EQ(Dialog().cmbAudioQuality.Text(), u"32");
}

TEST_F(frmConfigTest, ChoicesOfTheUser_AreStoredUnderTheirOwnNames) {
    world.presenter.Click(u"frmConfig", u"chkAutoRecord").Click(u"frmConfig", u"chkEnableHotKey");
    world.presenter.Select(u"frmConfig", u"cmbFrameRate", 0).Select(u"frmConfig", u"cmbVideoSize", 3);
    world.presenter.Select(u"frmConfig", u"cmbAudioQuality", 2);
    SaveAtOnce();
    EXPECT_EQ(Saved(u"chkAutoRecord"), u"1");
    EXPECT_EQ(Saved(u"chkEnableHotKey"), u"0");
    EXPECT_EQ(Saved(u"frameRateLevel"), u"best");
    EXPECT_EQ(Saved(u"videoSize"), u"320x240");
    EXPECT_EQ(Saved(u"audioBitrate"), u"96");
}

TEST_F(frmConfigTest, EachFrameRate_HasItsWord) {
    const std::vector<String> words = {u"best", u"high", u"medium", u"low"};
    for (std::size_t i = 0; i < words.size(); ++i) {
        world.presenter.Select(u"frmConfig", u"cmbFrameRate", static_cast<std::int32_t>(i));
        SaveAtOnce();
        EXPECT_EQ(Saved(u"frameRateLevel"), words[i]);
    }
}

TEST_F(frmConfigTest, Cancelled_StoresNothing) {
    OpenLecture(false);
    world.fileDialog.answers = {kPicture};
    world.fs.Put(kPicture, "jpeg");
    world.presenter.Click(u"frmConfig", u"chkAutoRecord").Click(u"frmConfig", u"cmdPhoto").PressEscape(u"frmConfig");
    Dialog().ShowModal();
    EXPECT_EQ(Saved(u"chkAutoRecord"), u"");
    EXPECT_FALSE(world.fs.FileExists(kPackage));
    EXPECT_FALSE(world.fs.FileExists(kWork + u"/photo.jpeg"));
    EXPECT_FALSE(forms.IsFormLoaded(u"frmConfig"));
}

TEST_F(frmConfigTest, WebcamSize_SetsTheBitRateOfTheLecture) {
    OpenLecture(false);
    const std::vector<std::pair<std::int32_t, String>> rates = {{1, u"96"}, {2, u"192"}, {3, u"320"}};
    for (const auto& [entry, rate] : rates) {
        world.presenter.Select(u"frmConfig", u"cmbVideoSize", entry);
        SaveAtOnce();
        EXPECT_EQ(project.g_Project.videoBitrate, rate);
    }
    world.presenter.Select(u"frmConfig", u"cmbVideoSize", 0);
    SaveAtOnce();
    EXPECT_EQ(project.g_Project.videoBitrate, u"320") << "no webcam has no bit rate";
    EXPECT_EQ(Saved(u"videoSize"), u"");
}

TEST_F(frmConfigTest, SoundQuality_OfALectureWithoutMedia_GoesToSettingAndLecture) {
    OpenLecture(false);
    world.presenter.Select(u"frmConfig", u"cmbAudioQuality", 1);
    world.presenter.Do(u"frmConfig", u"look",
                       [this](ui::Form&) { EXPECT_FALSE(Dialog().lAudioQualityHelp.Visible()); });
    SaveAtOnce();
    EXPECT_EQ(Saved(u"audioBitrate"), u"64");
    EXPECT_EQ(project.g_Project.audioBitrate, u"64");
    ASSERT_TRUE(world.ksLib.Get(kPackage)) << "the lecture is stored";
}

TEST_F(frmConfigTest, SoundQuality_OfALectureWithMedia_IsShownButFixed) {
    OpenLecture(true);
    Set(u"audioBitrate", u"96");
    project.g_Project.audioBitrate = u"32";
    world.presenter.Do(u"frmConfig", u"look", [this](ui::Form&) {
        EXPECT_EQ(Dialog().cmbAudioQuality.Text(), u"64");
        EXPECT_FALSE(Dialog().cmbAudioQuality.IsUsable());
        EXPECT_TRUE(Dialog().lAudioQualityHelp.Visible());
        EXPECT_EQ(Dialog().lAudioQualityHelp.Caption(), u"you cannot set audio quality if project is not empty.");
    });
    SaveAtOnce();
    EXPECT_EQ(Saved(u"audioBitrate"), u"96");
    EXPECT_EQ(project.g_Project.audioBitrate, u"32");
}

TEST_F(frmConfigTest, ChosenPhoto_IsCopied_NamedInTheLecture_AndRemembered) {
    OpenLecture(true);
    world.fs.Put(kPicture, "jpeg");
    world.settings.Set(u"configure", u"photoPath", u"/home/anna/old/last.png");
    world.fileDialog.answers = {kPicture};
    world.presenter.Click(u"frmConfig", u"cmdPhoto");
    world.presenter.Do(u"frmConfig", u"look", [this](ui::Form&) {
        EXPECT_EQ(Dialog().picPhoto.File(), kPicture);
        EXPECT_EQ(Dialog().txtPhoto.Text(), u"me.at.work.jpeg");
    });
    SaveAtOnce();
    EXPECT_EQ(world.fs.Bytes(kWork + u"/photo.jpeg"), "jpeg");
    EXPECT_EQ(project.g_Project.photo, u"photo.jpeg");
    EXPECT_EQ(world.fileDialog.asked.at(0).folder, u"/home/anna/old");
    EXPECT_EQ(modConfig::GetHexSetting(c, u"configure", u"photoPath", u""), kPicture);
    EXPECT_EQ(world.ksLib.Get(kPackage)->stored.at("photo"), "jpeg");
}

TEST_F(frmConfigTest, PhotoThatIsGone_IsTold_AndTheLectureKeepsItsOwn) {
    OpenLecture(true);
    world.fs.Put(kPicture, "jpeg");
    world.fileDialog.answers = {kPicture};
    const String before = project.g_Project.photo;
    world.presenter.Click(u"frmConfig", u"cmdPhoto");
    world.presenter.Do(u"frmConfig", u"lose the photo", [this](ui::Form&) { world.fs.DeleteFile(kPicture); });
    SaveAtOnce();
    EXPECT_EQ(project.g_Project.photo, before);
    EXPECT_NE(LastBox().find(kPicture), String::npos);
    EXPECT_EQ(Saved(u"frameRateLevel"), u"medium") << "the rest is stored all the same";
}

TEST_F(frmConfigTest, WithoutALecture_ThereIsNoPhoto_AndNothingButPreferencesIsStored) {
    world.presenter.Do(u"frmConfig", u"look", [this](ui::Form&) {
        EXPECT_FALSE(Dialog().cmdPhoto.IsShown());
        EXPECT_TRUE(Dialog().cmbAudioQuality.IsUsable());
    });
    const auto before = world.fs.All();
    SaveAtOnce();
    EXPECT_EQ(world.fs.All(), before);
}

TEST_F(frmConfigTest, TheLecture_IsStoredBeforeThePreferences) {
    OpenLecture(true);
    world.presenter.Click(u"frmConfig", u"chkAutoRecord");
    world.faults.FailCall(u"fs.WriteFile", 1, sim::ForEver);
    world.box.AnswerAfter(0, host::BoxAnswer::Ok, [this] {
        EXPECT_EQ(Saved(u"videoSize"), u"") << "step 2 is done";
        EXPECT_EQ(world.settings.Read(u"Larkspin5", u"configure", u"chkAutoRecord"), std::nullopt);
        Dialog().Unload();  // the user closes the dialog while the box is up
    });
    SaveAtOnce();
    EXPECT_EQ(world.box.AnswersLeft(), 0U) << "the box must have been shown";
    EXPECT_EQ(Saved(u"chkAutoRecord"), u"1") << "the choice outlives the form";
}

TEST_F(frmConfigTest, SettingsThatCannotBeStored_AreTold) {
    world.faults.FailCall(u"settings.Write", 3, sim::Once);
    SaveAtOnce();
    EXPECT_EQ(LastBox(), u"The settings cannot be stored. They hold until the program ends.");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmConfig"));
}

TEST_F(frmConfigTest, ChoicesOfOtherSystems_AreNotOffered_AndKeepTheirValue) {
    Set(u"chkHardware", u"1");
    Set(u"chkLayeredWin", u"1");
    Set(u"AeroState", u"1");
    world.presenter.Do(u"frmConfig", u"look", [this](ui::Form&) {
        EXPECT_FALSE(Dialog().chkHardware.Visible());
        EXPECT_FALSE(Dialog().chkLayeredWin.Visible());
        EXPECT_FALSE(Dialog().chkCloseAero.Visible());
    });
    SaveAtOnce();
    EXPECT_EQ(Saved(u"chkHardware"), u"1");
    EXPECT_EQ(Saved(u"chkLayeredWin"), u"1");
    EXPECT_EQ(Saved(u"AeroState"), u"1");
}

TEST_F(frmConfigTest, HardwareAcceleration_IsGivenToTheLibraryWhenTheDialogCloses) {
    support.g_OsVersion = 51;
    world.presenter.Click(u"frmConfig", u"chkHardware");
    SaveAtOnce();
    EXPECT_TRUE(world.transcript.Has(u"ksLib.SetHardAcceleration 1"));
    world.presenter.Click(u"frmConfig", u"chkHardware").PressEscape(u"frmConfig");
    Dialog().ShowModal();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.SetHardAcceleration 0")) << "what was not saved does not count";
}

TEST_F(frmConfigTest, Aero_ThatRuns_IsClosed_AndNoted) {
    support.g_OsVersion = 61;
    world.processes.services[u"UxSms"] = u"Running";
    world.presenter.Click(u"frmConfig", u"chkCloseAero");
    SaveAtOnce();
    EXPECT_EQ(world.processes.services[u"UxSms"], u"Stopped");
    EXPECT_EQ(Saved(u"AeroState"), u"1");
    SaveAtOnce();
    EXPECT_EQ(Saved(u"AeroState"), u"1") << "it rests because it was closed here";
    world.presenter.Click(u"frmConfig", u"chkCloseAero");
    SaveAtOnce();
    EXPECT_EQ(Saved(u"AeroState"), u"0");
}

TEST_F(frmConfigTest, Aero_ThatDoesNotRunOrCannotBeEnded_IsNotNotedAsClosed) {
    support.g_OsVersion = 60;
    world.presenter.Click(u"frmConfig", u"chkCloseAero");
    SaveAtOnce();
    EXPECT_EQ(Saved(u"AeroState"), u"0");
    world.processes.services[u"UxSms"] = u"Running";
    world.faults.FailCall(u"processes.StopService", 1, sim::Once);
    world.presenter.Click(u"frmConfig", u"chkCloseAero");
    SaveAtOnce();
    EXPECT_EQ(Saved(u"AeroState"), u"0");
}

TEST_F(frmConfigTest, SystemSound_IsOfferedWhereItCanBeRecorded) {
    world.recSystemAudio.canRecord = 1;
    Set(u"chkRecSystemAudio", u"1");
    Dialog().Show();
    EXPECT_TRUE(Dialog().chkRecSystemAudio.IsUsable());
    EXPECT_TRUE(Dialog().chkRecSystemAudio.Checked());
    Dialog().Unload();
    world.recSystemAudio.canRecord = 0;
    Dialog().Show();
    EXPECT_FALSE(Dialog().chkRecSystemAudio.IsUsable());
    EXPECT_FALSE(Dialog().chkRecSystemAudio.Checked());
}

TEST_F(frmConfigTest, EveryFailureOnTheWay_LeavesTheDialogClosed_AndTheLectureReadable) {
    const int faulty = sim::FaultSweep(u"*", [](const std::function<void(sim::Faults&)>& arm) {
        struct Scene : frmConfigTest {
            void TestBody() override {}
            void Run(const std::function<void(sim::Faults&)>& armed) {
                OpenLecture(true);
                world.fs.Put(kPicture, "jpeg");
                world.fileDialog.answers = {kPicture};
                world.box.AnswerAll();
                world.presenter.Click(u"frmConfig", u"cmdPhoto");
                armed(world.faults);
                SaveAtOnce();
                world.faults.Clear();
                EXPECT_FALSE(forms.IsFormLoaded(u"frmConfig"));
                EXPECT_EQ(world.ksLib.GetLength(kPackage), 60000);
                const bool hasOld = world.fs.FileExists(kWork + u"/project.ksp");
                EXPECT_TRUE(hasOld || world.fs.FileExists(kWork + u"/project.ksp.tmp"));
            }
        } scene;
        scene.Run(arm);
    });
    EXPECT_GT(faulty, 20);
}

}  // namespace
}  // namespace kestrum
