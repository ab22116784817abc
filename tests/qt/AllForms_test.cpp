// Every form of the product, made and loaded with the installed language file: no caption is lost, none is cut.
#include <map>
#include <set>

#include "addin/Session.h"
#include "qt/FormShelf.h"
#include "qt/ProductForms.h"
#include "support/modLanguage.h"

namespace kestrum::qt {
namespace {

class AllFormsTest : public ProductFormsTest {
  protected:
    /// The captions that the language pass gives; an empty one must be empty on purpose: it is filled by the program.
    void ExpectCaptions(ui::Form& form, const std::set<String>& filledLater) {
        if (form.Style().borderless) return;  // a notice, filled in by the program as a whole
        modLanguage::ApplyLanguage(projectHere, form);
        EXPECT_FALSE(form.Caption().empty()) << host::ToUtf8(form.Name());
        for (ui::Control* control : form.Controls()) {
            const auto* captioned = dynamic_cast<const ui::CaptionedControl*>(control);
            if (!captioned || control->Kind() == ui::ControlKind::Link || filledLater.count(control->Name())) continue;
            EXPECT_FALSE(captioned->Caption().empty())
                << host::ToUtf8(form.Name()) << "." << host::ToUtf8(control->FullName());
        }
    }

    /// By form: what the program fills in.
    const std::map<String, std::set<String>> filled = {
        {u"frmConfig", {u"lAudioQualityHelp", u"lTimeString"}},
        {u"frmDevice", {u"lAudioQualityHelp", u"lTimeString", u"lVideoMsg", u"lVolumeMsg"}},
        {u"frmExportMp4", {u"txtConvert", u"lSpace", u"lCaptions"}},
        {u"frmFirstRun", {u"lNote"}},
        {u"frmMsgBox", {u"lMsg"}},
        {u"frmMsgLink", {u"lMsg"}},
        {u"frmRecorded", {u"lTitle", u"lLength", u"lSlides", u"lSound"}},
        {u"frmStatus", {u"lStatus"}},
        {u"frmVolSetting", {u"lAdvice"}},
    };
};

TEST_F(AllFormsTest, EveryFormAndEveryCaptionedControl_HasItsText) {
    Session session(realHost);
    test::NoPage page;
    std::size_t count = 0;
    test::ForEachForm(session.c, page, [&](ui::Form& form) {
        ++count;
        const auto later = filled.find(form.Name());
        ExpectCaptions(form, later == filled.end() ? std::set<String>{} : later->second);
    });
    EXPECT_GE(count, filled.size());
}

}  // namespace
}  // namespace kestrum::qt
