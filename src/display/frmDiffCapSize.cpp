#include "display/frmDiffCapSize.h"

#include "support/modLanguage.h"

namespace kestrum {

frmDiffCapSize::frmDiffCapSize(const display::Context& c)
    : Form(c.forms, u"frmDiffCapSize"), m_c(c), m_choice(m_c, *this) {
    cmdContinue.SetDefault(true);
    cmdCancel.SetCancel(true);
    optCurrRes.SetValue(true);
    SetLayout(ui::Column({lNote, optCurrRes, optOriRes, ui::Buttons({cmdContinue, cmdCancel})}));
    optCurrRes.onClick = [this] { m_choice.Pick(m_choice.EntrySize()); };
    optOriRes.onClick = [this] { m_choice.Pick(m_choice.RecommendedSize()); };
    cmdContinue.onClick = [this] { cmdContinue_Click(); };
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
}

void frmDiffCapSize::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_c.display.g_ResDialogResult = 0;
    m_choice.Enter(m_c.display.g_Monitor);
    display::Offer(optCurrRes, m_choice.EntrySize());
    display::Offer(optOriRes, m_choice.RecommendedSize());
}

void frmDiffCapSize::cmdContinue_Click() {
    m_c.display.g_ResDialogResult = 1;
    Unload();
}

void frmDiffCapSize::cmdCancel_Click() {
    GiveUp();
    Unload();
}

void frmDiffCapSize::GiveUp() {
    m_choice.Restore();
    m_c.display.g_ResDialogResult = 0;
}

/// Closing the window is a Cancel.
bool frmDiffCapSize::OnQueryUnload(ui::CloseReason reason) {
    if (reason == ui::CloseReason::User) GiveUp();
    return true;
}

}  // namespace kestrum
