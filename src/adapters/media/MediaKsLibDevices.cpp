// The media library's devices: what can be chosen, preview, mixer, audio test.
#include <algorithm>
#include <cstdio>
#include <pugixml.hpp>
#include <utility>

#include "adapters/media/DeviceNames.h"
#include "adapters/media/MediaKsLib.h"

namespace kestrum::adapters {

using host::FromUtf8;
using host::ToUtf8;
using wire::Kind;
using wire::Nothing;
using wire::Number;
using wire::Text;

namespace {

// Opening a sound source that does not answer takes five seconds, a camera as long.
constexpr std::int32_t kPreviewTimeoutMs = 15'000;
constexpr std::int32_t kMixerTimeoutMs = 5'000;
constexpr std::int32_t kPercentPerStep = 10;
constexpr std::int32_t kHighestStep = 10;

std::int32_t QueryText(const std::vector<NamedDevice>& devices, String& text) {
    if (devices.empty()) return 0;
    text = DeviceText(devices);
    return 1;
}

std::int32_t StepOf(const wire::Volume& volume) {
    return std::min((volume.percent + kPercentPerStep / 2) / kPercentPerStep, kHighestStep);
}

}  // namespace

std::int32_t MediaKsLib::ksResetAVDevice() {
    m_microphone.clear();
    m_camera.clear();
    return m_worker.Ask<Number>(Kind::kHello, Nothing{}) ? 1 : 0;
}

std::int32_t MediaKsLib::ksQueryVideoDevice(String& devices) {
    return QueryText(ListCameras(m_worker), devices);
}

std::int32_t MediaKsLib::ksQueryAudioDevice(String& devices) {
    return QueryText(ListMicrophones(m_worker), devices);
}

/// The worker's name of the device; empty if there is none of that name.
std::string MediaKsLib::Choose(const std::vector<NamedDevice>& devices, const String& name) {
    const std::string wanted = ToUtf8(name);
    for (const auto& device : devices) {
        if (device.shownName != wanted) continue;
        m_shownNames[device.id] = device.shownName;
        return device.id;
    }
    return {};
}

std::int32_t MediaKsLib::ksSetVideoDevice(const String& name) {
    const std::string camera = Choose(ListCameras(m_worker), name);
    if (camera.empty()) return 0;
    m_camera = camera;
    return 1;
}

std::int32_t MediaKsLib::ksSetAudioDevice(const String& name) {
    const std::string microphone = Choose(ListMicrophones(m_worker), name);
    if (microphone.empty()) return 0;
    m_microphone = microphone;
    return 1;
}

std::vector<std::string> MediaKsLib::ChosenSources() {
    std::vector<std::string> sources;
    if (!m_microphone.empty()) sources.push_back(m_microphone);
    if (!m_recordSystemSound) return sources;
    if (const auto system = FindSystemSound(m_worker)) {
        m_shownNames[system->id] = system->shownName;
        sources.push_back(system->id);
    }
    return sources;
}

// The camera's size is the project's; a project without one records no camera.
wire::CameraChoice MediaKsLib::ChosenCamera() const {
    pugi::xml_document project;
    project.load_file(m_files.projectFile.c_str());
    const auto size = project.document_element().first_element_by_path("project/configure/profile/video/size");
    wire::CameraChoice choice;
    const bool hasSize = std::sscanf(size.text().as_string(), "%dx%d", &choice.width, &choice.height) == 2;
    if (hasSize && choice.width > 0 && choice.height > 0) choice.name = m_camera;
    return choice;
}

std::int32_t MediaKsLib::CheckAVDevice(std::uint64_t window, std::int32_t width, std::int32_t height,
                                       const String& videoDevice) {
    constexpr auto kNoSound = static_cast<std::int32_t>(wire::PreviewResult::kNoSound);
    constexpr auto kNoVideo = static_cast<std::int32_t>(wire::PreviewResult::kNoVideo);
    if (m_microphone.empty()) return kNoSound;
    wire::Preview preview{m_microphone, {}, window, {}};
    const std::string camera = Choose(ListCameras(m_worker), videoDevice);
    if (!camera.empty()) preview.camera = {camera, width, height};
    const auto result = m_worker.Ask<Number>(Kind::kPreview, preview, kPreviewTimeoutMs);
    if (!result) return kNoSound;
    const auto answer = static_cast<std::int32_t>(result->value);
    // A camera that is asked for and not there is one that failed.
    return answer > 0 && !videoDevice.empty() && camera.empty() ? kNoVideo : answer;
}

void MediaKsLib::CloseAVDevice() {
    if (m_worker.IsAlive()) m_worker.Ask<Nothing>(Kind::kEndPreview, Nothing{});
}

void MediaKsLib::SetDeviceNotice(std::function<void(const host::DeviceNotice&)> onNotice) {
    if (!onNotice) return m_worker.OnDeviceChange(nullptr);
    m_worker.OnDeviceChange([this, onNotice = std::move(onNotice)](const wire::DeviceChange& change) {
        const auto shown = m_shownNames.find(change.name);
        const std::string& name = shown == m_shownNames.end() ? change.name : shown->second;
        onNotice({change.isCamera != 0, change.isBack != 0, FromUtf8(name)});
    });
}

// --- Mixer ---------------------------------------------------------------------------------------------------------

String MediaKsLib::CreateAudioMixer() {
    return MicrophoneVolume() ? u"Microphone on" : u"";
}

std::optional<wire::Volume> MediaKsLib::MicrophoneVolume() {
    if (m_microphone.empty()) return std::nullopt;
    return m_worker.Ask<wire::Volume>(Kind::kVolume, Text{m_microphone}, kMixerTimeoutMs);
}

std::int32_t MediaKsLib::GetVolumeScale() {
    const auto volume = MicrophoneVolume();
    return volume ? StepOf(*volume) : -1;
}

std::int32_t MediaKsLib::SetVolumeScale(std::int32_t step) {
    if (m_microphone.empty() || step < 0 || step > kHighestStep) return 0;
    const wire::SetVolume wanted{m_microphone, step * kPercentPerStep};
    const auto volume = m_worker.Ask<wire::Volume>(Kind::kSetVolume, wanted, kMixerTimeoutMs);
    return volume && StepOf(*volume) == step ? 1 : 0;
}

std::int32_t MediaKsLib::MixerGet(std::int32_t index) {
    const auto volume = index == 0 ? MicrophoneVolume() : std::nullopt;
    return volume && volume->isMuted == 0 ? 1 : 0;
}

void MediaKsLib::MixerSet(std::int32_t index, std::int32_t on) {
    if (index != 0 || m_microphone.empty()) return;
    m_worker.Ask<Nothing>(Kind::kSetMute, wire::SetMute{m_microphone, on == 0}, kMixerTimeoutMs);
}

// --- Audio test ----------------------------------------------------------------------------------------------------

void MediaKsLib::StartTestRecordAudio(const String& file) {
    m_worker.Ask<Nothing>(Kind::kTestRecord, wire::TestRecord{m_microphone, ToUtf8(file)});
}

void MediaKsLib::StopTestRecordAudio() {
    m_worker.Ask<Nothing>(Kind::kEndTestRecord, Nothing{});
}

std::int32_t MediaKsLib::GetTestRecordTime() {
    const auto time = m_worker.Ask<Number>(Kind::kTestRecordTime, Nothing{});
    return time ? static_cast<std::int32_t>(time->value) : 0;
}

void MediaKsLib::PlayTestAudio(const String& file) {
    m_worker.Ask<Nothing>(Kind::kTestPlay, Text{ToUtf8(file)});
}

void MediaKsLib::StopTestAudio() {
    m_worker.Ask<Nothing>(Kind::kEndTestPlay, Nothing{});
}

std::int32_t MediaKsLib::GetPlayTestTime() {
    const auto time = m_worker.Ask<Number>(Kind::kTestPlayTime, Nothing{});
    return time ? static_cast<std::int32_t>(time->value) : -1;
}

}  // namespace kestrum::adapters
