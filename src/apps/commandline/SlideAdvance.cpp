#include "apps/commandline/SlideAdvance.h"

#include <algorithm>

#include "host/ResumeNext.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kTickMs = 50;
/// The next look comes later than this only if the machine or the program stood still.
constexpr std::int32_t kLongestPauseMs = 3000;
/// Builds follow each other at this part of a slide's time, within the bounds below.
constexpr std::int32_t kBuildShare = 10;
constexpr std::int32_t kShortestBuildMs = 100;
constexpr std::int32_t kLongestBuildMs = 1000;

}  // namespace

SlideAdvance::SlideAdvance(host::IApplication& office, host::IEventLoop& loop, host::ITrace& trace,
                           std::int32_t slideMs)
    : m_office(office), m_loop(loop), m_trace(trace), m_slideMs(slideMs) {}

void SlideAdvance::Begin(std::int32_t startTick) {
    m_start = startTick;
    m_lastLook = Elapsed();
    m_slidesLeft = 0;
    m_nextBuild = m_slideMs / 2;
    m_timer = m_loop.StartTimer(u"slide advance", kTickMs, host::TimerReentry::Skipped, [this] { Tick(); });
}

std::int32_t SlideAdvance::Elapsed() const {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_loop.TickCount()) -
                                     static_cast<std::uint32_t>(m_start));
}

void SlideAdvance::LeaveOutStandstill() {
    const std::int32_t pause = Elapsed() - m_lastLook;
    if (pause > kLongestPauseMs) m_start += pause;
}

void SlideAdvance::Tick() {
    LeaveOutStandstill();
    const std::int32_t elapsed = Elapsed();
    const bool slideIsOver = elapsed >= (m_slidesLeft + 1) * m_slideMs;
    // An office that has just died or a show that has just ended is no concern of ours: its own end event comes.
    if (slideIsOver || elapsed >= m_nextBuild) {
        host::ResumeNext{m_trace}([&] {
            const auto view = m_office.SlideShowWindow(1)->View();
            slideIsOver ? LeaveSlide(*view) : StepBuilds(*view);
        });
    }
    m_lastLook = Elapsed();
}

void SlideAdvance::StepBuilds(host::ISlideShowView& view) {
    m_nextBuild += std::clamp(m_slideMs / kBuildShare, kShortestBuildMs, kLongestBuildMs);
    if (view.ClicksLeft()) view.Next();
}

void SlideAdvance::LeaveSlide(host::ISlideShowView& view) {
    ++m_slidesLeft;
    m_nextBuild = m_slidesLeft * m_slideMs + m_slideMs / 2;
    if (view.NextSlide()) return;
    m_finished = true;
    Stop();
    view.Exit();
}

}  // namespace kestrum::app
