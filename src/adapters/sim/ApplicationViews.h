// The cheap views that the scripted host hands out: presentation, show window, view, slide and its shapes.
#pragma once

#include "adapters/sim/Application.h"

namespace kestrum::sim {

class Application::Slide : public host::ISlide {
  public:
    Slide(Application& app, std::shared_ptr<Deck> deck, std::int32_t index);
    std::int32_t SlideIndex() override;
    std::unique_ptr<host::IShapes> Shapes() override;
    float MasterHeight() override;

  private:
    Application& m_app;
    std::shared_ptr<Deck> m_deck;
    std::int32_t m_index;
};

class Application::View : public host::ISlideShowView {
  public:
    View(Application& app, std::shared_ptr<Show> show) : m_app(app), m_show(std::move(show)) {}
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
    /// As Application::Check, and raises if the show has ended.
    void Check(const char16_t* name);
    Application& m_app;
    std::shared_ptr<Show> m_show;
};

class Application::Window : public host::ISlideShowWindow {
  public:
    Window(Application& app, std::shared_ptr<Show> show) : m_app(app), m_show(std::move(show)) {}
    std::unique_ptr<host::ISlideShowView> View() override;
    std::unique_ptr<host::IPresentation> Presentation() override;
    void Activate() override;
    float Left() override;
    float Top() override;

  private:
    Application& m_app;
    std::shared_ptr<Show> m_show;
};

class Application::Settings : public host::ISlideShowSettings {
  public:
    Settings(Application& app, std::shared_ptr<Deck> deck) : m_app(app), m_deck(std::move(deck)) {}
    void SetShowType(std::int32_t type) override;
    std::int32_t ShowMonitor() override;
    void SetShowMonitor(std::int32_t number) override;
    std::unique_ptr<host::ISlideShowWindow> Run() override;

  private:
    Application& m_app;
    std::shared_ptr<Deck> m_deck;
};

class Application::Presentation : public host::IPresentation {
  public:
    Presentation(Application& app, std::shared_ptr<Deck> deck) : m_app(app), m_deck(std::move(deck)) {}
    String FullName() override;
    std::int16_t Saved() override;
    void SetSaved(std::int16_t saved) override;
    float SlideWidth() override;
    float SlideHeight() override;
    std::int32_t SlideCount() override;
    std::unique_ptr<host::ISlide> Slide(std::int32_t index) override;
    std::unique_ptr<host::ISlideShowSettings> SlideShowSettings() override;
    String BuiltInDocumentProperty(const String& name) override;

  private:
    Application& m_app;
    std::shared_ptr<Deck> m_deck;
};

}  // namespace kestrum::sim
