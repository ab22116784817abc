// The dialogs that change the display mode, as they look, over the scripted world.
#include <QAbstractButton>

#include "display/frmChangeRes.h"
#include "display/frmDiffCapSize.h"
#include "display/frmLargeCapSize.h"
#include "display/modResolution.h"
#include "qt/ProductForms.h"

namespace kestrum::qt {
namespace {

class ResolutionFormsTest : public ProductFormsTest {
  protected:
    ResolutionFormsTest() {
        auto& monitor = world.monitors.all.front();
        monitor.modes = {{Screen::kWidth, Screen::kHeight, 32, 60}, {960, 720, 32, 60}};
        modResolution::SurveyResolution(c, 0);
    }
    void ExpectInTheMiddle(const ui::Form& form, int width, int height) {
        const QPoint middle = WindowOf(form).frameGeometry().center();
        EXPECT_NEAR(middle.x(), width / 2, 2);
        EXPECT_NEAR(middle.y(), height / 2, 2);
    }

    /// The option with this caption, whatever its access key; none fails the test.
    QAbstractButton* Option(const ui::Form& form, const QString& caption) {
        for (auto* button : WindowOf(form).findChildren<QAbstractButton*>()) {
            if (button->text().remove(u'&') == caption) return button;
        }
        ADD_FAILURE() << caption.toStdString();
        return nullptr;
    }

    display::Context c{projectHere, display};
};

TEST_F(ResolutionFormsTest, ChangeRes_OffersThreeSizes_AndStandsInTheMiddleOfTheScreenAfterEachPick) {
    auto& form = Shown(forms.Get<frmChangeRes>(c));
    Keep(form);
    Option(form, "The resolution until now (1024x768)");
    ExpectInTheMiddle(form, Screen::kWidth, Screen::kHeight);
    Option(form, "Recommended for recording (960x720)")->click();
    ASSERT_TRUE(PumpUntil([&] { return form.optRcmdRes.Value(); }));
    Settle();
    EXPECT_EQ(world.monitors.CurrentMode(0)->width, 960);
    ExpectInTheMiddle(form, 960, 720);
    Option(form, "Largest (1024x768)")->click();
    ASSERT_TRUE(PumpUntil([&] { return form.optMaxRes.Value(); }));
    Settle();
    ExpectInTheMiddle(form, Screen::kWidth, Screen::kHeight);
    form.Unload();
}

TEST_F(ResolutionFormsTest, LargeCapSize_NamesTheRecommendedSize) {
    auto& form = Shown(forms.Get<frmLargeCapSize>(c));
    Keep(form);
    ExpectInTheMiddle(form, Screen::kWidth, Screen::kHeight);
    Option(form, "Change to the recommended resolution (960x720)");
    form.Unload();
}

TEST_F(ResolutionFormsTest, DiffCapSize_NamesBothSizes) {
    auto& form = Shown(forms.Get<frmDiffCapSize>(c));
    Keep(form);
    ExpectInTheMiddle(form, Screen::kWidth, Screen::kHeight);
    Option(form, "Keep the current resolution (1024x768)");
    form.Unload();
}

}  // namespace
}  // namespace kestrum::qt
