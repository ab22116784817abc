// What the package tests share: a folder of their own, a short lecture as encoded samples, a recording of it, and other
// people's Matroska tools to read the result.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "media/package/Package.h"
#include "media/package/PackageWriter.h"
#include "media/package/Storage.h"

namespace kestrum::media::test {

/// A new folder that goes away with the object.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    std::string File(const std::string& name) const { return m_path + "/" + name; }

  private:
    std::string m_path;
};

struct Sample {
    bool video = false;
    bool key = false;
    std::int64_t ms = 0;
    Bytes data;
};

/// Encoded pictures (160x120, 10 per second, a key frame each second) and sound, in order of time.
struct Lecture {
    TrackConfigs tracks;
    std::vector<Sample> samples;
};

/// Pictures of one track.
struct PictureTrack {
    VideoTrackConfig config;
    std::vector<Sample> samples;
};

/// Encodes the picture source that ffmpeg knows as `source` ("color=red:size=320x240:rate=10"); one key frame, at the
/// beginning.
PictureTrack MakePictures(const std::string& source, int seconds);

/// Four seconds; made once per process.
const Lecture& ShortLecture();

/// The first picture, a key frame, or the first unit of sound.
const Bytes& FirstOf(const Lecture& lecture, bool video);

/// Sets the tracks if the package has none, and writes the lecture behind what it holds, flushing every 100 ms.
/// `beforeSample` is called with each sample's position.
void Record(PackageWriter& writer, const Lecture& lecture,
            const std::function<void(std::int64_t ms)>& beforeSample = nullptr);

/// Records the lecture into `path` and closes it; returns the new length.
std::int64_t RecordFile(const std::string& path);

/// A project file with entries "Slide N" at the given positions.
Bytes ProjectFile(const std::vector<std::int64_t>& positions, const std::string& duration = "00:00");
/// A journal with entries "Slide N" at the given positions.
std::string JournalOf(const std::vector<std::int64_t>& positions);
/// The positions and the duration that a project file holds, as "duration|pos|pos".
std::string IndexOf(const Bytes& projectFile);
Bytes AsBytes(const std::string& text);
std::string AsText(const Bytes& bytes);

struct ToolResult {
    int exitCode = 0;
    std::string output;  ///< standard output and standard error
};
/// Runs a program of the system with its arguments.
ToolResult RunTool(const std::vector<std::string>& command);
/// Fails the test if ffprobe, mkvinfo or mkvmerge complain about the package, or find other numbers of packets.
void ExpectReadersAgree(const std::string& path, std::size_t pictures, std::size_t soundUnits);

/// Counts the operations that change the file, and dies at one of them: writes only a part of it and lets nothing
/// through afterwards.
class DyingStorage final : public IStorage {
  public:
    struct Death {};  ///< thrown at the fatal operation and ever after
    struct Script {
        int operations = 0;    ///< counted so far
        int fatal = -1;        ///< the operation to die at; -1 for none
        double written = 0.5;  ///< the part of the fatal write that reaches the file
    };

    DyingStorage(std::unique_ptr<IStorage> inner, std::shared_ptr<Script> script)
        : m_inner(std::move(inner)), m_script(std::move(script)) {}

    std::uint64_t Size() override { return m_inner->Size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override {
        return m_inner->ReadAt(position, target);
    }
    void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override;
    void Truncate(std::uint64_t size) override;
    void Sync() override {}  // what was written counts as written: the death is the program's, not the disk's

  private:
    bool DiesNow();

    std::unique_ptr<IStorage> m_inner;
    std::shared_ptr<Script> m_script;
};

/// The file `path`, locked for writing, behind a script.
std::unique_ptr<IStorage> OpenDying(const std::string& path, const std::shared_ptr<DyingStorage::Script>& script);

}  // namespace kestrum::media::test
