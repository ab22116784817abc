#include "support/frmMsgBox.h"

#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

using modLanguage::GetResString;

frmMsgBox::frmMsgBox(const support::Context& c) : Form(c.forms, u"frmMsgBox"), m_c(c) {
    cmdOK.SetDefault(true);
    cmdCancel.SetCancel(true);
    cmdOK.onClick = [this] { cmdOK_Click(); };
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
    SetLayout(ui::Column({lMsg, ui::Stretch(), chkPrompt, ui::Row({ui::Stretch(), cmdOK, cmdCancel, ui::Stretch()})}));
}

void frmMsgBox::OnLoad() {
    m_pressed = false;
    m_c.support.msgBox.active = true;
    modLanguage::ApplyLanguage(m_c, *this);
    TakeMessage();
}

void frmMsgBox::TakeMessage() {
    const support::MsgBoxState& message = m_c.support.msgBox;
    SetCaption(message.title);
    ui::WindowStyle style;
    style.closable = false;
    style.topmost = message.topmost;
    style.layered = message.topmost;
    SetStyle(style);
    SetPlace({ui::StartPosition::CentreScreen, 0, 0, message.width, message.height});
    lMsg.SetCaption(modGlobal::Replace(message.text, u"\\n", u"\r\n"));
    if (!message.checkCaption.empty()) chkPrompt.SetCaption(message.checkCaption);
    chkPrompt.SetVisible(message.showCheck);
    ShowButtons();
}

void frmMsgBox::ShowButtons() {
    const std::int32_t buttons = m_c.support.msgBox.buttons;
    const bool yesNo = buttons == modMsgBox::kButtonsYesNo;
    cmdOK.SetCaption(yesNo ? GetResString(m_c, u"frmMsgBox", u"cmdYes", u"Yes")
                           : GetResString(m_c, u"frmMsgBox", u"cmdOK", u"OK"));
    cmdCancel.SetCaption(yesNo ? GetResString(m_c, u"frmMsgBox", u"cmdNo", u"No")
                               : GetResString(m_c, u"frmMsgBox", u"cmdCancel", u"Cancel"));
    cmdCancel.SetVisible(buttons != modMsgBox::kButtonsOk);
}

void frmMsgBox::cmdOK_Click() {
    const bool yesNo = m_c.support.msgBox.buttons == modMsgBox::kButtonsYesNo;
    m_c.support.msgBox.result = yesNo ? modMsgBox::kYes : modMsgBox::kOk;
    m_pressed = true;
    Unload();
}

void frmMsgBox::cmdCancel_Click() {
    const bool yesNo = m_c.support.msgBox.buttons == modMsgBox::kButtonsYesNo;
    m_c.support.msgBox.result = yesNo ? modMsgBox::kNo : modMsgBox::kCancel;
    m_pressed = true;
    Unload();
}

bool frmMsgBox::OnQueryUnload(ui::CloseReason) {
    return m_pressed;
}

void frmMsgBox::OnUnload() {
    m_c.support.msgBox.checked = chkPrompt.Checked();
    m_c.support.msgBox.active = false;
}

}  // namespace kestrum
