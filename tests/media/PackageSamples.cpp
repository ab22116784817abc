#include "PackageSamples.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <stdexcept>

#include "media/package/Journal.h"

extern "C" {
#include <libavformat/avformat.h>
}

namespace kestrum::media::test {

namespace {

Bytes ExtraData(const AVStream& stream) {
    return {stream.codecpar->extradata, stream.codecpar->extradata + stream.codecpar->extradata_size};
}

Lecture ReadLecture(const std::string& path) {
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) throw std::runtime_error("no sample media");
    avformat_find_stream_info(format, nullptr);
    Lecture lecture;
    const AVCodecParameters& video = *format->streams[0]->codecpar;
    lecture.tracks.video = {video.width, video.height, ExtraData(*format->streams[0])};
    if (format->nb_streams > 1) {
        const AVCodecParameters& audio = *format->streams[1]->codecpar;
        lecture.tracks.audio =
            AudioTrackConfig{audio.sample_rate, audio.ch_layout.nb_channels, 64000, ExtraData(*format->streams[1])};
    }
    AVPacket* packet = av_packet_alloc();
    while (av_read_frame(format, packet) >= 0) {
        const AVStream& stream = *format->streams[packet->stream_index];
        const std::int64_t ms = av_rescale_q(packet->pts, stream.time_base, AVRational{1, 1000});
        // The encoder's first unit of sound lies before the beginning and holds nothing.
        if (ms >= 0)
            lecture.samples.push_back({packet->stream_index == 0, (packet->flags & AV_PKT_FLAG_KEY) != 0, ms,
                                       Bytes(packet->data, packet->data + packet->size)});
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&format);
    std::stable_sort(lecture.samples.begin(), lecture.samples.end(),
                     [](const Sample& a, const Sample& b) { return a.ms < b.ms; });
    return lecture;
}

Lecture MakeLecture() {
    const TempFolder folder;
    const std::string path = folder.File("lecture.mp4");
    const ToolResult made = RunTool({"ffmpeg",
                                     "-v",
                                     "error",
                                     "-f",
                                     "lavfi",
                                     "-i",
                                     "testsrc=size=160x120:rate=10",
                                     "-f",
                                     "lavfi",
                                     "-i",
                                     "sine=frequency=440:sample_rate=48000",
                                     "-t",
                                     "4",
                                     "-c:v",
                                     "libx264",
                                     "-bf",
                                     "0",
                                     "-g",
                                     "10",
                                     "-keyint_min",
                                     "10",
                                     "-sc_threshold",
                                     "0",
                                     "-c:a",
                                     "aac",
                                     "-b:a",
                                     "64k",
                                     path});
    if (made.exitCode != 0) throw std::runtime_error("ffmpeg: " + made.output);
    return ReadLecture(path);
}

std::string Quoted(const std::string& argument) {
    std::string quoted = "'";
    for (const char c : argument) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::size_t CountPackets(const std::string& path, const std::string& stream) {
    const ToolResult probe = RunTool({"ffprobe", "-v", "error", "-count_packets", "-select_streams", stream,
                                      "-show_entries", "stream=nb_read_packets", "-of", "csv=p=0", path});
    EXPECT_EQ(probe.exitCode, 0) << probe.output;
    return static_cast<std::size_t>(std::atoll(probe.output.c_str()));
}

/// The tests sync thousands of times to no end; in memory that costs nothing.
std::filesystem::path FastFolder() {
    constexpr std::uintmax_t kEnough = 256 << 20;
    const std::filesystem::path memory = "/dev/shm";
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(memory, error);
    const bool usable = !error && space.available > kEnough && access(memory.c_str(), W_OK) == 0;
    return usable ? memory : std::filesystem::temp_directory_path();
}

}  // namespace

TempFolder::TempFolder() {
    std::string pattern = (FastFolder() / "kestrum-package-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_path = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

PictureTrack MakePictures(const std::string& source, int seconds) {
    const TempFolder folder;
    const std::string path = folder.File("pictures.mp4");
    const ToolResult made =
        RunTool({"ffmpeg", "-v",      "error",    "-f",      "lavfi", "-i", source, "-t",     std::to_string(seconds),
                 "-c:v",   "libx264", "-pix_fmt", "yuv420p", "-bf",   "0",  "-g",   "100000", "-sc_threshold",
                 "0",      path});
    if (made.exitCode != 0) throw std::runtime_error("ffmpeg: " + made.output);
    const Lecture read = ReadLecture(path);
    return {read.tracks.video, read.samples};
}

const Lecture& ShortLecture() {
    static const Lecture lecture = MakeLecture();
    return lecture;
}

const Bytes& FirstOf(const Lecture& lecture, bool video) {
    return std::find_if(lecture.samples.begin(), lecture.samples.end(),
                        [&](const Sample& sample) { return sample.video == video; })
        ->data;
}

void Record(PackageWriter& writer, const Lecture& lecture, const std::function<void(std::int64_t ms)>& beforeSample) {
    if (!writer.ExistingTracks()) writer.SetTracks(lecture.tracks);
    std::int64_t flushed = 0;
    for (const Sample& sample : lecture.samples) {
        const std::int64_t ms = writer.StartMs() + sample.ms;
        if (sample.ms >= flushed + 100) {
            writer.Flush();
            flushed = sample.ms;
        }
        if (beforeSample) beforeSample(ms);
        if (sample.video) {
            writer.WriteVideo(ms, sample.key, sample.data);
        } else {
            writer.WriteAudio(ms, sample.data);
        }
    }
}

std::int64_t RecordFile(const std::string& path) {
    const auto writer = PackageWriter::Open(path);
    Record(*writer, ShortLecture());
    writer->Close(0);
    return writer->LengthMs();
}

Bytes AsBytes(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string AsText(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

Bytes ProjectFile(const std::vector<std::int64_t>& positions, const std::string& duration) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<ksproject ver=\"8.0\">\r\n<project>\r\n<abstract>\r\n"
        "<title>Lecture</title>\r\n<author>Ann &amp; Bob</author>\r\n</abstract>\r\n<index duration=\"" +
        duration + "\" type=\"OL\">";
    int number = 0;
    for (const std::int64_t position : positions)
        text += "\r\n<item>\r\n<title>Slide " + std::to_string(++number) +
                "</title>\r\n<recdate>2026/1/2 03:04:05</recdate>\r\n<pos>" + std::to_string(position) +
                "</pos>\r\n</item>";
    return AsBytes(text + "\r\n</index>\r\n</project>\r\n</ksproject>\r\n");
}

std::string JournalOf(const std::vector<std::int64_t>& positions) {
    std::vector<JournalEntry> entries;
    for (const std::int64_t position : positions)
        entries.push_back({position, "2026/1/2 03:04:05", "Slide " + std::to_string(entries.size() + 1), ""});
    return FormatJournal(entries);
}

std::string IndexOf(const Bytes& projectFile) {
    pugi::xml_document document;
    if (!document.load_buffer(projectFile.data(), projectFile.size())) return "unreadable";
    const pugi::xml_node index = document.document_element().child("project").child("index");
    std::string text = index.attribute("duration").value();
    for (const pugi::xml_node& item : index.children()) text += std::string("|") + item.child_value("pos");
    return text;
}

ToolResult RunTool(const std::vector<std::string>& command) {
    std::string line;
    for (const std::string& part : command) line += Quoted(part) + " ";
    ToolResult result;
    FILE* pipe = popen((line + "2>&1 </dev/null").c_str(), "r");
    if (pipe == nullptr) return {-1, "popen failed"};
    char buffer[4096];
    while (const std::size_t count = fread(buffer, 1, sizeof(buffer), pipe)) result.output.append(buffer, count);
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

void ExpectReadersAgree(const std::string& path, std::size_t pictures, std::size_t soundUnits) {
    SCOPED_TRACE(path);
    EXPECT_EQ(CountPackets(path, "v:0"), pictures);
    EXPECT_EQ(CountPackets(path, "a:0"), soundUnits);
    const ToolResult decode = RunTool({"ffmpeg", "-v", "error", "-i", path, "-f", "null", "-"});
    EXPECT_EQ(decode.exitCode, 0);
    EXPECT_EQ(decode.output, "");
    const ToolResult identify = RunTool({"mkvmerge", "-i", path});
    EXPECT_EQ(identify.exitCode, 0) << identify.output;
    EXPECT_EQ(identify.output.find("Warning"), std::string::npos) << identify.output;
    const ToolResult info = RunTool({"mkvinfo", "--all", path});
    EXPECT_EQ(info.exitCode, 0) << info.output;
    for (const char* complaint : {"Error", "Unknown element", "invalid", "damaged"})
        EXPECT_EQ(info.output.find(complaint), std::string::npos) << complaint << "\n" << info.output.substr(0, 4000);
}

bool DyingStorage::DiesNow() {
    if (m_script->fatal >= 0 && m_script->operations > m_script->fatal) throw Death();
    return m_script->operations++ == m_script->fatal;
}

void DyingStorage::WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) {
    if (!DiesNow()) return m_inner->WriteAt(position, data);
    // A disk writes whole sectors: what is cut short ends at the border of one.
    constexpr std::uint64_t kSector = 512;
    const auto reached = position + static_cast<std::uint64_t>(static_cast<double>(data.size()) * m_script->written);
    const std::uint64_t end = m_script->written >= 1 ? reached : std::max(position, reached / kSector * kSector);
    m_inner->WriteAt(position, data.first(static_cast<std::size_t>(end - position)));
    throw Death();
}

void DyingStorage::Truncate(std::uint64_t size) {
    if (DiesNow()) throw Death();
    m_inner->Truncate(size);
}

std::unique_ptr<IStorage> OpenDying(const std::string& path, const std::shared_ptr<DyingStorage::Script>& script) {
    auto file = FileStorage::Open(path, FileStorage::Access::kReadWrite);
    file->LockExclusive();
    return std::make_unique<DyingStorage>(std::move(file), script);
}

}  // namespace kestrum::media::test
