// The ports of a recording: the X desktop (that of XWayland in a Wayland session), forms through Qt, and whatever
// office is given. Unattended, boxes and forms are answered; else they wait for their user.
#pragma once

#include "adapters/linux/LinuxKsHook.h"
#include "adapters/linux/LinuxPower.h"
#include "adapters/linux/X11Hooks.h"
#include "adapters/linux/X11Monitors.h"
#include "adapters/linux/X11Windows.h"
#include "adapters/qt/QtApplication.h"
#include "adapters/qt/QtDrawingBoard.h"
#include "adapters/qt/QtEventLoop.h"
#include "adapters/qt/QtFileDialog.h"
#include "adapters/qt/QtMessageBox.h"
#include "adapters/qt/QtPresenter.h"
#include "apps/commandline/Unattended.h"
#include "apps/kestrum/Ground.h"
#include "apps/kestrum/MediaPorts.h"

namespace kestrum::app {

class ScreenProgram {
  public:
    /// Throws host::Error with a sentence if this session's screen cannot be recorded (no display; Wayland without a
    /// portal that casts the screen, or without X clients).
    ScreenProgram(Console& console, bool unattended);

    /// The bundle with this office.
    host::Host Ports(host::IApplication& office);
    qt::QtEventLoop& Loop() { return m_loop; }
    /// The desktop is Wayland's, and the display shows its own windows only.
    bool IsWayland() const { return m_isWayland; }
    /// Gets the desktop's permission to record the screen, where one is needed; a sentence if it is refused. Its user
    /// may be asked (re-enters).
    std::optional<String> AskForScreen() { return m_media.ksLib.AskForScreen(); }
    host::IMonitors& Monitors() { return m_monitors; }
    host::IPackageInspector& Inspector() { return m_media.inspector; }
    /// What the drawing board wants to hear of the office: the slides that come on screen.
    host::IApplicationEvents& DrawingBoard() { return m_board; }
    /// Somebody asked the program to end: from now on nothing waits for its user. Dialogs are cancelled and boxes
    /// answered with what changes least, those too that come up until the program has ended.
    void LeaveQuestions();
    /// The last message that a box or a form showed when nobody was there; empty if there was none.
    const String& LastMessage() const;

  private:
    /// The toolkit's application keeps references to these.
    int m_argumentCount = 1;
    char m_name[8] = "kestrum";
    char* m_arguments[2] = {m_name, nullptr};

    const bool m_unattended;
    const bool m_isWayland;
    Ground m_ground;
    qt::QtApplication m_application;
    qt::QtEventLoop m_loop{m_ground.trace};
    platform::X11Connection m_display;
    platform::RawInput m_input{m_loop};
    platform::X11Monitors m_monitors{m_display};
    platform::X11Windows m_windows{m_loop, m_display};
    platform::X11Hooks m_hooks{m_input, m_display};
    platform::LinuxKsHook m_ksHook{m_input, m_display, m_windows, platform::LinuxKsHook::DefaultLockFile()};
    platform::LinuxPower m_power{m_display, m_ground.trace};
    qt::QtMessageBox m_box;
    qt::QtFileDialog m_fileDialog{m_loop};
    UnattendedBox m_answers;
    qt::QtPresenter m_screen{m_loop};
    UnattendedPresenter m_presenter;
    qt::QtDrawingBoard m_board{m_loop};
    MediaPorts m_media{m_loop, &m_board, m_isWayland ? adapters::PixelSource::Cast : adapters::PixelSource::Display};
    std::unique_ptr<host::ITimer> m_leaving;
};

}  // namespace kestrum::app
