// The desktop's cast of a screen: the question at the portal, the pictures of PipeWire, and what a recording makes of
// both. Portal and sender are the test's own; bus, PipeWire and display are real.
#include "media/capture/portal/ScreenCast.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>
#include <thread>

#include "CastSender.h"
#include "FakePortal.h"
#include "media/capture/CaptureError.h"
#include "media/capture/Recorder.h"
#include "media/capture/Screen.h"
#include "media/package/Package.h"
#include "real/MediaProbe.h"
#include "real/PipeWireServer.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"

namespace kestrum::media {
namespace {

using namespace kestrum::real;

constexpr int kWidth = 320, kHeight = 240;
constexpr std::uint32_t kRed = 0xC02020, kGreen = 0x20A040, kOwn = 0xFF00FF;
const Area kAll{0, 0, kWidth, kHeight};

bool Always() {
    return true;
}

/// The sentence with which it is refused; empty if it is not.
template <typename Try>
std::string RefusalOf(Try attempt) {
    try {
        attempt();
    } catch (const CaptureError& error) {
        EXPECT_EQ(error.kind, CaptureErrorKind::kNoDisplay);
        return error.what();
    }
    return {};
}

// --- The question --------------------------------------------------------------------------------------------------

class PortalQuestion : public ::testing::Test {
  protected:
    std::string Ask(const std::string& token = {}) {
        return RefusalOf([&] { session.emplace(token, Always); });
    }

    MessageBus m_bus;
    ScopedEnv m_address = m_bus.Use();
    FakePortal portal{m_bus};
    std::optional<PortalSession> session;
};

TEST_F(PortalQuestion, IsForOneMonitor_WithThePointerInIt_AndToBeRemembered) {
    ASSERT_EQ(Ask("before"), "");
    EXPECT_EQ(portal.typesAsked, 1U);
    EXPECT_EQ(portal.pointerAsked, 2U);
    EXPECT_EQ(portal.persistAsked, 2U);
    EXPECT_EQ(portal.TokenAsked(), "before");
    EXPECT_EQ(session->Grant().node, 42U);
    EXPECT_EQ(session->Grant().place, (Area{0, 0, 64, 48}));
    EXPECT_EQ(session->Grant().token, "token1");
    EXPECT_TRUE(session->Grant().showsPointer);
}

TEST_F(PortalQuestion, WhereThePointerCannotBeInThePicture_ItIsLeftOut) {
    portal.pointerWays = 1;
    ASSERT_EQ(Ask(), "");
    EXPECT_EQ(portal.pointerAsked, 1U);
    EXPECT_FALSE(session->Grant().showsPointer);
}

TEST_F(PortalQuestion, AnOlderPortal_IsNotAskedToRemember) {
    portal.version = 3;
    ASSERT_EQ(Ask("before"), "");
    EXPECT_EQ(portal.persistAsked, 0U);
    EXPECT_EQ(portal.TokenAsked(), "");
}

TEST_F(PortalQuestion, RefusedByTheUser_IsASentence) {
    portal.answer = UserAnswer::kRefuses;
    EXPECT_EQ(Ask(), "The screen was not released for recording; record again, and allow it when the desktop asks.");
}

TEST_F(PortalQuestion, EndedByTheDesktop_IsASentence) {
    portal.answer = UserAnswer::kFails;
    EXPECT_EQ(Ask(), "The desktop ended its question for the screen without an answer.");
}

TEST_F(PortalQuestion, APortalThatGoesMeanwhile_IsASentence) {
    portal.answer = UserAnswer::kPortalGoes;
    EXPECT_EQ(Ask(), "The desktop's portal ended while it was asked for the screen.");
}

TEST_F(PortalQuestion, NotAnsweredInTime_IsTakenBack) {
    portal.answer = UserAnswer::kSaysNothing;
    int looks = 0;
    EXPECT_EQ(RefusalOf([&] { session.emplace("", [&looks] { return ++looks < 3; }); }),
              "Nobody answered the desktop's question for the screen; record again, and allow it.");
    EXPECT_TRUE(WaitFor([&] { return portal.isWithdrawn.load(); }));
}

TEST_F(PortalQuestion, ADesktopWithoutMonitorsToCast_IsASentence) {
    portal.sourceTypes = 2;
    EXPECT_NE(Ask().find("has no service that gives programs the picture of the screen"), std::string::npos);
    EXPECT_EQ(portal.questions, 0);
}

TEST_F(PortalQuestion, TheSession_EndsWithTheObject) {
    ASSERT_EQ(Ask(), "");
    EXPECT_FALSE(session->IsClosed());
    session.reset();
    EXPECT_TRUE(WaitFor([&] { return portal.isSessionClosed.load(); }));
}

TEST_F(PortalQuestion, TheEndOfTheSession_IsHeardOf) {
    ASSERT_EQ(Ask(), "");
    portal.EndSession();
    EXPECT_TRUE(WaitFor([&] { return session->IsClosed(); }));
}

TEST_F(PortalQuestion, APortalThatHasNoPipeWire_IsASentence) {
    ASSERT_EQ(Ask(), "");
    EXPECT_NE(RefusalOf([&] { session->OpenRemote(); }), "");
}

TEST(PortalWithoutABus, IsASentence) {
    const ScopedEnv address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    EXPECT_NE(RefusalOf([] { PortalSession("", Always); }).find("has no service"), std::string::npos);
}

TEST(PortalToken, IsKeptForItsUserAlone_AndForgotten) {
    const TempFolder folder;
    const ScopedEnv state("XDG_STATE_HOME", folder / "state");
    EXPECT_EQ(TokenFile().Read(), "");
    TokenFile().Write("one");
    TokenFile().Write("two");
    EXPECT_EQ(TokenFile().Read(), "two");
    struct stat status {};
    ASSERT_EQ(stat((folder / "state/kestrum/screen-cast").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    TokenFile().Write("");
    EXPECT_EQ(TokenFile().Read(), "");
}

// --- The pictures --------------------------------------------------------------------------------------------------

class CastPictures : public ::testing::Test {
  protected:
    CastPictures() {
        portal.remote = [this] { return m_pipeWire.Connect(); };
        portal.width = kWidth;
        portal.height = kHeight;
        sender.emplace(m_pipeWire.Connect(), kWidth, kHeight);
        m_first = std::thread([this] {
            // A compositor sends the first picture as soon as somebody looks.
            WaitFor([this] { return m_stop || (sender->IsRead() && sender->Send(kRed, kAll, false)); });
        });
    }
    ~CastPictures() override {
        m_stop = true;
        m_first.join();
    }
    std::shared_ptr<ScreenCast> Open() {
        auto cast = std::make_shared<ScreenCast>(Always);
        if (m_first.joinable()) m_first.join();
        m_first = std::thread([] {});
        return cast;
    }
    void Send(std::uint32_t colour, const Area& part, bool tells = true) {
        ASSERT_TRUE(WaitFor([&] { return sender->Send(colour, part, tells); }));
    }
    /// Waits for the picture that was sent last.
    static bool Arrives(Screen& screen) {
        return WaitFor([&] {
            screen.Pump();
            return screen.HasNews();
        });
    }

    MessageBus m_bus;
    ScopedEnv m_address = m_bus.Use();
    TempFolder m_folder;
    ScopedEnv m_state{"XDG_STATE_HOME", m_folder / "state"};
    PipeWireServer m_pipeWire;
    FakePortal portal{m_bus};
    std::optional<CastSender> sender;
    XvfbServer m_display{kWidth, kHeight};
    BgraPicture picture{kWidth, kHeight};
    ChangeMap changes{kWidth, kHeight};

  private:
    std::atomic<bool> m_stop{false};
    std::thread m_first;
};

TEST_F(CastPictures, TheScreen_IsWhatTheDesktopSends) {
    Screen screen(m_display.Name(), kAll, Open());
    screen.Fetch(picture, changes, true);
    EXPECT_EQ(picture.Line(10)[10], kRed);
    EXPECT_EQ(picture.Line(kHeight - 1)[kWidth - 1], kRed);
    EXPECT_EQ(changes.Count(), changes.Size());
}

TEST_F(CastPictures, OnlyWhatChanged_IsMarked) {
    Screen screen(m_display.Name(), kAll, Open());
    screen.Fetch(picture, changes, true);
    for (const bool tells : {true, false}) {
        changes.Clear();
        Send(tells ? kGreen : kOwn, {32, 48, 16, 32}, tells);
        ASSERT_TRUE(Arrives(screen));
        screen.Fetch(picture, changes, false);
        EXPECT_EQ(changes.Count(), 2U);
        EXPECT_TRUE(changes.IsChanged(2, 3));
        EXPECT_EQ(picture.Line(79)[47], tells ? kGreen : kOwn);
        EXPECT_EQ(picture.Line(80)[47], kRed);
    }
}

TEST_F(CastPictures, ChangesOfPicturesThatWerePassedOver_AreNotLost) {
    Screen screen(m_display.Name(), kAll, Open());
    screen.Fetch(picture, changes, true);
    changes.Clear();
    Send(kGreen, {0, 0, 16, 16});
    Send(kGreen, {64, 64, 16, 16});
    const auto hasLast = [&] {
        screen.Pump();
        screen.Fetch(picture, changes, false);
        return picture.Line(70)[70] == kGreen;
    };
    ASSERT_TRUE(WaitFor(hasLast));
    EXPECT_EQ(picture.Line(5)[5], kGreen);
    EXPECT_EQ(changes.Count(), 2U);
}

TEST_F(CastPictures, ADamagedPicture_IsNotShown) {
    Screen screen(m_display.Name(), kAll, Open());
    screen.Fetch(picture, changes, true);
    ASSERT_TRUE(WaitFor([&] { return sender->SendDamaged(); }));
    Send(kGreen, {0, 0, 16, 16});
    ASSERT_TRUE(Arrives(screen));
    screen.Fetch(picture, changes, false);
    EXPECT_EQ(picture.Line(5)[5], kGreen);
    EXPECT_EQ(picture.Line(100)[100], kRed);
}

TEST_F(CastPictures, APartOfTheMonitor_IsItsPart) {
    const Area part{64, 32, 128, 96};
    BgraPicture small(part.width, part.height);
    ChangeMap map(part.width, part.height);
    Screen screen(m_display.Name(), part, Open());
    screen.Fetch(small, map, true);
    map.Clear();
    Send(kGreen, {0, 0, 80, 48});
    ASSERT_TRUE(Arrives(screen));
    screen.Fetch(small, map, false);
    EXPECT_EQ(small.Line(15)[15], kGreen);
    EXPECT_EQ(small.Line(16)[16], kRed);
    EXPECT_EQ(map.Count(), 1U);
}

TEST_F(CastPictures, OwnWindows_AreNotInThePicture) {
    // What the display knows of the windows below is painted where ours lie; the cast shows all of them.
    TestWindow slide(m_display.Name(), 0, 0, kWidth, kHeight);
    slide.Fill(kGreen);
    Screen screen(m_display.Name(), kAll, Open());
    TestWindow own(m_display.Name(), 100, 100, 60, 40);
    own.SetProperty("_KESTRUM_OWN_WINDOW", 1);
    own.Raise();
    own.Fill(kOwn);
    Send(kGreen, kAll);
    Send(kOwn, {100, 100, 60, 40});
    const auto shows = [&] {
        slide.Fill(kGreen);
        screen.Pump();
        screen.Fetch(picture, changes, true);
        return picture.Line(50)[50] == kGreen && picture.Line(120)[130] == kGreen;
    };
    EXPECT_TRUE(WaitFor(shows));
}

// The desktop shows menus and shows that manage themselves above all else, whatever order the display keeps.
TEST_F(CastPictures, BelowAnOwnWindow_AnUnmanagedOneIsAboveTheManaged) {
    TestWindow show(m_display.Name(), 0, 0, kWidth, kHeight);
    TestWindow editor(m_display.Name(), 0, 0, kWidth, kHeight, TestWindow::Kind::Managed);
    Screen screen(m_display.Name(), kAll, Open());
    TestWindow own(m_display.Name(), 100, 100, 60, 40);
    own.SetProperty("_KESTRUM_OWN_WINDOW", 1);
    editor.Raise();
    own.Raise();
    EXPECT_TRUE(WaitFor([&] {
        show.Fill(kGreen);
        editor.Fill(kRed);
        screen.Pump();
        screen.Fetch(picture, changes, true);
        return picture.Line(120)[130] == kGreen;
    }));
}

TEST_F(CastPictures, ThePointerThatIsInThePicture_IsNotPaintedAgain) {
    const auto cast = Open();
    EXPECT_TRUE(Screen(m_display.Name(), kAll, cast).FetchPointer().place.IsEmpty());
    EXPECT_FALSE(Screen(m_display.Name(), kAll).FetchPointer().place.IsEmpty());
}

TEST_F(CastPictures, AMonitorOfAnotherSize_IsASentence_AndAskedForAgain) {
    const XvfbServer larger(640, 480);
    const auto cast = Open();
    EXPECT_EQ(TokenFile().Read(), "token1");
    EXPECT_EQ(RefusalOf([&] { Screen(larger.Name(), kAll, cast); }),
              "The desktop gives a picture of 320x240 for a monitor of 640x480; set the monitor's scale to 100 % and "
              "record again.");
    EXPECT_EQ(TokenFile().Read(), "");
}

TEST_F(CastPictures, AnotherMonitor_IsASentence_AndAskedForAgain) {
    portal.x = kWidth;
    const auto cast = Open();
    EXPECT_EQ(
        RefusalOf([&] { Screen(m_display.Name(), kAll, cast); }),
        "The desktop gives the picture of another monitor than the one that is recorded; record again, and choose "
        "that one.");
    EXPECT_EQ(TokenFile().Read(), "");
}

TEST_F(CastPictures, AnotherSizeInMidRecording_IsAnotherResolution) {
    Screen screen(m_display.Name(), kAll, Open());
    EXPECT_FALSE(screen.HasNewResolution());
    sender->Resize(160, 120);
    EXPECT_TRUE(WaitFor([&] {
        sender->Send(kRed, {0, 0, 160, 120}, false);
        screen.Pump();
        return screen.HasNewResolution();
    }));
}

TEST_F(CastPictures, ThatTheUserEnds_AreLost) {
    Screen screen(m_display.Name(), kAll, Open());
    EXPECT_FALSE(screen.IsLost());
    portal.EndSession();
    EXPECT_TRUE(WaitFor([&] { return screen.IsLost(); }));
}

TEST_F(CastPictures, WhoseSenderGoes_AreLost) {
    Screen screen(m_display.Name(), kAll, Open());
    sender.reset();
    EXPECT_TRUE(WaitFor([&] { return screen.IsLost(); }));
}

TEST_F(CastPictures, WhosePipeWireGoes_AreLost) {
    Screen screen(m_display.Name(), kAll, Open());
    m_pipeWire.Kill();
    EXPECT_TRUE(WaitFor([&] { return screen.IsLost(); }));
}

TEST_F(CastPictures, Recording_ShowsThem_AndAfterTheirEndKeepsWhatItHas) {
    RecorderSettings settings;
    settings.display = m_display.Name();
    settings.area = kAll;
    settings.cast = Open();
    Recorder recorder(settings, [](int) {});
    recorder.OpenDevices();
    const std::string package = m_folder / "lecture.ktr";
    recorder.Start(package, {});
    Send(kGreen, kAll);
    ASSERT_TRUE(WaitFor([&] { return recorder.Statistics().changedPictures >= 2; }));
    const std::int64_t position = recorder.AddKeyFrame();
    portal.EndSession();
    ASSERT_TRUE(WaitFor([&] { return recorder.State() == EncoderState::kScreenError; }));
    recorder.Stop();
    EXPECT_EQ(QuickVerify(package), Soundness::kSound);
    EXPECT_TRUE(IsNear(ColourAt(package, 0), kRed));
    EXPECT_TRUE(IsNear(ColourAt(package, position), kGreen));
}

}  // namespace
}  // namespace kestrum::media
