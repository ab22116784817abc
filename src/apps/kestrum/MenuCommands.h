// The menu of an office and the commands of one session: what the user picks is run, one command after the other, and
// the menu shows what can be picked. Like the windows of a host that is blocked by a dialog of its own, the menu takes
// nothing while a command runs.
#pragma once

#include <memory>

#include "adapters/impress/OfficeMenu.h"
#include "addin/Session.h"

namespace kestrum::app {

class MenuCommands {
  public:
    /// Serves `menu` (null: nothing to serve) for as long as it lives. All outlive it.
    MenuCommands(Session& session, impress::OfficeMenu* menu);

    /// Runs the command, unless one is under way. Re-enters.
    void Pick(const String& id);

  private:
    void Run(const String& id);
    void Look();
    void Show();

    Session& m_session;
    impress::OfficeMenu* m_menu;
    bool m_running = false;
    std::int32_t m_looks = 0;
    bool m_otherRecording = false;
    bool m_resolutionOnOffer = true;
    std::unique_ptr<host::ITimer> m_look;
};

}  // namespace kestrum::app
