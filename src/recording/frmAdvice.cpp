#include "recording/frmAdvice.h"

#include "support/IndicatorStyle.h"

namespace kestrum {

frmAdvice::frmAdvice(const recording::Context& c) : Form(c.forms, u"frmAdvice") {
    constexpr std::int32_t kFromTop = 24;  // pixels
    SetStyle(support::IndicatorStyle());
    SetPlace({.start = ui::StartPosition::CentreHorizontally, .top = kFromTop});
    SetLayout(ui::Column({Label1}));
    tmrUnload.onTimer = [this] { Unload(); };
}

void frmAdvice::ShowLine(const String& line) {
    // A window that fits its content takes its size when it is shown.
    if (IsLoaded()) Unload();
    Label1.SetCaption(line);
    Show();
    tmrUnload.SetEnabled(true);
}

}  // namespace kestrum
