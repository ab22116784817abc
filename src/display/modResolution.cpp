#include "display/modResolution.h"

#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "display/ResolutionChoice.h"
#include "display/frmChangeRes.h"
#include "display/frmDiffCapSize.h"
#include "display/frmLargeCapSize.h"
#include "host/ResumeNext.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMonitor.h"
#include "support/modMsgBox.h"
#include "ui/Form.h"

namespace kestrum::modResolution {
namespace {

using modRegion::Size;

/// Heights tried for a recommended mode, in this order.
constexpr std::array<std::int32_t, 5> kCommonHeights{720, 768, 800, 1024, 600};
constexpr double kSameRatio = 0.001;
/// A largest mode of 8:5 is told apart from wider and narrower ones.
constexpr double kEightToFive = 1.6;

double RatioOf(Size size) {
    return Div(size.width, size.height);
}

/// The monitor's modes with the depth and rate of `current`.
std::vector<Size> ModesLike(const display::Context& c, host::MonitorHandle monitor, const host::DisplayMode& current) {
    std::vector<Size> kept;
    for (std::int32_t i = 0;; ++i) {
        const std::optional<host::DisplayMode> mode = c.host.monitors.EnumerateMode(monitor, i);
        if (!mode) return kept;
        if (mode->bitsPerPixel == current.bitsPerPixel && mode->refreshRate == current.refreshRate)
            kept.push_back({mode->width, mode->height});
    }
}

bool IsLarger(Size size, Size than) {
    return size.width > than.width || (size.width == than.width && size.height > than.height);
}

/// The widest of the modes inside `bound`, at equal width the tallest; 0 x 0 if none fits.
Size LargestWithin(const std::vector<Size>& modes, Size bound) {
    Size largest;
    for (const Size mode : modes)
        if (mode.width <= bound.width && mode.height <= bound.height && IsLarger(mode, largest)) largest = mode;
    return largest;
}

std::optional<Size> FindCommonMode(const std::vector<Size>& modes, Size largest) {
    for (const std::int32_t height : kCommonHeights)
        for (const Size mode : modes)
            if (mode.height == height && std::fabs(RatioOf(mode) - RatioOf(largest)) < kSameRatio) return mode;
    return std::nullopt;
}

Size BoundFor(Size largest) {
    const double ratio = RatioOf(largest);
    if (ratio > kEightToFive) return {1366, 768};
    return ratio == kEightToFive ? Size{1280, 800} : Size{1024, 768};
}

Size Recommend(const std::vector<Size>& modes, Size largest) {
    if (largest == Size{}) return {};  // a monitor that tells no modes
    return FindCommonMode(modes, largest).value_or(LargestWithin(modes, BoundFor(largest)));
}

/// The yes/no question for media whose frame size no resolution can give.
bool AskDifferentSizes(const display::Context& c, Size media) {
    const Size region{c.display.g_RegionWidth, c.display.g_RegionHeight};
    String text = modLanguage::GetResString(
        c, u"frmCommon", u"msgDiffRes",
        u"The size of the region to be recorded (%s1) differs from that of the existing recording "
        u"(%s2). Do you want to record anyway?");
    text = modGlobal::Replace(text, u"%s1", display::SizeText(region));
    text = modGlobal::Replace(text, u"%s2", display::SizeText(media));
    return modMsgBox::MsgBox(c, text, host::BoxButtons::YesNo, u"") == host::BoxAnswer::Yes;
}

/// True if the recommended mode, or the slide's region in it, has the media's frame size.
bool RecommendedModeFits(const display::Context& c, Size media) {
    const display::State& s = c.display;
    const Size recommended{s.g_RcmdResWidth, s.g_RcmdResHeight};
    if (recommended == Size{}) return false;
    return media == recommended ||
           media == modRegion::SlideRegionOf(recommended, {s.g_SlideWidthPt, s.g_SlideHeightPt});
}

}  // namespace

bool SurveyResolution(const display::Context& c, host::MonitorHandle monitor) {
    const std::optional<host::DisplayMode> current = c.host.monitors.CurrentMode(monitor);
    if (!current) return false;
    const std::vector<Size> modes = ModesLike(c, monitor, *current);
    Size largest;
    for (const Size mode : modes)
        if (IsLarger(mode, largest)) largest = mode;
    const Size recommended = Recommend(modes, largest);
    c.display.g_MaxResWidth = largest.width;
    c.display.g_MaxResHeight = largest.height;
    c.display.g_RcmdResWidth = recommended.width;
    c.display.g_RcmdResHeight = recommended.height;
    return true;
}

void ChangeResolution(const display::Context& c) {
    if (c.forms.IsFormLoaded(u"frmChangeRes")) return;
    constexpr host::MonitorHandle kDefaultMonitor = 0;
    SurveyResolution(c, kDefaultMonitor);
    c.forms.Get<frmChangeRes>(c).ShowModal();
}

void ApplyResolution(const display::Context& c, host::MonitorHandle monitor, std::int32_t width, std::int32_t height) {
    host::ResumeNext{c.host.trace}([&] { c.host.monitors.ChangeMode(monitor, width, height); });
}

bool OfferLowerResolution(const display::Context& c) {
    c.forms.Get<frmLargeCapSize>(c).ShowModal();
    return c.display.g_ResDialogResult != 0;
}

bool ResolveDifferentFrameSize(const display::Context& c, Size media) {
    if (!RecommendedModeFits(c, media)) return AskDifferentSizes(c, media);
    c.forms.Get<frmDiffCapSize>(c).ShowModal();
    return c.display.g_ResDialogResult != 0;
}

void CenterOnMonitor(const display::Context& c, ui::Form& form, host::MonitorHandle monitor) {
    ui::WindowPlace place = form.Place();
    place.area = modMonitor::PhysicalToLogicalRect(c, modMonitor::GetMonitorRect(c, monitor));
    place.start = place.area == host::Rect{} ? ui::StartPosition::CentreScreen : ui::StartPosition::CentreArea;
    form.SetPlace(place);
}

}  // namespace kestrum::modResolution
