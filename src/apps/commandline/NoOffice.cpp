#include "apps/commandline/NoOffice.h"

#include "host/Error.h"

namespace kestrum::app {
namespace {

/// A subscription to a host that never tells anything.
class Silence final : public host::ISubscription {};

[[noreturn]] void FailWithoutPresentation(const String& call) {
    throw host::Error(host::ErrorNumber::Automation, call, u"No presentation is open.");
}

}  // namespace

String NoOffice::Version() {
    return u"16.0";
}
// Not zero: that would mean a host that has just started, in which no recording can be running.
std::int32_t NoOffice::PresentationCount() {
    FailWithoutPresentation(u"PresentationCount");
}
std::unique_ptr<host::IPresentation> NoOffice::ActivePresentation() {
    FailWithoutPresentation(u"ActivePresentation");
}
std::unique_ptr<host::ISlideRange> NoOffice::SelectedSlides() {
    FailWithoutPresentation(u"SelectedSlides");
}
void NoOffice::ActivateWindow() {
    FailWithoutPresentation(u"ActivateWindow");
}
std::int32_t NoOffice::SlideShowWindowCount() {
    return 0;
}
std::unique_ptr<host::ISlideShowWindow> NoOffice::SlideShowWindow(std::int32_t) {
    FailWithoutPresentation(u"SlideShowWindow");
}
void NoOffice::SetCommandBarVisible(const String&, bool) {
    FailWithoutPresentation(u"CommandBars");
}
std::unique_ptr<host::ISubscription> NoOffice::Subscribe(host::IApplicationEvents&) {
    return std::make_unique<Silence>();
}

}  // namespace kestrum::app
