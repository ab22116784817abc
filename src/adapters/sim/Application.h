// The scripted slide-show host. It behaves as the real one does towards the program: a show's begin and first slide are
// told before `Run` returns, `Run` on a running show gives that show, an ending show is still counted in its end event,
// a closing presentation is told before its show ends, and what the real host refuses raises host::Error. Faults:
// "app."
// + the call's name ("app.Run", "app.GotoSlide", "app.State" ...).
#pragma once

#include <memory>
#include <vector>

#include "adapters/sim/Deck.h"
#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Faults.h"
#include "adapters/sim/Monitors.h"
#include "adapters/sim/Transcript.h"
#include "host/IApplication.h"

namespace kestrum::sim {

class Application : public host::IApplication {
  public:
    Application(Faults& faults, Transcript& transcript, Monitors& monitors)
        : m_faults(faults), m_transcript(transcript), m_monitors(monitors) {}

    String Version() override;
    std::int32_t PresentationCount() override;
    std::unique_ptr<host::IPresentation> ActivePresentation() override;
    std::unique_ptr<host::ISlideRange> SelectedSlides() override;
    void ActivateWindow() override;
    std::int32_t SlideShowWindowCount() override;
    std::unique_ptr<host::ISlideShowWindow> SlideShowWindow(std::int32_t index) override;
    void SetCommandBarVisible(const String& name, bool visible) override;
    std::unique_ptr<host::ISubscription> Subscribe(host::IApplicationEvents& events) override;

    // --- what the user and the office do ---------------------------------------------------------------------------

    /// Opens a presentation and makes it the active one, slide 1 selected.
    void Open(const Deck& deck);
    /// Makes an open presentation the active one.
    void Activate(const String& fullName);
    void Select(std::vector<std::int32_t> slides) { m_selected = std::move(slides); }
    /// The user starts the active presentation's show at this slide, without the program.
    void StartShow(std::int32_t firstSlide = 1);
    /// The user goes to a slide of the running show.
    void GoToSlide(std::int32_t slide);
    /// The Right key: a build, the next visible slide, or the end.
    void PressRight();
    /// The Escape key; nothing happens without a show.
    void PressEscape();
    /// The user closes a presentation, its running show with it.
    void Close(const String& fullName);
    /// The office process dies: every call fails from now on but the cached answers of running shows.
    void Die();

    // --- what a test sees ------------------------------------------------------------------------------------------

    bool ShowIsRunning() const;
    /// Slide on screen of the last started show, 0 without one.
    std::int32_t ShownSlide() const;
    /// The open deck of this name; fails the test if there is none.
    Deck& DeckOf(const String& fullName);
    host::PointerType pointerType = host::PointerType::Arrow;
    std::int32_t pointerColor = 0x0000FF;
    /// Shape of the show when it started: 1 after SetShowType(1).
    std::int32_t showType = 0;
    /// The user's setting in the host.
    std::int32_t showMonitor = 0;
    std::map<String, bool> commandBars{{u"Slide Show", true}};

    String version = u"16.0";
    /// No document window (only a show, or a start without one).
    bool hasWindow = true;
    /// The show's upper left corner on the desktop in pixels.
    host::Point showCorner;
    /// Runs inside `Run`, before any event, as a slow host would let events run there.
    std::function<void()> duringRun;
    /// Events are kept back: the host tells the first slide only when `TellFirstSlide` is called.
    bool holdsFirstSlide = false;
    void TellFirstSlide();

  private:
    struct Show {
        std::shared_ptr<Deck> deck;
        std::int32_t position = 0;
        int buildsDone = 0;
        bool ended = false;
    };
    class Presentation;
    class Range;
    class Settings;
    class Slide;
    class Subscription;
    class View;
    class Window;

    /// Counts the call under "app." + name; raises if the office is dead or a fault is due.
    void Check(const char16_t* name);
    [[noreturn]] void Refuse(const char16_t* name, const String& reason) const;
    std::shared_ptr<Show> RunningShowOf(const std::shared_ptr<Deck>& deck) const;
    std::shared_ptr<Show> Start(const std::shared_ptr<Deck>& deck, std::int32_t firstSlide);
    void Enter(const std::shared_ptr<Show>& show, std::int32_t slide);
    void End(const std::shared_ptr<Show>& show);
    void Step(const std::shared_ptr<Show>& show);
    static std::int32_t NextVisible(const Show& show);
    std::shared_ptr<Show> Last() const;
    std::shared_ptr<Deck> Find(const String& fullName) const;
    template <class Tell>
    void TellAll(Tell tell);

    Faults& m_faults;
    Transcript& m_transcript;
    Monitors& m_monitors;
    std::vector<std::shared_ptr<Deck>> m_decks;
    std::shared_ptr<Deck> m_active;
    std::vector<std::shared_ptr<Show>> m_shows;
    std::vector<host::IApplicationEvents*> m_sinks;
    std::vector<std::int32_t> m_selected{1};
    bool m_dead = false;
};

}  // namespace kestrum::sim
