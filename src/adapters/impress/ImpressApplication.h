// The office as the core sees it: host::IApplication, of the generation that calls itself 16.
#pragma once

#include "adapters/impress/OfficeModel.h"

namespace kestrum::impress {

class ImpressApplication : public host::IApplication {
  public:
    explicit ImpressApplication(std::shared_ptr<OfficeModel> office) : m_office(std::move(office)) {}
    String Version() override;
    std::int32_t PresentationCount() override;
    std::unique_ptr<host::IPresentation> ActivePresentation() override;
    std::unique_ptr<host::ISlideRange> SelectedSlides() override;
    void ActivateWindow() override;
    std::int32_t SlideShowWindowCount() override;
    std::unique_ptr<host::ISlideShowWindow> SlideShowWindow(std::int32_t index) override;
    void SetCommandBarVisible(const String& name, bool visible) override;
    std::unique_ptr<host::ISubscription> Subscribe(host::IApplicationEvents& events) override;

  private:
    std::shared_ptr<OfficeModel> m_office;
};

}  // namespace kestrum::impress
