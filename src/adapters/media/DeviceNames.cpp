#include "adapters/media/DeviceNames.h"

#include <algorithm>
#include <numeric>

namespace kestrum::adapters {
namespace {

constexpr const char* kEntrySign = "_&&_";
constexpr const char* kFieldSign = "##";
// Neither microphones nor cameras of this system are DV camcorders, which have a kind of their own.
constexpr const char* kKind = "0";
// The text's buffer, without the zero at its end.
constexpr std::size_t kTextBytes = 1023;
// Ten devices fit with names of this length.
constexpr std::size_t kNameBytes = 90;

std::vector<wire::SoundDevice> ListSound(WorkerLink& worker) {
    const auto list = worker.Ask<wire::SoundList>(wire::Kind::kListSound, wire::Nothing{});
    return list ? list->devices : std::vector<wire::SoundDevice>{};
}

void ReplaceAll(std::string& text, const std::string& what) {
    for (std::size_t at; (at = text.find(what)) != std::string::npos;) text.replace(at, what.size(), " ");
}

bool IsControl(char sign) {
    return static_cast<unsigned char>(sign) < ' ' || sign == '\x7F';
}

/// At most kNameBytes, without half a character at the end.
void Shorten(std::string& name) {
    if (name.size() <= kNameBytes) return;
    std::size_t end = kNameBytes;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
    name.resize(end);
}

/// No blank at either end, and none beside another.
void TrimBlanks(std::string& name) {
    const auto bothBlank = [](char a, char b) { return a == ' ' && b == ' '; };
    name.erase(std::unique(name.begin(), name.end(), bothBlank), name.end());
    name.erase(0, name.find_first_not_of(' '));
    name.erase(name.find_last_not_of(' ') + 1);
}

/// The signs of the device text must not be part of a name, nor half of one at its end, where the next sign follows.
std::string CleanName(std::string name) {
    std::replace_if(name.begin(), name.end(), IsControl, ' ');
    ReplaceAll(name, kFieldSign);
    ReplaceAll(name, kEntrySign);
    Shorten(name);
    TrimBlanks(name);
    while (!name.empty() && name.back() == '#') name.pop_back();
    TrimBlanks(name);
    return name;
}

std::string Unique(const std::string& name, const std::vector<NamedDevice>& taken) {
    const auto isTaken = [&](const std::string& wanted) {
        return std::any_of(taken.begin(), taken.end(), [&](const auto& one) { return one.shownName == wanted; });
    };
    std::string candidate = name;
    for (int number = 2; isTaken(candidate); ++number) candidate = name + " (" + std::to_string(number) + ")";
    return candidate;
}

}  // namespace

std::vector<NamedDevice> NameDevices(std::vector<NamedDevice> described) {
    std::vector<std::size_t> byId(described.size());
    std::iota(byId.begin(), byId.end(), std::size_t{0});
    std::sort(byId.begin(), byId.end(),
              [&](std::size_t a, std::size_t b) { return described[a].id < described[b].id; });
    std::vector<NamedDevice> taken;
    for (const std::size_t index : byId) {
        NamedDevice& device = described[index];
        std::string name = CleanName(device.shownName);
        if (name.empty()) name = CleanName(device.id);
        device.shownName = Unique(name, taken);
        taken.push_back(device);
    }
    return described;
}

std::vector<NamedDevice> ListMicrophones(WorkerLink& worker) {
    auto devices = ListSound(worker);
    std::stable_partition(devices.begin(), devices.end(), [](const auto& device) { return device.isDefault != 0; });
    std::vector<NamedDevice> microphones;
    for (const auto& device : devices) {
        if (!device.isSystemSound) microphones.push_back({device.description, device.name});
    }
    return NameDevices(std::move(microphones));
}

std::vector<NamedDevice> ListCameras(WorkerLink& worker) {
    std::vector<NamedDevice> cameras;
    if (const auto list = worker.Ask<wire::CameraList>(wire::Kind::kListCameras, wire::Nothing{})) {
        for (const auto& camera : list->cameras) cameras.push_back({camera.description, camera.name});
    }
    return NameDevices(std::move(cameras));
}

std::optional<NamedDevice> FindSystemSound(WorkerLink& worker) {
    std::optional<NamedDevice> found;
    for (const auto& device : ListSound(worker)) {
        if (device.isSystemSound && (!found || device.isDefault)) found = {CleanName(device.description), device.name};
    }
    return found;
}

String DeviceText(const std::vector<NamedDevice>& devices) {
    std::string text;
    for (const auto& device : devices) {
        const std::string entry = (text.empty() ? "" : kEntrySign) + device.shownName + kFieldSign + kKind;
        if (text.size() + entry.size() <= kTextBytes) text += entry;
    }
    return host::FromUtf8(text);
}

}  // namespace kestrum::adapters
