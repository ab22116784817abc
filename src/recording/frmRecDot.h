// The red light in the corner of the default monitor while a recording runs and its running time is not shown, or not
// yet: whoever stands at the screen sees at every moment whether it is recording. Never part of the picture.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class frmRecDot : public ui::Form {
  public:
    explicit frmRecDot(const recording::Context& c);

    /// Lights up at once, before anything else happens.
    void Light();

    ui::Label Label1{*this, u"Label1"};

  protected:
    void OnLoad() override;

  private:
    recording::Context m_c;
};

}  // namespace kestrum
