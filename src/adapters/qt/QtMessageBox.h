// The platform's message box through Qt. A question that has no "no" but a button cannot be closed by its frame.
#pragma once

#include <vector>

#include "host/IEventLoop.h"
#include "host/IMessageBox.h"

class QMessageBox;

namespace kestrum::qt {

class QtMessageBox : public host::IMessageBox {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    QtMessageBox(host::IEventLoop& loop, String defaultTitle) : m_loop(loop), m_title(std::move(defaultTitle)) {}

    host::BoxAnswer Show(const String& text, host::BoxButtons buttons, const String& title) override;
    /// Answers every box on screen, the newest first, with the button that changes least: Cancel, else No, else OK.
    void Leave();

  private:
    host::IEventLoop& m_loop;
    String m_title;
    std::vector<QMessageBox*> m_open;  ///< the newest last
};

}  // namespace kestrum::qt
