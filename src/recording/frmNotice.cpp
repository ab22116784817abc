#include "recording/frmNotice.h"

#include "support/IndicatorStyle.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {

namespace {

constexpr std::int32_t kFromTop = 24;  // pixels

String TextOf(const recording::Context& c, const host::DeviceNotice& notice) {
    if (notice.isCamera && notice.isBack)
        return modLanguage::GetResString(c, u"frmNotice", u"msgCameraBack", u"The camera \"%s\" is back.");
    if (notice.isCamera)
        return modLanguage::GetResString(c, u"frmNotice", u"msgCameraLost",
                                         u"No picture from \"%s\". The recording goes on without the camera.");
    if (notice.isBack)
        return modLanguage::GetResString(c, u"frmNotice", u"msgSoundBack", u"\"%s\" is back and is being recorded.");
    return modLanguage::GetResString(c, u"frmNotice", u"msgSoundLost",
                                     u"No sound from \"%s\"! The recording goes on, in silence until it is back.");
}

}  // namespace

frmNotice::frmNotice(const recording::Context& c) : Form(c.forms, u"frmNotice"), m_c(c) {
    SetStyle(support::IndicatorStyle());
    SetPlace({.start = ui::StartPosition::CentreHorizontally, .top = kFromTop});
    SetLayout(ui::Column({Label1}));
    tmrUnload.onTimer = [this] { Unload(); };
}

void frmNotice::ShowNotice(const host::DeviceNotice& notice) {
    const String text = modGlobal::Replace(TextOf(m_c, notice), u"%s", notice.device);
    // A window that fits its content takes its size when it is shown.
    if (IsLoaded()) Unload();
    Label1.SetCaption(text);
    Show();
    tmrUnload.SetEnabled(true);
}

}  // namespace kestrum
