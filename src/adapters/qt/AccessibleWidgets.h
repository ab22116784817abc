// What assistive programs are told of the widgets that Qt does not know: that a form is a dialog and a notice an alert,
// that a link is one and can be followed, and the value of a level meter.
#pragma once

namespace kestrum::qt {

/// From now on the widgets of the process tell it. To be called once, by the application object.
void MakeWidgetsAccessible();

}  // namespace kestrum::qt
