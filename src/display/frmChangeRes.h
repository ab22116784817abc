// The command that changes the display mode: the size at entry, the recommended one and the largest one. What is picked
// is in force at once and stays.
#pragma once

#include "display/ResolutionChoice.h"
#include "ui/Form.h"

namespace kestrum {

class frmChangeRes : public ui::Form {
  public:
    explicit frmChangeRes(const display::Context& c);

    ui::Label lNote{*this, u"lNote"};
    ui::OptionButton optCurrRes{*this, u"optCurrRes"};
    ui::OptionButton optRcmdRes{*this, u"optRcmdRes"};
    ui::OptionButton optMaxRes{*this, u"optMaxRes"};
    ui::CommandButton cmdExit{*this, u"cmdExit"};

  protected:
    void OnLoad() override;

  private:
    display::Context m_c;
    display::ResolutionChoice m_choice;
};

}  // namespace kestrum
