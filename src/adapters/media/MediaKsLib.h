// The media library over the worker. Decides what a request of the rules is in the worker's terms, which devices have
// which names, and what a failure of the worker looks like to a caller that knows only numbers.
//
// Canvas and whiteboard are those of the drawing board, if there is one. Strokes need no word to this worker, which
// records whatever is drawn on the screen when it is drawn: StartDraw and EndDraw do nothing.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/media/DeviceNames.h"
#include "adapters/media/IDrawingBoard.h"
#include "adapters/media/WorkerLink.h"
#include "host/IKsLib.h"

namespace kestrum::adapters {

/// Where the pixels of the screen come from.
enum class PixelSource {
    Display,  ///< the X display
    Cast,     ///< the desktop's screen cast: the display shows its own windows only
};

class MediaKsLib : public host::IKsLib {
  public:
    /// Both outlive this object. A program without a screen has no board: no sheet opens then.
    explicit MediaKsLib(WorkerLink& worker, IDrawingBoard* board = nullptr, PixelSource pixels = PixelSource::Display);

    /// Gets the desktop's permission to record the screen where one is needed, from its user if he has not given it
    /// yet; a recording that was not preceded by it asks by itself, and waits for the user for seconds only. A sentence
    /// if the screen cannot be recorded. Re-enters, and waits without limit.
    std::optional<String> AskForScreen();
    /// Takes a question of AskForScreen back, which counts as not answered then.
    void LeaveQuestion();

    std::int32_t ksResetAVDevice() override;
    std::int32_t EncoderState() override;
    std::int16_t EncoderSetFilename(const String& package, const String& projectFile, const String& indexText) override;
    std::int16_t SetCaptureArea(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) override;
    void SetCaptureFrameRate(std::int32_t framesPerSecond) override;
    void SetHardAcceleration(std::int32_t) override {}
    void EncoderTransparent() override {}
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

    void StartDraw() override {}
    void EndDraw() override {}
    void CreateCanvas() override { OpenSheet(IDrawingBoard::Sheet::Canvas); }
    void DeleteCanvas() override { CloseSheet(IDrawingBoard::Sheet::Canvas); }
    std::int32_t CanvasEnabled() override { return IsSheetOpen(IDrawingBoard::Sheet::Canvas); }
    void CreateWhiteboard() override { OpenSheet(IDrawingBoard::Sheet::Whiteboard); }
    void DeleteWhiteboard() override { CloseSheet(IDrawingBoard::Sheet::Whiteboard); }
    std::int32_t WhiteboardEnabled() override { return IsSheetOpen(IDrawingBoard::Sheet::Whiteboard); }
    void SetPenAttr(std::int32_t width, std::int32_t colour) override;

    std::int32_t ksQueryVideoDevice(String& devices) override;
    std::int32_t ksQueryAudioDevice(String& devices) override;
    std::int32_t ksSetVideoDevice(const String& name) override;
    std::int32_t ksSetAudioDevice(const String& name) override;
    std::int32_t CheckAVDevice(std::uint64_t window, std::int32_t width, std::int32_t height,
                               const String& videoDevice) override;
    void CloseAVDevice() override;
    String CreateAudioMixer() override;
    void DeleteAudioMixer() override {}
    std::int32_t GetVolumeScale() override;
    std::int32_t SetVolumeScale(std::int32_t step) override;
    std::int32_t MixerGet(std::int32_t index) override;
    void MixerSet(std::int32_t index, std::int32_t on) override;
    std::int32_t GetAudioVolume() override { return m_worker.LastLevel(); }

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
    std::int32_t GetOptimizeLevel(const String&) override { return 0; }
    std::int32_t DrawImageToFit(const String& target, const String& source) override;

  private:
    wire::Probe PictureOf(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) const;
    std::int32_t AskNumber(wire::Kind kind, const String& package, std::int32_t fallback);
    bool OpenDevices();
    std::string Choose(const std::vector<NamedDevice>& devices, const String& name);
    std::vector<std::string> ChosenSources();
    wire::CameraChoice ChosenCamera() const;
    std::optional<wire::Volume> MicrophoneVolume();
    void NoteRecovery(const wire::Recovery& recovery);
    void OpenSheet(IDrawingBoard::Sheet sheet);
    void CloseSheet(IDrawingBoard::Sheet sheet);
    std::int32_t IsSheetOpen(IDrawingBoard::Sheet sheet) const;

    WorkerLink& m_worker;
    IDrawingBoard* const m_board;
    const PixelSource m_pixels;
    bool m_asking = false;
    String m_lastRecovery;

    // What outlives a job, as the state of a library in the own process would.
    bool m_recordSystemSound = false;
    std::int32_t m_framesPerSecond = 10;
    wire::Probe m_area;
    std::string m_microphone;                         ///< as the sound server knows it; empty until it is chosen
    std::string m_camera;                             ///< as the worker knows it; empty: none
    std::map<std::string, std::string> m_shownNames;  ///< of the devices chosen, for the notices about them

    // The job.
    wire::PackageFiles m_files;
    bool m_devicesOpen = false;
    bool m_isRecording = false;
    std::int32_t m_recordingGeneration = 0;
    std::int32_t m_stateAtEnd = 0;  ///< state told while nothing is recorded
};

}  // namespace kestrum::adapters
