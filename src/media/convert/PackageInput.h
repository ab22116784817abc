// A package opened for conversion: its picture and sound tracks, length, key frames and chapters.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "media/convert/AvHandles.h"
#include "media/convert/ConvertRequest.h"

namespace kestrum::media {

class PackageInput {
  public:
    /// Fails with media::Error if the file cannot be read or holds no picture track.
    explicit PackageInput(const std::string& path);

    /// The screen's track: the first with pictures.
    AVStream& Video() const { return *m_video; }
    /// The sound track, null if there is none.
    AVStream* Audio() const { return m_audio; }
    /// The webcam's track, the second with pictures; null if there is none. Read passes it over until it is asked for.
    AVStream* Camera() const { return m_camera; }
    void ReadCameraToo();
    std::int64_t LengthMs() const { return m_lengthMs; }
    /// True if there is a key frame at exactly each of `positions` (ms), by the file's own list. Reading that list
    /// jumps: what Read gives next is not what it would have given.
    bool HasKeyFramesAt(const std::vector<std::int64_t>& positions);
    std::vector<ConvertEntry> Chapters() const;

    /// The next packet of a track; false at the end. Packets of other tracks are passed over.
    bool Read(AVPacket& packet) const;
    /// Where a packet of Read lies, ms.
    std::int64_t PositionOf(const AVPacket& packet) const;

  private:
    void PickTracks();

    AvHandle<AVFormatContext> m_input;
    AVStream* m_video = nullptr;
    AVStream* m_audio = nullptr;
    AVStream* m_camera = nullptr;
    std::int64_t m_lengthMs = 0;
};

/// True if a picture of the recording at `path` begins at `fromMs` or later. Reads up to that picture. Errors as of
/// PackageInput.
bool HasPictureFrom(const std::string& path, std::int64_t fromMs);

/// `timestamp` in `timeBase` as ms, rounded to nearest.
std::int64_t ToMs(std::int64_t timestamp, AVRational timeBase);

}  // namespace kestrum::media
