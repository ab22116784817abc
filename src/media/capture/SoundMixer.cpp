#include "media/capture/SoundMixer.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "media/capture/CaptureError.h"
#include "media/capture/PulseConnection.h"

namespace kestrum::media {
namespace {

constexpr int kTimeoutMs = 1000;
constexpr double kPercent = 100;

struct Found {
    pa_cvolume volume{};
    bool isMuted = false;
};

void TakeSource(pa_context*, const pa_source_info* info, int end, void* user) {
    if (!end && info) *static_cast<std::optional<Found>*>(user) = Found{info->volume, info->mute != 0};
}

/// A connection for one question.
class MixerTalk {
  public:
    explicit MixerTalk(const std::string& source) : m_source(source) {
        if (!m_pulse.WaitUntilReady(kTimeoutMs)) Refuse("The sound server does not answer.");
    }

    Found Read() {
        std::optional<Found> found;
        Require(pa_context_get_source_info_by_name(m_pulse.Context(), m_source.c_str(), TakeSource, &found));
        if (!found) Refuse("The sound source \"" + m_source + "\" is not there.");
        return *found;
    }
    void SetVolume(const pa_cvolume& volume) {
        Require(pa_context_set_source_volume_by_name(m_pulse.Context(), m_source.c_str(), &volume, nullptr, nullptr));
    }
    void SetMute(bool isMuted) {
        Require(pa_context_set_source_mute_by_name(m_pulse.Context(), m_source.c_str(), isMuted, nullptr, nullptr));
    }

  private:
    [[noreturn]] static void Refuse(const std::string& why) { throw CaptureError(CaptureErrorKind::kNoSound, why); }
    void Require(pa_operation* operation) {
        if (!m_pulse.Finish(operation, kTimeoutMs)) Refuse("The sound server does not answer.");
    }

    PulseConnection m_pulse;
    const std::string m_source;
};

SourceVolume ToVolume(const Found& found) {
    const double percent = pa_cvolume_max(&found.volume) * kPercent / PA_VOLUME_NORM;
    return {static_cast<int>(std::lround(percent)), found.isMuted};
}

}  // namespace

SourceVolume ReadVolume(const std::string& source) {
    return ToVolume(MixerTalk(source).Read());
}

SourceVolume ChangeVolume(const std::string& source, int percent) {
    MixerTalk talk(source);
    pa_cvolume volume = talk.Read().volume;
    const double wanted = std::max(percent, 0) / kPercent * PA_VOLUME_NORM;
    pa_cvolume_scale(&volume, static_cast<pa_volume_t>(std::lround(wanted)));
    talk.SetVolume(volume);
    return ToVolume(talk.Read());
}

void ChangeMute(const std::string& source, bool isMuted) {
    MixerTalk(source).SetMute(isMuted);
}

}  // namespace kestrum::media
