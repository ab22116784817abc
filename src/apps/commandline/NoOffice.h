// The slide-show host of commands that work on a package alone: there is no presentation, and every question about one
// fails as it would in an office without an open document.
#pragma once

#include "host/IApplication.h"

namespace kestrum::app {

class NoOffice final : public host::IApplication {
  public:
    String Version() override;
    std::int32_t PresentationCount() override;
    std::unique_ptr<host::IPresentation> ActivePresentation() override;
    std::unique_ptr<host::ISlideRange> SelectedSlides() override;
    void ActivateWindow() override;
    std::int32_t SlideShowWindowCount() override;
    std::unique_ptr<host::ISlideShowWindow> SlideShowWindow(std::int32_t index) override;
    void SetCommandBarVisible(const String& name, bool visible) override;
    std::unique_ptr<host::ISubscription> Subscribe(host::IApplicationEvents& events) override;
};

}  // namespace kestrum::app
