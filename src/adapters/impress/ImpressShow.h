// The slide show's side of the object model: settings, window, view. All are views of one show of one document; after
// the show's end their calls raise.
#pragma once

#include "adapters/impress/OfficeModel.h"
#include "adapters/impress/ShowWindow.h"

namespace kestrum::impress {

class ImpressShowSettings : public host::ISlideShowSettings {
  public:
    ImpressShowSettings(std::shared_ptr<OfficeModel> office, std::shared_ptr<OfficeDocument> document)
        : m_office(std::move(office)), m_document(std::move(document)) {}
    void SetShowType(std::int32_t type) override { m_fullScreen = type == kSpeaker; }
    std::int32_t ShowMonitor() override;
    void SetShowMonitor(std::int32_t number) override;
    std::unique_ptr<host::ISlideShowWindow> Run() override;

  private:
    static constexpr std::int32_t kSpeaker = 1;

    std::shared_ptr<OfficeModel> m_office;
    std::shared_ptr<OfficeDocument> m_document;
    bool m_fullScreen = true;
};

class ImpressShowWindow : public host::ISlideShowWindow {
  public:
    ImpressShowWindow(std::shared_ptr<OfficeModel> office, std::shared_ptr<Show> show)
        : m_office(std::move(office)), m_show(std::move(show)) {}
    std::unique_ptr<host::ISlideShowView> View() override;
    std::unique_ptr<host::IPresentation> Presentation() override;
    void Activate() override;
    float Left() override;
    float Top() override;
    /// Place of the window in pixels.
    WindowRectangle Rectangle();

  private:
    std::shared_ptr<OfficeModel> m_office;
    std::shared_ptr<Show> m_show;
};

class ImpressShowView : public host::ISlideShowView {
  public:
    ImpressShowView(std::shared_ptr<OfficeModel> office, std::shared_ptr<Show> show)
        : m_office(std::move(office)), m_show(std::move(show)) {}
    std::int32_t State() override;
    std::unique_ptr<host::ISlide> Slide() override;
    std::int32_t CurrentShowPosition() override;
    host::PointerType PointerType() override;
    void SetPointerType(host::PointerType type) override;
    std::int32_t PointerColor() override;
    void SetPointerColor(std::int32_t bgr) override;
    void GotoSlide(std::int32_t index, bool resetSlide) override;
    void Next() override;
    bool ClicksLeft() override;
    bool NextSlide() override;
    void Exit() override;

  private:
    /// Runs `job` with the show's controller in the office.
    template <class Job>
    auto Ask(const String& source, Job job);
    /// The document number of the slide on screen now.
    std::int32_t SlideOnScreen();

    std::shared_ptr<OfficeModel> m_office;
    std::shared_ptr<Show> m_show;
};

}  // namespace kestrum::impress
