// The media library on the fake package (Package.h). A recording lasts in virtual time: its length is what the clock
// says between start and stop. A test scripts devices, encoder states and crashes; every call of the recording, of the
// canvas and of the package is in the transcript with its arguments. Faults: "ksLib." + the call's name; such a call
// does nothing and answers its failure value.
#pragma once

#include <deque>
#include <optional>

#include "adapters/sim/FileSystem.h"
#include "adapters/sim/Package.h"
#include "adapters/sim/Transcript.h"
#include "host/IKsLib.h"

namespace kestrum::sim {

class KsLib : public host::IKsLib {
  public:
    KsLib(Faults& faults, Transcript& transcript, EventLoop& loop, FileSystem& fs);

    std::int32_t ksResetAVDevice() override;
    std::int32_t EncoderState() override;
    std::int16_t EncoderSetFilename(const String& package, const String& projectFile, const String& indexText) override;
    std::int16_t SetCaptureArea(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void SetCaptureFrameRate(std::int32_t framesPerSecond) override;
    void SetHardAcceleration(std::int32_t disabled) override;
    void EncoderTransparent() override;
    void EnableRecSystemAudio(std::int32_t enable) override;
    void EncoderInitDevice() override;
    std::int32_t EncoderQueryDevice() override;
    void EncoderCloseDevice() override;
    std::int16_t EncoderStart(std::int32_t mode) override;
    void EncoderStop(std::int32_t timeout) override;
    std::int32_t AddKeyFrame() override;
    bool WriteIndexJournal(const String& journal) override;
    void SetVolumeMeter(std::function<void(std::int32_t)> onLevel) override;
    void SetDeviceNotice(std::function<void(const host::DeviceNotice&)> onNotice) override;
    bool IsPictureUniform(const host::Rect& area) override;

    void StartDraw() override;
    void EndDraw() override;
    void CreateCanvas() override;
    void DeleteCanvas() override;
    std::int32_t CanvasEnabled() override { return canvas ? 1 : 0; }
    void CreateWhiteboard() override;
    void DeleteWhiteboard() override;
    std::int32_t WhiteboardEnabled() override { return whiteboard ? 1 : 0; }
    void SetPenAttr(std::int32_t width, std::int32_t colour) override;

    std::int32_t ksQueryVideoDevice(String& devices) override;
    std::int32_t ksQueryAudioDevice(String& devices) override;
    std::int32_t ksSetVideoDevice(const String& name) override;
    std::int32_t ksSetAudioDevice(const String& name) override;
    std::int32_t CheckAVDevice(std::uint64_t window, std::int32_t width, std::int32_t height,
                               const String& videoDevice) override;
    void CloseAVDevice() override;
    String CreateAudioMixer() override;
    void DeleteAudioMixer() override;
    std::int32_t GetVolumeScale() override { return volumeScale; }
    std::int32_t SetVolumeScale(std::int32_t step) override;
    std::int32_t MixerGet(std::int32_t index) override;
    void MixerSet(std::int32_t index, std::int32_t on) override;
    std::int32_t GetAudioVolume() override { return audioVolume; }

    void StartTestRecordAudio(const String& file) override;
    void StopTestRecordAudio() override;
    std::int32_t GetTestRecordTime() override;
    void PlayTestAudio(const String& file) override;
    void StopTestAudio() override;
    std::int32_t GetPlayTestTime() override;

    std::int32_t GetLength(const String& package) override;
    std::int32_t GetFileHeaderDim(const String& package, std::int32_t& width, std::int32_t& height) override;
    std::int32_t GetKeyframeDim(const String& package, std::int32_t& width, std::int32_t& height) override;
    std::int32_t IsEmptyProject(const String& package) override;
    std::int32_t GetExtendDataFromProject(const String& package, const host::StoredFiles& targets) override;
    std::int32_t SetExtendDataInProject(const String& package, const host::StoredFiles& sources) override;
    std::int32_t GetECTState(const String& package) override;
    std::int32_t verifyKsFile(const String& package) override;
    std::int32_t verifyWholeKsFile(const String& package) override;
    String LastRecovery() override { return m_lastRecovery; }
    std::int32_t GetFileFormatVersion(const String& package) override;
    std::int32_t ListIndex(const String& package, const String& textFile) override;
    std::int32_t GetVideoAttribute(const String& package) override;
    std::int32_t GetAudioBitrate(const String& package) override;
    std::int32_t GetOptimizeLevel(const String& package) override;
    std::int32_t DrawImageToFit(const String& target, const String& source) override;

    // --- for tests -------------------------------------------------------------------------------------------------

    /// Makes or replaces the package file.
    void Put(const String& path, const Package& package);
    /// The package in a file; none if there is no such file or no package in it.
    std::optional<Package> Get(const String& path) const;
    /// The worker dies: a running recording stays torn in its package, `EncoderState` answers -1 from now on, until
    /// the next reset of the devices.
    void Crash();
    /// Sends an audio level through the meter, from the next pump.
    void SendLevel(std::int32_t level);
    /// A device is lost or back, told from the next pump.
    void SendNotice(const host::DeviceNotice& notice);
    bool Running() const { return m_running; }

    /// States that the next reads of EncoderState give, then it gives the usual one again.
    std::deque<std::int32_t> nextStates;
    /// A fault that lasts, 0 for none.
    std::int32_t lastingState = 0;
    /// Answer of EncoderQueryDevice.
    std::int32_t queryDevice = 1;
    /// Answer of AddKeyFrame in place of the true position; used once each.
    std::deque<std::int32_t> nextKeyFrames;
    String videoDevices, audioDevices = u"Microphone##0";
    String mixerSwitches = u"Microphone";
    std::int32_t checkAVDevice = 3;
    /// The window that the last preview was opened in.
    std::uint64_t previewWindow = 0;
    std::int32_t volumeScale = 5, audioVolume = 0;
    bool pictureUniform = false;
    bool canvas = false, whiteboard = false;
    /// What runs inside EncoderStop before it returns.
    std::function<void()> duringStop;
    /// Virtual milliseconds that a stop takes.
    std::int32_t stopTakesMs = 400;

  private:
    void Line(const String& text) { m_transcript.Add(u"ksLib." + text); }
    bool Fails(const String& call) { return m_faults.Fails(u"ksLib." + call); }
    /// What a running recording has reached, in ms on the media's time line.
    std::int32_t Position() const;
    void Store(Package& package, const char* name, const String& file);
    void Flush();
    std::optional<Package> Read(const String& path) const;

    Faults& m_faults;
    Transcript& m_transcript;
    EventLoop& m_loop;
    FileSystem& m_fs;
    String m_package, m_projectFile, m_indexText;
    host::Rect m_area;
    bool m_running = false, m_gone = false;
    std::int64_t m_startedAt = 0;
    std::int32_t m_lengthAtStart = 0;
    Package m_current;
    String m_lastRecovery;
    std::function<void(std::int32_t)> m_onLevel;
    std::function<void(const host::DeviceNotice&)> m_onNotice;
    std::map<std::int32_t, std::int32_t> m_mixer;

    // The audio test: a file of n bytes lasts n milliseconds.
    String m_testFile;
    std::optional<std::int64_t> m_testRecordFrom, m_testPlayFrom;
    std::int64_t m_testLength = 0;
};

}  // namespace kestrum::sim
