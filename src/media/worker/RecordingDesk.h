// The recording side of the worker: at most one recorder, from kOpen to kStop. Decides what a request means while a
// recording runs, and that the package being recorded is written through its recorder only.
//
// One thread, but for the sinks, which are called on threads of the recorder.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "media/capture/Recorder.h"
#include "media/package/Package.h"
#include "media/protocol/Messages.h"
#include "media/worker/CastDesk.h"

namespace kestrum::media {

class RecordingDesk {
  public:
    /// `casts` outlives this object.
    RecordingDesk(CastDesk& casts, std::function<void(int)> onLevel, DeviceChangeSink onDeviceChange);

    /// Throws CaptureError; nothing is open then.
    void Open(const protocol::Settings& settings);
    void Close();
    /// Throws CaptureError, media::Error, or std::logic_error if nothing is open or a recording runs.
    protocol::Recovery Start(const protocol::PackageFiles& files);
    std::int64_t KeyFrame();
    bool Journal(const std::string& text);
    protocol::State State() const;
    /// Finishes the package; without a recording nothing happens. Throws media::Error.
    void Stop();
    /// As Stop, on the worker's own account (the program that started it is gone, or the session ends): from here on
    /// the state is "gone" until the next Start.
    void Abandon();
    bool IsRecording() const { return m_isRecording; }
    /// Stores files in any package, through the recorder where it records that one. Throws media::Error.
    protocol::Recovery Store(const protocol::PackageFiles& files);

  private:
    CastDesk& m_casts;
    const std::function<void(int)> m_onLevel;
    const DeviceChangeSink m_onDeviceChange;
    std::unique_ptr<Recorder> m_recorder;
    std::string m_package;
    bool m_isRecording = false;
    std::int32_t m_stateAfterStop = 0;
};

/// The stored files of a request as the package library names them.
StoredPaths ToStoredPaths(const protocol::PackageFiles& files);
CameraSettings ToCameraSettings(const protocol::CameraChoice& choice);
protocol::Recovery ToRecovery(const std::optional<RecoveryReport>& report);

}  // namespace kestrum::media
