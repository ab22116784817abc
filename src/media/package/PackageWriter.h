// A package open for recording. Decides in which order bytes reach the file, so that a kill at any moment leaves a
// package that is whole or can be recovered: media costs at most what was not flushed yet, an index entry nothing once
// its journal was written.
//
// Not thread-safe: the caller holds one mutex around all calls of one writer. The package stays locked against other
// writers from Open to Close or the destructor; readers of any process may look at the growing file meanwhile. All
// functions throw media::Error; after a kDiskFull or kIo the writer can still be closed once there is space again, and
// what was flushed before is safe in any case.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "media/package/Error.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

class IStorage;

class PackageWriter {
  public:
    /// Opens `path` for recording: makes an empty package where there is none, else takes the package there, recovering
    /// it first if a recorder died in it. Nothing is changed if it throws kNotAPackage, kLocked, kNoPermission.
    static std::unique_ptr<PackageWriter> Open(const std::string& path);
    /// The same on a storage that is open and locked already and holds a package; tests make it fail.
    static std::unique_ptr<PackageWriter> Open(std::unique_ptr<IStorage> storage);

    /// Leaves the file as after the last Flush if Close was not called: the next opening recovers it.
    ~PackageWriter();
    PackageWriter(const PackageWriter&) = delete;
    PackageWriter& operator=(const PackageWriter&) = delete;

    /// What Open recovered; empty if the package was whole or new.
    const std::optional<RecoveryReport>& Recovered() const;
    /// Length of the media found at Open, 0 for none: the position of the first picture of this recording.
    std::int64_t StartMs() const;
    /// The tracks of a package that holds media: a recording appended to it must fit them (frame size, sample rate,
    /// channels; parameter sets that differ from `avcC` go into the key frames). Empty without media.
    const std::optional<TrackConfigs>& ExistingTracks() const;
    /// Sets the tracks; needed exactly once and before the first sample if ExistingTracks is empty, else kBadCall.
    void SetTracks(const TrackConfigs& tracks);

    /// Adds one picture; returns the position it has in the file, which is `positionMs` unless that is not behind the
    /// last picture: then the next free millisecond. The first one must be a key frame.
    std::int64_t WriteVideo(std::int64_t positionMs, bool key, std::span<const std::uint8_t> sample);
    /// Adds one access unit; a position before StartMs or not behind the last one is lifted. Returns its position.
    std::int64_t WriteAudio(std::int64_t positionMs, std::span<const std::uint8_t> sample);
    /// Adds one picture of the webcam; positions as with WriteAudio.
    std::int64_t WriteWebcam(std::int64_t positionMs, bool key, std::span<const std::uint8_t> sample);
    /// Hands everything given so far to the system: from here on a kill of the process does not cost it. Call it every
    /// 100 ms; nothing else writes samples to the file, but a buffer of 1 MiB that is full.
    void Flush();
    /// Flush, and waits until it is on the disk (a loss of power). Call it every 1 to 5 s.
    void Sync();

    /// Replaces the journal by `text`: the whole list of index entries, see Journal.h. Flushes the media before, so
    /// that an entry never lies beyond them. Atomic and on the disk when it returns.
    void WriteJournal(std::string_view text);
    /// Stores files beside the media, all or none, atomically; others keep what they hold.
    void StoreFiles(const StoredFiles& files);

    /// End of the samples written so far, at least StartMs.
    std::int64_t LengthMs() const;
    /// Finishes the package: key-frame list, length, and the journal merged into the stored project file. `endMs` is
    /// the end of the recording on the time line; the length becomes the larger of it and LengthMs. The lock is
    /// given up; LengthMs is the one call that is left.
    void Close(std::int64_t endMs);

  private:
    class Impl;
    explicit PackageWriter(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
