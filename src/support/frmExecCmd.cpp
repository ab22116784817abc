#include "support/frmExecCmd.h"

#include "host/ResumeNext.h"
#include "support/modExec.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

frmExecCmd::frmExecCmd(const support::Context& c) : Form(c.forms, u"frmExecCmd"), m_c(c) {
    ui::WindowStyle style;
    style.closable = false;
    SetStyle(style);
    // Nothing but its title, which says that a tool runs: wide enough to be read.
    ui::WindowPlace place;
    place.width = 360;
    place.height = 24;
    SetPlace(place);
    tmrExec.onTimer = [this] { tmrExec_Timer(); };
    tmrCheckExec.onTimer = [this] { tmrCheckExec_Timer(); };
}

void frmExecCmd::InitCmd(const String& command, const std::vector<String>& parameters, bool useShell) {
    m_command = modGlobal::Trim(command);
    m_parameters = parameters;
    m_useShell = useShell;
    m_cancel = false;
    m_c.support.childWindow = 0;
}

void frmExecCmd::LetUserEnd() {
    ui::WindowStyle style = Style();
    style.closable = true;
    SetStyle(style);
}

bool frmExecCmd::OnQueryUnload(ui::CloseReason reason) {
    if (reason == ui::CloseReason::User && m_process) m_process->Terminate();
    return true;
}

void frmExecCmd::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_foreground = true;
    tmrExec.SetEnabled(true);
}

void frmExecCmd::OnActivate() {
    m_foreground = true;
}

void frmExecCmd::Refuse(const String& text) {
    modMsgBox::MsgBox(m_c, text, host::BoxButtons::Ok, u"frmExecCmd.tmrExec_Timer");
    Unload();
}

void frmExecCmd::tmrExec_Timer() {
    tmrExec.SetEnabled(false);
    if (m_command.empty()) return Refuse(u"Execution failed because command is empty!");
    if (!m_c.host.fs.FileExists(m_command)) {
        return Refuse(u"Execution failed because \"" + m_command + u"\" does not exist!");
    }
    if (m_useShell) {
        modExec::ShellExecuteWait(m_c, m_command, m_parameters, true);
        Unload();
        return;
    }
    const host::ResumeNext attempt{m_c.host.trace};
    if (attempt.Set(m_process, [&] { return m_c.host.processes.Start(m_command, m_parameters); })) {
        tmrCheckExec.SetEnabled(true);
    } else {
        Unload();
    }
}

void frmExecCmd::tmrCheckExec_Timer() {
    BringChildForward();
    if (m_cancel) {
        tmrCheckExec.SetEnabled(false);
        m_process->Terminate();
        Unload();
    } else if (const auto code = m_process->ExitCode()) {
        tmrCheckExec.SetEnabled(false);
        if (*code != 0) m_c.host.trace.Note(m_command + u" ended with exit code " + ToText(*code));
        Unload();
    }
}

void frmExecCmd::OnUnload() {
    m_process.reset();
}

void frmExecCmd::BringChildForward() {
    if (!m_foreground) return;
    host::WindowHandle& child = m_c.support.childWindow;
    if (child == 0) child = m_c.host.windows.WindowOfProcess(m_process->Id()).value_or(0);
    if (child == 0) return;
    m_c.host.windows.BringToFront(child);
    m_foreground = false;
}

}  // namespace kestrum
