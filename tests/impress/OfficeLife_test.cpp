// The life of the office itself: how it starts and ends, and what the core sees when it dies or hangs.
#include <signal.h>

#include "adapters/impress/OfficeProcess.h"
#include "adapters/impress/OfficeProfile.h"
#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

using Lines = std::vector<std::string>;

/// Sends SIGCONT at the end, whatever happens.
class Stopped {
  public:
    explicit Stopped(pid_t process) : m_process(process) { kill(process, SIGSTOP); }
    ~Stopped() { kill(m_process, SIGCONT); }

  private:
    pid_t m_process;
};

bool HasProfile(const std::string& start) {
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path()))
        if (entry.path().filename().string().rfind(start, 0) == 0) return true;
    return false;
}

String SentenceOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const host::Error& error) {
        return error.Description();
    }
    return u"(no error)";
}

TEST(OfficeLife, AKilledOffice_EndsTheShowAndClosesThePresentationOnce) {
    OfficeDesk desk;
    TempFolder folder;
    const auto deck = folder.CopyOfLecture("a.pptx");
    desk.office->Open(Text(deck));
    const auto window = desk.Run();
    const auto presentation = window->Presentation();
    EventLog log(desk.App());
    kill(static_cast<pid_t>(desk.office->ProcessId()), SIGKILL);
    ASSERT_TRUE(desk.PumpUntil([&] { return log.lines.size() >= 2; }));
    desk.loop.Sleep(200);
    desk.loop.DoEvents();
    EXPECT_EQ(log.lines, (Lines{"end (1 shows) a.pptx", "close (1 shows) a.pptx"}));
    EXPECT_EQ(desk.App().SlideShowWindowCount(), 0);
    EXPECT_FALSE(desk.office->IsAlive());

    const auto before = desk.loop.TickCount();
    EXPECT_THROW(window->View()->State(), host::Error);
    EXPECT_THROW(presentation->Saved(), host::Error);
    EXPECT_NO_THROW(window->Activate()) << "a failure here would mean a presentation marked as final";
    EXPECT_LT(desk.loop.TickCount() - before, 1000) << "later calls fail at once";

    EXPECT_EQ(presentation->FullName(), Text(deck));
    EXPECT_EQ(desk.App().ActivePresentation()->BuiltInDocumentProperty(u"author"), u"Hanna Lindqvist");
    desk.office.reset();
    EXPECT_FALSE(fs::exists(folder.Path() / ".~lock.a.pptx#")) << "the dead office's lock is taken away";
    EXPECT_FALSE(HasProfile("kestrum-office-" + std::to_string(getpid())));
}

TEST(OfficeLife, AHungOffice_FailsTheCallWithinSeconds_AndEndsTheShow) {
    OfficeDesk desk;
    TempFolder folder;
    desk.office->Open(Text(folder.CopyOfLecture("b.pptx")));
    const auto window = desk.Run();
    EventLog log(desk.App());
    const Stopped stopped(static_cast<pid_t>(desk.office->ProcessId()));
    const auto before = desk.loop.TickCount();
    EXPECT_EQ(SentenceOf([&] { window->Presentation()->Saved(); }), u"Impress does not answer.");
    EXPECT_LT(desk.loop.TickCount() - before, 30000);
    EXPECT_THROW(window->View()->State(), host::Error);
    ASSERT_TRUE(desk.PumpUntil([&] { return log.lines.size() >= 2; }));
    EXPECT_EQ(log.lines, (Lines{"end (1 shows) b.pptx", "close (1 shows) b.pptx"}));
}

TEST(OfficeLife, AnOfficeThatHangsUnasked_IsFoundByItsPulse) {
    OfficeDesk desk;
    TempFolder folder;
    desk.office->Open(Text(folder.CopyOfLecture("c.pptx")));
    desk.Run();
    EventLog log(desk.App());
    const Stopped stopped(static_cast<pid_t>(desk.office->ProcessId()));
    ASSERT_TRUE(desk.PumpUntil([&] { return log.lines.size() >= 2; }));
    EXPECT_EQ(log.lines, (Lines{"end (1 shows) c.pptx", "close (1 shows) c.pptx"}));
}

TEST(OfficeLife, TheEnd_LeavesNothingBehind) {
    TempFolder folder;
    pid_t process = 0;
    {
        OfficeDesk desk;
        process = static_cast<pid_t>(desk.office->ProcessId());
        desk.office->Open(Text(folder.CopyOfLecture("d.pptx")));
        desk.App().ActivePresentation()->SetSaved(0);
        desk.Run();
    }
    EXPECT_NE(kill(process, 0), 0) << "the office has ended, in a show and with unsaved changes";
    EXPECT_FALSE(fs::exists(folder.Path() / ".~lock.d.pptx#"));
    EXPECT_FALSE(HasProfile("kestrum-office-" + std::to_string(getpid())));
}

TEST(OfficeLife, AMissingOffice_IsToldInASentence) {
    sim::Transcript transcript;
    sim::Trace trace;
    platform::EventLoop loop(trace);
    sim::Monitors monitors(transcript);
    TempFolder empty;
    OfficeOptions options;
    options.programFolder = empty.Path().string();
    EXPECT_EQ(SentenceOf([&] { ImpressOffice::Start(options, loop, monitors); }),
              u"LibreOffice Impress is not installed. Install the package libreoffice-impress and try again.");
}

TEST(OfficeLife, ADisplayThatCannotBeOpened_IsToldInASentence) {
    sim::Transcript transcript;
    sim::Trace trace;
    platform::EventLoop loop(trace);
    sim::Monitors monitors(transcript);
    OfficeOptions options;
    options.display = ":65000";
    options.vclPlugin = "gen";
    const auto sentence = SentenceOf([&] { ImpressOffice::Start(options, loop, monitors); });
    EXPECT_NE(sentence.find(u"display"), String::npos);
}

TEST(OfficeLife, AnOfficeOfOthers_CanBeJoinedAndIsLeftRunning) {
    const real::XvfbServer display(OfficeDesk::kWidth, OfficeDesk::kHeight);
    const auto environment = display.Use();
    sim::Transcript transcript;
    sim::Trace trace;
    platform::EventLoop loop(trace);
    sim::Monitors monitors(transcript);
    TempFolder folder;
    OfficeProfile profile(fs::temp_directory_path());
    OfficeProcess process({KESTRUM_OFFICE_PROGRAM, profile.Folder(), "kestrum-join-test", display.Name(), "gen"});
    std::unique_ptr<ImpressOffice> guest;
    ASSERT_TRUE(real::WaitFor([&] {
        try {
            process.ExitCode();  // repeats a start that asks for it
            guest = ImpressOffice::Join(u"kestrum-join-test", loop, monitors);
        } catch (const host::Error&) {
            // Not listening yet.
        }
        return guest != nullptr;
    }));
    guest->Open(Text(folder.CopyOfLecture("e.pptx")));
    EXPECT_EQ(guest->ProcessId(), process.Id());
    EventLog log(guest->Application());
    guest->Application().ActivePresentation()->SlideShowSettings()->Run();
    EXPECT_EQ(log.lines, (Lines{"begin (1 shows)", "slide 1"}));
    guest.reset();
    EXPECT_FALSE(process.WaitForEnd(std::chrono::milliseconds(500)));
}

}  // namespace
}  // namespace kestrum::impress
