#include "recording/frmRecStatus.h"

#include "host/ResumeNext.h"
#include "recording/RecordingLight.h"
#include "support/IndicatorStyle.h"
#include "support/modGlobal.h"
#include "support/modMonitor.h"

namespace kestrum {

namespace {

const String kAtStart = u"REC 0:00:00";
constexpr std::int32_t kWidth = 150, kHeight = 30, kMargin = 10;  // pixels

}  // namespace

frmRecStatus::frmRecStatus(const recording::Context& c) : Form(c.forms, u"frmRecStatus"), m_c(c) {
    SetStyle(support::IndicatorStyle(support::kSeeThrough));
    recording::MakeRecordingLight(c, Label1);
    Label2.SetCaption(kAtStart);
    SetLayout(ui::Row({Label1, Label2}));
    RecTimer.onTimer = [this] { RecTimer_Timer(); };
}

void frmRecStatus::OnLoad() {
    std::int32_t width = modMonitor::GetMonitorWidth(m_c, 0, modMonitor::kPixels);
    std::int32_t height = modMonitor::GetMonitorHeight(m_c, 0, modMonitor::kPixels);
    SetBounds(width - kWidth - kMargin, height - kHeight - kMargin, kWidth, kHeight);
    m_startTick = m_c.host.loop.TickCount();
    RecTimer.SetEnabled(true);
}

// A recording of over nine hours overflows the 16-bit seconds: the label stays as it is.
void frmRecStatus::RecTimer_Timer() {
    host::ResumeNext Try(m_c.host.trace);
    Try([&] {
        std::int64_t elapsed =
            static_cast<std::uint32_t>(m_c.host.loop.TickCount()) - static_cast<std::uint32_t>(m_startTick);
        std::int16_t seconds = ToInt16(static_cast<double>(elapsed) / 1000);
        Label2.SetCaption(u"REC " + modGlobal::SecondsToText(seconds));
    });
}

void frmRecStatus::OnUnload() {
    RecTimer.SetEnabled(false);
    Label2.SetCaption(kAtStart);
}

}  // namespace kestrum
