#include "apps/kestrum/PublishCommand.h"

#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/Texts.h"
#include "apps/commandline/Unattended.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/DeadRecorder.h"
#include "project/modProject.h"
#include "publish/modPublish.h"

namespace kestrum::app {
namespace {

constexpr char16_t kPackageEnding[] = u".ktr";

/// The package that the user means: the one named, or the one beside the deck named.
String PackageOf(const String& source) {
    return source.ends_with(kPackageEnding) ? source : modGlobal::PackagePathOf(source);
}

void RefuseUnlessPackage(const support::Context& c, const String& package) {
    String sentence;
    if (!c.host.fs.FileExists(package)) {
        sentence = Sentence(c, u"msgNoPackage", u"There is no package \"%s1\".", {package});
    } else if (c.host.ksLib.GetFileFormatVersion(package) == 0) {
        sentence = Sentence(c, u"msgNotAPackage", u"\"%s1\" is not a Kestrum package.", {package});
    }
    if (!sentence.empty()) throw host::Error(host::ErrorNumber::FileNotFound, u"publish", sentence);
}

/// Sets the paths of a package by itself, as a hosting program does, and makes its scratch folder.
void TakePackage(const project::Context& c, const String& package) {
    c.support.projectSource = u"KTR";
    c.support.packagePath = package;
    c.support.packageFolder = modGlobal::FolderOf(c, package);
    do {
        c.support.workFolder =
            modGlobal::Join(c, c.host.shell.Environment(u"temp"), u"_ksproj_" + c.host.fs.TemporaryName());
    } while (c.host.fs.FolderExists(c.support.workFolder));
    c.host.fs.CreateFolder(c.support.workFolder);
    c.support.projectFileName = u"project.ksp";
    modProject::InitProject(c);
}

String FailureOf(const Session& session, const BatchProgram& program) {
    if (!session.publish.failure.empty()) return session.publish.failure;
    if (!program.LastMessage().empty()) return program.LastMessage();
    return Sentence(session.c, u"msgNotPublished", u"The lecture was not published.");
}

}  // namespace

int RunPublish(Console& console, const PublishRequest& request) {
    BatchProgram program(console);
    Session session(program.Host());
    const String package = PackageOf(FullPath(request.source));
    RefuseUnlessPackage(session.c, package);

    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        program.Presenter().CancelWork();
    });
    program.Box().AnswerNo(modPublish::SuccessQuestion(session.c));
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    TakePackage(session.c, package);
    session.addIn.NotesButton(u"mnuMP4");
    modProject::DeleteWorkFolder(session.c);
    session.Disconnect();
    if (session.publish.publishedPage.empty()) {
        console.Failure(FailureOf(session, program));
        return signal != 0 ? 128 + signal : 1;
    }
    console.Result("page: " + host::ToUtf8(session.publish.publishedPage));
    return 0;
}

}  // namespace kestrum::app
