// One recording: a rectangle of the screen and the chosen sound into one package. Decides when a picture is taken, what
// begins where on the time line, and how a recording starts, fails and ends.
//
// Threads of its own for pictures, sound and file. The functions are called from one thread; none but Start and Stop
// waits for anything.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "media/capture/Area.h"
#include "media/capture/CameraThread.h"
#include "media/capture/EncoderState.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

class ScreenCast;

struct RecorderSettings {
    std::string display;  ///< empty: the environment's
    Area area;
    std::shared_ptr<ScreenCast> cast;       ///< where the pixels come from, if not from the display
    int framesPerSecond = 10;               ///< at most, 1 to 60
    std::vector<std::string> soundSources;  ///< names as the sound server knows them; empty: no sound track
    bool stereo = false;
    int audioKbps = 64;     ///< bit rate of the sound in a new package
    CameraSettings camera;  ///< even sides; a package with media keeps the size of the camera it has
};

struct RecorderStatistics {
    std::int64_t pictures = 0;
    std::int64_t keyFrames = 0;
    std::int64_t changedPictures = 0;  ///< the others were sent though nothing changed
    std::int64_t videoBytes = 0;
    std::int64_t audioBytes = 0;
    std::int64_t writtenMs = 0;  ///< end of the media in the file
    bool soundComplete = true;   ///< false while a source is lost and silence stands for it
};

/// A device of a running recording was lost, or is back.
struct DeviceChange {
    std::string name;  ///< as in the settings
    bool isCamera = false;
    bool isBack = false;
};
using DeviceChangeSink = std::function<void(const DeviceChange&)>;

class Recorder {
  public:
    /// Gets the level of the sound (LevelMeter.h), 0 to 100, about 20 times a second, on a thread of the recorder.
    using LevelSink = std::function<void(int)>;

    explicit Recorder(RecorderSettings settings, LevelSink onLevel);
    /// `onChange` gets each device that was lost while the recording ran, and each that is back, on a thread of the
    /// recorder. Call it before Start.
    void OnDeviceChange(DeviceChangeSink onChange);
    /// A recording that runs is left as after its last flush; call Stop.
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Opens the sound sources and the camera ahead, so that Start waits for nothing. Throws CaptureError where there
    /// is no sound. Without the camera the recording goes on, as with one that is lost.
    void OpenDevices();
    /// Opens or makes the package, stores the files, and records from now on. The first picture is a key frame at the
    /// length that the package had; the sound begins there too. Throws CaptureError or media::Error; then nothing runs.
    void Start(const std::string& package, const StoredPaths& files);
    /// Asks for a key frame of the screen as it is now; its position in ms. At most as far ahead of the file as one
    /// picture takes. -1 if no picture is taken any more.
    std::int64_t AddKeyFrame();
    /// The whole list of index entries (Journal.h); kept in the package behind the last key frame asked for. False if
    /// the file takes nothing any more.
    bool WriteJournal(const std::string& text);
    /// Stores files in the package that is being recorded. Throws media::Error.
    void StoreFiles(const StoredFiles& files);

    EncoderState State() const;
    RecorderStatistics Statistics() const;
    /// What Start recovered, if a recorder had died in the package.
    const std::optional<RecoveryReport>& Recovered() const;

    /// Ends the recording and finishes the package. Throws media::Error if it cannot be finished; what was flushed is
    /// safe then.
    void Stop();

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
