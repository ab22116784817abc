#include "display/ResolutionChoice.h"

#include "display/modResolution.h"
#include "support/modGlobal.h"
#include "support/modMonitor.h"
#include "support/modMsgBox.h"

namespace kestrum::display {

using modRegion::Size;

void ResolutionChoice::Enter(host::MonitorHandle monitor) {
    m_monitor = monitor;
    m_entry = SizeInForce();
    modResolution::CenterOnMonitor(m_c, m_form, m_monitor);
    if (m_entry.width == 0 || m_entry.height == 0)
        modMsgBox::MsgBox(m_c,
                          u"Kestrum cannot get monitor resolution. Please report this error to Kestrum developer.");
}

Size ResolutionChoice::RecommendedSize() const {
    return {m_c.display.g_RcmdResWidth, m_c.display.g_RcmdResHeight};
}

Size ResolutionChoice::LargestSize() const {
    return {m_c.display.g_MaxResWidth, m_c.display.g_MaxResHeight};
}

void ResolutionChoice::Pick(Size size) {
    if (size != SizeInForce()) modResolution::ApplyResolution(m_c, m_monitor, size.width, size.height);
    modResolution::CenterOnMonitor(m_c, m_form, m_monitor);
}

void ResolutionChoice::Restore() {
    if (m_entry != SizeInForce()) modResolution::ApplyResolution(m_c, m_monitor, m_entry.width, m_entry.height);
}

Size ResolutionChoice::SizeInForce() const {
    return {modMonitor::GetMonitorWidth(m_c, m_monitor, modMonitor::kPixels),
            modMonitor::GetMonitorHeight(m_c, m_monitor, modMonitor::kPixels)};
}

void Offer(ui::OptionButton& option, Size size) {
    option.SetCaption(modGlobal::Replace(option.Caption(), u"%s", SizeText(size)));
    option.SetVisible(size != Size{});
}

String SizeText(Size size) {
    return ToText(size.width) + u"x" + ToText(size.height);
}

}  // namespace kestrum::display
