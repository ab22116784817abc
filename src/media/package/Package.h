// The calls on a package that nobody records into from here: questions, verification, the stored files. Each call opens
// the file by itself. Reading ones work on a growing package too (another process records into it), never change a
// byte, and take time by the number of key frames, not by the size of the media; only WholeVerify reads everything.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "media/package/Error.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// Answers of IsEmpty. Only kEmpty may be thrown away.
enum class Emptiness {
    kHoldsMedia = 0,  ///< or is interrupted, being recorded, damaged, foreign or unreadable: keep it
    kEmpty = 1,       ///< a whole package of ours without media
    kMissing = 2,
};

enum class Soundness {
    kSound,
    kInterrupted,  ///< a recorder died in it: WholeVerify or any opening for writing recovers it
    kRecording,    ///< a living recorder holds it
    kDamaged,
    kForeign,  ///< not one of ours
    kMissing,
};

struct FrameDimensions {
    int width = 0;
    int height = 0;
};

/// Everything a summary shows; of an interrupted or growing package as a recovery would leave it.
struct PackageDescription {
    Soundness soundness = Soundness::kMissing;
    int formatVersion = 0;
    std::int64_t lengthMs = 0;
    std::optional<TrackConfigs> tracks;
    std::vector<std::int64_t> keyFrames;
    StoredFiles stored;  ///< the project file with journal and length merged
};

/// Called with 0 to 100.
using Progress = std::function<void(int percent)>;
/// True ends the work early.
using Cancel = std::function<bool()>;

struct VerifyResult {
    Soundness soundness = Soundness::kMissing;  ///< after a recovery that worked: kSound
    bool cancelled = false;
    std::optional<RecoveryReport> recovered;
};

/// Length in ms; 0 without media. Of a growing package: the end of what was flushed, beyond the last key frame.
std::int64_t LengthMs(const std::string& path);
/// Size of the pictures; nullopt without a video track.
std::optional<FrameDimensions> FrameSize(const std::string& path);
/// Positions of the key frames in ms, ascending.
std::vector<std::int64_t> KeyFrames(const std::string& path);
/// Major times 256 plus minor; 0 for what is not one of ours. Throws if the file cannot be read.
int FormatVersion(const std::string& path);
/// Whether its pictures and sound must be decrypted first. Throws if the file cannot be read.
bool IsEncrypted(const std::string& path);
/// Never throws.
Emptiness IsEmpty(const std::string& path);
/// Webcam size class: 0 none, 2 from 240x180, 4 from 320x240, 1 below.
int VideoAttribute(const std::string& path);
/// Nominal audio bit rate in kbit/s, 0 if unknown.
int AudioBitrate(const std::string& path);
PackageDescription Describe(const std::string& path);

/// Looks at head and tail only. Never throws.
Soundness QuickVerify(const std::string& path);
/// Reads everything and compares the check sums; an interrupted package is recovered first. A package that a living
/// recorder holds is left alone (kRecording). Throws only for a failure while writing.
VerifyResult WholeVerify(const std::string& path, const Progress& progress, const Cancel& cancel);
/// Recovers an interrupted package; nullopt if there was nothing to do.
std::optional<RecoveryReport> Recover(const std::string& path);

/// All attachments but the journal. The project file of an interrupted or growing package has journal and length
/// merged.
StoredFiles ReadStored(const std::string& path);
/// Stores files, all or none; makes an empty package where there is none; recovers an interrupted one first, whose
/// entries are added to the given project file if it does not know them. Returns what was recovered.
std::optional<RecoveryReport> WriteStored(const std::string& path, const StoredFiles& files);

/// Reads the four files for a StoreFiles or WriteStored.
StoredFiles LoadFiles(const StoredPaths& paths);
/// ReadStored into files; one stored as absent is not written. False, and nothing written, without a project file.
bool ExtractStored(const std::string& path, const StoredPaths& targets);

/// Reads a package from memory as all the functions above would, for the fuzzer; returns the number of key frames, -1
/// if it is none of ours. Never throws.
int ProbePackage(std::span<const std::uint8_t> file);

}  // namespace kestrum::media
