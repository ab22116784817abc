#include "apps/commandline/NoOffice.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "host/Error.h"

namespace kestrum::app {
namespace {

TEST(NoOffice, HasNoCountOfPresentations) {
    NoOffice office;
    EXPECT_THROW(office.PresentationCount(), host::Error) << "zero would mean that no recording can be running";
    EXPECT_EQ(office.SlideShowWindowCount(), 0);
}

}  // namespace
}  // namespace kestrum::app
