// Runs a tool while the calling code waits: a modal window without controls that closes when the tool has ended.
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
    /// Ends the tool at the next look.
    void Cancel() { m_cancel = true; }

    ui::Timer tmrExec{*this, u"tmrExec", 100};
    ui::Timer tmrCheckExec{*this, u"tmrCheckExec", 300};

  protected:
    void OnLoad() override;
    bool OnQueryUnload(ui::CloseReason reason) override;

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
    std::unique_ptr<host::IProcess> m_process;
};

}  // namespace kestrum
