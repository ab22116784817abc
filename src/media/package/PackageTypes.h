// The plain values that go into a package and come out of it. Positions and lengths are milliseconds on the package's
// time line; file names and texts are UTF-8.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrum::media {

using Bytes = std::vector<std::uint8_t>;

/// One H.264 track; samples are length-prefixed NAL units as `avcC` (ISO/IEC 14496-15) describes them.
struct VideoTrackConfig {
    int width = 0;
    int height = 0;
    Bytes avcC;
};

/// One AAC track; samples are raw access units without ADTS headers.
struct AudioTrackConfig {
    int sampleRate = 0;
    int channels = 0;
    int bitsPerSecond = 0;  ///< nominal bit rate, 0 if unknown
    Bytes audioSpecificConfig;
};

struct TrackConfigs {
    VideoTrackConfig video;
    std::optional<AudioTrackConfig> audio;
    /// The camera's pictures, beside the screen's in `video`.
    std::optional<VideoTrackConfig> webcam = std::nullopt;
};

/// The names under which the four stored files and the journal lie in the package.
constexpr const char* kProjectFileName = "project.ksp";
constexpr const char* kCursorImageName = "cursor.gif";
constexpr const char* kPhotoName = "photo.gif";
constexpr const char* kIndexTextName = "inteIndex.txt";
constexpr const char* kJournalName = "journal.txt";

/// Stored files by name. As an order to store: `nullopt` stores the file as absent, a name that is not in the map keeps
/// what the package holds. As an answer: only what is there, never `nullopt`.
using StoredFiles = std::map<std::string, std::optional<Bytes>>;

/// The four stored files as paths. As an order to store: an empty path keeps what the package holds, a path without a
/// file stores "absent". As an order to read: an empty path leaves the file out.
struct StoredPaths {
    std::string projectFile;
    std::string cursorImage;
    std::string photo;
    std::string indexText;
};

/// One index entry as the journal keeps it.
struct JournalEntry {
    std::int64_t pos = 0;  ///< ms; below 0 for an entry without a place in the media
    std::string recDate;
    std::string title;
    std::string url;
};

/// What a recovery brought back.
struct RecoveryReport {
    int entries = 0;              ///< index entries that the project file holds now
    int entriesWithoutMedia = 0;  ///< entries left out because nothing of them was recorded
    std::int64_t lengthMs = 0;    ///< length of the media that was kept
    std::int64_t bytesCut = 0;    ///< size of the torn piece cut off the end
    bool mediaChanged = false;    ///< media had to be finished; otherwise only the index, or a left-over piece was cut
    bool indexPending = false;    ///< no project file was stored yet: the entries wait for one
};

/// A place to seek to: the first block of a cluster.
struct CueEntry {
    std::int64_t ms = 0;
    std::uint64_t cluster = 0;  ///< file position
    std::uint64_t track = 1;    ///< 1 for a key frame; 2 where only sound was recorded
};

}  // namespace kestrum::media
