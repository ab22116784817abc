// What the office tells, on its way from the office's threads to the core's. A listener runs inside the office's main
// thread and freezes the show while it works: it puts an event here and returns.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace kestrum::impress {

class OfficeDocument;

enum class OfficeEventKind {
    ShowBegun,       ///< before the first slide is on screen
    SlideShown,      ///< `slide` has come on screen, again or for the first time
    ClicksUsedUp,    ///< nothing waits for a click on the slide on screen any more
    ShowEnded,       ///< may come more than once
    DocumentClosed,  ///< may come more than once
    OfficeDied,      ///< `document` is empty
};

struct OfficeEvent {
    OfficeEventKind kind = OfficeEventKind::OfficeDied;
    std::shared_ptr<OfficeDocument> document;
    std::int32_t slide = 0;  ///< document number
};

class OfficeEvents {
  public:
    /// `arrived` is called on the pushing thread after each push, until Close.
    explicit OfficeEvents(std::function<void()> arrived) : m_arrived(std::move(arrived)) {}

    void Push(OfficeEvent event);
    std::optional<OfficeEvent> Pop();
    /// Waits at most `limit` until there is an event. False if there is none.
    bool WaitFor(std::chrono::milliseconds limit);
    /// Later events are dropped.
    void Close();

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<OfficeEvent> m_events;
    std::function<void()> m_arrived;
    bool m_closed = false;
};

}  // namespace kestrum::impress
