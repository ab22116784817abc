// The menu of an office and the commands of one session: what the user picks is run, one command after the other, and
// the menu shows what can be picked. Like the windows of a host that is blocked by a dialog of its own, the menu takes
// nothing while a command runs.
#pragma once

#include <memory>

#include "adapters/impress/ImpressOffice.h"
#include "adapters/impress/OfficeMenu.h"
#include "addin/Session.h"
#include "apps/kestrum/ScreenProgram.h"

namespace kestrum::app {

class MenuCommands {
  public:
    /// Serves the office's menu, if it has one, for as long as it lives. All outlive it.
    MenuCommands(ScreenProgram& program, Session& session, impress::ImpressOffice& office);

    /// Runs the command, unless one is under way. Re-enters.
    void Pick(const String& id);

  private:
    std::optional<String> RefusalOf(const String& id);
    std::optional<String> CheckShowIsFound();
    void Run(const String& id);
    void Look();
    void Show();

    ScreenProgram& m_program;
    Session& m_session;
    impress::ImpressOffice& m_office;
    impress::OfficeMenu* m_menu;
    bool m_running = false;
    std::int32_t m_looks = 0;
    bool m_otherRecording = false;
    bool m_resolutionOnOffer = true;
    std::unique_ptr<host::ITimer> m_look;
};

}  // namespace kestrum::app
