// The MP4 file being written: under a temporary name until it is whole, with the index as chapters and the tables in
// front, so that a browser can start before it has everything.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "media/convert/AvHandles.h"
#include "media/convert/ConvertRequest.h"

namespace kestrum::media {

/// Thrown by Mp4Output when the movie passes its size limit.
struct SizeLimitReached {};

class Mp4Output {
  public:
    /// Opens `path` + ".part". `sizeLimit` in bytes, 0 for none.
    Mp4Output(const std::string& path, std::int64_t sizeLimit);
    /// Deletes the temporary file unless Finish was reached.
    ~Mp4Output();
    Mp4Output(const Mp4Output&) = delete;
    Mp4Output& operator=(const Mp4Output&) = delete;

    /// A new track; its parameters and time base are the caller's to fill before Begin. Lives as long as this object.
    AVStream& AddTrack();
    /// Writes the head. `lengthMs` ends the last chapter.
    void Begin(const std::vector<ConvertEntry>& chapters, std::int64_t lengthMs);
    /// Takes the packet's content; time stamps in `timeBase`, non-decreasing for each track.
    void Write(AVStream& track, AVPacket& packet, AVRational timeBase);
    /// Ends the movie: the last picture stays until `lengthMs`, the tables move to the front, the file gets its name.
    void Finish(std::int64_t lengthMs);

  private:
    void AddChapters(const std::vector<ConvertEntry>& chapters, std::int64_t lengthMs);
    void WriteNow(AVPacket& packet);
    void FlushHeld(std::int64_t lengthMs);
    void CheckSize(std::int64_t bytes) const;

    std::string m_path;
    std::string m_temporary;
    std::int64_t m_sizeLimit;
    AVFormatContext* m_format = nullptr;
    AvHandle<AVPacket> m_held;  ///< the newest picture: how long it stays is known when the next one comes
};

}  // namespace kestrum::media
