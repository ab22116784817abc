// A small language for what the user and the office do, and when:
//     sim::Scenario(world).PressRecord().At(3s).GoToSlide(2).At(9s).PressEscape().Run();
// Each act happens from a pump at its time, wherever the program stands then: in a wait, a box, a dialog. An act whose
// time comes while the program sleeps happens at the next pump.
#pragma once

#include <chrono>
#include <functional>

#include "adapters/sim/World.h"

namespace kestrum::sim {

class Scenario {
  public:
    /// Times count from now.
    explicit Scenario(World& world) : m_world(world), m_start(world.loop.Elapsed()) {}

    /// The acts that follow happen at this time.
    Scenario& At(std::chrono::milliseconds time);
    /// The acts that follow happen this much later.
    Scenario& After(std::chrono::milliseconds time) { return At(m_time + time); }

    /// The Record button of the program.
    Scenario& PressRecord() { return Command(u"rec"); }
    /// Any other command of the program, by its id.
    Scenario& Command(const String& id);
    /// The user starts the show without the program.
    Scenario& StartShow(std::int32_t slide = 1);
    Scenario& GoToSlide(std::int32_t slide);
    Scenario& PressRight();
    Scenario& PressEscape();
    /// A key as the keyboard hooks see it, by its virtual key code (F8 is 119).
    Scenario& PressKey(std::int32_t keyCode);
    /// A message of the hook library to the program's window (0x800C is the stop hot key).
    Scenario& HookMessage(std::int32_t message);
    /// The user closes the active presentation.
    Scenario& ClosePresentation(const String& fullName);
    Scenario& OfficeDies();
    Scenario& EncoderCrashes();
    /// The encoder reports this state from now on.
    Scenario& EncoderReports(std::int32_t state);
    /// Anything else.
    Scenario& Do(std::function<void()> act);

    /// Lets everything happen, up to the time set last.
    void Run();

  private:
    World& m_world;
    std::int64_t m_start;
    std::chrono::milliseconds m_time{0};
};

}  // namespace kestrum::sim
