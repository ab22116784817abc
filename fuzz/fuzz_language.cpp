// The language file: any bytes give texts and captions, or leave the defaults.
#include "Fuzz.h"
#include "adapters/sim/World.h"
#include "support/frmMsgBox.h"
#include "support/modLanguage.h"
#include "support/modXml.h"

using namespace kestrum;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    sim::World world;
    ui::Forms forms(world.presenter, world.loop);
    support::State state;
    const support::Context c{world.host(), forms, state};
    world.fs.Put(u"/opt/kestrum/res.xml", std::string(fuzz::Bytes(data, size)));

    const String missing = modLanguage::GetResString(c, u"frmCommon", u"no such key, surely", u"%p says");
    fuzz::Require(missing == u"Kestrum says" || state.language->Root(), "an unreadable file leaves the default");
    for (const char16_t* key : {u"msgKspError", u"", u"cmdOK"}) modLanguage::GetResString(c, u"frmCommon", key, u"");
    modLanguage::ApplyLanguage(c, forms.Get<frmMsgBox>(c));
    return 0;
}
