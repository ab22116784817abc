#include "media/convert/KeyFrameTimes.h"

#include <algorithm>
#include <cstdlib>

#include "media/convert/PackageInput.h"

namespace kestrum::media {

std::vector<std::int64_t> KeyFrameTimes(const std::string& movie) {
    const PackageInput input(movie);
    std::vector<std::int64_t> times;
    auto packet = NewPacket();
    while (input.Read(*packet)) {
        if (packet->stream_index != input.Video().index || (packet->flags & AV_PKT_FLAG_KEY) == 0) continue;
        times.push_back(av_rescale_q(packet->pts, input.Video().time_base, AVRational{1, 1000000}));
    }
    std::sort(times.begin(), times.end());
    return times;
}

std::string KeyFrameText(const std::vector<std::int64_t>& microseconds) {
    std::string text;
    for (const std::int64_t time : microseconds) {
        const std::string fraction = std::to_string(1000000 + std::llabs(time) % 1000000).substr(1);
        text += (time < 0 ? "-" : "") + std::to_string(std::llabs(time) / 1000000) + "." + fraction + "\n";
    }
    return text;
}

}  // namespace kestrum::media
