// Finds key frames and the end of the media by walking the clusters, for a package whose own list is not written yet:
// one that grows, and one whose recorder died. A cluster whose size is known is judged by its first block, since a key
// frame always begins a cluster; only the last ones are read block by block.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "media/package/Ebml.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

constexpr std::uint64_t kVideoTrack = 1;
constexpr std::uint64_t kAudioTrack = 2;
constexpr std::uint64_t kWebcamTrack = 3;

/// A cluster whose size was never written.
struct OpenCluster {
    std::uint64_t position = 0;
    std::uint64_t end = 0;  ///< of its last whole block
};

struct MediaScan {
    std::vector<CueEntry> cues;
    std::int64_t endMs = 0;
    bool anyCluster = false;
    std::uint64_t goodEnd = 0;  ///< behind it nothing is whole
    std::vector<OpenCluster> openClusters;
    std::vector<ebml::Element> leftovers;  ///< lists of key frames met on the way
    struct Gap {
        std::uint64_t begin, end;
    };
    std::vector<Gap> gaps;  ///< unreadable pieces in front of whole clusters; only with Damage::kSkip
};

enum class Damage { kStop, kSkip };

/// Walks from `begin` to the end of the file. `audioFrameMs` is the length of one audio access unit.
MediaScan ScanMedia(IStorage& storage, std::uint64_t begin, std::int64_t audioFrameMs, Damage damage);

/// Milliseconds of one AAC access unit, rounded up so that what is appended never overlaps.
std::int64_t AudioFrameMs(int sampleRate);

}  // namespace kestrum::media
