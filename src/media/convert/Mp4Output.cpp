#include "media/convert/Mp4Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

constexpr AVRational kMilliseconds{1, 1000};

AVChapter* NewChapter(const ConvertEntry& entry, std::int64_t end, int id) {
    auto* chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
    if (chapter == nullptr) throw std::bad_alloc();
    chapter->id = id;
    chapter->time_base = kMilliseconds;
    chapter->start = entry.pos;
    chapter->end = std::max(end, entry.pos);
    av_dict_set(&chapter->metadata, "title", entry.title.c_str(), 0);
    return chapter;
}

[[noreturn]] void FailWithErrno(const std::string& doing) {
    CheckAv(AVERROR(errno), doing);
    throw Error(ErrorKind::kIo, "Cannot " + doing + ".", errno);
}

/// The bytes are on the disk before the name says that the movie is whole.
void Synchronise(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) FailWithErrno("open " + path);
    const int result = fdatasync(file);
    close(file);
    if (result != 0) FailWithErrno("write " + path);
}

}  // namespace

Mp4Output::Mp4Output(const std::string& path, std::int64_t sizeLimit)
    : m_path(path), m_temporary(path + ".part"), m_sizeLimit(sizeLimit), m_held(NewPacket()) {
    const std::string address = "file:" + m_temporary;
    CheckAv(avformat_alloc_output_context2(&m_format, nullptr, "mp4", address.c_str()), "set up the MP4 file");
    const int result = avio_open(&m_format->pb, address.c_str(), AVIO_FLAG_WRITE);
    if (result < 0) {
        avformat_free_context(m_format);
        CheckAv(result, "write " + m_temporary);
    }
}

Mp4Output::~Mp4Output() {
    if (m_format == nullptr) return;
    avio_closep(&m_format->pb);
    avformat_free_context(m_format);
    std::remove(m_temporary.c_str());
}

AVStream& Mp4Output::AddTrack() {
    AVStream* track = avformat_new_stream(m_format, nullptr);
    if (track == nullptr) throw std::bad_alloc();
    return *track;
}

void Mp4Output::Begin(const std::vector<ConvertEntry>& chapters, std::int64_t lengthMs) {
    AddChapters(chapters, lengthMs);
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    const int result = avformat_write_header(m_format, &options);
    av_dict_free(&options);
    CheckAv(result, "begin the MP4 file");
}

void Mp4Output::AddChapters(const std::vector<ConvertEntry>& chapters, std::int64_t lengthMs) {
    if (chapters.empty()) return;
    m_format->chapters = static_cast<AVChapter**>(av_calloc(chapters.size(), sizeof(AVChapter*)));
    if (m_format->chapters == nullptr) throw std::bad_alloc();
    for (std::size_t i = 0; i < chapters.size(); ++i) {
        const std::int64_t end = i + 1 < chapters.size() ? chapters[i + 1].pos : lengthMs;
        m_format->chapters[i] = NewChapter(chapters[i], end, static_cast<int>(i));
        ++m_format->nb_chapters;
    }
}

void Mp4Output::Write(AVStream& track, AVPacket& packet, AVRational timeBase) {
    packet.stream_index = track.index;
    packet.pos = -1;
    av_packet_rescale_ts(&packet, timeBase, track.time_base);
    if (track.codecpar->codec_type != AVMEDIA_TYPE_VIDEO) return WriteNow(packet);
    if (m_held->data != nullptr) WriteNow(*m_held);
    CheckAv(av_packet_make_refcounted(&packet), "keep a picture");
    av_packet_unref(m_held.get());
    av_packet_move_ref(m_held.get(), &packet);
}

void Mp4Output::WriteNow(AVPacket& packet) {
    CheckAv(av_interleaved_write_frame(m_format, &packet), "write " + m_temporary);
    CheckAv(m_format->pb->error, "write " + m_temporary);
    CheckSize(avio_tell(m_format->pb));
}

void Mp4Output::FlushHeld(std::int64_t lengthMs) {
    if (m_held->data == nullptr) return;
    const AVRational timeBase = m_format->streams[m_held->stream_index]->time_base;
    const std::int64_t end = av_rescale_q(lengthMs, kMilliseconds, timeBase);
    m_held->duration = std::max<std::int64_t>(end - m_held->pts, 1);
    WriteNow(*m_held);
}

void Mp4Output::CheckSize(std::int64_t bytes) const {
    if (m_sizeLimit > 0 && bytes > m_sizeLimit) throw SizeLimitReached{};
}

void Mp4Output::Finish(std::int64_t lengthMs) {
    FlushHeld(lengthMs);
    CheckAv(av_write_trailer(m_format), "finish " + m_temporary);
    CheckSize(avio_size(m_format->pb));
    CheckAv(m_format->pb->error, "write " + m_temporary);
    CheckAv(avio_closep(&m_format->pb), "write " + m_temporary);
    Synchronise(m_temporary);
    if (std::rename(m_temporary.c_str(), m_path.c_str()) != 0) FailWithErrno("name " + m_path);
    avformat_free_context(m_format);
    m_format = nullptr;
}

}  // namespace kestrum::media
