// The file dialog through Qt.
#pragma once

#include "host/IEventLoop.h"
#include "host/IFileDialog.h"

class QFileDialog;

namespace kestrum::qt {

class QtFileDialog : public host::IFileDialog {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    explicit QtFileDialog(host::IEventLoop& loop) : m_loop(loop) {}

    std::optional<String> OpenFile(const host::FileQuestion& question) override;
    /// Cancels the dialog that is up, if there is one.
    void Leave();

  private:
    host::IEventLoop& m_loop;
    QFileDialog* m_open = nullptr;
};

}  // namespace kestrum::qt
