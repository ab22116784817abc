// What a person in front of an audience must know at once about a device of the recording that was lost, or is back,
// without being asked anything: a line near the upper edge of the screen, never part of the picture, that goes by
// itself.
#pragma once

#include "host/IKsLib.h"
#include "recording/Context.h"

namespace kestrum {

class frmNotice : public ui::Form {
  public:
    explicit frmNotice(const recording::Context& c);

    /// Shows the notice in the place of an earlier one, for its time from now on.
    void ShowNotice(const host::DeviceNotice& notice);

    ui::Label Label1{*this, u"Label1"};
    ui::Timer tmrUnload{*this, u"tmrUnload", 8000};

  private:
    recording::Context m_c;
};

}  // namespace kestrum
