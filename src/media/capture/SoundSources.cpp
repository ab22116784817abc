#include "media/capture/SoundSources.h"

#include "media/capture/CaptureError.h"
#include "media/capture/PulseConnection.h"

namespace kestrum::media {
namespace {

constexpr int kTimeoutMs = 5000;

struct Survey {
    std::vector<SoundSource> sources;
    std::string defaultSource;
    std::string defaultSink;
};

void TakeSource(pa_context*, const pa_source_info* info, int end, void* user) {
    if (end || !info) return;
    SoundSource source;
    source.name = info->name;
    source.description = info->description ? info->description : info->name;
    source.isSystemSound = info->monitor_of_sink != PA_INVALID_INDEX;
    static_cast<Survey*>(user)->sources.push_back(source);
}

void TakeServer(pa_context*, const pa_server_info* info, void* user) {
    if (!info) return;
    auto& survey = *static_cast<Survey*>(user);
    if (info->default_source_name) survey.defaultSource = info->default_source_name;
    if (info->default_sink_name) survey.defaultSink = info->default_sink_name;
}

}  // namespace

std::vector<SoundSource> ListSoundSources() {
    Survey survey;
    PulseConnection pulse;
    const bool answered =
        pulse.WaitUntilReady(kTimeoutMs) &&
        pulse.Finish(pa_context_get_server_info(pulse.Context(), TakeServer, &survey), kTimeoutMs) &&
        pulse.Finish(pa_context_get_source_info_list(pulse.Context(), TakeSource, &survey), kTimeoutMs);
    if (!answered) throw CaptureError(CaptureErrorKind::kNoSound, "The sound server does not answer.");
    for (auto& source : survey.sources) {
        source.isDefault = source.isSystemSound ? source.name == survey.defaultSink + kMonitorEnding
                                                : source.name == survey.defaultSource;
    }
    return survey.sources;
}

}  // namespace kestrum::media
