// What the sound server offers to record.
#pragma once

#include <string>
#include <vector>

namespace kestrum::media {

/// What the server puts behind a sink's name to name the source that hears what the sink plays.
inline constexpr const char* kMonitorEnding = ".monitor";

struct SoundSource {
    std::string name;            ///< as the server knows it
    std::string description;     ///< as a person knows it
    bool isSystemSound = false;  ///< hears what a loudspeaker plays
    bool isDefault = false;  ///< the microphone, or the loudspeaker's sound, that the user has chosen in the desktop
};

/// Asks the server for at most 5 s. Throws CaptureError (kNoSound) if it does not answer.
std::vector<SoundSource> ListSoundSources();

}  // namespace kestrum::media
