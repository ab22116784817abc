#include "adapters/sim/Application.h"

#include <algorithm>

#include "adapters/sim/ApplicationViews.h"
#include "adapters/sim/Failure.h"

namespace kestrum::sim {

namespace {

String Number(std::int64_t value) {
    return host::FromUtf8(std::to_string(value));
}

}  // namespace

class Application::Range : public host::ISlideRange {
  public:
    explicit Range(Application& app) : m_app(app) {}
    std::int32_t Count() override {
        m_app.Check(u"SlideRange.Count");
        return static_cast<std::int32_t>(m_app.m_selected.size());
    }
    std::int32_t SlideIndex() override {
        m_app.Check(u"SlideRange.SlideIndex");
        if (m_app.m_selected.empty()) m_app.Refuse(u"SlideRange.SlideIndex", u"Nothing is selected.");
        return m_app.m_selected.front();
    }

  private:
    Application& m_app;
};

class Application::Subscription : public host::ISubscription {
  public:
    Subscription(Application& app, host::IApplicationEvents& sink) : m_app(app), m_sink(&sink) {
        m_app.m_sinks.push_back(m_sink);
    }
    ~Subscription() override {
        auto& sinks = m_app.m_sinks;
        sinks.erase(std::remove(sinks.begin(), sinks.end(), m_sink), sinks.end());
    }

  private:
    Application& m_app;
    host::IApplicationEvents* m_sink;
};

template <class Tell>
void Application::TellAll(Tell tell) {
    auto sinks = m_sinks;
    for (host::IApplicationEvents* sink : sinks) tell(*sink);
}

void Application::Check(const char16_t* name) {
    if (m_dead) Refuse(name, u"The office is gone.");
    m_faults.Check(String(u"app.") + name);
}

void Application::Refuse(const char16_t* name, const String& reason) const {
    throw host::Error(host::ErrorNumber::Automation, String(u"app.") + name, reason);
}

String Application::Version() {
    Check(u"Version");
    return version;
}

std::int32_t Application::PresentationCount() {
    Check(u"PresentationCount");
    return static_cast<std::int32_t>(m_decks.size());
}

std::unique_ptr<host::IPresentation> Application::ActivePresentation() {
    Check(u"ActivePresentation");
    if (!m_active) Refuse(u"ActivePresentation", u"There is no active presentation.");
    return std::make_unique<Presentation>(*this, m_active);
}

std::unique_ptr<host::ISlideRange> Application::SelectedSlides() {
    Check(u"SelectedSlides");
    if (!m_active || !hasWindow) Refuse(u"SelectedSlides", u"There is no active window.");
    return std::make_unique<Range>(*this);
}

void Application::ActivateWindow() {
    Check(u"ActivateWindow");
    if (!m_active || !hasWindow) Refuse(u"ActivateWindow", u"There is no active window.");
    if (m_active->markedFinal) Refuse(u"ActivateWindow", u"The presentation is marked as final.");
}

std::int32_t Application::SlideShowWindowCount() {
    Check(u"SlideShowWindowCount");
    return static_cast<std::int32_t>(m_shows.size());
}

std::unique_ptr<host::ISlideShowWindow> Application::SlideShowWindow(std::int32_t index) {
    Check(u"SlideShowWindow");
    if (index < 1 || index > static_cast<std::int32_t>(m_shows.size())) {
        Refuse(u"SlideShowWindow", u"Integer out of range.");
    }
    return std::make_unique<Window>(*this, m_shows[static_cast<std::size_t>(index - 1)]);
}

void Application::SetCommandBarVisible(const String& name, bool visible) {
    Check(u"SetCommandBarVisible");
    auto bar = commandBars.find(name);
    if (bar == commandBars.end()) Refuse(u"SetCommandBarVisible", u"There is no such command bar.");
    bar->second = visible;
}

std::unique_ptr<host::ISubscription> Application::Subscribe(host::IApplicationEvents& events) {
    return std::make_unique<Subscription>(*this, events);
}

// --- shows ---------------------------------------------------------------------------------------------------------

std::shared_ptr<Application::Show> Application::RunningShowOf(const std::shared_ptr<Deck>& deck) const {
    for (const auto& show : m_shows) {
        if (show->deck == deck && !show->ended) return show;
    }
    return nullptr;
}

std::shared_ptr<Application::Show> Application::Start(const std::shared_ptr<Deck>& deck, std::int32_t firstSlide) {
    if (duringRun) duringRun();
    auto show = std::make_shared<Show>();
    show->deck = deck;
    show->position = firstSlide;
    m_shows.push_back(show);
    deck->saved = 0;  // starting a show marks the presentation as changed
    m_transcript.Add(u"show begin");
    Window window(*this, show);
    TellAll([&](host::IApplicationEvents& sink) { sink.SlideShowBegin(window); });
    if (!holdsFirstSlide && !show->ended) Enter(show, firstSlide);
    return show;
}

void Application::TellFirstSlide() {
    holdsFirstSlide = false;
    if (auto show = Last()) Enter(show, show->position);
}

void Application::Enter(const std::shared_ptr<Show>& show, std::int32_t slide) {
    show->position = slide;
    show->buildsDone = 0;
    m_transcript.Add(u"show slide " + Number(slide));
    if (holdsFirstSlide) return;
    Window window(*this, show);
    TellAll([&](host::IApplicationEvents& sink) { sink.SlideShowNextSlide(window); });
}

void Application::End(const std::shared_ptr<Show>& show) {
    if (show->ended) return;
    show->ended = true;
    m_transcript.Add(u"show end");
    Presentation presentation(*this, show->deck);
    TellAll([&](host::IApplicationEvents& sink) { sink.SlideShowEnd(presentation); });
    m_shows.erase(std::remove(m_shows.begin(), m_shows.end(), show), m_shows.end());
}

std::int32_t Application::NextVisible(const Show& show) {
    auto count = static_cast<std::int32_t>(show.deck->slides.size());
    for (std::int32_t slide = show.position + 1; slide <= count; ++slide) {
        if (!show.deck->slides[static_cast<std::size_t>(slide - 1)].hidden) return slide;
    }
    return 0;
}

void Application::Step(const std::shared_ptr<Show>& show) {
    if (show->buildsDone < show->deck->slides[static_cast<std::size_t>(show->position - 1)].builds) {
        ++show->buildsDone;
        return;
    }
    std::int32_t next = NextVisible(*show);
    if (next == 0) return End(show);
    Enter(show, next);
}

std::shared_ptr<Application::Show> Application::Last() const {
    for (auto show = m_shows.rbegin(); show != m_shows.rend(); ++show) {
        if (!(*show)->ended) return *show;
    }
    return nullptr;
}

// --- the user and the office ---------------------------------------------------------------------------------------

std::shared_ptr<Deck> Application::Find(const String& fullName) const {
    for (const auto& deck : m_decks) {
        if (deck->fullName == fullName) return deck;
    }
    throw Failure("no such presentation is open: " + host::ToUtf8(fullName));
}

Deck& Application::DeckOf(const String& fullName) {
    return *Find(fullName);
}

void Application::Open(const Deck& deck) {
    m_decks.push_back(std::make_shared<Deck>(deck));
    m_active = m_decks.back();
    m_selected = {1};
}

void Application::Activate(const String& fullName) {
    m_active = Find(fullName);
}

void Application::StartShow(std::int32_t firstSlide) {
    if (!m_active) throw Failure("StartShow without a presentation");
    Start(m_active, firstSlide);
}

void Application::GoToSlide(std::int32_t slide) {
    auto show = Last();
    if (!show) throw Failure("GoToSlide without a running show");
    Enter(show, slide);
}

void Application::PressRight() {
    auto show = Last();
    if (!show) throw Failure("the Right key without a running show");
    Step(show);
}

void Application::PressEscape() {
    if (auto show = Last()) End(show);
}

void Application::Close(const String& fullName) {
    auto deck = Find(fullName);
    m_transcript.Add(u"close " + fullName);
    Presentation presentation(*this, deck);
    TellAll([&](host::IApplicationEvents& sink) { sink.PresentationClose(presentation); });
    if (auto show = RunningShowOf(deck)) End(show);
    m_decks.erase(std::remove(m_decks.begin(), m_decks.end(), deck), m_decks.end());
    if (m_active == deck) m_active = m_decks.empty() ? nullptr : m_decks.back();
}

void Application::Die() {
    m_dead = true;
    m_transcript.Add(u"office dies");
    auto shows = m_shows;
    for (const auto& show : shows) End(show);
    auto decks = m_decks;
    for (const auto& deck : decks) {
        Presentation presentation(*this, deck);
        TellAll([&](host::IApplicationEvents& sink) { sink.PresentationClose(presentation); });
    }
}

bool Application::ShowIsRunning() const {
    return Last() != nullptr;
}

std::int32_t Application::ShownSlide() const {
    auto show = Last();
    return show ? show->position : 0;
}

}  // namespace kestrum::sim
