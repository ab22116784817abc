#include "adapters/media/SoundNames.h"

#include <algorithm>

namespace kestrum::adapters {
namespace {

constexpr const char* kKind = "AUDIO";

std::vector<wire::SoundDevice> ListSound(WorkerLink& worker) {
    const auto list = worker.Ask<wire::SoundList>(wire::Kind::kListSound, wire::Nothing{});
    auto devices = list ? list->devices : std::vector<wire::SoundDevice>{};
    std::stable_partition(devices.begin(), devices.end(), [](const auto& device) { return device.isDefault != 0; });
    return devices;
}

/// The signs of the device text must not be part of a name.
std::string WithoutSigns(std::string name) {
    for (const std::string sign : {"##", "_&&_"}) {
        for (std::size_t at; (at = name.find(sign)) != std::string::npos;) name.replace(at, sign.size(), " ");
    }
    return name;
}

std::string Unique(const std::string& name, const std::vector<Microphone>& taken) {
    const auto isTaken = [&](const std::string& wanted) {
        return std::any_of(taken.begin(), taken.end(), [&](const auto& one) { return one.shownName == wanted; });
    };
    std::string candidate = name;
    for (int number = 2; isTaken(candidate); ++number) candidate = name + " (" + std::to_string(number) + ")";
    return candidate;
}

}  // namespace

std::vector<Microphone> ListMicrophones(WorkerLink& worker) {
    std::vector<Microphone> microphones;
    for (const auto& device : ListSound(worker)) {
        if (device.isSystemSound) continue;
        microphones.push_back({Unique(WithoutSigns(device.description), microphones), device.name});
    }
    return microphones;
}

std::optional<std::string> FindSystemSound(WorkerLink& worker) {
    for (const auto& device : ListSound(worker)) {
        if (device.isSystemSound) return device.name;
    }
    return std::nullopt;
}

String DeviceText(const std::vector<Microphone>& microphones) {
    std::string text;
    for (const auto& microphone : microphones) {
        if (!text.empty()) text += "_&&_";
        text += microphone.shownName + "##" + kKind;
    }
    return host::FromUtf8(text);
}

}  // namespace kestrum::adapters
