// Where things lie in a package. The head is one sector that is always written whole; the tracks and the stored files
// have fixed places behind it, so that each can be switched over by one small write within a sector; the media follow
// and only ever grow at the end. docs/package.md has the drawing.
#pragma once

#include <cstdint>
#include <optional>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// The unit that a disk writes whole or not at all.
constexpr std::uint64_t kSectorSize = 512;
constexpr std::uint64_t kTracksAt = 512;
constexpr std::uint64_t kRegionAt = 4096;
constexpr std::uint64_t kSlotSize = 1 << 20;
constexpr std::uint64_t kSecondSlotAt = kRegionAt + kSlotSize;
constexpr std::uint64_t kMediaAt = kRegionAt + 2 * kSlotSize;

/// The format written by this program: major version times 256 plus minor version.
constexpr int kFormatVersion = 0x0800;

/// What the head says. Positions are file positions, 0 for "none".
struct Head {
    int formatVersion = kFormatVersion;
    Bytes segmentUuid;         ///< 16 bytes
    std::int64_t dateUtc = 0;  ///< nanoseconds since 2001-01-01
    std::uint64_t tracks = 0;
    std::uint64_t cues = 0;
    std::uint64_t attachments = 0;  ///< only of a set behind the media
    std::uint64_t chapters = 0;     ///< of the same set
    std::optional<double> durationMs;
};

/// The head sector: EBML header, segment, seek head, info.
Bytes BuildHead(const Head& head);
/// File position to which the positions in the file are relative.
std::uint64_t SegmentDataPosition();
/// A head of a new package with an identity of its own.
Head NewHead();

/// The room of the tracks, from kTracksAt to kRegionAt. Throws kBadCall if the configuration is too big for it.
Bytes BuildTracksRoom(const TrackConfigs& tracks);

/// The first kRegionAt bytes and a few more of a package without tracks, files and media; the file is kMediaAt long.
Bytes BuildEmptyPackage();

/// Number of bytes to skip from `position`, so that an element header at the end of it lies within one sector: 0 or
/// at least 2, as much as a Void needs.
std::uint64_t PaddingBefore(std::uint64_t position);

}  // namespace kestrum::media
