// Comes up by itself when the microphone of a recording stays silent: level, volume, switches. Above all windows and
// half transparent; never part of the picture.
#pragma once

#include "devices/Context.h"

namespace kestrum {

class frmVolMsg : public ui::Form {
  public:
    explicit frmVolMsg(const devices::Context& c);

    ui::Label lMsg{*this, u"lMsg"};
    ui::Label lInputLevel{*this, u"lInputLevel"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Label lVolume{*this, u"lVolume"};
    ui::Slider Slider1{*this, u"Slider1"};
    ui::CheckBox Check1_0{*this, u"Check1", 0};
    ui::CheckBox Check1_1{*this, u"Check1", 1};
    ui::CheckBox chkPrompt{*this, u"chkPrompt"};
    ui::CommandButton cmdOK{*this, u"cmdOK"};
    ui::Timer tmrInitDevice{*this, u"tmrInitDevice", 50};
    ui::Timer Timer1{*this, u"Timer1", 200};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    void tmrInitDevice_Timer();
    void Timer1_Timer();
    void chkPrompt_Click();
    void ReadVolume();

    devices::Context m_c;
};

}  // namespace kestrum
