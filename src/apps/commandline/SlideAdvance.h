// Gives the lecture when nobody is there: shows each slide of a running show for a fixed time, steps its builds in the
// second half of that time, and ends the show after the last slide. Time counts from one start, so that the slides do
// not drift, however long a change takes; time in which the machine stood still is no slide's time.
#pragma once

#include <cstdint>
#include <memory>

#include "host/IApplication.h"
#include "host/IEventLoop.h"
#include "host/ITrace.h"

namespace kestrum::app {

class SlideAdvance {
  public:
    /// `slideMs`: how long each slide stays.
    SlideAdvance(host::IApplication& office, host::IEventLoop& loop, host::ITrace& trace, std::int32_t slideMs);

    /// The first slide's time began at this tick of the loop.
    void Begin(std::int32_t startTick);
    void Stop() { m_timer.reset(); }
    /// The last slide has had its time and the show was ended after it.
    bool Finished() const { return m_finished; }

  private:
    void Tick();
    void StepBuilds(host::ISlideShowView& view);
    void LeaveSlide(host::ISlideShowView& view);
    std::int32_t Elapsed() const;
    void LeaveOutStandstill();

    host::IApplication& m_office;
    host::IEventLoop& m_loop;
    host::ITrace& m_trace;
    const std::int32_t m_slideMs;
    std::int32_t m_start = 0;
    std::int32_t m_lastLook = 0;    ///< end of the last look at the time, ms after Begin
    std::int32_t m_slidesLeft = 0;  ///< how many slides have had their time
    std::int32_t m_nextBuild = 0;   ///< when the next build comes in, ms after Begin
    bool m_finished = false;
    std::unique_ptr<host::ITimer> m_timer;
};

}  // namespace kestrum::app
