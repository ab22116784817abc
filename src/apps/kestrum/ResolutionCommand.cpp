#include "apps/kestrum/ResolutionCommand.h"

#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/NoOffice.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/ScreenProgram.h"

namespace kestrum::app {

int RunResolution(Console& console) {
    ScreenProgram program(console, false);
    NoOffice office;
    host::Host ports = program.Ports(office);
    Session session(ports);

    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        program.LeaveQuestions();
    });
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    session.addIn.NotesButton(u"mnuChangeRes");
    session.Disconnect();
    return signal != 0 ? 128 + signal : 0;
}

}  // namespace kestrum::app
