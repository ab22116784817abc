// One line of text above everything else during slow steps: on the default monitor, in the middle of its width, its top
// 100 pixels above the monitor's middle.
#pragma once

#include "support/Context.h"

namespace kestrum {

class frmStatus : public ui::Form {
  public:
    explicit frmStatus(const support::Context& c);

    /// Shows the text and paints it at once; handles no other event.
    void ShowText(const String& text);

    ui::Label lStatus{*this, u"lStatus"};

  protected:
    void OnLoad() override;

  private:
    support::Context m_c;
};

}  // namespace kestrum
