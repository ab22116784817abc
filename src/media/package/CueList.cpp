#include "media/package/CueList.h"

#include <algorithm>

#include "media/package/ClusterFormat.h"
#include "media/package/Layout.h"

namespace kestrum::media {

namespace {

using namespace ebml;

using Memory = std::span<const std::uint8_t>;

CueEntry ReadPoint(Memory memory, const Element& point) {
    CueEntry entry;
    ForEachChild(memory, point.data, point.End(), [&](const Element& child) {
        if (child.id == kCueTime) entry.ms = static_cast<std::int64_t>(ReadUnsigned(memory, child));
        if (child.id != kCueTrackPositions) return true;
        ForEachChild(memory, child.data, child.End(), [&](const Element& part) {
            if (part.id == kCueTrack) entry.track = ReadUnsigned(memory, part);
            if (part.id == kCueClusterPosition) entry.cluster = SegmentDataPosition() + ReadUnsigned(memory, part);
            return true;
        });
        return true;
    });
    return entry;
}

}  // namespace

Bytes BuildCues(const std::vector<CueEntry>& entries) {
    Bytes points;
    for (const CueEntry& entry : entries) {
        Bytes place;
        AppendUnsigned(place, kCueTrack, entry.track);
        AppendUnsigned(place, kCueClusterPosition, entry.cluster - SegmentDataPosition());
        AppendUnsigned(place, kCueRelativePosition, kFirstBlockOffset);
        Bytes point;
        AppendUnsigned(point, kCueTime, static_cast<std::uint64_t>(entry.ms));
        AppendBinary(point, kCueTrackPositions, place);
        AppendBinary(points, kCuePoint, point);
    }
    Bytes cues;
    AppendCheckedMaster(cues, kCues, points);
    return cues;
}

std::optional<std::vector<CueEntry>> ReadCues(IStorage& storage, const Element& cues) {
    if (CheckCrc(storage, cues) == CrcState::kWrong) return std::nullopt;
    // The list is small against the media and read at once. Other programs need not write a check sum.
    const auto bytes = ReadExactly(storage, cues.data, cues.size);
    if (!bytes) return std::nullopt;
    const Memory memory(*bytes);
    std::vector<CueEntry> entries;
    const bool whole = ForEachChild(memory, 0, memory.size(), [&](const Element& point) {
        if (point.id == kCuePoint) entries.push_back(ReadPoint(memory, point));
        return true;
    });
    if (!whole) return std::nullopt;
    const auto earlier = [](const CueEntry& a, const CueEntry& b) { return a.ms < b.ms; };
    if (!std::is_sorted(entries.begin(), entries.end(), earlier))
        std::stable_sort(entries.begin(), entries.end(), earlier);
    return entries;
}

}  // namespace kestrum::media
