#include "display/ResolutionChoice.h"

#include "display/modResolution.h"
#include "support/modGlobal.h"
#include "support/modMonitor.h"
#include "support/modMsgBox.h"

namespace kestrum::display {

using modRegion::Size;

void ResolutionChoice::Enter() {
    m_entry = SizeInForce();
    if (m_entry.width == 0 || m_entry.height == 0)
        modMsgBox::MsgBox(m_c,
                          u"Kestrum cannot get monitor resolution. Please report this error to Kestrum developer.");
}

Size ResolutionChoice::RecommendedSize() const {
    return {m_c.display.g_RcmdResWidth, m_c.display.g_RcmdResHeight};
}

void ResolutionChoice::Pick(Size size) {
    if (size != SizeInForce()) modResolution::ApplyResolution(m_c, m_c.display.g_Monitor, size.width, size.height);
    modResolution::CenterOnMonitor(m_c, m_form, m_c.display.g_Monitor);
}

void ResolutionChoice::Restore() {
    if (m_entry != SizeInForce())
        modResolution::ApplyResolution(m_c, m_c.display.g_Monitor, m_entry.width, m_entry.height);
}

Size ResolutionChoice::SizeInForce() const {
    const host::MonitorHandle monitor = m_c.display.g_Monitor;
    return {modMonitor::GetMonitorWidth(m_c, monitor, modMonitor::kPixels),
            modMonitor::GetMonitorHeight(m_c, monitor, modMonitor::kPixels)};
}

String SizeText(Size size) {
    return ToText(size.width) + u"x" + ToText(size.height);
}

}  // namespace kestrum::display
