#include "adapters/sim/KsLib.h"

#include <algorithm>

namespace kestrum::sim {

namespace {

String Number(std::int64_t value) {
    return host::FromUtf8(std::to_string(value));
}

}  // namespace

KsLib::KsLib(Faults& faults, Transcript& transcript, EventLoop& loop, FileSystem& fs)
    : m_faults(faults), m_transcript(transcript), m_loop(loop), m_fs(fs) {}

// --- Recording -----------------------------------------------------------------------------------------------------

std::int32_t KsLib::ksResetAVDevice() {
    Line(u"ksResetAVDevice");
    if (Fails(u"ksResetAVDevice")) return 0;
    m_gone = false;
    return 1;
}

std::int32_t KsLib::EncoderState() {
    Line(u"EncoderState");
    if (Fails(u"EncoderState")) return host::encoder_state::kGone;
    if (!nextStates.empty()) {
        std::int32_t state = nextStates.front();
        nextStates.pop_front();
        return state;
    }
    if (m_gone) return host::encoder_state::kGone;
    if (lastingState != 0) return lastingState;
    return m_running ? 1 : 0;
}

std::int16_t KsLib::EncoderSetFilename(const String& package, const String& projectFile, const String& indexText) {
    Line(u"EncoderSetFilename " + package + u" " + projectFile + u" " + indexText);
    if (Fails(u"EncoderSetFilename")) return 0;
    m_package = package;
    m_projectFile = projectFile;
    m_indexText = indexText;
    m_fs.PutFolder(package + u"._tmp");
    return 1;
}

std::int16_t KsLib::SetCaptureArea(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    Line(u"SetCaptureArea " + Number(left) + u" " + Number(top) + u" " + Number(right) + u" " + Number(bottom));
    if (Fails(u"SetCaptureArea")) return 0;
    m_area = host::Rect{left, top, right, bottom};
    return 1;
}

void KsLib::SetCaptureFrameRate(std::int32_t framesPerSecond) {
    Line(u"SetCaptureFrameRate " + Number(framesPerSecond));
}

void KsLib::SetHardAcceleration(std::int32_t disabled) {
    Line(u"SetHardAcceleration " + Number(disabled));
}

void KsLib::EncoderTransparent() {
    Line(u"EncoderTransparent");
}

void KsLib::EnableRecSystemAudio(std::int32_t enable) {
    Line(u"EnableRecSystemAudio " + Number(enable));
}

void KsLib::EncoderInitDevice() {
    Line(u"EncoderInitDevice");
}

std::int32_t KsLib::EncoderQueryDevice() {
    Line(u"EncoderQueryDevice");
    return Fails(u"EncoderQueryDevice") ? 0 : queryDevice;
}

void KsLib::EncoderCloseDevice() {
    Line(u"EncoderCloseDevice");
}

void KsLib::Store(Package& package, const char* name, const String& file) {
    if (!file.empty() && m_fs.FileExists(file)) package.stored[name] = m_fs.Bytes(file);
}

std::int16_t KsLib::EncoderStart(std::int32_t mode) {
    Line(u"EncoderStart " + Number(mode));
    if (Fails(u"EncoderStart")) {
        m_gone = true;
        return 0;
    }
    m_current = Read(m_package).value_or(Package());
    Store(m_current, "project", m_projectFile);
    Store(m_current, "index", m_indexText);
    m_current.width = m_area.right - m_area.left + 1;
    m_current.height = m_area.bottom - m_area.top + 1;
    m_lengthAtStart = m_current.lengthMs;
    m_current.keyFrames.push_back(m_lengthAtStart);
    m_current.torn = true;
    m_startedAt = m_loop.Elapsed();
    m_running = true;
    Flush();
    return 1;
}

std::int32_t KsLib::Position() const {
    return m_lengthAtStart + static_cast<std::int32_t>(m_loop.Elapsed() - m_startedAt);
}

void KsLib::Flush() {
    m_current.lengthMs = m_running ? Position() : m_current.lengthMs;
    m_fs.Put(m_package, m_current.ToBytes());
}

void KsLib::EncoderStop(std::int32_t timeout) {
    Line(u"EncoderStop " + Number(timeout));
    if (!m_running) return;
    if (duringStop) duringStop();
    m_current.lengthMs = Position();
    m_running = false;
    m_loop.Sleep(stopTakesMs);
    if (Fails(u"EncoderStop")) {
        lastingState = host::encoder_state::kFileError;
    } else {
        m_current.torn = false;
        if (!m_current.journal.empty()) m_current.MergeJournal();
    }
    Flush();
}

std::int32_t KsLib::AddKeyFrame() {
    Line(u"AddKeyFrame");
    if (Fails(u"AddKeyFrame") || !m_running) return 0;
    std::int32_t position = Position();
    if (!nextKeyFrames.empty()) {
        position = nextKeyFrames.front();
        nextKeyFrames.pop_front();
    }
    if (position <= 0) return position;
    m_current.keyFrames.push_back(position);
    Flush();
    return position;
}

bool KsLib::WriteIndexJournal(const String& journal) {
    Line(u"WriteIndexJournal");
    if (Fails(u"WriteIndexJournal") || !m_running) return false;
    m_current.journal = host::ToUtf8(journal);
    Flush();
    return true;
}

void KsLib::SetVolumeMeter(std::function<void(std::int32_t)> onLevel) {
    Line(onLevel ? u"SetVolumeMeter" : u"SetVolumeMeter off");
    m_onLevel = std::move(onLevel);
}

void KsLib::SetDeviceNotice(std::function<void(const host::DeviceNotice&)> onNotice) {
    m_onNotice = std::move(onNotice);
}

bool KsLib::IsPictureUniform(const host::Rect&) {
    return pictureUniform;
}

void KsLib::Crash() {
    if (m_running) Flush();
    m_running = false;
    m_gone = true;
}

void KsLib::SendLevel(std::int32_t level) {
    m_loop.Post([this, level] {
        if (auto onLevel = m_onLevel) onLevel(level);
    });
}

void KsLib::SendNotice(const host::DeviceNotice& notice) {
    m_loop.Post([this, notice] {
        if (auto onNotice = m_onNotice) onNotice(notice);
    });
}

// --- Pen, canvas, whiteboard ---------------------------------------------------------------------------------------

void KsLib::StartDraw() {
    Line(u"StartDraw");
}

void KsLib::EndDraw() {
    Line(u"EndDraw");
}

void KsLib::CreateCanvas() {
    Line(u"CreateCanvas");
    canvas = true;
}

void KsLib::DeleteCanvas() {
    Line(u"DeleteCanvas");
    canvas = false;
}

void KsLib::CreateWhiteboard() {
    Line(u"CreateWhiteboard");
    whiteboard = true;
}

void KsLib::DeleteWhiteboard() {
    Line(u"DeleteWhiteboard");
    whiteboard = false;
}

void KsLib::SetPenAttr(std::int32_t width, std::int32_t colour) {
    Line(u"SetPenAttr " + Number(width) + u" " + Number(colour));
}

// --- Devices and mixer ---------------------------------------------------------------------------------------------

std::int32_t KsLib::ksQueryVideoDevice(String& devices) {
    if (Fails(u"ksQueryVideoDevice")) return 0;
    devices = videoDevices;
    return 1;
}

std::int32_t KsLib::ksQueryAudioDevice(String& devices) {
    if (Fails(u"ksQueryAudioDevice")) return 0;
    devices = audioDevices;
    return 1;
}

std::int32_t KsLib::ksSetVideoDevice(const String& name) {
    Line(u"ksSetVideoDevice " + name);
    return Fails(u"ksSetVideoDevice") ? 0 : 1;
}

std::int32_t KsLib::ksSetAudioDevice(const String& name) {
    Line(u"ksSetAudioDevice " + name);
    return Fails(u"ksSetAudioDevice") ? 0 : 1;
}

std::int32_t KsLib::CheckAVDevice(std::uint64_t window, std::int32_t width, std::int32_t height,
                                  const String& videoDevice) {
    previewWindow = window;
    Line(u"CheckAVDevice " + Number(width) + u" " + Number(height) + u" " + videoDevice);
    return Fails(u"CheckAVDevice") ? -1 : checkAVDevice;
}

void KsLib::CloseAVDevice() {
    Line(u"CloseAVDevice");
}

String KsLib::CreateAudioMixer() {
    Line(u"CreateAudioMixer");
    return mixerSwitches;
}

void KsLib::DeleteAudioMixer() {
    Line(u"DeleteAudioMixer");
}

std::int32_t KsLib::SetVolumeScale(std::int32_t step) {
    Line(u"SetVolumeScale " + Number(step));
    if (Fails(u"SetVolumeScale")) return 0;
    volumeScale = step;
    return 1;
}

std::int32_t KsLib::MixerGet(std::int32_t index) {
    return m_mixer[index];
}

void KsLib::MixerSet(std::int32_t index, std::int32_t on) {
    Line(u"MixerSet " + Number(index) + u" " + Number(on));
    m_mixer[index] = on;
}

}  // namespace kestrum::sim
