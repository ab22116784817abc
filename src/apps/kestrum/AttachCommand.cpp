#include "apps/kestrum/AttachCommand.h"

#include "adapters/impress/ImpressOffice.h"
#include "adapters/linux/EndSignals.h"
#include "apps/commandline/Preflight.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/MenuCommands.h"
#include "apps/kestrum/ScreenProgram.h"
#include "host/ResumeNext.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kLookMs = 250;

/// Asked before anything is loaded that a program without work would not need.
bool RecordsAutomatically(Console& console) {
    BatchProgram program(console);
    ui::Forms forms(program.Host().presenter, program.Loop());
    support::State state;
    return !CheckAutomatic({program.Host(), forms, state});
}

/// The time with an office: from the first command to its end.
class Attachment {
  public:
    Attachment(ScreenProgram& program, Session& session, impress::ImpressOffice& office)
        : m_session(session), m_office(office), m_commands(program, session, office) {}

    void Run(const String& command) {
        host::IEventLoop& loop = m_session.c.host.loop;
        const auto look = loop.StartTimer(u"attachment", kLookMs, host::TimerReentry::Skipped, [this] { Look(); });
        if (!command.empty()) loop.Post([this, command] { m_commands.Pick(command); });
        loop.RunUntil([this] { return !m_session.recording.g_Recording && (m_ended || HasNothingLeft()); });
    }

    /// Ends the show and the recording with it, and then the attachment. Without a recording a show goes on.
    void End() {
        m_ended = true;
        m_session.LeaveCard();
        if (!m_session.recording.g_Recording) return;
        host::ResumeNext{m_session.c.host.trace}([this] { m_office.Application().SlideShowWindow(1)->View()->Exit(); });
    }

  private:
    /// The office is gone, and nobody reads about the last recording any more.
    bool HasNothingLeft() const { return !m_office.IsAlive() && !m_session.HasCard(); }

    // A recording that ended in a fault leaves its marker, which would refuse every command for a minute.
    void Look() {
        const bool recording = m_session.recording.g_Recording;
        if (m_recording && !recording) DisarmMarkerOfDeadRecorder(m_session.c);
        m_recording = recording;
    }

    Session& m_session;
    impress::ImpressOffice& m_office;
    MenuCommands m_commands;
    bool m_ended = false;
    bool m_recording = false;
};

}  // namespace

int RunAttach(Console& console, const AttachRequest& request) {
    if (request.automatic && !RecordsAutomatically(console)) return 0;
    ScreenProgram program(console, false);
    const auto office = impress::ImpressOffice::Join(host::FromUtf8(request.pipe), program.Loop(), program.Monitors());

    host::Host ports = program.Ports(office->Application());
    const auto slidesDrawnOn = office->Application().Subscribe(program.DrawingBoard());
    Session session(ports);
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    session.Accompany(false);
    Attachment attachment(program, session, *office);
    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        attachment.End();
        program.LeaveQuestions();
    });
    attachment.Run(host::FromUtf8(request.command));
    session.Disconnect();
    return signal != 0 ? 128 + signal : 0;
}

}  // namespace kestrum::app
