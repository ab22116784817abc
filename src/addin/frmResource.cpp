#include "addin/frmResource.h"

#include "support/modGlobal.h"

namespace kestrum {

frmResource::frmResource(const support::Context& c) : Form(c.forms, u"frmResource") {
    const String folder = modGlobal::Join(c, c.host.installFolder, u"pictures");
    picRecord.SetFile(modGlobal::Join(c, folder, u"record_16.png"));
}

}  // namespace kestrum
