// The ports of a command that needs no screen: no office, no windows, forms that are answered as nobody is there.
#pragma once

#include "adapters/linux/EventLoop.h"
#include "apps/commandline/NoDesktop.h"
#include "apps/commandline/NoOffice.h"
#include "apps/commandline/Unattended.h"
#include "apps/kestrum/Ground.h"
#include "apps/kestrum/MediaPorts.h"

namespace kestrum::app {

class BatchProgram {
  public:
    explicit BatchProgram(Console& console);

    host::Host& Host() { return m_host; }
    platform::EventLoop& Loop() { return m_loop; }
    host::IPackageInspector& Inspector() { return m_media.inspector; }
    UnattendedBox& Box() { return m_box; }
    UnattendedPresenter& Presenter() { return m_presenter; }
    /// The last message that a box or a form showed; empty if there was none.
    const String& LastMessage() const;

  private:
    Ground m_ground;
    platform::EventLoop m_loop{m_ground.trace};
    NoOffice m_office;
    NoMonitors m_monitors;
    NoHooks m_hooks;
    NoWindows m_windows;
    NoKsHook m_ksHook;
    NoPower m_power;
    UnattendedBox m_box;
    NoFileDialog m_fileDialog;
    NoScreen m_screen{m_loop};
    UnattendedPresenter m_presenter;
    MediaPorts m_media{m_loop, nullptr};
    host::Host m_host;
};

}  // namespace kestrum::app
