// The way of the media into the package: a queue and the thread that empties it. Decides how much may wait, when the
// file is flushed, when a journal may go in (behind the key frame it speaks of), and when the disk or the package has
// no room left.
//
// Thread-safe.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "media/capture/EncoderState.h"
#include "media/package/PackageWriter.h"

namespace kestrum::media {

/// How much room a recording may take; beyond either the state says so.
struct RoomLimits {
    std::int64_t largestPackage = 1'932'735'283;        ///< bytes
    std::int64_t leastFreeBytes = 100LL * 1024 * 1024;  ///< on the disk
};

class PackageFeeder {
  public:
    /// `writer` is ready for samples; `path` is its file, whose disk is watched.
    PackageFeeder(std::unique_ptr<PackageWriter> writer, std::string path, RoomLimits limits);
    /// Leaves the package as after the last flush if Finish was not called.
    ~PackageFeeder();
    PackageFeeder(const PackageFeeder&) = delete;
    PackageFeeder& operator=(const PackageFeeder&) = delete;

    void PushVideo(std::int64_t positionMs, bool key, Bytes sample);
    /// A picture of the camera; the package has a webcam track.
    void PushWebcam(std::int64_t positionMs, bool key, Bytes sample);
    /// Sound is always taken.
    void PushAudio(std::int64_t positionMs, Bytes sample);
    /// So much video waits that no further picture should be made but a key frame that was asked for.
    bool IsBehind() const;

    /// Keeps the journal in the package as soon as the picture at `afterMs` is there, at the latest a second from now.
    /// False if the file takes nothing any more.
    bool PushJournal(std::string text, std::int64_t afterMs);
    /// Stores files beside the media at once. Throws media::Error.
    void StoreFiles(const StoredFiles& files);

    /// kRunning, or the first thing that went wrong.
    EncoderState State() const;
    /// End of the media that have reached the file.
    std::int64_t WrittenMs() const;
    /// Writes all that waits and closes the package with this length. Nothing may be pushed any more. Throws
    /// media::Error; the state says so too.
    void Finish(std::int64_t endMs);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
