#include "display/frmChangeRes.h"

#include "support/modLanguage.h"

namespace kestrum {
namespace {

/// The monitor of the command, whatever monitor was recorded last.
constexpr host::MonitorHandle kDefaultMonitor = 0;

}  // namespace

frmChangeRes::frmChangeRes(const display::Context& c) : Form(c.forms, u"frmChangeRes"), m_c(c), m_choice(m_c, *this) {
    cmdExit.SetDefault(true);
    cmdExit.SetCancel(true);
    optCurrRes.SetValue(true);
    SetLayout(ui::Column({lNote, optCurrRes, optRcmdRes, optMaxRes, ui::Buttons({cmdExit})}));
    optCurrRes.onClick = [this] { m_choice.Pick(m_choice.EntrySize()); };
    optRcmdRes.onClick = [this] { m_choice.Pick(m_choice.RecommendedSize()); };
    optMaxRes.onClick = [this] { m_choice.Pick(m_choice.LargestSize()); };
    cmdExit.onClick = [this] { Unload(); };
}

void frmChangeRes::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_choice.Enter(kDefaultMonitor);
    display::Offer(optCurrRes, m_choice.EntrySize());
    display::Offer(optRcmdRes, m_choice.RecommendedSize());
    display::Offer(optMaxRes, m_choice.LargestSize());
}

}  // namespace kestrum
