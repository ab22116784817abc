// The messages of the driver's window, one test for each kind, and what goes to a recorder in another process.
#include "recording/LectureDesk.h"
#include "recording/frmViewer.h"
#include "recording/modViewer.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

struct WindowMessages : Lecture {
    std::int64_t Send(std::int32_t message, std::int64_t first = 0, std::int64_t second = 0, std::string data = {}) {
        return world.windows.SendMessage(world.windows.Own(u"frmViewer"),
                                         host::WindowMessage{message, first, second, std::move(data)});
    }
    /// Does `act` 5 s into a recording that ends normally.
    void WhileRecording(std::function<void()> act) {
        Play().PressRecord().At(5s).Do(std::move(act)).At(9s).PressEscape().At(20s).Run();
    }
    /// Calls of the media library since the transcript had `from` lines, without the polls of its state.
    Texts LibraryCalls(std::size_t from) const {
        Texts calls;
        const auto& lines = world.transcript.Lines();
        for (std::size_t i = from; i < lines.size(); ++i) {
            const bool isPoll = lines[i] == u"ksLib.EncoderState";
            if (lines[i].starts_with(u"ksLib.") && !isPoll) calls.push_back(host::ToUtf8(lines[i]));
        }
        return calls;
    }
};

TEST_F(WindowMessages, PositionChange_IsForcedToTopmost_WhileTheProcedureIsReplaced) {
    EXPECT_EQ(Send(70), 0);
    WhileRecording([this] { EXPECT_EQ(Send(70), -1); });
    EXPECT_EQ(Send(70), 0);
}

TEST_F(WindowMessages, Level_IsKept) {
    WhileRecording([this] {
        Send(1143, 63);
        EXPECT_EQ(session.devices.g_AudioLevel, 63);
    });
}

TEST_F(WindowMessages, PointerPosition_IsKept) {
    WhileRecording([this] {
        Send(0x8001, 640, 360);
        EXPECT_EQ(session.recording.pointerPosition, (host::Point{640, 360}));
    });
}

TEST_F(WindowMessages, FirstHotKey_AndUnknownMessages_DoNothing) {
    WhileRecording([this] {
        const std::size_t before = world.transcript.Lines().size();
        for (const std::int32_t message : {0x8009, 0x8005, 0x8000, 0x800D, 71, 73, 75, 1142, 1144}) {
            EXPECT_EQ(Send(message, 1, 2, "x"), 0) << message;
        }
        EXPECT_EQ(world.transcript.Lines().size(), before);
        EXPECT_TRUE(session.recording.g_Recording);
    });
}

TEST_F(WindowMessages, Title_WithoutAKeyFrame_MakesNoEntry_AndStillTellsOfTheShow) {
    WhileRecording([this] {
        world.ksLib.nextKeyFrames.push_back(0);
        Send(74, 0, 0, "Film");
        EXPECT_TRUE(session.recording.showInProgress);
        world.ksLib.nextKeyFrames.push_back(0);
        Send(74, 0, 0, "** after film");
        EXPECT_FALSE(session.recording.showInProgress);
    });
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(WindowMessages, Title_IsReadByteByByte_UpToItsFilling) {
    WhileRecording([this] { Send(74, 0, 0, std::string("Caf\xE9 ** after\0\0\0\0", 17)); });
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4400 Café ** after"}));
    EXPECT_FALSE(session.recording.showInProgress);
}

TEST_F(WindowMessages, StrokeMessages_AreForwardedWhileNothingIsRecorded) {
    const auto recorder = world.windows.AddForeign(u"LarkspinWin", u"");
    world.app.pointerType = host::PointerType::Pen;
    Play().StartShow().At(1s).Run();
    world.windows.received.clear();
    for (const std::int32_t message : {0x8002, 0x8003, 0x8004}) session.addIn.Viewer()->SendPenOp(message);
    ASSERT_EQ(world.windows.received.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& [window, message] = world.windows.received[i];
        EXPECT_EQ(window, recorder);
        EXPECT_EQ(message.message, 0x8002 + static_cast<std::int32_t>(i));
        EXPECT_EQ(message.first, 0);
        EXPECT_EQ(message.second, 0);
    }
    world.app.pointerType = host::PointerType::Arrow;
    session.addIn.Viewer()->SendPenOp(0x8002);
    EXPECT_EQ(world.windows.received.size(), 3U) << "without the pen there is no stroke";
}

TEST_F(WindowMessages, CanvasKey_AsksThePenFirst_ThenOpensOrCloses) {
    std::size_t from = 0;
    Play()
        .PressRecord()
        .At(5s)
        .Do([&] { from = world.transcript.Lines().size(); })
        .HookMessage(0x800A)
        .At(6s)
        .Do([&] {
            EXPECT_EQ(LibraryCalls(from), (Texts{"ksLib.SetPenAttr 2 255", "ksLib.CreateCanvas"}));
            from = world.transcript.Lines().size();
        })
        .HookMessage(0x800A)
        .At(7s)
        .Do([&] {
            EXPECT_EQ(LibraryCalls(from), (Texts{"ksLib.SetPenAttr 2 255", "ksLib.DeleteCanvas"}));
            from = world.transcript.Lines().size();
        })
        .HookMessage(0x800B)
        .HookMessage(0x800A)
        .At(8s)
        .Do([&] {
            EXPECT_EQ(LibraryCalls(from),
                      (Texts{"ksLib.SetPenAttr 2 255", "ksLib.CreateWhiteboard", "ksLib.DeleteWhiteboard",
                             "ksLib.SetPenAttr 2 255", "ksLib.CreateCanvas"}));
        })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
}

TEST_F(WindowMessages, RecordingThatEndsBetweenTheTwoSheets_LeavesNoneOpen) {
    for (const auto& [first, second] : {std::pair(0x800A, 0x800B), std::pair(0x800B, 0x800A)}) {
        Play()
            .PressRecord()
            .At(5s)
            .HookMessage(first)
            .At(6s)
            .Do([&, message = second] {
                world.loop.Post([this] { world.app.PressEscape(); });  // comes in the rounds between the sheets
                Send(message);
            })
            .At(20s)
            .Run();
        EXPECT_FALSE(world.ksLib.canvas);
        EXPECT_FALSE(world.ksLib.whiteboard);
        ExpectAtRest();
    }
}

TEST_F(WindowMessages, StrokeThatEndsAfterTheRecording_CallsNothing) {
    Set(u"chkStartPen", u"1");
    std::size_t from = 0;
    Play().PressRecord().At(5s).HookMessage(0x8002).At(9s).PressEscape().At(20s).Run();
    from = world.transcript.Lines().size();
    Send(0x8003);
    Send(0x8004);
    EXPECT_TRUE(LibraryCalls(from).empty());
}

TEST_F(WindowMessages, OtherRecorder_IsFoundByItsClass_ElseByItsTitle) {
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), std::nullopt);
    const auto titled = world.windows.AddForeign(u"other", u"LarkspinWin");
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), titled);
    const auto classed = world.windows.AddForeign(u"LarkspinWin", u"any");
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), classed);
}

TEST_F(WindowMessages, SentTitle_HasTwoBytesACharacter_AndOneOfThemUsed) {
    const auto recorder = world.windows.AddForeign(u"LarkspinWin", u"");
    const auto sent = [&](const String& title) {
        modViewer::SendSlideTitle(session.c, recorder, title);
        EXPECT_EQ(world.windows.received.back().second.message, 74);
        return world.windows.received.back().second.data;
    };
    EXPECT_EQ(sent(u"ab"), std::string("ab\0\0", 4));
    EXPECT_EQ(sent(u"é"), std::string("\xE9\0", 2));
    EXPECT_EQ(sent(u"课a件"), std::string("?a?\0\0\0", 6));
    EXPECT_EQ(sent(u""), "");
}

}  // namespace
}  // namespace kestrum
