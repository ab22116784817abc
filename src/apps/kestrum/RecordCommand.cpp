#include "apps/kestrum/RecordCommand.h"

#include "adapters/impress/ImpressOffice.h"
#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/SlideAdvance.h"
#include "apps/commandline/Texts.h"
#include "apps/kestrum/Checks.h"
#include "apps/kestrum/DeadRecorder.h"
#include "recording/StartAdvice.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kWatchMs = 100;

/// One recording from the press of Record to its end.
class Recording {
  public:
    Recording(Session& session, host::IApplication& office, const RecordRequest& request)
        : m_session(session),
          m_office(office),
          m_advance(office, session.c.host.loop, session.c.host.trace, request.advanceMs.value_or(0)),
          m_unattended(request.advanceMs.has_value()) {}

    /// Presses Record and returns when no show runs any more. True if the encoder ran.
    bool Run() {
        host::IEventLoop& loop = m_session.c.host.loop;
        const auto watch =
            loop.StartTimer(u"recording watch", kWatchMs, host::TimerReentry::Skipped, [this] { Watch(); });
        m_session.addIn.NotesButton(u"rec");
        loop.RunUntil([this] { return IsOver(); });
        m_advance.Stop();
        return m_ran;
    }

    /// Unattended, and the show ended before every slide had had its time.
    bool WasCutShort() const { return m_unattended && !m_advance.Finished(); }

    /// Ends the show, and with it the recording, as its user would.
    void End() {
        m_ending = true;
        m_session.LeaveCard();
        host::ResumeNext{m_session.c.host.trace}([this] { m_office.SlideShowWindow(1)->View()->Exit(); });
    }

  private:
    void Watch() {
        const bool runs = m_session.recording.g_Recording && m_session.recording.g_EncoderPollTimer != nullptr;
        if (runs && !m_ran && m_unattended) m_advance.Begin(m_session.recording.g_RecordStartTick);
        m_ran = m_ran || runs;
    }

    bool IsOver() {
        if (m_session.recording.g_Recording || (!m_ending && m_session.HasCard())) return false;
        std::int32_t shows = 0;
        host::ResumeNext{m_session.c.host.trace}.Set(shows, [this] { return m_office.SlideShowWindowCount(); });
        return shows == 0;
    }

    Session& m_session;
    host::IApplication& m_office;
    SlideAdvance m_advance;
    const bool m_unattended;
    bool m_ran = false;
    bool m_ending = false;  ///< somebody asked the program to end: nothing is shown any more
};

std::unique_ptr<impress::ImpressOffice> OpenOffice(ScreenProgram& program, Console& console, const String& deck,
                                                   std::int32_t from) {
    console.Notice(u"Impress: " + deck);
    auto office = impress::ImpressOffice::Start({}, program.Loop(), program.Monitors());
    office->Open(deck);
    office->SelectSlide(from);
    return office;
}

/// What speaks against starting now, or what is continued; the recording starts all the same.
void TellAdvice(Console& console, const recording::Context& c, const String& deck) {
    for (const recording::Advice& advice : recording::StartAdvice(c, deck)) console.Notice(advice.line);
}

}  // namespace

int RunRecord(Console& console, const RecordRequest& request) {
    const String deck = FullPath(request.deck);
    const String package = modGlobal::PackagePathOf(deck);
    CheckWithoutScreen(console, deck, false);
    ScreenProgram program(console, request.advanceMs.has_value());
    CheckWithScreen(program);
    const auto office = OpenOffice(program, console, deck, request.from);

    host::Host ports = program.Ports(office->Application());
    const auto slidesDrawnOn = office->Application().Subscribe(program.DrawingBoard());
    Session session(ports);
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    TellAdvice(console, session.c, deck);
    if (!request.advanceMs) session.Accompany(false);
    Recording recording(session, office->Application(), request);
    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        recording.End();
        program.LeaveQuestions();
    });
    const bool ran = recording.Run();
    session.Disconnect();
    if (!ran || ports.ksLib.GetLength(package) == 0) {
        const String message = program.LastMessage();
        console.Failure(message.empty() ? Sentence(session.c, u"msgNotRecorded", u"Nothing was recorded.") : message);
        return signal != 0 ? 128 + signal : 1;
    }
    console.Result("package: " + host::ToUtf8(package));
    if (signal != 0) return 128 + signal;
    if (!recording.WasCutShort()) return 0;
    console.Failure(Sentence(session.c, u"msgCutShort",
                             u"The recording ended before the last slide; what was recorded is kept. %s1",
                             {program.LastMessage()}));
    return 1;
}

}  // namespace kestrum::app
