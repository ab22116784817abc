// Offers the recommended display mode before a recording with a large frame. Its answer is g_ResDialogResult.
#pragma once

#include "display/ResolutionChoice.h"
#include "ui/Form.h"

namespace kestrum {

class frmLargeCapSize : public ui::Form {
  public:
    explicit frmLargeCapSize(const display::Context& c);

    ui::Label lNote{*this, u"lNote"};
    /// A recording at a high and at a low resolution, side by side.
    ui::Picture picHigh{*this, u"picHigh"};
    ui::Picture picLow{*this, u"picLow"};
    ui::OptionButton optCurrRes{*this, u"optCurrRes"};
    ui::OptionButton optRcmdRes{*this, u"optRcmdRes"};
    ui::CommandButton cmdContinue{*this, u"cmdContinue"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

  protected:
    void OnLoad() override;
    bool OnQueryUnload(ui::CloseReason reason) override;

  private:
    void cmdContinue_Click();
    void cmdCancel_Click();
    void GiveUp();
    void ShowPictures();

    display::Context m_c;
    display::ResolutionChoice m_choice;
};

}  // namespace kestrum
