// The sound sources under the names that people choose them by.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/media/WorkerLink.h"
#include "host/String.h"

namespace kestrum::adapters {

struct Microphone {
    std::string shownName;   ///< unique: a second "Microphone" is "Microphone (2)"
    std::string serverName;  ///< as the sound server knows it
};

/// The inputs, the user's default first; empty if there are none or nobody answers.
std::vector<Microphone> ListMicrophones(WorkerLink& worker);
/// The source that hears the system's sound: the default loudspeaker's, else any; nothing if there is none.
std::optional<std::string> FindSystemSound(WorkerLink& worker);
/// `name##kind` entries joined by "_&&_".
String DeviceText(const std::vector<Microphone>& microphones);

}  // namespace kestrum::adapters
