// The core's side of one office: which presentations are open, which shows run, and the dispatch of the office's
// events to the core. Everything here happens on the core's thread unless a member says otherwise.
//
// An event is dispatched from the event loop, or by a call that promises to return after its events. While it is
// dispatched the show's view answers for that event, also if the show has moved on meanwhile.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "adapters/impress/OfficeDocument.h"
#include "adapters/impress/OfficeEvents.h"
#include "adapters/impress/OfficeLink.h"
#include "host/IApplication.h"
#include "host/IEventLoop.h"
#include "host/IMonitors.h"

namespace kestrum::impress {

/// A running or just ended slide show.
struct Show {
    std::shared_ptr<OfficeDocument> document;
    std::int32_t slide = 0;        ///< the slide last told to the core
    std::int32_t slidesShown = 0;  ///< how often a slide came on screen, repeats included
    bool clicksUsedUp = false;     ///< nothing on the slide waits for a click
    std::int32_t clicksMade = 0;   ///< clicks on the slide that came from the core
    bool ended = false;
};

class OfficeModel : public std::enable_shared_from_this<OfficeModel> {
  public:
    /// `display` is the X display of the office, empty for DISPLAY.
    static std::shared_ptr<OfficeModel> Create(std::unique_ptr<OfficeLink> link, host::IEventLoop& loop,
                                               host::IMonitors& monitors, std::string display);
    ~OfficeModel();

    OfficeLink& Link() { return *m_link; }
    host::IMonitors& Monitors() { return m_monitors; }
    const std::string& Display() const { return m_display; }
    /// Any thread.
    OfficeDocuments& Documents() { return *m_documents; }

    /// Takes note of `model` if it is a presentation; null if it is something else. Inside a job.
    std::shared_ptr<OfficeDocument> Adopt(const css::uno::Reference<css::frame::XModel>& model);

    /// The presentation that is worked on: that of the event being dispatched, else the one whose command or show began
    /// last and still runs, else the one in front, and when the office cannot tell (any more) that of the last show.
    /// Raises if there is none.
    std::shared_ptr<OfficeDocument> ActiveDocument();
    /// The document of `model`, taken note of if it is new; null if it is no presentation or the office fails.
    std::shared_ptr<OfficeDocument> DocumentOf(const css::uno::Reference<css::frame::XModel>& model);

    const std::vector<std::shared_ptr<Show>>& Shows() const { return m_shows; }
    /// The running show of `document`, null if none runs.
    std::shared_ptr<Show> ShowOf(const std::shared_ptr<OfficeDocument>& document) const;
    /// The slide that the event being dispatched tells of, none outside an event of `show`.
    std::optional<std::int32_t> EventSlide(const Show& show) const;

    void AddSink(host::IApplicationEvents& sink);
    void RemoveSink(host::IApplicationEvents& sink);

    /// Dispatches what has arrived. Re-enters.
    void DispatchPending();
    /// Dispatches until `done`; false if the office's time ran out before. Re-enters.
    bool DispatchUntil(const std::function<bool()>& done, Patience patience);

    /// No event reaches the core any more and every call fails.
    void Close();

  private:
    OfficeModel(std::unique_ptr<OfficeLink> link, host::IEventLoop& loop, host::IMonitors& monitors,
                std::string display);
    void Connect();
    void Dispatch(const OfficeEvent& event);
    void Begin(const std::shared_ptr<OfficeDocument>& document);
    void ShowSlide(const std::shared_ptr<Show>& show, std::int32_t slide);
    void End(const std::shared_ptr<Show>& show);
    void CloseDocument(const std::shared_ptr<OfficeDocument>& document);
    void Forget(const std::shared_ptr<Show>& show);
    void Tell(const std::function<void(host::IApplicationEvents&)>& call);
    void TakePulse();

    std::unique_ptr<OfficeLink> m_link;
    host::IEventLoop& m_loop;
    host::IMonitors& m_monitors;
    std::string m_display;
    std::shared_ptr<OfficeDocuments> m_documents = std::make_shared<OfficeDocuments>();
    std::shared_ptr<OfficeEvents> m_events;
    std::vector<std::shared_ptr<Show>> m_shows;
    std::shared_ptr<OfficeDocument> m_lastShown;
    std::vector<host::IApplicationEvents*> m_sinks;
    struct EventScope {
        std::shared_ptr<Show> show;
        std::int32_t slide;
    };
    std::vector<EventScope> m_scopes;
    friend class ActiveScope;
    std::shared_ptr<OfficeDocument> m_inHand;  ///< of the command or show that began last, while it runs
    std::unique_ptr<host::ITimer> m_pulseTimer;
    std::function<bool()> m_pulseUnderWay;
    std::optional<PatientWait> m_pulseWait;
};

/// As long as it lives, and no show begins, `document` is the active one; null changes nothing.
class ActiveScope {
  public:
    ActiveScope(OfficeModel& office, std::shared_ptr<OfficeDocument> document);
    ~ActiveScope();
    ActiveScope(const ActiveScope&) = delete;
    ActiveScope& operator=(const ActiveScope&) = delete;

  private:
    OfficeModel& m_office;
    const std::shared_ptr<OfficeDocument> m_document;
};

}  // namespace kestrum::impress
