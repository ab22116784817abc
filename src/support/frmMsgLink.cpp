#include "support/frmMsgLink.h"

#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {

frmMsgLink::frmMsgLink(const support::Context& c) : Form(c.forms, u"frmMsgLink"), m_c(c) {
    cmdOK.SetDefault(true);
    cmdOK.SetCancel(true);
    cmdOK.onClick = [this] { Unload(); };
    lLink.onClick = [this] { lLink_Click(); };
    lLink.onMouseMove = [this] { lLink.SetHot(true); };
    lMsg.onMouseMove = [this] { lLink.SetHot(false); };
    Picture1.onMouseMove = [this] { lLink.SetHot(false); };
    SetLayout(ui::Column({ui::Row({Picture1, ui::Column({lMsg, lLink})}), ui::Stretch(),
                          ui::Row({ui::Stretch(), cmdOK, ui::Stretch()})}));
}

void frmMsgLink::OnLoad() {
    const support::MsgLinkState& message = m_c.support.msgLink;
    modLanguage::ApplyLanguage(m_c, *this);
    SetCaption(message.title);
    SetPlace({ui::StartPosition::CentreScreen, 0, 0, message.width, message.height});
    lMsg.SetCaption(modGlobal::Replace(message.text, u"\\n", u"\r\n"));
    lLink.SetCaption(message.link);
    cmdOK.SetCaption(modLanguage::GetResString(m_c, u"frmMsgBox", u"cmdOK", u"OK"));
}

void frmMsgLink::OnMouseMove() {
    lLink.SetHot(false);
}

void frmMsgLink::lLink_Click() {
    m_c.host.processes.OpenWithDesktop(m_c.support.msgLink.link);
}

}  // namespace kestrum
