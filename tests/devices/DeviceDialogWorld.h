// A machine with two cameras and two microphones, and the device dialog that shows them.
#pragma once

#include "DialogWorld.h"
#include "devices/frmDevice.h"

namespace kestrum {

class DeviceDialogTest : public DialogTest {
  protected:
    DeviceDialogTest() {
        world.ksLib.videoDevices = u"Cam A##0_&&_Cam B##0";
        world.ksLib.audioDevices = u"Mic A##0_&&_Mic B##0";
    }
    frmDevice& Dialog() { return forms.Get<frmDevice>(c); }
    /// Shows the dialog and lets it look at the devices.
    frmDevice& Opened() {
        Dialog().Show();
        world.loop.Advance(100);
        return Dialog();
    }
};

}  // namespace kestrum
