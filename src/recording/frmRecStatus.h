// The running time of the recording in the corner of the default monitor, counted from the moment the form is loaded.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class frmRecStatus : public ui::Form {
  public:
    explicit frmRecStatus(const recording::Context& c);

    ui::Label Label1{*this, u"Label1"};
    ui::Label Label2{*this, u"Label2"};
    ui::Timer RecTimer{*this, u"RecTimer", 400};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    void RecTimer_Timer();

    recording::Context m_c;
    std::int32_t m_startTick = 0;
};

}  // namespace kestrum
