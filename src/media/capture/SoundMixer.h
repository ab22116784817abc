// The volume and the mute switch of a sound source, as the desktop's own volume control has them. Each function asks
// the sound server for at most a second, since a recording may be waiting for the thread that asks; it throws
// CaptureError (kNoSound) if the server does not answer or does not know the source.
#pragma once

#include <string>

namespace kestrum::media {

struct SourceVolume {
    int percent = 0;  ///< as the desktop shows it; above 100 is amplified
    bool isMuted = false;
};

SourceVolume ReadVolume(const std::string& source);
/// Sets the loudest channel to `percent`, the others in proportion. What the source has afterwards, which is not what
/// was asked for where it does not follow.
SourceVolume ChangeVolume(const std::string& source, int percent);
void ChangeMute(const std::string& source, bool isMuted);

}  // namespace kestrum::media
