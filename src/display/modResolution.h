// Which display modes a monitor has, which of them is recommended for recording, and the change to one.
#pragma once

#include <cstdint>

#include "display/Context.h"
#include "display/modRegion.h"

namespace kestrum::ui {
class Form;
}

namespace kestrum::modResolution {

/// Finds the monitor's largest mode and the recommended one at the present depth and rate; 0 means the default
/// monitor. False, with the values left alone, for a monitor that cannot be read.
bool SurveyResolution(const display::Context& c, host::MonitorHandle monitor);

/// The command: surveys the default monitor and offers its sizes (frmChangeRes, modal, re-enters). Nothing happens
/// while the dialog is up already.
void ChangeResolution(const display::Context& c);

/// Changes the display mode and keeps it in the user's settings; a failure leaves the display as it is. The caller has
/// checked that the size is not in force already.
void ApplyResolution(const display::Context& c, host::MonitorHandle monitor, std::int32_t width, std::int32_t height);

/// Offers the recommended mode for a large frame (frmLargeCapSize, modal, re-enters). False if the user cancelled; the
/// display then has its old mode again. Read the monitor's size again afterwards.
bool OfferLowerResolution(const display::Context& c);

/// For media whose frame size `media` differs from the capture region: offers the recommended mode (frmDiffCapSize,
/// modal) if it can help, else asks whether unequal sizes are to pass. False ends the check. Re-enters. Read the
/// monitor's size again afterwards.
bool ResolveDifferentFrameSize(const display::Context& c, modRegion::Size media);

/// Centres a form on the monitor, as large as that is now.
void CenterOnMonitor(const display::Context& c, ui::Form& form, host::MonitorHandle monitor);

}  // namespace kestrum::modResolution
