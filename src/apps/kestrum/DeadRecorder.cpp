#include "apps/kestrum/DeadRecorder.h"

#include <fcntl.h>
#include <sys/file.h>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/LinuxKsHook.h"
#include "support/modConfig.h"

namespace kestrum::app {
namespace {

constexpr char16_t kTokens[] = u"tokens\\PowerPoint";

bool RecorderIsAlive() {
    const platform::Descriptor lock(
        open(platform::LinuxKsHook::DefaultLockFile().c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    return lock && flock(lock.Get(), LOCK_EX | LOCK_NB) != 0;
}

}  // namespace

void DisarmMarkerOfDeadRecorder(const support::Context& c) {
    if (modConfig::GetSetting(c, kTokens, u"recording", u"0") != u"1" || RecorderIsAlive()) return;
    modConfig::SaveSetting(c, kTokens, u"recording", u"0");
    modConfig::SaveSetting(c, kTokens, u"project", u"");
}

}  // namespace kestrum::app
