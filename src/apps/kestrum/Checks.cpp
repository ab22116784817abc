#include "apps/kestrum/Checks.h"

#include "apps/commandline/NoOffice.h"
#include "apps/commandline/Preflight.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/PackageAtHand.h"
#include "support/modGlobal.h"

namespace kestrum::app {

void RefuseIf(const std::optional<String>& sentence) {
    if (sentence) throw host::Error(host::ErrorNumber::Automation, u"record", *sentence);
}

void CheckWithoutScreen(Console& console, const String& deck, bool automatic) {
    BatchProgram program(console);
    ui::Forms forms(program.Host().presenter, program.Loop());
    support::State state;
    const support::Context c{program.Host(), forms, state};
    RefuseIf(CheckDeck(c, deck));
    DisarmMarkerOfDeadRecorder(c);
    RefuseIf(CheckNoRecording(c));
    const String package = modGlobal::PackagePathOf(deck);
    if (c.host.fs.FileExists(package)) RefuseUnlessPackage(c, program.Inspector(), package, u"record");
    if (automatic) RefuseIf(CheckAutomatic(c));
}

void CheckWithScreen(ScreenProgram& program) {
    NoOffice office;
    host::Host ports = program.Ports(office);
    ui::Forms forms(ports.presenter, ports.loop);
    support::State state;
    const support::Context c{ports, forms, state};
    RefuseIf(CheckSound(c));
    RefuseIf(program.AskForScreen());
    RefuseIf(CheckPicture(c));
}

}  // namespace kestrum::app
