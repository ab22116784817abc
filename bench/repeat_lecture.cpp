// Makes a long lecture out of a short recording, for bench/conversion.py: the same media again and again, as if the
// recording had been continued that often, with an index entry at each key frame.
//   repeat_lecture RECORDING LONG-PACKAGE MINUTES PROJECT-TEMPLATE
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "media/convert/PackageInput.h"
#include "media/package/Package.h"
#include "media/package/PackageWriter.h"

namespace {

using namespace kestrum::media;

constexpr std::int64_t kMsPerMinute = 60'000;

struct Sample {
    bool isPicture = false;
    bool isKey = false;
    std::int64_t ms = 0;
    Bytes bytes;
};

std::vector<Sample> Read(const std::string& path) {
    const PackageInput input(path);
    const auto packet = NewPacket();
    std::vector<Sample> samples;
    while (input.Read(*packet)) {
        const bool isPicture = packet->stream_index == input.Video().index;
        const bool isKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
        samples.push_back({isPicture, isKey, input.PositionOf(*packet), {packet->data, packet->data + packet->size}});
    }
    return samples;
}

void Append(PackageWriter& writer, const std::vector<Sample>& samples, std::int64_t fromMs) {
    for (const Sample& sample : samples) {
        if (sample.isPicture)
            writer.WriteVideo(fromMs + sample.ms, sample.isKey, sample.bytes);
        else
            writer.WriteAudio(fromMs + sample.ms, sample.bytes);
    }
    writer.Flush();
}

Bytes WithIndex(const std::string& templatePath, const std::vector<std::int64_t>& positions) {
    std::ifstream file(templatePath, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string end = "</index>";
    const auto at = text.find(end);
    if (at == std::string::npos) throw std::runtime_error(templatePath + " has no index");
    std::string items;
    for (const auto position : positions)
        items += "<item><title>From " + std::to_string(position / 1000) +
                 " s on</title><recdate>2024/3/7 09:05:00</recdate><pos>" + std::to_string(position) + "</pos></item>";
    text.insert(at, items);
    return {text.begin(), text.end()};
}

void Repeat(const std::string& from, const std::string& to, std::int64_t minutes, const std::string& projectTemplate) {
    const auto samples = Read(from);
    const std::int64_t length = LengthMs(from);
    const auto writer = PackageWriter::Open(to);
    writer->SetTracks(Describe(from).tracks.value());
    std::int64_t begin = 0;
    for (; begin < minutes * kMsPerMinute; begin += length) Append(*writer, samples, begin);
    writer->Close(begin);
    WriteStored(to, {{kProjectFileName, WithIndex(projectTemplate, KeyFrames(to))}});
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 5) return 2;
    Repeat(argv[1], argv[2], std::atoi(argv[3]), argv[4]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
