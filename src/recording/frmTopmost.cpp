#include "recording/frmTopmost.h"

#include "support/IndicatorStyle.h"

namespace kestrum {

frmTopmost::frmTopmost(const recording::Context& c) : Form(c.forms, u"frmTopmost"), m_c(c) {
    SetStyle(support::IndicatorStyle());
    SetPlace({.start = ui::StartPosition::CentreScreen});
    SetLayout(ui::Column({Label1}));
    tmrUnload.onTimer = [this] { tmrUnload_Timer(); };
}

// The text is fixed in the program: it shows before anything is known of the language file.
void frmTopmost::OnLoad() {
    constexpr std::int32_t kChinese = 4;
    bool chinese = m_c.host.shell.PrimaryLanguage() == kChinese;
    Label1.SetCaption(chinese ? u"\u6B63\u5728\u542F\u52A8\u5E7B\u706F\u7247\u653E\u6620\u2026\u2026"
                              : u"Starting Slide Show ...");
    m_alive = true;
    tmrUnload.SetEnabled(true);
}

void frmTopmost::tmrUnload_Timer() {
    if (m_alive) Unload();
}

}  // namespace kestrum
