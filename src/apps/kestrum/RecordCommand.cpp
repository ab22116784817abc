#include "apps/kestrum/RecordCommand.h"

#include "apps/commandline/Preflight.h"
#include "apps/commandline/SlideAdvance.h"
#include "apps/commandline/Texts.h"
#include "apps/kestrum/ScreenProgram.h"
#include "apps/kestrum/Signals.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kWatchMs = 100;

void RefuseIf(const std::optional<String>& sentence) {
    if (sentence) throw host::Error(host::ErrorNumber::Automation, u"record", *sentence);
}

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
        const auto watch = loop.StartTimer(u"recording watch", kWatchMs, host::TimerReentry::Skipped, [this] { Watch(); });
        m_session.addIn.NotesButton(u"rec");
        loop.RunUntil([this] { return IsOver(); });
        m_advance.Stop();
        return m_ran;
    }

    /// Unattended, and the show ended before every slide had had its time.
    bool WasCutShort() const { return m_unattended && !m_advance.Finished(); }

    /// Ends the show, and with it the recording, as its user would.
    void End() {
        host::ResumeNext{m_session.c.host.trace}([this] { m_office.SlideShowWindow(1)->View()->Exit(); });
    }

  private:
    void Watch() {
        const bool runs = m_session.recording.g_Recording && m_session.recording.g_EncoderPollTimer != nullptr;
        if (runs && !m_ran && m_unattended) m_advance.Begin();
        m_ran = m_ran || runs;
    }

    bool IsOver() {
        if (m_session.recording.g_Recording) return false;
        std::int32_t shows = 0;
        host::ResumeNext{m_session.c.host.trace}.Set(shows, [this] { return m_office.SlideShowWindowCount(); });
        return shows == 0;
    }

    Session& m_session;
    host::IApplication& m_office;
    SlideAdvance m_advance;
    const bool m_unattended;
    bool m_ran = false;
};

}  // namespace

int RunRecord(Console& console, const RecordRequest& request) {
    const String deck = FullPath(request.deck);
    ScreenProgram program(console, request.advanceMs.has_value());
    Session session(program.Host());
    RefuseIf(CheckDeck(session.c, deck));
    RefuseIf(CheckSound(session.c));
    RefuseIf(CheckPicture(session.c));

    console.Notice(Sentence(session.c, u"msgOpening", u"Opening %s1 in Impress ...", {deck}));
    impress::ImpressOffice& office = program.OpenOffice(deck, request.from);
    session.Connect();
    Recording recording(session, office.Application(), request);
    int signal = 0;
    const Signals signals(program.Loop(), [&](int number) {
        signal = number;
        recording.End();
    });
    const bool ran = recording.Run();
    session.Disconnect();
    const String package = modGlobal::PackagePathOf(deck);
    if (!ran || program.Host().ksLib.GetLength(package) == 0) {
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
