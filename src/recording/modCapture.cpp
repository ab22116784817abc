#include "recording/modCapture.h"

#include <optional>

#include "display/modRegion.h"
#include "display/modResolution.h"
#include "host/ResumeNext.h"
#include "project/modMediaKs.h"
#include "recording/frmMask1.h"
#include "recording/frmMask2.h"
#include "recording/modViewer.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMonitor.h"
#include "support/modMsgBox.h"

namespace kestrum::modCapture {

namespace {

using modRegion::Size;

Size RegionOf(const recording::Context& c) {
    return {c.display.g_RegionWidth, c.display.g_RegionHeight};
}

Size ScreenOf(const recording::Context& c) {
    return {c.display.g_ScreenWidth, c.display.g_ScreenHeight};
}

/// The screen rounded down to the alignment.
Size WholeScreen(const recording::Context& c) {
    return {modRegion::RoundDownTo4(c.display.g_ScreenWidth), modRegion::RoundDownTo4(c.display.g_ScreenHeight)};
}

void SetRegion(const recording::Context& c, Size size) {
    c.display.g_RegionWidth = size.width;
    c.display.g_RegionHeight = size.height;
}

bool CheckColourDepth(const recording::Context& c) {
    std::int32_t depth = c.host.monitors.BitsPerPixel();
    if (depth == 16 || depth == 24 || depth == 32) return true;
    modMsgBox::MsgBox(
        c, u"Kestrum does not support " + ToText(depth) + u"bits color depth. (16, 24 or 32 bits are supported)");
    return false;
}

void ReadScreenSize(const recording::Context& c) {
    c.display.g_ScreenWidth = modMonitor::GetMonitorWidth(c, c.display.g_Monitor, modMonitor::kPixels);
    c.display.g_ScreenHeight = modMonitor::GetMonitorHeight(c, c.display.g_Monitor, modMonitor::kPixels);
}

/// The size of the monitor is known; false after telling that it is not.
bool CheckScreenSize(const recording::Context& c) {
    if (c.display.g_ScreenWidth != 0 && c.display.g_ScreenHeight != 0) return true;
    modMsgBox::MsgBox(c, u"Kestrum cannot get monitor resolution. Please report this error to Kestrum developer.");
    return false;
}

bool FindMonitor(const recording::Context& c, float left, float top) {
    constexpr double kPointsPerInch = 72;
    host::Point point{ToInt32(left * c.host.monitors.PixelsPerInchX() / kPointsPerInch),
                      ToInt32(top * c.host.monitors.PixelsPerInchY() / kPointsPerInch)};
    auto monitor = c.host.monitors.MonitorFromPoint(point);
    if (!monitor) {
        modMsgBox::MsgBox(
            c, modLanguage::GetResString(c, u"monitor", u"msgGetMonitorError", u"Could not find selected monitor!"));
        return false;
    }
    c.display.g_Monitor = *monitor;
    ReadScreenSize(c);
    return CheckScreenSize(c);
}

/// Frame size of the media that the package holds; none for a new recording.
std::optional<Size> MediaFrameSize(const recording::Context& c) {
    constexpr std::int32_t kOldWidth = 1366, kCountsAs = 1364;
    const String& package = c.support.packagePath;
    if (!c.host.fs.FileExists(package) || c.host.ksLib.IsEmptyProject(package) != 0) return std::nullopt;
    host::ResumeNext Try(c.host.trace);
    Try([&] { modMediaKs::LastKeyFramePos(c); });  // the list of key frames is read anew
    Size size;
    c.host.ksLib.GetKeyframeDim(package, size.width, size.height);
    if (size.width == kOldWidth) size.width = kCountsAs;
    return size;
}

/// The slide's region is used: by the setting, or because the user wants it. Without it the region is the screen, and
/// nothing is asked where both are the same.
bool ChooseSlideRegion(const recording::Context& c, bool useRegion) {
    if (useRegion) return true;
    if (RegionOf(c) == WholeScreen(c)) return false;
    String question = modLanguage::GetResString(c, u"frmPPT", u"msgDiffRatio",
                                                u"This presentation and the screen use different aspect ratios!\r\nDo "
                                                u"you want to record only the region of the "
                                                u"slide?");
    if (modMsgBox::MsgBox(c, question, host::BoxButtons::YesNo, u"") == host::BoxAnswer::Yes) return true;
    SetRegion(c, WholeScreen(c));
    return false;
}

/// After a dialog that may have changed the monitor's mode. False, told, if the monitor was unplugged meanwhile.
bool FollowScreen(const recording::Context& c, bool slideRegion) {
    Size before = ScreenOf(c);
    ReadScreenSize(c);
    if (ScreenOf(c) == before) return true;
    if (!CheckScreenSize(c)) return false;
    if (slideRegion) {
        modRegion::SlideRegion(c);
    } else {
        SetRegion(c, WholeScreen(c));
    }
    return true;
}

bool FitToMedia(const recording::Context& c, Size media, bool useRegion) {
    bool slideRegion = ChooseSlideRegion(c, useRegion);
    if (media == RegionOf(c)) return true;
    if (!modResolution::ResolveDifferentFrameSize(c, media)) return false;
    return FollowScreen(c, slideRegion);
}

bool IsLargeFrame(Size size) {
    constexpr std::int64_t kMostPixels = 1366 * 768;
    constexpr std::int32_t kWidest = 1366, kTallest = 800;
    return std::int64_t{size.width} * size.height > kMostPixels || size.width > kWidest || size.height > kTallest;
}

bool FitNewRecording(const recording::Context& c, bool useRegion) {
    bool slideRegion = ChooseSlideRegion(c, useRegion);
    if (!IsLargeFrame(RegionOf(c))) return true;
    if (!modResolution::OfferLowerResolution(c)) return false;
    return FollowScreen(c, slideRegion);
}

void PlaceRegion(const recording::Context& c) {
    display::State& d = c.display;
    host::Rect monitor = modMonitor::GetMonitorRect(c, d.g_Monitor);
    d.g_CaptureLeft = monitor.left + ToInt32((d.g_ScreenWidth - d.g_RegionWidth) / 2.0);
    d.g_CaptureTop = monitor.top + ToInt32((d.g_ScreenHeight - d.g_RegionHeight) / 2.0);
    d.g_CaptureRight = d.g_CaptureLeft + d.g_RegionWidth - 1;
    d.g_CaptureBottom = d.g_CaptureTop + d.g_RegionHeight - 1;
}

// Left and right of the region, unless only its height differs from the screen's.
void ShowMasks(const recording::Context& c) {
    if (!modViewer::RegionIsSmaller(c)) return;
    const display::State& d = c.display;
    host::Rect monitor = modMonitor::GetMonitorRect(c, d.g_Monitor);
    host::Rect first = monitor, second = monitor;
    if (d.g_RegionWidth != WholeScreen(c).width || d.g_RegionHeight == d.g_ScreenHeight) {
        first.right = d.g_CaptureLeft;
        second.left = d.g_CaptureRight + 1;
    } else {
        first.bottom = d.g_CaptureTop;
        second.top = d.g_CaptureBottom + 1;
    }
    c.forms.Get<frmMask1>(c).Cover(modMonitor::PhysicalToLogicalRect(c, first));
    c.forms.Get<frmMask2>(c).Cover(modMonitor::PhysicalToLogicalRect(c, second));
}

}  // namespace

bool CheckMaxSize(const recording::Context& c, std::int64_t extra) {
    constexpr double kGigabyte = 1073741824;
    const String& package = c.support.packagePath;
    if (!c.host.fs.FileExists(package) || c.host.ksLib.IsEmptyProject(package) != 0) return true;
    std::int64_t size = c.host.fs.FileSize(package);
    if (size + extra <= kLargestPackage) return true;
    String text = modLanguage::GetResString(c, u"frmMainBar", u"msgMaxKsSize",
                                            u"The project is %s GB large. Nothing more can be recorded into it!");
    modMsgBox::MsgBox(c,
                      modGlobal::Replace(text, u"%s", FormatPattern(static_cast<double>(size) / kGigabyte, u"0.##")));
    return false;
}

bool ComputeCaptureRegion(const recording::Context& c, float left, float top) {
    if (!CheckColourDepth(c) || !FindMonitor(c, left, top)) return false;
    modResolution::SurveyResolution(c, c.display.g_Monitor);
    std::optional<Size> media = MediaFrameSize(c);
    bool useRegion = modViewer::Setting(c, u"chkSldRgnOnly", u"1") == u"1";
    modRegion::SlideRegion(c);
    if (!(media ? FitToMedia(c, *media, useRegion) : FitNewRecording(c, useRegion))) return false;
    PlaceRegion(c);
    ShowMasks(c);
    return true;
}

bool CheckCaptureRegion(const recording::Context& c, float left, float top) {
    try {
        if (ComputeCaptureRegion(c, left, top)) return true;
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(c, error.Description());
    }
    modViewer::UnloadMasks(c);
    return false;
}

}  // namespace kestrum::modCapture
