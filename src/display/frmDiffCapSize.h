// Offers the recommended display mode before a recording into a package whose media has another frame size. Its answer
// is g_ResDialogResult.
#pragma once

#include "display/ResolutionChoice.h"
#include "ui/Form.h"

namespace kestrum {

class frmDiffCapSize : public ui::Form {
  public:
    explicit frmDiffCapSize(const display::Context& c);

    ui::Label lNote{*this, u"lNote"};
    ui::OptionButton optCurrRes{*this, u"optCurrRes"};
    ui::OptionButton optOriRes{*this, u"optOriRes"};
    ui::CommandButton cmdContinue{*this, u"cmdContinue"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

  protected:
    void OnLoad() override;
    bool OnQueryUnload(ui::CloseReason reason) override;

  private:
    void cmdContinue_Click();
    void cmdCancel_Click();
    void GiveUp();

    display::Context m_c;
    display::ResolutionChoice m_choice;
};

}  // namespace kestrum
