// The toolkit's one application object, set up for us: X11, one pixel of ours is one pixel of the screen, our look, and
// a mark on every window of ours that tells capture whether to leave it out of the picture.
#pragma once

#include <QApplication>

#include "host/String.h"

namespace kestrum::qt {

/// Name of the X property (CARDINAL, 32 bit) on each of our top-level windows: 1 is never recorded, 0 may be.
inline constexpr const char* kOwnWindowProperty = "_KESTRUM_OWN_WINDOW";

class QtApplication {
  public:
    /// Needs a display; without one Qt ends the process, so ask SystemChecks first. `argc` and `argv` stay alive.
    QtApplication(int& argc, char** argv);
    QtApplication(const QtApplication&) = delete;
    QtApplication& operator=(const QtApplication&) = delete;

  private:
    QApplication m_application;
};

/// Writes the mark on the native window of `widget`.
void MarkOwnWindow(const QWidget& widget, bool excludedFromCapture);

/// The window bears the mark, whatever it says; this process' windows and those of other recorders do.
bool IsOwnWindow(WId window);

}  // namespace kestrum::qt
