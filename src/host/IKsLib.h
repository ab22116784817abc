// The media library: capture, devices, mixer, canvas, and the package as a file. One instance serves the program; the
// adapter stands on the media worker. Calls are synchronous; none waits longer than a stated bound. Nothing throws but
// where a comment says so: a worker that is gone answers as a failure, `EncoderState` says -1, and the next call starts
// a new worker.
#pragma once

#include <cstdint>
#include <functional>

#include "host/IMonitors.h"
#include "host/String.h"

namespace kestrum::host {

/// States of the encoder; what each one means for the caller is the table in modEncoder.
namespace encoder_state {
constexpr std::int32_t kGone = -1;  ///< before a start: busy; later: the worker is gone
constexpr std::int32_t kFileError = 3;
constexpr std::int32_t kWaveOverflow = 4;
constexpr std::int32_t kVideoOverflow = 5;
constexpr std::int32_t kAudioOverflow = 6;
constexpr std::int32_t kCursorOverflow = 7;
constexpr std::int32_t kScreenOverflow = 8;
constexpr std::int32_t kOutOfMemory = 9;
constexpr std::int32_t kLargestSize = 10;
constexpr std::int32_t kCursorError = 11;
constexpr std::int32_t kResolutionChanged = 12;
constexpr std::int32_t kDiskFull = 13;
}  // namespace encoder_state

/// The four files stored in a package, as paths; an empty path takes no part.
struct StoredFiles {
    String projectFile;
    String cursorImage;
    String photo;
    String indexText;
};

/// A device of a running recording was lost, and the recording goes on without it; or it is back.
struct DeviceNotice {
    bool isCamera = false;
    bool isBack = false;
    String device;  ///< under the name that people choose it by
};

class IKsLib {
  public:
    virtual ~IKsLib() = default;

    // --- Recording -------------------------------------------------------------------------------------------------

    /// Forgets the devices of the last job. 0 is failure.
    virtual std::int32_t ksResetAVDevice() = 0;
    /// State of the encoder, see encoder_state; 0 to 2 are running or idle.
    virtual std::int32_t EncoderState() = 0;
    /// Names the output and the two files stored in it at the start; makes the folder `package` + "._tmp".
    virtual std::int16_t EncoderSetFilename(const String& package, const String& projectFile,
                                            const String& indexText) = 0;
    /// The rectangle to capture in physical desktop pixels; all four corners inclusive.
    virtual std::int16_t SetCaptureArea(std::int32_t left, std::int32_t top, std::int32_t right,
                                        std::int32_t bottom) = 0;
    virtual void SetCaptureFrameRate(std::int32_t framesPerSecond) = 0;
    /// 1 records movies without the help of the graphics hardware, 0 with it. Systems of version 60 and above decide
    /// that by themselves.
    virtual void SetHardAcceleration(std::int32_t disabled) = 0;
    /// Makes the capture include layered windows.
    virtual void EncoderTransparent() = 0;
    /// -1 records the system's sound too, 0 does not. The last value outlives a job.
    virtual void EnableRecSystemAudio(std::int32_t enable) = 0;
    /// Opens the devices chosen before.
    virtual void EncoderInitDevice() = 0;
    /// 0: no usable device; -1: no audio device; else the devices are open.
    virtual std::int32_t EncoderQueryDevice() = 0;
    /// Undoes EncoderInitDevice.
    virtual void EncoderCloseDevice() = 0;
    /// Opens the package, stores the files and starts. Appends to a package with media: the first picture is a key
    /// frame at exactly the old length.
    virtual std::int16_t EncoderStart(std::int32_t mode) = 0;
    /// Asks for the end and returns when the package is finished; gives up after `timeout` tenths of a second.
    virtual void EncoderStop(std::int32_t timeout) = 0;
    /// Forces a key frame; its position in ms, 0 or less if none was made. Answers at once.
    virtual std::int32_t AddKeyFrame() = 0;
    /// Hands over the whole list of index entries as the journal text of modKspXml; kept in the package with the media
    /// until the recording ends, so that a crash loses no entry. False if it could not be kept.
    virtual bool WriteIndexJournal(const String& journal) = 0;
    /// `onLevel` gets the audio level 0 to 100 on the core's thread from a pump; an empty function ends it.
    virtual void SetVolumeMeter(std::function<void(std::int32_t)> onLevel) = 0;
    /// `onNotice` is called on the core's thread from a pump, from the opening of the devices to the stop; an empty
    /// function ends it. Where the sound is lost silence is recorded, and the same device is taken again when it is
    /// back.
    virtual void SetDeviceNotice(std::function<void(const DeviceNotice&)> onNotice) = 0;
    /// True if every pixel of the rectangle has one colour, as a screen that cannot be captured shows it.
    virtual bool IsPictureUniform(const Rect& area) = 0;

    // --- Pen, canvas, whiteboard -----------------------------------------------------------------------------------

    virtual void StartDraw() = 0;
    virtual void EndDraw() = 0;
    virtual void CreateCanvas() = 0;
    virtual void DeleteCanvas() = 0;
    virtual std::int32_t CanvasEnabled() = 0;  ///< 1 while open
    virtual void CreateWhiteboard() = 0;
    virtual void DeleteWhiteboard() = 0;
    virtual std::int32_t WhiteboardEnabled() = 0;  ///< 1 while open
    /// Width in pixels, colour 0x00BBGGRR.
    virtual void SetPenAttr(std::int32_t width, std::int32_t colour) = 0;

    // --- Devices and mixer -----------------------------------------------------------------------------------------

    /// Devices as text: entries `name##kind` joined by "_&&_". 1 is success; `devices` is set then.
    virtual std::int32_t ksQueryVideoDevice(String& devices) = 0;
    virtual std::int32_t ksQueryAudioDevice(String& devices) = 0;
    virtual std::int32_t ksSetVideoDevice(const String& name) = 0;  ///< non-zero is success
    virtual std::int32_t ksSetAudioDevice(const String& name) = 0;  ///< non-zero is success
    /// Opens the devices for a preview. -1: no audio device or locked; 1: the video device failed; 2, 3: success.
    virtual std::int32_t CheckAVDevice(std::uint64_t window, std::int32_t width, std::int32_t height,
                                       const String& videoDevice) = 0;
    virtual void CloseAVDevice() = 0;
    /// Names of the record line's switches, separated by ";"; the mixer is that of the microphone set before.
    virtual String CreateAudioMixer() = 0;
    virtual void DeleteAudioMixer() = 0;
    virtual std::int32_t GetVolumeScale() = 0;                   ///< 0 to 10; below 0 is failure
    virtual std::int32_t SetVolumeScale(std::int32_t step) = 0;  ///< non-zero is success
    virtual std::int32_t MixerGet(std::int32_t index) = 0;
    virtual void MixerSet(std::int32_t index, std::int32_t on) = 0;
    /// 0 to 100, while the devices are open for a preview or a recording runs; 5 or less is silence.
    virtual std::int32_t GetAudioVolume() = 0;

    // --- Audio test: a few seconds recorded into a raw file and played back ----------------------------------------

    /// Records from the microphone set before into `file` (little-endian 16-bit samples, mono, 48000 Hz).
    virtual void StartTestRecordAudio(const String& file) = 0;
    virtual void StopTestRecordAudio() = 0;
    virtual std::int32_t GetTestRecordTime() = 0;  ///< milliseconds recorded
    /// Plays such a file on the default output; one that is missing or empty is at its end at once.
    virtual void PlayTestAudio(const String& file) = 0;
    virtual void StopTestAudio() = 0;
    virtual std::int32_t GetPlayTestTime() = 0;  ///< milliseconds played; negative at the end

    // --- The package -----------------------------------------------------------------------------------------------

    /// Media length in ms, of a growing file too; lies beyond the last key frame. 0 without media.
    virtual std::int32_t GetLength(const String& package) = 0;
    /// Frame size; leaves both alone and answers 0 on failure.
    virtual std::int32_t GetFileHeaderDim(const String& package, std::int32_t& width, std::int32_t& height) = 0;
    /// Frame size from the list of key frames; as GetFileHeaderDim for packages of ours.
    virtual std::int32_t GetKeyframeDim(const String& package, std::int32_t& width, std::int32_t& height) = 0;
    /// 0: holds media (or cannot be read); 1: a whole package of ours without media; 2: missing.
    virtual std::int32_t IsEmptyProject(const String& package) = 0;
    /// Writes the stored files to the given paths; one that is stored as absent is not written. -1 is failure.
    virtual std::int32_t GetExtendDataFromProject(const String& package, const StoredFiles& targets) = 0;
    /// Stores the files in place, all or none; makes an empty package where there is none. -1 is failure.
    virtual std::int32_t SetExtendDataInProject(const String& package, const StoredFiles& sources) = 0;
    /// 1: encrypted; -1: cannot be opened; anything else passes.
    virtual std::int32_t GetECTState(const String& package) = 0;
    virtual std::int32_t verifyKsFile(const String& package) = 0;  ///< not zero: sound. Quick
    /// Not zero: sound, an interrupted recording having been recovered. May take minutes; pumps events (re-enters).
    virtual std::int32_t verifyWholeKsFile(const String& package) = 0;
    /// What the last recovery by this library brought back, as a sentence for the user; empty if there was none.
    virtual String LastRecovery() = 0;
    /// Major version times 256 plus minor version; 0 if unreadable.
    virtual std::int32_t GetFileFormatVersion(const String& package) = 0;
    /// Writes the key-frame positions in ms, one decimal number a line, ascending. -1 is failure.
    virtual std::int32_t ListIndex(const String& package, const String& textFile) = 0;
    /// Webcam size class: 0 none, 2 or more 240x180, 4 or more 320x240.
    virtual std::int32_t GetVideoAttribute(const String& package) = 0;
    /// Audio bitrate of the media in kbit/s, 0 if unknown.
    virtual std::int32_t GetAudioBitrate(const String& package) = 0;
    /// Compression state of the package: 0 as recorded.
    virtual std::int32_t GetOptimizeLevel(const String& package) = 0;
    /// Draws `source` scaled to fit into the picture file `target`, keeping that one's size. -1 is failure.
    virtual std::int32_t DrawImageToFit(const String& target, const String& source) = 0;
};

}  // namespace kestrum::host
