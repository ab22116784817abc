// F8 on a real show: the pen and its colours.
#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "addin/Session.h"
#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

constexpr std::int32_t kF8 = 119;
constexpr std::uint32_t kGoingUp = 0x80000000;
constexpr std::int32_t kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kYellow = 0x00FFFF;

class PenSwitch : public testing::Test {
  protected:
    PenSwitch() {
        desk.office->Open(Text(folder.CopyOfLecture("lecture.pptx")));
        session.Connect();
    }
    ~PenSwitch() override { session.Disconnect(); }

    /// The key as the hooks tell it; what it does comes from a pump.
    void PressF8(host::ISlideShowView& view, std::int32_t wantedColour) {
        world.hooks.Key(0, kF8, 0);
        world.hooks.Key(0, kF8, kGoingUp);
        EXPECT_TRUE(desk.PumpUntil([&] {
            return view.PointerType() == host::PointerType::Pen && view.PointerColor() == wantedColour;
        })) << std::hex
            << wantedColour << ", but the pen is " << view.PointerColor();
    }

    OfficeDesk desk;
    TempFolder folder;
    sim::World world;
    host::Host ports = world.HostWith({.app = &desk.App(), .loop = &desk.loop});
    Session session{ports};
};

TEST_F(PenSwitch, F8_TurnsThePenOnInItsColour_ThenGoesThroughTheColours) {
    const auto window = desk.Run();
    const auto view = window->View();
    view->SetPointerType(host::PointerType::Arrow);
    view->SetPointerColor(kBlue);
    PressF8(*view, kBlue);
    PressF8(*view, kYellow);
    PressF8(*view, kRed);
    PressF8(*view, kGreen);
    PressF8(*view, kBlue);
    view->SetPointerColor(0x204060);
    PressF8(*view, kRed);
    view->Exit();
}

}  // namespace
}  // namespace kestrum::impress
