// The dialog that turns the open project into a folder with a page, a player and one MP4 movie. Decides picture size,
// bitrate and webcam place with the user, then runs the publication in one go from a timer, each step named in
// `currentStep`. Its state is the caption of `cmdCancel`: the exit caption when it is ready or has ended, "Cancel"
// while it works. Cancel has an effect during the conversion only. The page's data files are written last: a page
// without them says that it is not complete.
#pragma once

#include <vector>

#include "publish/Captions.h"
#include "publish/Context.h"
#include "publish/MovieSize.h"
#include "ui/Forms.h"

namespace kestrum {

class frmExportMp4 : public ui::Form {
  public:
    explicit frmExportMp4(const publish::Context& c);

    ui::Label lPath{*this, u"lPath"};
    ui::Label lCurRes{*this, u"lCurRes"};
    ui::Label lResolution{*this, u"lResolution"};
    ui::ComboBox cmbResolution{*this, u"cmbResolution"};
    ui::Label lWidth{*this, u"lWidth"};
    ui::TextBox txtWidth{*this, u"txtWidth"};
    ui::Label lHeight{*this, u"lHeight"};
    ui::TextBox txtHeight{*this, u"txtHeight"};
    ui::CheckBox chkKeepRatio{*this, u"chkKeepRatio"};
    ui::Label lTip{*this, u"lTip"};
    ui::Label lQuality{*this, u"lQuality"};
    ui::ComboBox cmbQuality{*this, u"cmbQuality"};
    ui::TextBox TxtCustomBitrate{*this, u"TxtCustomBitrate"};
    ui::Label lBitrateUnit{*this, u"lBitrateUnit"};
    ui::Label lWebcam{*this, u"lWebcam"};
    ui::ComboBox cmbWebcamPos{*this, u"cmbWebcamPos"};
    ui::Label lWebcamSize{*this, u"lWebcamSize"};
    ui::ComboBox cmbWebcamSize{*this, u"cmbWebcamSize"};
    ui::Label lNote{*this, u"lNote"};
    /// Ours: what captions come along, and that the disk may be too small (hidden while it is not).
    ui::Label lCaptions{*this, u"lCaptions"};
    ui::Label lSpace{*this, u"lSpace"};
    ui::ProgressBar ProgressBar1{*this, u"ProgressBar1"};
    ui::Label txtConvert{*this, u"txtConvert"};
    ui::CommandButton cmdPublish{*this, u"cmdPublish"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};
    ui::Timer Timer1{*this, u"Timer1", 100};

  protected:
    void OnLoad() override;

  private:
    struct Texts {
        String finish, cancelled, tooBig, keyFrameError, coverError, exitCaption, publishCaption, convert;
    };

    // Load.
    void ReadTexts();
    void ShowFreeFolder();
    void ReadProjectSize();
    void FillLists();
    void FillWebcamLists();
    void ShowSpace();
    void Arrange();
    void Connect();

    // Custom fields.
    void cmbQuality_Click();
    void cmbResolution_Click();
    void cmbWebcamPos_Click();
    void TxtCustomBitrate_LostFocus();
    void SizeText_Change();
    void AcceptTypedWidth();
    void AcceptTypedHeight();
    void ShowEdited();

    // Buttons.
    void cmdPublish_Click();
    void cmdCancel_Click();

    // The publication.
    void Timer1_Timer();
    void RunPipeline();
    void CopyPlayer();
    bool ConvertToMp4();
    void SetWebcamArea();
    void SetBitrate();
    bool StartConversion();
    std::int32_t PollConversion(std::int32_t length);
    void ShowConversion(std::int32_t status, std::int32_t length);
    bool EndOfConversion(std::int32_t status);
    bool MakeCover();
    bool ListKeyFrames();
    void RemoveInsertedFiles();
    void FixIndexTimes();
    void WriteCaptions();
    void WritePlayerData();
    void DeleteTemporaryFiles();
    void SignPage();
    void OfferPage();
    void Step(StringView label);
    void EndWith(const String& text);
    String Resource(StringView key, StringView fallback) const;
    String OutputFile(StringView name) const;

    publish::Context m_c;
    Texts m_texts;
    String m_output;
    publish::Captions m_captions;
    bool m_cancel = false;
    publish::MovieSize m_movie;   ///< given to the conversion
    publish::MovieSize m_edited;  ///< last accepted in the two boxes
};

}  // namespace kestrum
