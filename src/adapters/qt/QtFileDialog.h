// The file dialog through Qt.
#pragma once

#include "host/IEventLoop.h"
#include "host/IFileDialog.h"

namespace kestrum::qt {

class QtFileDialog : public host::IFileDialog {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    explicit QtFileDialog(host::IEventLoop& loop) : m_loop(loop) {}

    std::optional<String> OpenFile(const host::FileQuestion& question) override;

  private:
    host::IEventLoop& m_loop;
};

}  // namespace kestrum::qt
