#include "adapters/media/MediaInspector.h"

#include <algorithm>

namespace kestrum::adapters {
namespace {

/// A position as the core has it; what is beyond it is damage and comes out as the largest one.
std::int32_t Position(std::int64_t ms) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(ms, 0, 0x7FFFFFFF));
}

host::PackageInspection FromWire(const wire::Inspection& found) {
    host::PackageInspection answer;
    answer.kind = static_cast<host::FileKind>(found.kind);
    answer.reason = host::FromUtf8(found.reason);
    answer.state = static_cast<host::PackageState>(found.soundness);
    answer.formatVersion = found.formatVersion;
    answer.holdsMedia = found.holdsMedia != 0;
    answer.hasProject = found.hasProject != 0;
    answer.entriesWait = found.entriesWait != 0;
    answer.lengthMs = Position(found.lengthMs);
    answer.headLengthMs = Position(found.headLengthMs);
    for (const std::int64_t ms : found.keyFrames) answer.keyFrames.push_back(Position(ms));
    for (const wire::Chapter& chapter : found.chapters)
        answer.chapters.push_back({Position(chapter.ms), host::FromUtf8(chapter.title)});
    for (const wire::DamagedPiece& piece : found.damages)
        answer.damages.push_back(
            {static_cast<host::DamageKind>(piece.kind), Position(piece.beginMs), Position(piece.endMs), piece.bytes});
    answer.cancelled = found.cancelled != 0;
    return answer;
}

}  // namespace

host::PackageInspection MediaInspector::Inspect(const String& package, bool everything,
                                                std::function<void(std::int32_t)> onPercent) {
    m_worker.OnProgress(std::move(onPercent));
    const wire::InspectRequest request{host::ToUtf8(package), everything};
    const auto found = m_worker.AskPumping<wire::Inspection>(wire::Kind::kInspect, request);
    m_worker.OnProgress(nullptr);
    if (found) return FromWire(*found);
    host::PackageInspection failed;
    failed.kind = host::FileKind::Unreadable;
    failed.state = host::PackageState::Damaged;
    failed.reason = host::FromUtf8(m_worker.LastFailure().sentence);
    if (failed.reason.empty()) failed.reason = u"The media worker ended while it read the file.";
    return failed;
}

void MediaInspector::Cancel() {
    m_worker.Ask<wire::Nothing>(wire::Kind::kCancel, wire::Nothing{});
}

}  // namespace kestrum::adapters
