// Sets the microphone's level before a new recording. Record goes on, Cancel (and closing) leaves the dialog result at
// what the caller set.
#pragma once

#include "devices/Context.h"

namespace kestrum {

class frmVolSetting : public ui::Form {
  public:
    explicit frmVolSetting(const devices::Context& c);

    ui::Picture picCheckDevice{*this, u"picCheckDevice"};
    ui::Label lCheckDevice{*this, u"lCheckDevice"};
    ui::Label lMsg{*this, u"lMsg"};
    ui::Label lAdvice{*this, u"lAdvice"};
    ui::Label lInputLevel{*this, u"lInputLevel"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Label lVolume{*this, u"lVolume"};
    ui::Slider SldVolLevel{*this, u"SldVolLevel"};
    ui::CheckBox Check1_0{*this, u"Check1", 0};
    ui::CheckBox Check1_1{*this, u"Check1", 1};
    ui::CheckBox chkPrompt{*this, u"chkPrompt"};
    ui::CommandButton cmdRec{*this, u"cmdRec"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};
    ui::Timer tmrInitDevice{*this, u"tmrInitDevice", 50};
    ui::Timer tmrGetVol{*this, u"tmrGetVol", 100};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    void tmrInitDevice_Timer();
    void tmrGetVol_Timer();
    void cmdRec_Click();
    void CheckDevices();
    void ReadVolume();

    devices::Context m_c;
};

}  // namespace kestrum
