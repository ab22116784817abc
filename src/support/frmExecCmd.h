// Runs a tool while the calling code waits: a modal window without controls that closes when the tool has ended. The
// user cannot close it before, which would end an editor with its unsaved work, unless the tool only shows something.
#pragma once

#include <memory>
#include <vector>

#include "support/Context.h"

namespace kestrum {

class frmExecCmd : public ui::Form {
  public:
    explicit frmExecCmd(const support::Context& c);

    /// What ShowModal will run. `useShell` hands the tool to the system and waits without events.
    void InitCmd(const String& command, const std::vector<String>& parameters, bool useShell);
    /// The user may close the window, which ends the tool. After InitCmd, for that run.
    void LetUserEnd();
    /// Ends the tool at the next look.
    void Cancel() { m_cancel = true; }

    ui::Timer tmrExec{*this, u"tmrExec", 100};
    ui::Timer tmrCheckExec{*this, u"tmrCheckExec", 300};

  protected:
    void OnLoad() override;
    void OnActivate() override;
    bool OnQueryUnload(ui::CloseReason reason) override;
    /// Lets go of the tool: one that still runs goes on by itself.
    void OnUnload() override;

  private:
    void tmrExec_Timer();
    void tmrCheckExec_Timer();
    void Refuse(const String& text);
    void BringChildForward();

    support::Context m_c;
    String m_command;
    std::vector<String> m_parameters;
    bool m_useShell = false;
    bool m_cancel = false;
    /// This form got the keyboard, which belongs to the tool's window.
    bool m_foreground = false;
    std::unique_ptr<host::IProcess> m_process;
};

}  // namespace kestrum
