// What drawing over a show takes of the display: the pointer in a rectangle, and one key.
#include <gtest/gtest.h>

#include "adapters/linux/KeyGrab.h"
#include "adapters/linux/PointerPad.h"
#include "linux/Desk.h"

namespace kestrum::platform {
namespace {

constexpr std::uint32_t kEscape = 0xFF1B, kNoKey = 0x1000000;

class DrawingTest : public DeskTest {};

TEST_F(DrawingTest, Pad_TellsStrokesOfTheLeftButton_InItsOwnPixels) {
    std::vector<std::pair<PointerPad::Act, host::Point>> told;
    PointerPad pad(loop, {100, 50, 400, 300}, [&](PointerPad::Act act, host::Point at) { told.emplace_back(act, at); });
    Act({"mousemove", "110",       "70",      "mousemove", "120",       "80",  "click",
         "3",         "mousedown", "1",       "mousemove", "150",       "90",  "mousemove",
         "20",        "30",        "mouseup", "1",         "mousemove", "200", "200"});
    ASSERT_TRUE(PumpUntil([&] { return !told.empty() && told.back().first == PointerPad::Act::Up; }));
    ASSERT_EQ(told.size(), 4u) << "moves without the button and other buttons are not strokes";
    EXPECT_EQ(told[0], std::pair(PointerPad::Act::Down, host::Point{20, 30}));
    EXPECT_EQ(told[1], std::pair(PointerPad::Act::Move, host::Point{50, 40}));
    EXPECT_EQ(told[2], std::pair(PointerPad::Act::Move, host::Point{-80, -20})) << "a stroke may leave the pad";
    EXPECT_EQ(told[3].second, (host::Point{-80, -20}));
}

TEST_F(DrawingTest, PadThatHasGone_GivesThePointerBack) {
    int told = 0;
    auto pad = std::make_unique<PointerPad>(loop, host::Rect{0, 0, 100, 100}, [&](auto, auto) { ++told; });
    Act({"mousemove", "50", "50", "click", "1"});
    ASSERT_TRUE(PumpUntil([&] { return told == 2; }));
    pad.reset();
    Act({"click", "1"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_EQ(told, 2);
}

TEST_F(DrawingTest, GrabbedKey_IsToldWhenItIsLetGo_WhateverTheLocks) {
    int taps = 0;
    KeyGrab grab(loop, kEscape, [&] { ++taps; });
    EXPECT_TRUE(grab.IsHeld());
    Act({"key", "Escape", "key", "Caps_Lock", "key", "Escape", "key", "Num_Lock", "key", "Escape", "key", "Caps_Lock",
         "key", "Escape", "key", "Num_Lock"});
    EXPECT_TRUE(PumpUntil([&] { return taps == 4; }));
}

TEST_F(DrawingTest, HeldKey_IsToldOnce) {
    int taps = 0;
    KeyGrab grab(loop, kEscape, [&] { ++taps; });
    Act({"keydown", "Escape", "sleep", "1.2"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_EQ(taps, 0);
    Act({"keyup", "Escape"});
    ASSERT_TRUE(PumpUntil([&] { return taps > 0; }));
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_EQ(taps, 1);
}

TEST_F(DrawingTest, KeyOfAnotherProgram_StaysThatOnes) {
    auto first = std::make_unique<KeyGrab>(loop, kEscape, [] {});
    EXPECT_TRUE(first->IsHeld());
    EXPECT_FALSE(KeyGrab(loop, kEscape, [] {}).IsHeld());
    first.reset();
    EXPECT_TRUE(real::WaitFor([&] { return KeyGrab(loop, kEscape, [] {}).IsHeld(); }));
    EXPECT_FALSE(KeyGrab(loop, kNoKey, [] {}).IsHeld()) << "this keyboard has no such key";
}

TEST_F(DrawingTest, ServerThatDies_LeavesTheLoopAtRest) {
    PointerPad pad(loop, {0, 0, 100, 100}, [](auto, auto) {});
    KeyGrab grab(loop, kEscape, [] {});
    server.Kill();
    bool done = false;
    int turns = 0;
    const auto timer = loop.StartTimer(u"t", 100, host::TimerReentry::Skipped, [&] { done = true; });
    loop.RunUntil([&] { return ++turns, done; });
    EXPECT_LT(turns, 20) << "a dead connection must not keep the loop busy";
    pad.Raise();
}

TEST(DrawingWithoutDisplay, TakesNothing) {
    const real::ScopedEnv none("DISPLAY", "");
    RecordingTrace trace;
    EventLoop loop(trace);
    PointerPad pad(loop, {0, 0, 100, 100}, [](auto, auto) {});
    EXPECT_EQ(pad.Window(), 0u);
    pad.Raise();
    EXPECT_FALSE(KeyGrab(loop, kEscape, [] {}).IsHeld());
}

}  // namespace
}  // namespace kestrum::platform
