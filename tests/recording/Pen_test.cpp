// Pen, canvas and whiteboard.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;

constexpr std::int32_t kF8 = 119, kCanvas = 0x800A, kWhiteboard = 0x800B;

TEST_F(Lecture, F8_TurnsThePenOn_WithoutChangingItsColour) {
    world.app.pointerColor = 0x00FF00;
    Play().StartShow().At(1s).PressKey(kF8).At(2s).Run();
    EXPECT_EQ(world.app.pointerType, host::PointerType::Pen);
    EXPECT_EQ(world.app.pointerColor, 0x00FF00);
}

TEST_F(Lecture, F8WithThePen_GoesThroughTheColours) {
    world.app.pointerType = host::PointerType::Pen;
    world.app.pointerColor = 0x0000FF;
    std::vector<std::int32_t> colours;
    auto play = Play();
    play.StartShow();
    for (int i = 0; i < 4; ++i) {
        play.After(1s).PressKey(kF8).After(100ms).Do([&] { colours.push_back(world.app.pointerColor); });
    }
    play.Run();
    EXPECT_EQ(colours, (std::vector<std::int32_t>{0x00FF00, 0xFF0000, 0x00FFFF, 0x0000FF}));
}

TEST_F(Lecture, ColourOutsideTheCycle_MovesToRed) {
    world.app.pointerType = host::PointerType::Pen;
    world.app.pointerColor = 0x123456;
    Play().StartShow().At(1s).PressKey(kF8).At(2s).Run();
    EXPECT_EQ(world.app.pointerColor, 0x0000FF);
}

TEST_F(Lecture, Strokes_AreToldToTheLibraryWhileRecording_AndNotAfterwards) {
    Set(u"chkStartPen", u"1");
    Play()
        .PressRecord()
        .At(5s)
        .HookMessage(0x8002)
        .HookMessage(0x8003)
        .At(6s)
        .Do([this] {
            EXPECT_EQ(world.transcript.Count(u"ksLib.StartDraw"), 1);
            EXPECT_EQ(world.transcript.Count(u"ksLib.EndDraw"), 1);
            world.app.pointerType = host::PointerType::Arrow;
        })
        .HookMessage(0x8002)
        .HookMessage(0x8004)
        .At(7s)
        .Do([this] {
            EXPECT_EQ(world.transcript.Count(u"ksLib.StartDraw"), 1);  // no pen, no stroke
            EXPECT_EQ(world.transcript.Count(u"ksLib.EndDraw"), 2);
        })
        .At(9s)
        .PressEscape()
        .At(12s)
        .Do([this] { session.addIn.Viewer()->SendPenOp(0x8003); })
        .Run();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EndDraw"), 2);
}

TEST_F(Lecture, StrokesOfAShowThatIsNotRecorded_GoToTheOtherRecorder) {
    auto recorder = world.windows.AddForeign(u"LarkspinWin", u"");
    world.app.pointerType = host::PointerType::Pen;
    Play()
        .StartShow()
        .At(1s)
        .Do([this] {
            world.windows.received.clear();
            world.hooks.Mouse(0, 513, {});
            world.hooks.Mouse(0, 514, {});
            world.hooks.Mouse(0, 517, {});
        })
        .Run();
    std::vector<std::int32_t> messages;
    for (const auto& [window, message] : world.windows.received) {
        EXPECT_EQ(window, recorder);
        messages.push_back(message.message);
    }
    EXPECT_EQ(messages, (std::vector<std::int32_t>{0x8002, 0x8003, 0x8004}));
}

TEST_F(Lecture, WhiteboardWithTheCanvasOpen_ClosesTheCanvasFirst_AndASecondPressClosesIt) {
    Play()
        .PressRecord()
        .At(5s)
        .HookMessage(kCanvas)
        .At(6s)
        .Do([this] { EXPECT_TRUE(world.ksLib.canvas); })
        .HookMessage(kWhiteboard)
        .At(7s)
        .Do([this] {
            EXPECT_FALSE(world.ksLib.canvas);
            EXPECT_TRUE(world.ksLib.whiteboard);
            EXPECT_TRUE(world.transcript.Has(u"ksLib.SetPenAttr 2 255"));
        })
        .HookMessage(kWhiteboard)
        .At(8s)
        .Do([this] { EXPECT_FALSE(world.ksLib.whiteboard); })
        .HookMessage(kCanvas)
        .At(9s)
        .PressEscape()
        .At(12s)
        .Run();
    EXPECT_FALSE(world.ksLib.canvas);
}

TEST_F(Lecture, CanvasKey_WithoutARecording_DoesNothing) {
    Play().StartShow().At(1s).HookMessage(kCanvas).At(2s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.CreateCanvas"));
}

TEST_F(Lecture, F8_WorksInARecording_50MsAfterTheKey_AndOtherKeysDoNot) {
    Play()
        .PressRecord()
        .At(5s)
        .PressKey(120)
        .At(5200ms)
        .Do([this] { EXPECT_EQ(world.app.pointerType, host::PointerType::Arrow); })
        .PressKey(kF8)
        .At(5240ms)
        .Do([this] { EXPECT_EQ(world.app.pointerType, host::PointerType::Arrow) << "the key only arms a timer"; })
        .At(5300ms)
        .Do([this] { EXPECT_EQ(world.app.pointerType, host::PointerType::Pen); })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
}

TEST_F(Lecture, F8Timer_WithoutARunningShow_ChangesNothing) {
    Play().StartShow().At(1s).PressKey(kF8).After(10ms).PressEscape().At(3s).Run();
    EXPECT_EQ(world.app.pointerType, host::PointerType::Arrow);
    EXPECT_EQ(world.transcript.Count(u"show begin"), 1) << "asking for the show must not start one";
}

}  // namespace
}  // namespace kestrum
