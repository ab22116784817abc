#include "support/frmStatus.h"

#include "support/IndicatorStyle.h"
#include "support/modMonitor.h"

namespace kestrum {
namespace {

constexpr std::int32_t kAboveMiddle = 100;

}  // namespace

frmStatus::frmStatus(const support::Context& c) : Form(c.forms, u"frmStatus"), m_c(c) {
    SetLayout(ui::Row({lStatus}));
}

void frmStatus::OnLoad() {
    SetStyle(support::IndicatorStyle());
    const std::int32_t middle = modMonitor::GetMonitorHeight(m_c, 0, modMonitor::kPixels) / 2;
    SetPlace({ui::StartPosition::CentreHorizontally, 0, middle - kAboveMiddle, 0, 0});
}

void frmStatus::ShowText(const String& text) {
    Load();
    lStatus.SetCaption(text);
    Show();
    Refresh();
}

}  // namespace kestrum
