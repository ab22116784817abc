// The platform's message box through Qt. A question that has no "no" but a button cannot be closed by its frame.
#pragma once

#include "host/IEventLoop.h"
#include "host/IMessageBox.h"

namespace kestrum::qt {

class QtMessageBox : public host::IMessageBox {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    QtMessageBox(host::IEventLoop& loop, String defaultTitle) : m_loop(loop), m_title(std::move(defaultTitle)) {}

    host::BoxAnswer Show(const String& text, host::BoxButtons buttons, const String& title) override;

  private:
    host::IEventLoop& m_loop;
    String m_title;
};

}  // namespace kestrum::qt
