#include "devices/frmVolMsg.h"

#include "devices/modVolume.h"
#include "support/modConfig.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

constexpr std::int32_t kOpacity = 220;
constexpr std::int32_t kVista = 60;

}  // namespace

frmVolMsg::frmVolMsg(const devices::Context& c) : Form(c.forms, u"frmVolMsg"), m_c(c) {
    cmdOK.SetDefault(true);
    cmdOK.SetCancel(true);
    Slider1.SetRange(0, 10);
    Check1_0.SetVisible(false);
    Check1_1.SetVisible(false);
    cmdOK.onClick = [this] { Unload(); };
    chkPrompt.onClick = [this] { chkPrompt_Click(); };
    Slider1.onChange = [this] { m_c.host.ksLib.SetVolumeScale(Slider1.Value()); };
    Check1_0.onClick = [this] { m_c.host.ksLib.MixerSet(0, Check1_0.Value()); };
    Check1_1.onClick = [this] { m_c.host.ksLib.MixerSet(1, Check1_1.Value()); };
    tmrInitDevice.onTimer = [this] { tmrInitDevice_Timer(); };
    Timer1.onTimer = [this] { Timer1_Timer(); };
    SetLayout(ui::Column({lMsg, ui::Field(lInputLevel, InputLevel), ui::Field(lVolume, Slider1),
                          ui::Row({Check1_0, Check1_1}), chkPrompt, ui::Buttons({cmdOK})}));
}

void frmVolMsg::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    ui::WindowStyle style;
    style.topmost = true;
    style.layered = true;
    style.opacity = kOpacity;
    style.excludedFromCapture = true;
    SetStyle(style);
    tmrInitDevice.SetEnabled(true);
}

void frmVolMsg::tmrInitDevice_Timer() {
    tmrInitDevice.SetEnabled(false);
    const String switches = m_c.host.ksLib.CreateAudioMixer();
    if (m_c.host.ksLib.EncoderQueryDevice() == -1) {
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmConfig", u"msgNoAudio", u""));
        Unload();
        return;
    }
    ReadVolume();
    modVolume::FillMixerSwitches(m_c, switches, {&Check1_0, &Check1_1});
    Timer1.SetEnabled(true);
}

void frmVolMsg::ReadVolume() {
    const std::int32_t step = m_c.host.ksLib.GetVolumeScale();
    if (step < 0) {
        lVolume.SetCaption(modLanguage::GetResString(m_c, u"frmVolMsg", u"msgGetVolumeError", u""));
        Slider1.SetEnabled(false);
    } else {
        Slider1.SetValue(step);
    }
}

void frmVolMsg::Timer1_Timer() {
    InputLevel.SetLevel(m_c.devices.g_AudioLevel);
}

void frmVolMsg::chkPrompt_Click() {
    if (!chkPrompt.Checked() || m_c.support.g_OsVersion < kVista) return;
    modMsgBox::MsgBoxRequest request;
    request.text = modLanguage::GetResString(m_c, u"frmVolMsg", u"msgLowVolDetect", u"");
    request.title = u"Low Volume Detection";
    request.topmost = true;
    bool checked = false;
    modMsgBox::ShowMsgBox(m_c, request, checked);
}

void frmVolMsg::OnUnload() {
    m_c.host.ksLib.DeleteAudioMixer();
    if (chkPrompt.Checked()) modConfig::SaveSetting(m_c, u"configure", u"chkLowVolDetect", u"0");
}

}  // namespace kestrum
