#include "apps/kestrum/PublishCommand.h"

#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/Texts.h"
#include "apps/commandline/Unattended.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/PackageAtHand.h"
#include "project/modProject.h"
#include "publish/modPublish.h"

namespace kestrum::app {
namespace {

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
    RefuseUnlessPackage(session.c, package, u"publish");

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
