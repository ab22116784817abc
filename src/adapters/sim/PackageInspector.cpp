#include "adapters/sim/PackageInspector.h"

namespace kestrum::sim {

host::PackageInspection PackageInspector::Inspect(const String& path, bool everything,
                                                  std::function<void(std::int32_t)> onPercent) {
    host::PackageInspection found;
    m_cancel = false;
    if (!m_world.fs.FileExists(path)) return found;
    const auto package = m_world.ksLib.Get(path);
    found.kind = package ? host::FileKind::Package : host::FileKind::Foreign;
    found.state = host::PackageState::Foreign;
    if (!package) return found;
    if (everything) {
        if (onPercent) onPercent(50);
        if (meanwhile) meanwhile();
        m_world.loop.DoEvents();
    }
    found.cancelled = m_cancel;
    found.state = recording          ? host::PackageState::Recording
                  : package->torn    ? host::PackageState::Interrupted
                  : package->damaged ? host::PackageState::Damaged
                                     : host::PackageState::Sound;
    found.formatVersion = package->formatVersion;
    found.holdsMedia = package->lengthMs > 0;
    found.hasProject = package->stored.contains("project");
    found.entriesWait = !package->journal.empty();
    found.lengthMs = found.headLengthMs = package->lengthMs;
    found.keyFrames = package->keyFrames;
    std::sort(found.keyFrames.begin(), found.keyFrames.end());
    found.chapters = chapters;
    found.damages = damages;
    return found;
}

}  // namespace kestrum::sim
