#include "devices/frmVolSetting.h"

#include <utility>

#include "devices/modDevice.h"
#include "devices/modVolume.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

/// What a last look at the level may still need before the devices close.
constexpr std::int32_t kSettleMs = 100;

}  // namespace

frmVolSetting::frmVolSetting(const devices::Context& c) : Form(c.forms, u"frmVolSetting"), m_c(c) {
    cmdRec.SetDefault(true);
    cmdCancel.SetCancel(true);
    SldVolLevel.SetRange(0, 10);
    picCheckDevice.SetVisible(false);
    lCheckDevice.SetVisible(false);
    Check1_0.SetVisible(false);
    Check1_1.SetVisible(false);
    lAdvice.SetVisible(false);
    cmdRec.onClick = [this] { cmdRec_Click(); };
    cmdCancel.onClick = [this] { Unload(); };
    SldVolLevel.onChange = [this] { m_c.host.ksLib.SetVolumeScale(SldVolLevel.Value()); };
    Check1_0.onClick = [this] { m_c.host.ksLib.MixerSet(0, Check1_0.Value()); };
    Check1_1.onClick = [this] { m_c.host.ksLib.MixerSet(1, Check1_1.Value()); };
    tmrInitDevice.onTimer = [this] { tmrInitDevice_Timer(); };
    tmrGetVol.onTimer = [this] { tmrGetVol_Timer(); };
    SetLayout(ui::Column({lMsg, lAdvice, ui::Row({picCheckDevice, lCheckDevice}), ui::Field(lInputLevel, InputLevel),
                          ui::Field(lVolume, SldVolLevel), ui::Row({Check1_0, Check1_1}), chkPrompt,
                          ui::Buttons({cmdRec, cmdCancel})}));
}

void frmVolSetting::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    ui::WindowStyle style;
    style.topmost = true;
    SetStyle(style);
    lAdvice.SetCaption(std::exchange(m_c.devices.adviceLine, {}));
    lAdvice.SetVisible(!lAdvice.Caption().empty());
    tmrInitDevice.SetEnabled(true);
}

void frmVolSetting::tmrInitDevice_Timer() {
    tmrInitDevice.SetEnabled(false);
    picCheckDevice.SetVisible(true);
    lCheckDevice.SetVisible(true);
    Refresh();
    CheckDevices();
    if (!IsLoaded()) return;  // closed while a box was up
    picCheckDevice.SetVisible(false);
    lCheckDevice.SetVisible(false);
}

void frmVolSetting::CheckDevices() {
    if (m_c.host.ksLib.ksResetAVDevice() == 0) modMsgBox::MsgBox(m_c, u"ResetAVDevice Error!");
    if (modDevice::InitDevices(m_c, false) == modDevice::kNoAudio) {
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmConfig", u"msgNoAudio", u""));
    }
    if (!IsLoaded()) return;                           // closed while a box was up
    m_c.host.ksLib.CheckAVDevice(Window(), 0, 0, {});  // no camera: the dialog shows no picture
    ReadVolume();
    modVolume::FillMixerSwitches(m_c, m_c.host.ksLib.CreateAudioMixer(), {&Check1_0, &Check1_1});
    tmrGetVol.SetEnabled(true);
}

void frmVolSetting::ReadVolume() {
    const std::int32_t step = m_c.host.ksLib.GetVolumeScale();
    if (step < 0) {
        const String text = modLanguage::GetResString(m_c, u"frmVolSetting", u"msgGetVolumeError", u"");
        lVolume.SetCaption(modGlobal::Replace(text, u"\\n", u"\r\n"));
        SldVolLevel.SetEnabled(false);
    } else {
        SldVolLevel.SetValue(step);
    }
}

void frmVolSetting::tmrGetVol_Timer() {
    InputLevel.SetLevel(m_c.host.ksLib.GetAudioVolume());
}

void frmVolSetting::cmdRec_Click() {
    m_c.devices.g_DialogResult = 1;
    modConfig::SaveSetting(m_c, u"configure", u"chkSetVolBefRec", chkPrompt.Checked() ? u"0" : u"1");
    Unload();
}

void frmVolSetting::OnUnload() {
    tmrGetVol.SetEnabled(false);
    m_c.host.loop.Sleep(kSettleMs);
    m_c.host.ksLib.CloseAVDevice();
}

}  // namespace kestrum
