// Every request to the media worker with its answer, and the events that it sends unasked. One request is answered by
// exactly one message of the same id: kDone with the struct named beside the request, or kFailed with a Failure.
// Requests are answered in the order they came, but kVerifyWhole, kInspect and kCast, whose answers come when they are
// done.
//
// Texts are UTF-8, positions and lengths milliseconds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrum::media::protocol {

constexpr std::int32_t kVersion = 1;

enum class Kind : std::uint16_t {
    // Answers and events
    kDone = 1,
    kFailed = 2,
    kLevel = 3,     ///< event: Number, level of the sound 0 to 100, while a recording or a preview runs
    kProgress = 4,  ///< event with the id of its request: Number, percent
    kDevice = 5,    ///< event: DeviceChange, a device of the running recording was lost or is back

    // Recording
    kHello = 16,      ///< Nothing -> Number (kVersion)
    kListSound = 17,  ///< Nothing -> SoundList
    kProbe = 18,      ///< Probe -> Uniformity
    kOpen = 19,       ///< Settings -> Nothing: opens the sound, so that kStart waits for nothing
    kClose = 20,      ///< Nothing -> Nothing: undoes kOpen
    kStart = 21,      ///< PackageFiles -> Recovery: starts what kOpen has set up
    kKeyFrame = 22,   ///< Nothing -> Number, position, at once; -1 if no picture is taken
    kJournal = 23,    ///< Text -> Number, 1 if it is kept
    kState = 24,      ///< Nothing -> State
    kStop = 25,       ///< Nothing -> Nothing, when the package is finished
    kCast = 26,       ///< Nothing -> Nothing, when the desktop, and its user, has given the screen for kProbe and kOpen

    // Devices, beside a recording or without one
    kListCameras = 32,     ///< Nothing -> CameraList
    kPreview = 33,         ///< Preview -> Number, a PreviewResult: level (kLevel is sent) and camera picture
    kEndPreview = 34,      ///< Nothing -> Nothing
    kVolume = 35,          ///< Text, source -> Volume
    kSetVolume = 36,       ///< SetVolume -> Volume, what the source has afterwards
    kSetMute = 37,         ///< SetMute -> Nothing
    kTestRecord = 38,      ///< TestRecord -> Nothing: records into a raw file
    kEndTestRecord = 39,   ///< Nothing -> Nothing, when the file is closed
    kTestRecordTime = 40,  ///< Nothing -> Number, recorded so far
    kTestPlay = 41,        ///< Text, path -> Nothing: plays such a file
    kEndTestPlay = 42,     ///< Nothing -> Nothing
    kTestPlayTime = 43,    ///< Nothing -> Number, played so far; -1 at the end

    // The package
    kLength = 48,          ///< Text, path -> Number
    kFrameSize = 49,       ///< Text -> Size; 0x0 without pictures
    kKeyFrames = 50,       ///< Text -> NumberList
    kFormatVersion = 51,   ///< Text -> Number
    kEmptiness = 52,       ///< Text -> Number: 0 holds media, 1 empty, 2 missing
    kVideoAttribute = 53,  ///< Text -> Number
    kAudioBitrate = 54,    ///< Text -> Number, kbit/s
    kExtract = 55,         ///< PackageFiles -> Number, 0 without a project file
    kStore = 56,           ///< PackageFiles -> Recovery
    kVerifyQuick = 57,     ///< Text -> Number, see Soundness
    kVerifyWhole = 58,     ///< Text -> Verdict; sends kProgress; recovers an interrupted package
    kCancel = 59,          ///< Nothing -> Nothing: ends a kVerifyWhole, kInspect or kCast early
    kDrawFit = 60,         ///< TwoPaths -> Nothing: draws one picture into another
    kInspect = 61,         ///< InspectRequest -> Inspection; sends kProgress; changes nothing
    kEncrypted = 62,       ///< Text -> Number, 1 if the media must be decrypted first
};

struct Nothing {
    template <typename V>
    void Fields(V&) {}
};

struct Number {
    std::int64_t value = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(value);
    }
};

struct NumberList {
    std::vector<std::int64_t> values;
    template <typename V>
    void Fields(V& visit) {
        visit(values);
    }
};

struct Text {
    std::string value;
    template <typename V>
    void Fields(V& visit) {
        visit(value);
    }
};

/// Who failed, for a caller that decides by it.
enum class FailedPart : std::int32_t {
    kRequest = 0,  ///< the request itself was wrong, or came at the wrong time
    kPackage = 1,  ///< `detail` is an ErrorKind of the package
    kCapture = 2,  ///< `detail` is a CaptureErrorKind
    kOther = 3,
};

struct Failure {
    FailedPart part = FailedPart::kOther;
    std::int32_t detail = 0;
    std::string sentence;  ///< for the user
    template <typename V>
    void Fields(V& visit) {
        visit(part);
        visit(detail);
        visit(sentence);
    }
};

struct SoundDevice {
    std::string name;         ///< as the sound server knows it
    std::string description;  ///< as a person knows it
    std::int32_t isSystemSound = 0;
    std::int32_t isDefault = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(name);
        visit(description);
        visit(isSystemSound);
        visit(isDefault);
    }
};

struct SoundList {
    std::vector<SoundDevice> devices;
    template <typename V>
    void Fields(V& visit) {
        visit(devices);
    }
};

struct Camera {
    std::string name;         ///< as the worker finds it again
    std::string description;  ///< as a person knows it
    template <typename V>
    void Fields(V& visit) {
        visit(name);
        visit(description);
    }
};

struct CameraList {
    std::vector<Camera> cameras;
    template <typename V>
    void Fields(V& visit) {
        visit(cameras);
    }
};

/// A camera and the size its pictures are brought to; no name: no camera.
struct CameraChoice {
    std::string name;
    std::int32_t width = 0;
    std::int32_t height = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(name);
        visit(width);
        visit(height);
    }
};

struct Preview {
    std::string soundSource;
    std::string display;       ///< empty: the environment's
    std::uint64_t window = 0;  ///< X window that the camera's pictures are drawn into; 0: none
    CameraChoice camera;
    template <typename V>
    void Fields(V& visit) {
        visit(soundSource);
        visit(display);
        visit(window);
        visit(camera);
    }
};

enum class PreviewResult : std::int32_t {
    kNoSound = -1,  ///< nothing is open
    kNoVideo = 1,   ///< the sound is open
    kBoth = 3,      ///< all that was asked for is open
};

struct Volume {
    std::int32_t percent = 0;  ///< as the desktop shows it
    std::int32_t isMuted = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(percent);
        visit(isMuted);
    }
};

struct SetVolume {
    std::string source;
    std::int32_t percent = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(source);
        visit(percent);
    }
};

struct SetMute {
    std::string source;
    std::int32_t isMuted = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(source);
        visit(isMuted);
    }
};

struct TestRecord {
    std::string source;  ///< empty: the default one
    std::string file;
    template <typename V>
    void Fields(V& visit) {
        visit(source);
        visit(file);
    }
};

struct DeviceChange {
    std::string name;  ///< as the worker knows it
    std::int32_t isCamera = 0;
    std::int32_t isBack = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(name);
        visit(isCamera);
        visit(isBack);
    }
};

/// A rectangle of the display's desktop.
struct Probe {
    std::string display;  ///< empty: the environment's
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t fromCast = 0;  ///< 1: the display shows its own windows only, the pixels are the desktop's cast
    template <typename V>
    void Fields(V& visit) {
        visit(display);
        visit(x);
        visit(y);
        visit(width);
        visit(height);
        visit(fromCast);
    }
};

struct Uniformity {
    std::int32_t isUniform = 0;
    std::int32_t colour = 0;  ///< 0x00RRGGBB of the first pixel
    template <typename V>
    void Fields(V& visit) {
        visit(isUniform);
        visit(colour);
    }
};

struct Settings {
    Probe picture;
    std::int32_t framesPerSecond = 10;
    std::vector<std::string> soundSources;  ///< names as the sound server knows them; empty: no sound track
    std::int32_t stereo = 0;
    std::int32_t audioKbps = 64;
    CameraChoice camera;
    template <typename V>
    void Fields(V& visit) {
        visit(picture);
        visit(framesPerSecond);
        visit(soundSources);
        visit(stereo);
        visit(audioKbps);
        visit(camera);
    }
};

/// A package and where its stored files come from or go to. To store: an empty path keeps what the package holds, a
/// path without a file stores "absent".
struct PackageFiles {
    std::string package;
    std::string projectFile;
    std::string cursorImage;
    std::string photo;
    std::string indexText;
    template <typename V>
    void Fields(V& visit) {
        visit(package);
        visit(projectFile);
        visit(cursorImage);
        visit(photo);
        visit(indexText);
    }
};

struct TwoPaths {
    std::string target;
    std::string source;
    template <typename V>
    void Fields(V& visit) {
        visit(target);
        visit(source);
    }
};

/// What was brought back from an interrupted recording.
struct Recovery {
    std::int32_t happened = 0;
    std::int32_t entries = 0;
    std::int32_t entriesWithoutMedia = 0;
    std::int64_t lengthMs = 0;
    std::int64_t bytesCut = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(happened);
        visit(entries);
        visit(entriesWithoutMedia);
        visit(lengthMs);
        visit(bytesCut);
    }
};

struct State {
    std::int32_t state = 0;  ///< as IKsLib's EncoderState tells it
    std::int64_t writtenMs = 0;
    std::int64_t pictures = 0;
    std::int64_t keyFrames = 0;
    std::int64_t videoBytes = 0;
    std::int64_t audioBytes = 0;
    std::int32_t soundComplete = 1;
    template <typename V>
    void Fields(V& visit) {
        visit(state);
        visit(writtenMs);
        visit(pictures);
        visit(keyFrames);
        visit(videoBytes);
        visit(audioBytes);
        visit(soundComplete);
    }
};

struct Size {
    std::int32_t width = 0;
    std::int32_t height = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(width);
        visit(height);
    }
};

/// State of a package's bytes; the numbers of the package library.
enum class Soundness : std::int32_t {
    kSound = 0,
    kInterrupted = 1,
    kRecording = 2,
    kDamaged = 3,
    kForeign = 4,
    kMissing = 5,
};

struct Verdict {
    Soundness soundness = Soundness::kMissing;
    std::int32_t cancelled = 0;
    Recovery recovery;
    template <typename V>
    void Fields(V& visit) {
        visit(soundness);
        visit(cancelled);
        visit(recovery);
    }
};

struct InspectRequest {
    std::string package;
    std::int32_t everything = 0;  ///< 1: reads all media
    template <typename V>
    void Fields(V& visit) {
        visit(package);
        visit(everything);
    }
};

struct DamagedPiece {
    std::int32_t kind = 0;  ///< DamageKind of the package library
    std::int64_t beginMs = 0;
    std::int64_t endMs = 0;
    std::int64_t bytes = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(kind);
        visit(beginMs);
        visit(endMs);
        visit(bytes);
    }
};

struct Chapter {
    std::int64_t ms = 0;
    std::string title;
    template <typename V>
    void Fields(V& visit) {
        visit(ms);
        visit(title);
    }
};

/// What was found in a file; the fields of the package library's Inspection.
struct Inspection {
    std::int32_t kind = 0;  ///< FileKind
    std::string reason;
    Soundness soundness = Soundness::kMissing;
    std::int32_t formatVersion = 0;
    std::int32_t holdsMedia = 0;
    std::int32_t hasProject = 0;
    std::int32_t entriesWait = 0;
    std::int64_t lengthMs = 0;
    std::int64_t headLengthMs = 0;
    std::vector<std::int64_t> keyFrames;
    std::vector<Chapter> chapters;
    std::vector<DamagedPiece> damages;
    std::int32_t cancelled = 0;
    template <typename V>
    void Fields(V& visit) {
        visit(kind);
        visit(reason);
        visit(soundness);
        visit(formatVersion);
        visit(holdsMedia);
        visit(hasProject);
        visit(entriesWait);
        visit(lengthMs);
        visit(headLengthMs);
        visit(keyFrames);
        visit(chapters);
        visit(damages);
        visit(cancelled);
    }
};

}  // namespace kestrum::media::protocol
