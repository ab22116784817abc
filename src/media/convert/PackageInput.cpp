#include "media/convert/PackageInput.h"

#include <algorithm>
#include <cstdlib>

#include "media/package/Error.h"

namespace kestrum::media {

std::int64_t ToMs(std::int64_t timestamp, AVRational timeBase) {
    return av_rescale_q(timestamp, timeBase, AVRational{1, 1000});
}

bool HasPictureFrom(const std::string& path, std::int64_t fromMs) {
    const PackageInput input(path);
    auto packet = NewPacket();
    while (input.Read(*packet))
        if (packet->stream_index == input.Video().index && ToMs(packet->pts, input.Video().time_base) >= fromMs)
            return true;
    return false;
}

PackageInput::PackageInput(const std::string& path) : m_input(OpenInput(path)) {
    PickTracks();
    if (m_video == nullptr) throw Error(ErrorKind::kNotAPackage, "There is no recording in " + path + ".", 0);
    m_lengthMs = m_input->duration > 0 ? av_rescale(m_input->duration, 1000, AV_TIME_BASE) : 0;
}

void PackageInput::PickTracks() {
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        AVStream* stream = m_input->streams[i];
        const bool pictures = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
                              (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
        if (pictures && m_video == nullptr) {
            m_video = stream;
        } else if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO && m_audio == nullptr) {
            m_audio = stream;
        } else {
            if (pictures && m_camera == nullptr) m_camera = stream;
            stream->discard = AVDISCARD_ALL;
        }
    }
}

void PackageInput::ReadCameraToo() {
    if (m_camera != nullptr) m_camera->discard = AVDISCARD_DEFAULT;
}

bool PackageInput::HasKeyFramesAt(const std::vector<std::int64_t>& positions) {
    // The list is read at the first jump; before it only the pictures are known that were looked at to open the file.
    if (av_seek_frame(m_input.get(), m_video->index, 0, AVSEEK_FLAG_BACKWARD) < 0) return positions.empty();
    return std::all_of(positions.begin(), positions.end(), [this](std::int64_t position) {
        const std::int64_t wanted = av_rescale_q(position, AVRational{1, 1000}, m_video->time_base);
        const AVIndexEntry* entry = avformat_index_get_entry_from_timestamp(m_video, wanted, AVSEEK_FLAG_BACKWARD);
        return entry != nullptr && (entry->flags & AVINDEX_KEYFRAME) != 0 &&
               ToMs(entry->timestamp, m_video->time_base) == position;
    });
}

std::vector<ConvertEntry> PackageInput::Chapters() const {
    std::vector<ConvertEntry> entries;
    for (unsigned i = 0; i < m_input->nb_chapters; ++i) {
        const AVChapter& chapter = *m_input->chapters[i];
        const AVDictionaryEntry* title = av_dict_get(chapter.metadata, "title", nullptr, 0);
        entries.push_back({ToMs(chapter.start, chapter.time_base), title != nullptr ? title->value : ""});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.pos < b.pos; });
    return entries;
}

std::int64_t PackageInput::PositionOf(const AVPacket& packet) const {
    return ToMs(packet.pts, m_input->streams[packet.stream_index]->time_base);
}

bool PackageInput::Read(AVPacket& packet) const {
    while (true) {
        av_packet_unref(&packet);
        const int result = av_read_frame(m_input.get(), &packet);
        if (result == AVERROR_EOF) return false;
        CheckAv(result, "read the recording");
        const AVStream& stream = *m_input->streams[packet.stream_index];
        const bool wanted = &stream == m_video || &stream == m_audio || &stream == m_camera;
        if (wanted && stream.discard != AVDISCARD_ALL && packet.pts != AV_NOPTS_VALUE) return true;
    }
}

}  // namespace kestrum::media
