#include "media/convert/Mp4Conversion.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "media/convert/AudioEncode.h"
#include "media/convert/KeyFramePlan.h"
#include "media/convert/Mp4Output.h"
#include "media/convert/PackageInput.h"
#include "media/convert/TrackCopy.h"
#include "media/convert/VideoEncode.h"
#include "media/convert/VideoMix.h"

namespace kestrum::media {

namespace {

struct StopRequested {};

bool EntriesOnKeyFrames(const std::string& package, const std::vector<ConvertEntry>& entries) {
    std::vector<std::int64_t> positions;
    for (const ConvertEntry& entry : entries) positions.push_back(entry.pos);
    return PackageInput(package).HasKeyFramesAt(positions);
}

bool KeepsSize(const ConvertRequest& request, const AVCodecParameters& source) {
    return (request.width <= 0 && request.height <= 0) ||
           (request.width == source.width && request.height == source.height);
}

/// How the pictures of a conversion come about.
struct PicturePlan {
    VideoEncodeSettings settings;
    CameraArea camera;  ///< empty for none
    bool copy = false;
};

PicturePlan PlanPictures(const ConvertRequest& request, const std::vector<ConvertEntry>& entries,
                         const PackageInput& input) {
    const AVCodecParameters& source = *input.Video().codecpar;
    const bool sameSize = KeepsSize(request, source);
    PicturePlan plan;
    // H.264 in 4:2:0 needs even sides.
    plan.settings = {(sameSize ? source.width : request.width) / 2 * 2,
                     (sameSize ? source.height : request.height) / 2 * 2, request.videoKbps};
    if (input.Camera() != nullptr) plan.camera = FitInto(request.camera, plan.settings.width, plan.settings.height);
    plan.copy = source.codec_id == AV_CODEC_ID_H264 && request.videoKbps <= 0 && sameSize && plan.camera.width == 0 &&
                EntriesOnKeyFrames(request.package, entries) && HasPictureFrom(request.package, kCoverMs);
    return plan;
}

std::unique_ptr<TrackJob> MakeVideoJob(const PicturePlan& plan, const std::vector<ConvertEntry>& entries,
                                       PackageInput& input, Mp4Output& output) {
    if (plan.copy) return std::make_unique<VideoCopy>(input.Video(), output);
    KeyFramePlan keyFrames(entries, input.LengthMs());
    if (plan.camera.width == 0)
        return std::make_unique<VideoEncode>(input.Video(), plan.settings, std::move(keyFrames), output);
    input.ReadCameraToo();
    return std::make_unique<VideoMix>(VideoMix::Sources{input.Video(), *input.Camera()}, plan.camera, plan.settings,
                                      std::move(keyFrames), output);
}

std::unique_ptr<TrackJob> MakeAudioJob(const ConvertRequest& request, const PackageInput& input, Mp4Output& output) {
    if (input.Audio() == nullptr) return nullptr;
    if (input.Audio()->codecpar->codec_id == AV_CODEC_ID_AAC)
        return std::make_unique<AudioCopy>(*input.Audio(), output);
    return std::make_unique<AudioEncode>(*input.Audio(), request.audioKbps, output);
}

/// The title of an indented entry begins with this mark; the page takes it off as well.
constexpr std::string_view kIndentMark = "...";

/// The index of the movie: entries with a place in it.
std::vector<ConvertEntry> EntriesOf(const ConvertRequest& request, const PackageInput& input) {
    std::vector<ConvertEntry> entries = request.entriesGiven ? request.entries : input.Chapters();
    const std::int64_t length = input.LengthMs();
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [length](const auto& entry) { return entry.pos < 0 || entry.pos >= length; }),
                  entries.end());
    for (ConvertEntry& entry : entries)
        if (entry.title.starts_with(kIndentMark)) entry.title.erase(0, kIndentMark.size());
    return entries;
}

class Run {
  public:
    Run(const ConvertRequest& request, const ConvertCallbacks& callbacks)
        : m_callbacks(callbacks), m_input(request.package), m_output(request.output, request.sizeLimit) {
        const auto entries = EntriesOf(request, m_input);
        m_video = MakeVideoJob(PlanPictures(request, entries, m_input), entries, m_input, m_output);
        m_audio = MakeAudioJob(request, m_input, m_output);
        m_output.Begin(entries, m_input.LengthMs());
    }

    void Work() {
        auto packet = NewPacket();
        while (CheckStop(), m_input.Read(*packet)) TakePacket(*packet);
        const std::int64_t length = std::max(m_input.LengthMs(), m_position);
        m_video->Finish(length);
        if (m_audio) m_audio->Finish(length);
        CheckStop();
        m_output.Finish(length);
    }

  private:
    void TakePacket(AVPacket& packet) {
        const bool sound = m_input.Audio() != nullptr && packet.stream_index == m_input.Audio()->index;
        m_position = std::max(m_position, m_input.PositionOf(packet));
        (sound ? *m_audio : *m_video).Take(packet);
        if (m_callbacks.onPosition) m_callbacks.onPosition(m_position);
    }

    void CheckStop() const {
        if (m_callbacks.stopRequested && m_callbacks.stopRequested()) throw StopRequested{};
    }

    const ConvertCallbacks& m_callbacks;
    PackageInput m_input;
    Mp4Output m_output;
    std::unique_ptr<TrackJob> m_video;
    std::unique_ptr<TrackJob> m_audio;
    std::int64_t m_position = 0;
};

}  // namespace

ConvertOutcome ConvertToMp4(const ConvertRequest& request, const ConvertCallbacks& callbacks) {
    try {
        Run(request, callbacks).Work();
        return ConvertOutcome::kFinished;
    } catch (const StopRequested&) {
        return ConvertOutcome::kStopped;
    } catch (const SizeLimitReached&) {
        return ConvertOutcome::kSizeLimit;
    }
}

}  // namespace kestrum::media
