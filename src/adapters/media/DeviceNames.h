// Microphones and cameras under the names that people choose them by, and the text that lists them. Decides that a name
// is unique, readable and cannot break the text, and that it does not depend on which device is the default today.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/media/WorkerLink.h"
#include "host/String.h"

namespace kestrum::adapters {

struct NamedDevice {
    std::string shownName;  ///< unique: of twins the second is "Microphone (2)", in the order of their ids
    std::string id;         ///< as the worker knows it
};

/// The devices under their names, in the order given. Each comes with its description in `shownName`.
std::vector<NamedDevice> NameDevices(std::vector<NamedDevice> described);

/// The inputs, the user's default first; empty if there are none or nobody answers. What a loudspeaker plays is none.
std::vector<NamedDevice> ListMicrophones(WorkerLink& worker);
std::vector<NamedDevice> ListCameras(WorkerLink& worker);
/// The source that hears the system's sound: the default loudspeaker's, else any; nothing if there is none.
std::optional<NamedDevice> FindSystemSound(WorkerLink& worker);
/// `name##kind` entries joined by "_&&_", in at most 1023 bytes; what would not fit whole is left out.
String DeviceText(const std::vector<NamedDevice>& devices);

}  // namespace kestrum::adapters
