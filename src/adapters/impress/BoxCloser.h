// While a deck is loaded, the import may tell something in a box of its own that passes by every handler of questions
// (a diagram that is shown only in part, say), and waits for a click that never comes. As long as an object of this
// class lives, boxes with a single button have it pressed.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "adapters/impress/OfficeThread.h"

namespace kestrum::impress {

class BoxCloser {
  public:
    explicit BoxCloser(const css::uno::Reference<css::uno::XComponentContext>& remote);
    ~BoxCloser();
    BoxCloser(const BoxCloser&) = delete;
    BoxCloser& operator=(const BoxCloser&) = delete;

  private:
    /// A thread of the office's of its own: the one for calls is busy with the loading.
    OfficeThread m_office;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stop = false;
    std::thread m_thread;
};

}  // namespace kestrum::impress
