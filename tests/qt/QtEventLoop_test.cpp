#include "adapters/qt/QtEventLoop.h"

#include "linux/LoopContract.h"
#include "qt/Screen.h"

namespace kestrum::platform {
namespace {

struct QtLoop {
    qt::Screen& screen = qt::Screen::Get();
    RecordingTrace trace;
    qt::QtEventLoop loop{trace};
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, LoopContract, QtLoop);

}  // namespace kestrum::platform
