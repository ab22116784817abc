// The dialog before and beside the work: what it offers and what it makes of what is typed.
#include "publish/PublishWorld.h"

namespace kestrum {
namespace {

using Strings = std::vector<String>;

class ExportMp4Dialog : public testing::Test, protected test::PublishWorld {
  protected:
    frmExportMp4& Loaded() {
        Form().Show();
        return Form();
    }

    /// The dialog with a custom size, the first box in use.
    frmExportMp4& WithCustomSize(bool keepRatio) {
        auto& form = Loaded();
        EXPECT_TRUE(form.Select(u"cmbResolution", 1));
        form.chkKeepRatio.SetValue(keepRatio ? 1 : 0);
        return form;
    }

    /// Types into a box and leaves it for the check box.
    static void TypeAndLeave(frmExportMp4& form, const String& box, const String& text) {
        EXPECT_TRUE(form.Type(box, text));
        EXPECT_TRUE(form.MoveFocus(form.chkKeepRatio));
    }

    static Strings Sizes(frmExportMp4& form) { return {form.txtWidth.Text(), form.txtHeight.Text()}; }
};

TEST_F(ExportMp4Dialog, Load_RoundsThePictureSizeDownToAMultipleOfFour) {
    auto& form = Loaded();
    EXPECT_EQ(form.cmbResolution.Items(), (Strings{u"1364x768", u"Custom"}));
    EXPECT_EQ(form.cmbResolution.ListIndex(), 0);
    EXPECT_TRUE(form.lCurRes.Caption().find(u"1364x768") != String::npos);
    EXPECT_EQ(Sizes(form), (Strings{u"1364", u"768"}));
}

TEST_F(ExportMp4Dialog, Load_ShowsTheOutputFolder) {
    EXPECT_EQ(Loaded().lPath.Caption(), u"Path: /home/anna/talks/deck.ktr.mp4");
}

TEST_F(ExportMp4Dialog, Load_WhenOutputFoldersExist_ShowsTheFirstFreeNumber) {
    world.fs.PutFolder(kOutput);
    world.fs.PutFolder(String(kOutput) + u"(1)");
    EXPECT_EQ(Loaded().lPath.Caption(), u"Path: /home/anna/talks/deck.ktr.mp4(2)");
}

TEST_F(ExportMp4Dialog, Load_SetsTheCaptionsOfItsButtonsAndUnit) {
    auto& form = Loaded();
    EXPECT_EQ(form.cmdPublish.Caption(), u"Publish");
    EXPECT_EQ(form.cmdCancel.Caption(), u"Exit");
    EXPECT_EQ(form.lBitrateUnit.Caption(), u"kbps");
}

TEST_F(ExportMp4Dialog, Load_HidesTheCustomFields) {
    auto& form = Loaded();
    for (const char16_t* name : {u"lWidth", u"txtWidth", u"lHeight", u"txtHeight", u"chkKeepRatio", u"TxtCustomBitrate",
                                 u"lBitrateUnit", u"lTip"})
        EXPECT_FALSE(form.FindControl(name)->Visible()) << host::ToUtf8(name);
}

TEST_F(ExportMp4Dialog, Load_WithoutAWebcam_SelectsNoneAndDisablesBothLists) {
    auto& form = Loaded();
    EXPECT_EQ(form.cmbWebcamPos.Items(),
              (Strings{u"top-right", u"bottom-right", u"top-left", u"bottom-left", u"none"}));
    EXPECT_EQ(form.cmbWebcamPos.Text(), u"none");
    EXPECT_EQ(form.cmbWebcamSize.Items(), Strings{u"160x120"});
    EXPECT_FALSE(form.cmbWebcamPos.Enabled());
    EXPECT_FALSE(form.cmbWebcamSize.Enabled());
}

TEST_F(ExportMp4Dialog, Load_OffersWebcamSizesByTheSizeClass) {
    package.videoAttribute = 2;
    PutMedia();
    EXPECT_EQ(Loaded().cmbWebcamSize.Items(), (Strings{u"240x180", u"160x120"}));
    Form().Unload();
    package.videoAttribute = 4;
    PutMedia();
    EXPECT_EQ(Loaded().cmbWebcamSize.Items(), (Strings{u"320x240", u"240x180", u"160x120"}));
    EXPECT_EQ(Form().cmbWebcamSize.ListIndex(), 0);
    EXPECT_EQ(Form().cmbWebcamPos.Text(), u"top-right");
    EXPECT_TRUE(Form().cmbWebcamSize.Enabled());
}

TEST_F(ExportMp4Dialog, SelectingNoWebcam_DisablesItsSize) {
    package.videoAttribute = 4;
    PutMedia();
    auto& form = Loaded();
    form.Select(u"cmbWebcamPos", 4);
    EXPECT_FALSE(form.cmbWebcamSize.Enabled());
    form.Select(u"cmbWebcamPos", 3);
    EXPECT_TRUE(form.cmbWebcamSize.Enabled());
}

TEST_F(ExportMp4Dialog, SelectingACustomBitrate_ShowsItWithTheDefault) {
    auto& form = Loaded();
    form.Select(u"cmbQuality", 1);
    EXPECT_TRUE(form.TxtCustomBitrate.Visible());
    EXPECT_TRUE(form.lBitrateUnit.Visible());
    EXPECT_EQ(form.TxtCustomBitrate.Text(), u"608");  // 1364 * 768 * 0.00058 = 607.6
    form.Select(u"cmbQuality", 0);
    EXPECT_FALSE(form.TxtCustomBitrate.Visible());
}

TEST_F(ExportMp4Dialog, TheBitrate_IsClampedWhenItsBoxIsLeft) {
    auto& form = Loaded();
    form.Select(u"cmbQuality", 1);
    for (const auto& [typed, kept] : std::vector<std::pair<String, String>>{{u"", u"300"},
                                                                            {u" ", u"300"},
                                                                            {u"299", u"300"},
                                                                            {u"800", u"800"},
                                                                            {u"12001", u"12000"},
                                                                            {u"99999999999", u"12000"},
                                                                            {u"-5", u"300"},
                                                                            {u"900 kbps", u"900"}}) {
        form.Type(u"TxtCustomBitrate", typed);
        form.MoveFocus(form.cmbQuality);
        EXPECT_EQ(form.TxtCustomBitrate.Text(), kept) << "typed: " << host::ToUtf8(typed);
    }
}

TEST_F(ExportMp4Dialog, SelectingACustomSize_ShowsItsFields) {
    auto& form = WithCustomSize(true);
    for (const char16_t* name : {u"lWidth", u"txtWidth", u"lHeight", u"txtHeight", u"chkKeepRatio"})
        EXPECT_TRUE(form.FindControl(name)->Visible()) << host::ToUtf8(name);
    EXPECT_FALSE(form.lTip.Visible());
}

TEST_F(ExportMp4Dialog, TheTip_ShowsWhileATypedSizeIsNotAccepted) {
    auto& form = WithCustomSize(false);
    form.Type(u"txtWidth", u"640");
    EXPECT_TRUE(form.lTip.Visible());
    form.Type(u"txtWidth", u" 1364 ");
    EXPECT_FALSE(form.lTip.Visible());
    form.Type(u"txtWidth", u"640");
    form.PressEnter();
    EXPECT_FALSE(form.lTip.Visible());
    EXPECT_EQ(Sizes(form), (Strings{u"640", u"768"}));
    EXPECT_TRUE(form.txtWidth.AllSelected());
}

TEST_F(ExportMp4Dialog, EnterInASizeBox_PublishesNothing) {
    auto& form = WithCustomSize(false);
    form.Type(u"txtHeight", u"480");
    form.PressEnter();
    EXPECT_TRUE(form.cmdPublish.Enabled());
    EXPECT_EQ(Sizes(form), (Strings{u"1364", u"480"}));
}

TEST_F(ExportMp4Dialog, AnEmptySize_IsTheLeastOne) {
    auto& form = WithCustomSize(false);
    TypeAndLeave(form, u"txtWidth", u"");
    TypeAndLeave(form, u"txtHeight", u"  ");
    EXPECT_EQ(Sizes(form), (Strings{u"240", u"180"}));
}

TEST_F(ExportMp4Dialog, ATypedSize_IsRoundedDownAndClamped) {
    auto& form = WithCustomSize(false);
    TypeAndLeave(form, u"txtWidth", u"1923");
    TypeAndLeave(form, u"txtHeight", u"183");
    EXPECT_EQ(Sizes(form), (Strings{u"1920", u"180"}));
    TypeAndLeave(form, u"txtWidth", u"643");
    TypeAndLeave(form, u"txtHeight", u"5000");
    EXPECT_EQ(Sizes(form), (Strings{u"640", u"1920"}));
}

TEST_F(ExportMp4Dialog, WithTheRatioKept_TheOtherSideFollows) {
    auto& form = WithCustomSize(true);
    TypeAndLeave(form, u"txtHeight", u"480");  // 1364 * 480 / 768 = 852.5, to the even 852
    EXPECT_EQ(Sizes(form), (Strings{u"852", u"480"}));
    TypeAndLeave(form, u"txtWidth", u"1000");  // 768 * 1000 / 1364 = 563.05
    EXPECT_EQ(Sizes(form), (Strings{u"1000", u"560"}));
}

TEST_F(ExportMp4Dialog, WithTheRatioKept_AWidthBeyondItsBoundBoundsBoth) {
    auto& form = WithCustomSize(true);
    TypeAndLeave(form, u"txtHeight", u"1900");            // the width would be 3374
    EXPECT_EQ(Sizes(form), (Strings{u"1920", u"1080"}));  // 768 * 1920 / 1364 = 1081.05
}

TEST_F(ExportMp4Dialog, WithTheRatioKept_AHeightBelowItsBoundBoundsBoth) {
    auto& form = WithCustomSize(true);
    TypeAndLeave(form, u"txtWidth", u"240");            // the height would be 132
    EXPECT_EQ(Sizes(form), (Strings{u"316", u"180"}));  // 1364 * 180 / 768 = 319.7
}

TEST_F(ExportMp4Dialog, WithTheRatioKept_ATallPictureIsBoundedByItsWidth) {
    package.width = 400;
    package.height = 1600;
    PutMedia();
    auto& form = WithCustomSize(true);
    TypeAndLeave(form, u"txtHeight", u"800");  // the width would be 200
    EXPECT_EQ(Sizes(form), (Strings{u"240", u"960"}));
}

TEST_F(ExportMp4Dialog, WithoutAPictureSize_ATypedSideIsTakenAlone) {
    package.lengthMs = 0;
    PutMedia();
    auto& form = WithCustomSize(true);
    TypeAndLeave(form, u"txtHeight", u"480");
    EXPECT_EQ(Sizes(form), (Strings{u"0", u"480"}));
}

TEST_F(ExportMp4Dialog, ExitBeforeTheWork_ClosesTheDialogAndLeavesNothing) {
    presenter.Click(u"frmExportMp4", u"cmdCancel");
    ShowDialog();
    EXPECT_FALSE(world.fs.FolderExists(kOutput));
    EXPECT_TRUE(published.publishedPage.empty());
}

TEST(DefaultBitrate, GrowsWithThePictureBetweenItsBounds) {
    EXPECT_EQ(publish::DefaultBitrate({1920, 1080}), 1203);
    EXPECT_EQ(publish::DefaultBitrate({320, 240}), 300);
    EXPECT_EQ(publish::DefaultBitrate({7680, 4320}), 12000);
    EXPECT_EQ(publish::DefaultBitrate({0, 0}), 300);
}

}  // namespace
}  // namespace kestrum
