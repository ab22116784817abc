#include "adapters/sim/Scenario.h"

#include "adapters/sim/Failure.h"

namespace kestrum::sim {

Scenario& Scenario::At(std::chrono::milliseconds time) {
    if (time < m_time) throw Failure("a scenario goes forward in time only");
    m_time = time;
    return *this;
}

Scenario& Scenario::Do(std::function<void()> act) {
    m_world.loop.At(m_start + m_time.count(), std::move(act));
    return *this;
}

Scenario& Scenario::Command(const String& id) {
    return Do([&world = m_world, id] {
        if (!world.onCommand) throw Failure("nobody listens to the commands: set world.onCommand");
        world.onCommand(id);
    });
}

Scenario& Scenario::StartShow(std::int32_t slide) {
    return Do([&world = m_world, slide] { world.app.StartShow(slide); });
}

Scenario& Scenario::GoToSlide(std::int32_t slide) {
    return Do([&world = m_world, slide] { world.app.GoToSlide(slide); });
}

Scenario& Scenario::PressRight() {
    return Do([&world = m_world] { world.app.PressRight(); });
}

Scenario& Scenario::PressEscape() {
    return Do([&world = m_world] { world.app.PressEscape(); });
}

Scenario& Scenario::PressKey(std::int32_t keyCode) {
    return Do([&world = m_world, keyCode] { world.hooks.PressKey(keyCode); });
}

Scenario& Scenario::HookMessage(std::int32_t message) {
    return Do([&world = m_world, message] { world.ksHook.PostMessage(message); });
}

Scenario& Scenario::ClosePresentation(const String& fullName) {
    return Do([&world = m_world, fullName] { world.app.Close(fullName); });
}

Scenario& Scenario::OfficeDies() {
    return Do([&world = m_world] { world.app.Die(); });
}

Scenario& Scenario::EncoderCrashes() {
    return Do([&world = m_world] { world.ksLib.Crash(); });
}

Scenario& Scenario::EncoderReports(std::int32_t state) {
    return Do([&world = m_world, state] { world.ksLib.lastingState = state; });
}

void Scenario::Run() {
    std::int64_t end = m_start + m_time.count();
    while (m_world.loop.Elapsed() < end) m_world.loop.Advance(end - m_world.loop.Elapsed());
    m_world.loop.DoEvents();
}

}  // namespace kestrum::sim
