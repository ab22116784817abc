#include "adapters/sim/ApplicationViews.h"

#include <utility>

namespace kestrum::sim {

namespace {

/// A shape of a slide: its title placeholder or one of the others.
class ShapeView : public host::IShape {
  public:
    explicit ShapeView(ShapeScript shape) : m_shape(std::move(shape)) {}
    bool HasTextFrame() override { return m_shape.hasTextFrame; }
    bool HasText() override {
        NeedFrame();
        return !m_shape.text.empty();
    }
    String Text() override {
        NeedFrame();
        return m_shape.text;
    }
    float TextTop() override {
        NeedFrame();
        return m_shape.top;
    }
    float TextFontSize() override {
        NeedFrame();
        return m_shape.fontSize;
    }

  private:
    void NeedFrame() const {
        if (m_shape.hasTextFrame) return;
        throw host::Error(host::ErrorNumber::Automation, u"Shape.TextFrame", u"The shape has no text frame.");
    }
    ShapeScript m_shape;
};

class ShapesView : public host::IShapes {
  public:
    explicit ShapesView(const SlideScript& slide) : m_hasTitle(slide.title.has_value()) {
        constexpr float kTitleTop = 30, kTitleSize = 44;
        if (m_hasTitle) m_shapes.push_back(ShapeScript{*slide.title, kTitleTop, kTitleSize, true});
        m_shapes.insert(m_shapes.end(), slide.shapes.begin(), slide.shapes.end());
    }
    bool HasTitle() override { return m_hasTitle; }
    std::unique_ptr<host::IShape> Title() override {
        if (!m_hasTitle) throw host::Error(host::ErrorNumber::Automation, u"Shapes.Title", u"There is no title.");
        return std::make_unique<ShapeView>(m_shapes.front());
    }
    std::int32_t Count() override { return static_cast<std::int32_t>(m_shapes.size()); }
    std::unique_ptr<host::IShape> Item(std::int32_t index) override {
        if (index < 1 || index > Count()) {
            throw host::Error(host::ErrorNumber::OutOfRange, u"Shapes.Item", u"Integer out of range.");
        }
        return std::make_unique<ShapeView>(m_shapes[static_cast<std::size_t>(index - 1)]);
    }

  private:
    bool m_hasTitle;
    std::vector<ShapeScript> m_shapes;
};

}  // namespace

// --- Slide ---------------------------------------------------------------------------------------------------------

Application::Slide::Slide(Application& app, std::shared_ptr<Deck> deck, std::int32_t index)
    : m_app(app), m_deck(std::move(deck)), m_index(index) {}

std::int32_t Application::Slide::SlideIndex() {
    m_app.Check(u"SlideIndex");
    return m_index;
}

std::unique_ptr<host::IShapes> Application::Slide::Shapes() {
    m_app.Check(u"Shapes");
    return std::make_unique<ShapesView>(m_deck->slides[static_cast<std::size_t>(m_index - 1)]);
}

float Application::Slide::MasterHeight() {
    m_app.Check(u"MasterHeight");
    return m_deck->height;
}

// --- View ----------------------------------------------------------------------------------------------------------

void Application::View::Check(const char16_t* name) {
    m_app.Check(name);
    if (m_show->ended) m_app.Refuse(name, u"The slide show has ended.");
}

std::int32_t Application::View::State() {
    Check(u"State");
    constexpr std::int32_t kRunning = 1;
    return kRunning;
}

std::unique_ptr<host::ISlide> Application::View::Slide() {
    Check(u"View.Slide");
    return std::make_unique<Application::Slide>(m_app, m_show->deck, m_show->position);
}

std::int32_t Application::View::CurrentShowPosition() {
    Check(u"CurrentShowPosition");
    return m_show->position;
}

host::PointerType Application::View::PointerType() {
    Check(u"PointerType");
    return m_app.pointerType;
}

void Application::View::SetPointerType(host::PointerType type) {
    Check(u"SetPointerType");
    m_app.pointerType = type;
}

std::int32_t Application::View::PointerColor() {
    Check(u"PointerColor");
    return m_app.pointerColor;
}

void Application::View::SetPointerColor(std::int32_t bgr) {
    Check(u"SetPointerColor");
    m_app.pointerColor = bgr;
}

void Application::View::GotoSlide(std::int32_t index, bool) {
    Check(u"GotoSlide");
    if (index < 1 || index > static_cast<std::int32_t>(m_show->deck->slides.size())) {
        m_app.Refuse(u"GotoSlide", u"Integer out of range.");
    }
    m_app.Enter(m_show, index);
}

void Application::View::Next() {
    Check(u"Next");
    m_app.Step(m_show);
}

bool Application::View::ClicksLeft() {
    Check(u"ClicksLeft");
    return m_show->buildsDone < m_show->deck->slides[static_cast<std::size_t>(m_show->position - 1)].builds;
}

bool Application::View::NextSlide() {
    Check(u"NextSlide");
    std::int32_t next = NextVisible(*m_show);
    if (next == 0) return false;
    m_app.Enter(m_show, next);
    return true;
}

void Application::View::Exit() {
    Check(u"Exit");
    m_app.End(m_show);
}

// --- Window --------------------------------------------------------------------------------------------------------

std::unique_ptr<host::ISlideShowView> Application::Window::View() {
    m_app.Check(u"View");
    return std::make_unique<Application::View>(m_app, m_show);
}

std::unique_ptr<host::IPresentation> Application::Window::Presentation() {
    m_app.Check(u"Presentation");
    return std::make_unique<Application::Presentation>(m_app, m_show->deck);
}

void Application::Window::Activate() {
    m_app.Check(u"Window.Activate");
    if (m_show->deck->markedFinal) m_app.Refuse(u"Window.Activate", u"The presentation is marked as final.");
}

float Application::Window::Left() {
    m_app.Check(u"Left");
    return static_cast<float>(m_app.showCorner.x) * 72.0F / static_cast<float>(m_app.m_monitors.PixelsPerInchX());
}

float Application::Window::Top() {
    m_app.Check(u"Top");
    return static_cast<float>(m_app.showCorner.y) * 72.0F / static_cast<float>(m_app.m_monitors.PixelsPerInchY());
}

// --- Settings ------------------------------------------------------------------------------------------------------

void Application::Settings::SetShowType(std::int32_t type) {
    m_app.Check(u"SetShowType");
    m_app.showType = type;
}

std::int32_t Application::Settings::ShowMonitor() {
    m_app.Check(u"ShowMonitor");
    return m_app.showMonitor;
}

void Application::Settings::SetShowMonitor(std::int32_t number) {
    m_app.Check(u"SetShowMonitor");
    m_app.showMonitor = number;
}

std::unique_ptr<host::ISlideShowWindow> Application::Settings::Run() {
    m_app.Check(u"Run");
    std::shared_ptr<Show> show = m_app.RunningShowOf(m_deck);
    if (!show) show = m_app.Start(m_deck, 1);
    return std::make_unique<Application::Window>(m_app, show);
}

// --- Presentation --------------------------------------------------------------------------------------------------

String Application::Presentation::FullName() {
    if (!m_app.m_dead) m_app.Check(u"FullName");
    return m_deck->fullName;
}

std::int16_t Application::Presentation::Saved() {
    m_app.Check(u"Saved");
    return m_deck->saved;
}

void Application::Presentation::SetSaved(std::int16_t saved) {
    m_app.Check(u"SetSaved");
    m_deck->saved = saved;
}

float Application::Presentation::SlideWidth() {
    m_app.Check(u"SlideWidth");
    return m_deck->width;
}

float Application::Presentation::SlideHeight() {
    m_app.Check(u"SlideHeight");
    return m_deck->height;
}

std::int32_t Application::Presentation::SlideCount() {
    m_app.Check(u"SlideCount");
    return static_cast<std::int32_t>(m_deck->slides.size());
}

std::unique_ptr<host::ISlide> Application::Presentation::Slide(std::int32_t index) {
    m_app.Check(u"Slide");
    if (index < 1 || index > static_cast<std::int32_t>(m_deck->slides.size())) {
        m_app.Refuse(u"Slide", u"Integer out of range.");
    }
    return std::make_unique<Application::Slide>(m_app, m_deck, index);
}

std::unique_ptr<host::ISlideShowSettings> Application::Presentation::SlideShowSettings() {
    m_app.Check(u"SlideShowSettings");
    return std::make_unique<Settings>(m_app, m_deck);
}

String Application::Presentation::BuiltInDocumentProperty(const String& name) {
    if (!m_app.m_dead) m_app.Check(u"BuiltInDocumentProperty");
    auto found = m_deck->properties.find(name);
    if (found == m_deck->properties.end()) m_app.Refuse(u"BuiltInDocumentProperty", u"There is no such property.");
    return found->second;
}

}  // namespace kestrum::sim
