#include "adapters/linux/EventLoop.h"

#include <sys/eventfd.h>

#include "linux/LoopContract.h"

namespace kestrum::platform {
namespace {

struct PlainLoop {
    RecordingTrace trace;
    EventLoop loop{trace};
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Plain, LoopContract, PlainLoop);

TEST(EventLoopLifetime, HandlesMayOutliveTheLoop) {
    RecordingTrace trace;
    const Descriptor event(eventfd(0, EFD_CLOEXEC));
    auto loop = std::make_unique<EventLoop>(trace);
    auto timer = loop->StartTimer(u"t", 1, host::TimerReentry::Skipped, [] {});
    auto watch = loop->WatchDescriptor(event.Get(), [] {});
    loop.reset();
    timer.reset();
    watch.reset();
    SUCCEED();
}

}  // namespace kestrum::platform
