// One line for the person at the screen when a show begins: what would be wrong with its recording, what it continues,
// or that it is not being recorded. Near the upper edge of the default monitor, never part of a recorded picture, takes
// no keyboard, asks nothing, and goes by itself.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class frmAdvice : public ui::Form {
  public:
    explicit frmAdvice(const recording::Context& c);

    /// Shows the line in the place of an earlier one, for its time from now on.
    void ShowLine(const String& line);

    ui::Label Label1{*this, u"Label1"};
    ui::Timer tmrUnload{*this, u"tmrUnload", 8000};
};

}  // namespace kestrum
