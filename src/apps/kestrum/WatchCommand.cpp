#include "apps/kestrum/WatchCommand.h"

#include "adapters/impress/ImpressOffice.h"
#include "adapters/linux/EndSignals.h"
#include "apps/commandline/Texts.h"
#include "apps/kestrum/Checks.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/MenuCommands.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kLookMs = 100;

/// Tells of each recording that begins and ends, until the presentation is closed.
class Watch {
  public:
    Watch(Session& session, host::IApplication& office, Console& console)
        : m_session(session), m_office(office), m_console(console) {}

    void Run() {
        host::IEventLoop& loop = m_session.c.host.loop;
        const auto look = loop.StartTimer(u"watch", kLookMs, host::TimerReentry::Skipped, [this] { Look(); });
        loop.RunUntil(
            [this] { return !m_session.recording.g_Recording && (m_ended || (IsClosed() && !m_session.HasCard())); });
        Look();
    }

    /// Ends the show and the recording with it, and then the watch.
    void End() {
        m_ended = true;
        m_session.LeaveCard();
        host::ResumeNext{m_session.c.host.trace}([this] { m_office.SlideShowWindow(1)->View()->Exit(); });
    }

  private:
    bool IsClosed() {
        std::int32_t open = 0;
        host::ResumeNext{m_session.c.host.trace}.Set(open, [this] { return m_office.PresentationCount(); });
        return open == 0;
    }

    void Look() {
        const recording::State& r = m_session.recording;
        if (r.g_Recording && r.g_EncoderPollTimer) m_recorded = m_session.support.packagePath;
        if (r.g_Recording || m_recorded.empty()) return;
        m_console.Result("package: " + host::ToUtf8(m_recorded));
        m_recorded.clear();
        // A recording that ended in a fault leaves its marker, which would keep the next show from being recorded.
        DisarmMarkerOfDeadRecorder(m_session.c);
    }

    Session& m_session;
    host::IApplication& m_office;
    Console& m_console;
    bool m_ended = false;
    String m_recorded;  ///< package of the recording that runs, or has just ended
};

}  // namespace

int RunWatch(Console& console, const WatchRequest& request) {
    const String deck = FullPath(request.deck);
    CheckWithoutScreen(console, deck, true);
    ScreenProgram program(console, false);
    CheckWithScreen(program);
    console.Notice(u"Impress: " + deck);
    impress::OfficeOptions options;
    options.unsaved = impress::UnsavedChanges::Keep;
    const auto office = impress::ImpressOffice::Start(options, program.Loop(), program.Monitors());
    office->Open(deck);

    host::Host ports = program.Ports(office->Application());
    const auto slidesDrawnOn = office->Application().Subscribe(program.DrawingBoard());
    Session session(ports);
    session.Connect();
    session.Accompany(true);
    const MenuCommands commands(program, session, *office);
    Watch watch(session, office->Application(), console);
    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        watch.End();
        program.LeaveQuestions();
    });
    console.Notice(
        Sentence(session.c, u"msgWatching", u"Each slide show is recorded until the presentation is closed."));
    watch.Run();
    session.Disconnect();
    return signal != 0 ? 128 + signal : 0;
}

}  // namespace kestrum::app
