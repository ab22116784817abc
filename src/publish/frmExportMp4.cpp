#include "publish/frmExportMp4.h"

#include "publish/SpaceCheck.h"
#include "publish/modPublish.h"
#include "support/Numbers.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {

using modPublish::DownToFour;

namespace {

constexpr StringView kSection = u"frmExportMp4";
constexpr std::int32_t kNoWebcam = 4;

}  // namespace

frmExportMp4::frmExportMp4(const publish::Context& c) : Form(c.forms, String(kSection)), m_c(c) {
    SetCaption(u"Publish to MP4");
    for (ui::Control* hidden : std::initializer_list<ui::Control*>{&TxtCustomBitrate, &lBitrateUnit, &lWidth, &txtWidth,
                                                                   &lHeight, &txtHeight, &chkKeepRatio, &lTip, &lSpace})
        hidden->SetVisible(false);
    TxtCustomBitrate.SetAccessibleName(u"Bitrate in kbps");
    ProgressBar1.SetAccessibleName(u"Progress");
    chkKeepRatio.SetValue(1);
    cmdPublish.SetDefault(true);
    cmdCancel.SetCancel(true);
    Arrange();
    Connect();
}

void frmExportMp4::Arrange() {
    SetLayout(ui::Column({lPath, lCurRes, ui::Field(lResolution, cmbResolution),
                          ui::Field(lWidth, txtWidth, {ui::Field(lHeight, txtHeight), chkKeepRatio}), lTip,
                          ui::Field(lQuality, cmbQuality, {TxtCustomBitrate, lBitrateUnit}),
                          ui::Field(lWebcam, cmbWebcamPos), ui::Field(lWebcamSize, cmbWebcamSize), lNote, lCaptions,
                          lSpace, ProgressBar1, txtConvert, ui::Buttons({cmdPublish, cmdCancel})}));
}

void frmExportMp4::Connect() {
    cmbQuality.onClick = [this] { cmbQuality_Click(); };
    cmbResolution.onClick = [this] { cmbResolution_Click(); };
    cmbWebcamPos.onClick = [this] { cmbWebcamPos_Click(); };
    TxtCustomBitrate.onLostFocus = [this] { TxtCustomBitrate_LostFocus(); };
    for (ui::TextBox* box : {&txtWidth, &txtHeight}) box->onChange = [this] { SizeText_Change(); };
    txtWidth.onLostFocus = txtWidth.onEnter = [this] { AcceptTypedWidth(); };
    txtHeight.onLostFocus = txtHeight.onEnter = [this] { AcceptTypedHeight(); };
    cmdPublish.onClick = [this] { cmdPublish_Click(); };
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
    Timer1.onTimer = [this] { Timer1_Timer(); };
}

String frmExportMp4::Resource(StringView key, StringView fallback) const {
    return modLanguage::GetResString(m_c, kSection, key, fallback);
}

// --- Load ------------------------------------------------------------------------------------------------------------

void frmExportMp4::OnLoad() {
    m_c.publish = {};
    ReadTexts();
    modLanguage::ApplyLanguage(m_c, *this);
    lBitrateUnit.SetCaption(u"kbps");
    cmdPublish.SetCaption(m_texts.publishCaption);
    cmdCancel.SetCaption(m_texts.exitCaption);
    ShowFreeFolder();
    ReadProjectSize();
    FillLists();
    FillWebcamLists();
    m_edited = m_movie;
    ShowEdited();
    TxtCustomBitrate.SetText(ToText(publish::DefaultBitrate(m_movie)));
    m_captions = publish::FindCaptions(m_c);
    lCaptions.SetCaption(m_captions.sentence);
    ShowSpace();
}

void frmExportMp4::ShowSpace() {
    const bool custom = cmbQuality.ListIndex() > 0;
    const String warning = publish::SpaceWarning(m_c, custom ? publish::AcceptBitrate(TxtCustomBitrate.Text()) : 0);
    lSpace.SetCaption(warning);
    lSpace.SetVisible(!warning.empty());
}

void frmExportMp4::ReadTexts() {
    const auto common = [this](StringView key, StringView fallback) {
        return modLanguage::GetResString(m_c, u"frmCommon", key, fallback);
    };
    m_texts.finish = common(u"msgFinish", u"Finished");
    m_texts.cancelled = common(u"msgCancel", u"Cancelled");
    m_texts.exitCaption = common(u"btnExit", u"Exit");
    m_texts.tooBig = Resource(u"msg2GB", u"The movie would be larger than 1.8 GB. Choose a smaller size or bitrate.");
    m_texts.keyFrameError = Resource(u"msgGetKeyframeError", u"The key frames of the movie cannot be read.");
    m_texts.coverError = Resource(u"msgGetCoverError", u"The movie or its cover picture cannot be made.");
    m_texts.publishCaption = Resource(u"msgExport", u"Publish");
    m_texts.convert = Resource(u"txtConvertMp4", u"Convert to MP4");
}

void frmExportMp4::ShowFreeFolder() {
    m_output = modPublish::FreeFolder(m_c, m_c.support.packagePath + u".mp4");
    lPath.SetCaption(Resource(u"lPath", u"Path:") + u" " + m_output);
}

void frmExportMp4::ReadProjectSize() {
    m_movie = {};
    m_c.host.ksLib.GetFileHeaderDim(m_c.support.packagePath, m_movie.width, m_movie.height);
    m_movie = {DownToFour(m_movie.width), DownToFour(m_movie.height)};
    lCurRes.SetCaption(lCurRes.Caption() + ToText(m_movie.width) + u"x" + ToText(m_movie.height));
}

void frmExportMp4::FillLists() {
    const String custom = Resource(u"msgCustom", u"Custom");
    cmbResolution.Clear();
    cmbResolution.AddItem(ToText(m_movie.width) + u"x" + ToText(m_movie.height));
    cmbResolution.AddItem(custom);
    cmbResolution.SetListIndex(0);
    cmbResolution_Click();
    cmbQuality.Clear();
    cmbQuality.AddItem(Resource(u"msgDefault", u"Default"));
    cmbQuality.AddItem(custom);
    cmbQuality.SetListIndex(0);
    cmbQuality_Click();
}

void frmExportMp4::FillWebcamLists() {
    cmbWebcamPos.Clear();
    cmbWebcamPos.AddItem(Resource(u"msgRT", u"top-right"));
    cmbWebcamPos.AddItem(Resource(u"msgRB", u"bottom-right"));
    cmbWebcamPos.AddItem(Resource(u"msgLT", u"top-left"));
    cmbWebcamPos.AddItem(Resource(u"msgLB", u"bottom-left"));
    cmbWebcamPos.AddItem(Resource(u"msgNoVideo", u"none"));
    const std::int32_t sizeClass = m_c.host.ksLib.GetVideoAttribute(m_c.support.packagePath);
    cmbWebcamSize.Clear();
    if (sizeClass >= 4) cmbWebcamSize.AddItem(u"320x240");
    if (sizeClass >= 2) cmbWebcamSize.AddItem(u"240x180");
    cmbWebcamSize.AddItem(u"160x120");
    cmbWebcamSize.SetListIndex(0);
    cmbWebcamPos.SetListIndex(sizeClass == 0 ? kNoWebcam : 0);
    cmbWebcamPos_Click();
    if (sizeClass != 0) return;
    cmbWebcamPos.SetEnabled(false);
    cmbWebcamSize.SetEnabled(false);
}

// --- Custom fields ---------------------------------------------------------------------------------------------------

void frmExportMp4::cmbQuality_Click() {
    const bool custom = cmbQuality.ListIndex() > 0;
    TxtCustomBitrate.SetVisible(custom);
    lBitrateUnit.SetVisible(custom);
    ShowSpace();
}

void frmExportMp4::cmbResolution_Click() {
    const bool custom = cmbResolution.ListIndex() > 0;
    for (ui::Control* control :
         std::initializer_list<ui::Control*>{&lWidth, &txtWidth, &lHeight, &txtHeight, &chkKeepRatio})
        control->SetVisible(custom);
}

void frmExportMp4::cmbWebcamPos_Click() {
    cmbWebcamSize.SetEnabled(cmbWebcamPos.ListIndex() != kNoWebcam);
}

void frmExportMp4::TxtCustomBitrate_LostFocus() {
    TxtCustomBitrate.SetText(ToText(publish::AcceptBitrate(TxtCustomBitrate.Text())));
    ShowSpace();
}

void frmExportMp4::SizeText_Change() {
    lTip.SetVisible(modGlobal::Trim(txtWidth.Text()) != ToText(m_edited.width) ||
                    modGlobal::Trim(txtHeight.Text()) != ToText(m_edited.height));
}

void frmExportMp4::AcceptTypedWidth() {
    m_edited = publish::AcceptWidth(txtWidth.Text(), chkKeepRatio.Checked(), m_movie, m_edited);
    ShowEdited();
    txtWidth.SelectAll();
}

void frmExportMp4::AcceptTypedHeight() {
    m_edited = publish::AcceptHeight(txtHeight.Text(), chkKeepRatio.Checked(), m_movie, m_edited);
    ShowEdited();
    txtHeight.SelectAll();
}

void frmExportMp4::ShowEdited() {
    txtWidth.SetText(ToText(m_edited.width));
    txtHeight.SetText(ToText(m_edited.height));
    lTip.SetVisible(false);
}

// --- Buttons ---------------------------------------------------------------------------------------------------------

void frmExportMp4::cmdPublish_Click() {
    cmdCancel.SetCaption(Resource(u"cmdCancel", u"Cancel"));
    if (cmbResolution.ListIndex() == 1)
        m_movie = {publish::TypedNumber(txtWidth.Text()), publish::TypedNumber(txtHeight.Text())};
    Timer1.SetEnabled(true);
    cmdPublish.SetEnabled(false);
}

void frmExportMp4::cmdCancel_Click() {
    if (cmdCancel.Caption() != m_texts.exitCaption)
        m_cancel = true;
    else
        Unload();
}

}  // namespace kestrum
