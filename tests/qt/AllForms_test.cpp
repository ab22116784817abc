// Every form of the product, made and loaded with the installed language file: no caption is lost, none is cut.
#include <set>

#include "addin/frmAbout.h"
#include "devices/frmConfig.h"
#include "devices/frmConfigSound.h"
#include "devices/frmDevice.h"
#include "devices/frmVolMsg.h"
#include "devices/frmVolSetting.h"
#include "display/frmChangeRes.h"
#include "display/frmDiffCapSize.h"
#include "display/frmLargeCapSize.h"
#include "publish/frmExportMp4.h"
#include "qt/ProductForms.h"
#include "support/frmExecCmd.h"
#include "support/frmMsgBox.h"
#include "support/frmMsgLink.h"
#include "support/frmStatus.h"
#include "support/modLanguage.h"

namespace kestrum::qt {
namespace {

struct NoPage : host::IPageView {
    void OpenPage(const String&, std::function<void()>) override {}
    void RunScript(const String&) override {}
    void ClosePage() override {}
};

class AllFormsTest : public ProductFormsTest {
  protected:
    /// The captions that the language pass gives; an empty one must be empty on purpose: it is filled by the program.
    void ExpectCaptions(ui::Form& form, const std::set<String>& filledLater) {
        modLanguage::ApplyLanguage(projectHere, form);
        EXPECT_FALSE(form.Caption().empty()) << host::ToUtf8(form.Name());
        for (ui::Control* control : form.Controls()) {
            const auto* captioned = dynamic_cast<const ui::CaptionedControl*>(control);
            if (!captioned || control->Kind() == ui::ControlKind::Link || filledLater.count(control->Name())) continue;
            EXPECT_FALSE(captioned->Caption().empty())
                << host::ToUtf8(form.Name()) << "." << host::ToUtf8(control->FullName());
        }
    }
};

TEST_F(AllFormsTest, EveryFormAndEveryCaptionedControl_HasItsText) {
    const devices::Context sound{projectHere, devices};
    const display::Context picture{projectHere, display};
    ExpectCaptions(forms.Get<frmAbout>(projectHere), {});
    ExpectCaptions(forms.Get<frmConfig>(sound), {u"lAudioQualityHelp", u"lTimeString"});
    ExpectCaptions(forms.Get<frmDevice>(sound), {u"lAudioQualityHelp", u"lTimeString", u"lVideoMsg", u"lVolumeMsg"});
    NoPage page;
    ExpectCaptions(forms.Get<frmConfigSound>(frmConfigSound::Context{sound, page}), {});
    ExpectCaptions(forms.Get<frmVolMsg>(sound), {});
    ExpectCaptions(forms.Get<frmVolSetting>(sound), {});
    ExpectCaptions(forms.Get<frmChangeRes>(picture), {});
    ExpectCaptions(forms.Get<frmDiffCapSize>(picture), {});
    ExpectCaptions(forms.Get<frmLargeCapSize>(picture), {});
    ExpectCaptions(forms.Get<frmExportMp4>(publishHere), {u"txtConvert", u"lSpace", u"lCaptions"});
    ExpectCaptions(forms.Get<frmExecCmd>(projectHere), {});
    ExpectCaptions(forms.Get<frmMsgBox>(projectHere), {u"lMsg"});
    ExpectCaptions(forms.Get<frmMsgLink>(projectHere), {u"lMsg"});
    ExpectCaptions(forms.Get<frmStatus>(projectHere), {u"lStatus"});
}

}  // namespace
}  // namespace kestrum::qt
