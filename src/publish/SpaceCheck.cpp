#include "publish/SpaceCheck.h"

#include <algorithm>

#include "support/Numbers.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum::publish {

namespace {

/// Page, cover, tables.
constexpr std::int64_t kOverhead = 8 << 20;
/// What sound takes at most, kbit/s.
constexpr std::int64_t kSoundKbps = 128;

std::int64_t BytesNeeded(const support::Context& c, std::int32_t kbps) {
    if (kbps <= 0) return c.host.fs.FileSize(c.support.packagePath) + kOverhead;
    const std::int64_t lengthMs = c.host.ksLib.GetLength(c.support.packagePath);
    return std::max<std::int64_t>(lengthMs, 0) * (kbps + kSoundKbps) / 8 + kOverhead;
}

String Megabytes(std::int64_t bytes) {
    return ToText(static_cast<std::int32_t>(bytes >> 20));
}

}  // namespace

String SpaceWarning(const support::Context& c, std::int32_t kbps) {
    try {
        const std::int64_t needed = BytesNeeded(c, kbps);
        const std::int64_t available = c.host.fs.FreeBytes(c.support.packagePath);
        if (available >= needed) return {};
        const String text = modLanguage::GetResString(
            c, u"frmExportMp4", u"msgLittleSpace",
            u"The movie may need %s1 MB, but the disk has only %s2 MB left. Make room before you publish.");
        return modGlobal::Replace(modGlobal::Replace(text, u"%s1", Megabytes(needed)), u"%s2", Megabytes(available));
    } catch (const host::Error&) {
        return {};
    }
}

}  // namespace kestrum::publish
