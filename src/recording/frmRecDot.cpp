#include "recording/frmRecDot.h"

#include "recording/RecordingLight.h"
#include "support/IndicatorStyle.h"
#include "support/modMonitor.h"

namespace kestrum {

frmRecDot::frmRecDot(const recording::Context& c) : Form(c.forms, u"frmRecDot"), m_c(c) {
    SetStyle(support::IndicatorStyle(support::kSeeThrough));
    Label1.SetTextAlignment(ui::Alignment::Centre);
    recording::MakeRecordingLight(c, Label1);
    SetLayout(ui::Column({Label1}));
}

void frmRecDot::OnLoad() {
    constexpr std::int32_t kSize = 30, kMargin = 10;  // pixels
    const std::int32_t width = modMonitor::GetMonitorWidth(m_c, 0, modMonitor::kPixels);
    const std::int32_t height = modMonitor::GetMonitorHeight(m_c, 0, modMonitor::kPixels);
    SetBounds(width - kSize - kMargin, height - kSize - kMargin, kSize, kSize);
}

void frmRecDot::Light() {
    Show();
    Refresh();
}

}  // namespace kestrum
