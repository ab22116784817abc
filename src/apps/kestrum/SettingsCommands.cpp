#include "apps/kestrum/SettingsCommands.h"

#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/NoOffice.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/PackageAtHand.h"
#include "apps/kestrum/ScreenProgram.h"
#include "project/modProject.h"

namespace kestrum::app {
namespace {

/// A dialog of settings: the command's word and its id at the entrance of the commands.
struct Dialog {
    StringView word, id;
};

/// The package whose settings are asked for, empty for none. A deck that was never recorded gets its package now.
String PackageFor(const support::Context& c, host::IPackageInspector& inspector, const std::string& source,
                  StringView word) {
    if (source.empty()) return {};
    const String path = FullPath(source);
    const String package = PackageOf(path);
    const bool isNew = package != path && c.host.fs.FileExists(path) && !c.host.fs.FileExists(package);
    if (!isNew) RefuseUnlessPackage(c, inspector, package, String(word));
    return package;
}

int RunDialog(Console& console, const std::string& source, const Dialog& dialog) {
    ScreenProgram program(console, false);
    NoOffice office;
    host::Host ports = program.Ports(office);
    Session session(ports);
    const String package = PackageFor(session.c, program.Inspector(), source, dialog.word);

    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        program.LeaveQuestions();
    });
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    // Neither a package by itself nor the preferences alone belong to a presentation.
    session.support.projectSource = u"KTR";
    if (!package.empty()) TakePackage(session.c, package);
    session.addIn.NotesButton(dialog.id);
    modProject::DeleteWorkFolder(session.c);
    session.Disconnect();
    return signal != 0 ? 128 + signal : 0;
}

}  // namespace

int RunConfigure(Console& console, const ConfigureRequest& request) {
    return RunDialog(console, request.source, {u"configure", u"mnuConfigure"});
}

int RunDevices(Console& console, const DevicesRequest& request) {
    return RunDialog(console, request.source, {u"devices", u"mnuDevice"});
}

int RunResolution(Console& console) {
    return RunDialog(console, {}, {u"resolution", u"mnuChangeRes"});
}

}  // namespace kestrum::app
