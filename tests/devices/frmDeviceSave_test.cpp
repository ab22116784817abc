// What the device dialog keeps: preferences always, the lecture's own values where there is a lecture.
#include "DeviceDialogWorld.h"
#include "devices/PictureSize.h"

namespace kestrum {
namespace {

class frmDeviceSaveTest : public DeviceDialogTest {};

TEST_F(frmDeviceSaveTest, Save_StoresTheChoice_AndCloses) {
    Opened();
    Dialog().Select(u"cmbAudioDevice", 1);
    Dialog().Click(u"chkVideo");
    Dialog().Select(u"cmbVideoDevice", 1);
    Dialog().Select(u"cmbVideoSize", 2);
    Dialog().Select(u"cmbAudioQuality", 0);
    Dialog().Click(u"chkLowVolDetect");
    Dialog().Click(u"chkRecSystemAudio");
    EXPECT_TRUE(Dialog().PressEnter());
    EXPECT_EQ(Saved(u"audioDevice"), u"Mic B");
    EXPECT_EQ(Saved(u"videoDevice"), u"Cam B");
    EXPECT_EQ(Saved(u"videoSize"), u"320x240");
    EXPECT_EQ(Saved(u"audioBitrate"), u"96");
    EXPECT_EQ(Saved(u"chkLowVolDetect"), u"0");
    EXPECT_EQ(Saved(u"chkRecSystemAudio"), u"1");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmDevice"));
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(frmDeviceSaveTest, SavedChoice_IsThereAgain) {
    Opened().Select(u"cmbAudioDevice", 1);
    Dialog().Click(u"chkVideo");
    Dialog().Select(u"cmbVideoSize", 0);
    Dialog().Select(u"cmbAudioQuality", 1);
    Dialog().Click(u"cmdSave");
    Opened();
    EXPECT_EQ(Dialog().cmbAudioDevice.Text(), u"Mic B");
    EXPECT_TRUE(Dialog().chkVideo.Checked());
    EXPECT_EQ(Dialog().cmbVideoSize.Text(), u"160x120");
    EXPECT_EQ(Dialog().cmbAudioQuality.ListIndex(), 1);
}

TEST_F(frmDeviceSaveTest, WithTheCameraOff_AnEmptySizeIsSaved) {
    Set(u"videoSize", u"240x180");
    Opened().Click(u"chkVideo");
    Dialog().Click(u"cmdSave");
    EXPECT_EQ(world.settings.Read(u"Larkspin5", u"configure", u"videoSize"), u"");
}

TEST_F(frmDeviceSaveTest, EachQuality_HasItsBitrate_InTheLectureToo) {
    OpenLecture(false);
    for (const auto& [entry, bitrate] : {std::pair(0, u"96"), {1, u"64"}, {2, u"32"}}) {
        Opened().Select(u"cmbAudioQuality", entry);
        Dialog().Click(u"cmdSave");
        EXPECT_EQ(Saved(u"audioBitrate"), bitrate);
        EXPECT_EQ(project.g_Project.audioBitrate, bitrate);
    }
}

TEST_F(frmDeviceSaveTest, EachPictureSize_SetsSizeAndBitrateOfTheLecture) {
    OpenLecture(true);
    for (const auto& [entry, size, bitrate] :
         {std::tuple(0, u"160x120", u"96"), {1, u"240x180", u"192"}, {2, u"320x240", u"320"}}) {
        Opened();
        if (!Dialog().chkVideo.Checked()) Dialog().Click(u"chkVideo");
        Dialog().Select(u"cmbVideoSize", entry);
        Dialog().Click(u"cmdSave");
        EXPECT_EQ(project.g_Project.videoSize, size);
        EXPECT_EQ(project.g_Project.videoBitrate, bitrate);
    }
    Opened().Click(u"chkVideo");
    Dialog().Click(u"cmdSave");
    EXPECT_EQ(project.g_Project.videoBitrate, u"96");
}

TEST_F(frmDeviceSaveTest, QualityOfMedia_IsShownButFixed) {
    OpenLecture(true);
    Set(u"audioBitrate", u"96");
    project.g_Project.audioBitrate = u"32";
    Opened();
    EXPECT_EQ(Dialog().cmbAudioQuality.ListIndex(), 1) << "what the media have";
    EXPECT_FALSE(Dialog().cmbAudioQuality.Enabled());
    EXPECT_FALSE(Dialog().lAudioQuality.Enabled());
    EXPECT_TRUE(Dialog().lAudioQualityHelp.Visible());
    EXPECT_EQ(Dialog().lAudioQualityHelp.Caption(), u"you cannot set audio quality if project is not empty.");
    Dialog().PointAt(&Dialog().lAudioQualityHelp);
    EXPECT_EQ(Dialog().lAudioQualityHelp.ToolTip(), u"Cannot set audio quality if project is not empty.");
    Dialog().Click(u"cmdSave");
    EXPECT_EQ(Saved(u"audioBitrate"), u"96");
    EXPECT_EQ(project.g_Project.audioBitrate, u"32");
}

TEST_F(frmDeviceSaveTest, TheLecture_IsStoredInItsPackage) {
    OpenLecture(true);
    Opened().Click(u"chkVideo");
    Dialog().Select(u"cmbVideoSize", 2);
    Dialog().Click(u"cmdSave");
    const std::string stored = world.ksLib.Get(kPackage)->stored.at("project");
    EXPECT_NE(stored.find("320x240"), std::string::npos);
}

TEST_F(frmDeviceSaveTest, WithoutALecture_NoFileIsWritten) {
    const auto before = world.fs.All();
    Opened().Click(u"cmdSave");
    EXPECT_EQ(world.fs.All(), before);
    EXPECT_EQ(Saved(u"audioDevice"), u"Mic A");
}

TEST_F(frmDeviceSaveTest, SettingThatCannotBeStored_IsTold_AndTheDialogStays) {
    Opened();
    world.faults.FailCall(u"settings.Write", 3, sim::Once);
    Dialog().Click(u"cmdSave");
    EXPECT_EQ(LastBox(), u"Device Save Error!");
    EXPECT_TRUE(Dialog().IsLoaded());
    EXPECT_TRUE(Dialog().Click(u"cmdSave")) << "a second try";
    EXPECT_FALSE(forms.IsFormLoaded(u"frmDevice"));
}

TEST(PictureSizeTest, IsWidthAndHeightAroundTheX) {
    EXPECT_EQ(ParsePictureSize(u"320x240"), (PictureSize{320, 240}));
    EXPECT_EQ(ParsePictureSize(u"320"), (PictureSize{320, 0}));
    EXPECT_EQ(ParsePictureSize(u""), PictureSize{});
    EXPECT_EQ(VideoBitrateOf(u"640x480"), u"");
}

}  // namespace
}  // namespace kestrum
