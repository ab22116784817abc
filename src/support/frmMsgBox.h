// Our message box: OK, OK and Cancel, or Yes and No, perhaps with a check box. Ends by a button only. Its values come
// and go in the state (modMsgBox).
#pragma once

#include "support/Context.h"

namespace kestrum {

class frmMsgBox : public ui::Form {
  public:
    explicit frmMsgBox(const support::Context& c);

    /// Takes over the message of the state; the load does so, and a second message while the box is up.
    void TakeMessage();

    ui::Label lMsg{*this, u"lMsg"};
    ui::CheckBox chkPrompt{*this, u"chkPrompt"};
    ui::CommandButton cmdOK{*this, u"cmdOK"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

  protected:
    void OnLoad() override;
    bool OnQueryUnload(ui::CloseReason reason) override;
    void OnUnload() override;

  private:
    void cmdOK_Click();
    void cmdCancel_Click();
    void ShowButtons();

    support::Context m_c;
    bool m_pressed = false;
};

}  // namespace kestrum
