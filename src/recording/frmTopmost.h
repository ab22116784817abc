// The notice while the host opens the show. It cannot stay longer than three seconds, even if nobody takes it down.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class frmTopmost : public ui::Form {
  public:
    explicit frmTopmost(const recording::Context& c);

    ui::Label Label1{*this, u"Label1"};
    ui::Timer tmrUnload{*this, u"tmrUnload", 3000};

  protected:
    void OnLoad() override;
    void OnUnload() override { m_alive = false; }

  private:
    void tmrUnload_Timer();

    recording::Context m_c;
    bool m_alive = false;
};

}  // namespace kestrum
