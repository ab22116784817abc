// A message over a link that opens in the user's browser.
#pragma once

#include "support/Context.h"

namespace kestrum {

class frmMsgLink : public ui::Form {
  public:
    explicit frmMsgLink(const support::Context& c);

    ui::Picture Picture1{*this, u"Picture1"};
    ui::Label lMsg{*this, u"lMsg"};
    ui::Link lLink{*this, u"lLink"};
    ui::CommandButton cmdOK{*this, u"cmdOK"};

  protected:
    void OnLoad() override;
    void OnMouseMove() override;

  private:
    void lLink_Click();

    support::Context m_c;
};

}  // namespace kestrum
