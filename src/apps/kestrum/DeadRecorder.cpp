#include "apps/kestrum/DeadRecorder.h"

#include <fcntl.h>
#include <sys/file.h>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/LinuxKsHook.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"

namespace kestrum::app {
namespace {

bool RecorderIsAlive() {
    const platform::Descriptor lock(
        open(platform::LinuxKsHook::DefaultLockFile().c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    return lock && flock(lock.Get(), LOCK_EX | LOCK_NB) != 0;
}

}  // namespace

void DisarmMarkerOfDeadRecorder(const support::Context& c) {
    if (modConfig::GetSetting(c, modGlobal::kPowerPointTokens, u"recording", u"0") != u"1" || RecorderIsAlive()) return;
    modConfig::SaveSetting(c, modGlobal::kPowerPointTokens, u"recording", u"0");
    modConfig::SaveSetting(c, modGlobal::kPowerPointTokens, u"project", u"");
}

}  // namespace kestrum::app
