// Which camera and which microphone record: what is present, what the user saved, and the choice between them.
#pragma once

#include <vector>

#include "devices/Context.h"

namespace kestrum::modDevice {

/// A capture device; an empty name means none. The kind "DV" marks a camcorder, whose sound comes with its picture.
struct DeviceRecord {
    String name;
    String kind;
    bool operator==(const DeviceRecord&) const = default;
};

using DeviceList = std::vector<DeviceRecord>;

/// The devices of a device text: entries `name##kind` joined by "_&&_", ended by a zero character.
DeviceList ParseDeviceText(StringView text);

/// Lists the devices of `what`, "video" or "audio". False, and one empty record, if they cannot be asked for.
bool QueryDevices(const devices::Context& c, DeviceList& list, StringView what);

/// Chooses a camera and a microphone and hands them to the media library. A camcorder wins over any saved choice and
/// needs no microphone; the record's camera comes next, then (unless `quiet`) the first. With `keepCurrent` no camera
/// but a camcorder is chosen. The records get the choice; they stay as they were if the library refuses, which a box
/// tells (re-enters).
void SelectDevices(const devices::Context& c, bool keepCurrent, bool quiet, DeviceRecord& video, DeviceRecord& audio,
                   const DeviceList& videoList, const DeviceList& audioList);

/// Answers of InitDevices.
inline constexpr std::int32_t kNoAudio = -1;
inline constexpr std::int32_t kAudioOnly = 1;
inline constexpr std::int32_t kDvCamera = 2;
inline constexpr std::int32_t kAudioAndVideo = 3;

/// Selects the saved devices among those present; one of the answers above. Re-enters on a refusal.
std::int32_t InitDevices(const devices::Context& c, bool keepCurrent);

}  // namespace kestrum::modDevice
