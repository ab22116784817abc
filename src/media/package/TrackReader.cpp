#include "media/package/TrackReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace kestrum::media {

namespace {

using namespace ebml;

constexpr std::size_t kLongestCodecPrivate = 1 << 16;
constexpr std::uint64_t kLargestFrame = 1 << 16;

struct TrackEntry {
    std::uint64_t type = 0;
    Bytes codecPrivate;
    int width = 0;
    int height = 0;
    int sampleRate = 0;
    int channels = 1;
    bool encrypted = false;
};

int SmallNumber(IStorage& storage, const Element& element) {
    return static_cast<int>(std::min(ReadUnsigned(storage, element), kLargestFrame));
}

int SampleRate(IStorage& storage, const Element& element) {
    const double rate = ReadFloat(storage, element);
    return rate > 0 && rate < 1e6 ? static_cast<int>(std::lround(rate)) : 0;
}

/// A compressed track has encodings too.
bool HoldsEncryption(IStorage& storage, const Element& encodings) {
    bool found = false;
    ForEachChild(storage, encodings.data, encodings.End(), [&](const Element& encoding) {
        ForEachChild(storage, encoding.data, encoding.End(), [&](const Element& child) {
            found = found || (encoding.id == kContentEncoding && child.id == kContentEncryption);
            return true;
        });
        return true;
    });
    return found;
}

TrackEntry ReadEntry(IStorage& storage, const Element& element) {
    TrackEntry entry;
    ForEachChild(storage, element.data, element.End(), [&](const Element& child) {
        if (child.id == kTrackType) entry.type = ReadUnsigned(storage, child);
        if (child.id == kCodecPrivate) entry.codecPrivate = ReadBinary(storage, child, kLongestCodecPrivate);
        if (child.id == kContentEncodings) entry.encrypted = HoldsEncryption(storage, child);
        if (child.id != kVideo && child.id != kAudio) return true;
        ForEachChild(storage, child.data, child.End(), [&](const Element& setting) {
            if (setting.id == kPixelWidth) entry.width = SmallNumber(storage, setting);
            if (setting.id == kPixelHeight) entry.height = SmallNumber(storage, setting);
            if (setting.id == kSamplingFrequency) entry.sampleRate = SampleRate(storage, setting);
            if (setting.id == kChannels) entry.channels = SmallNumber(storage, setting);
            return true;
        });
        return true;
    });
    return entry;
}

void AddVideo(const TrackEntry& entry, PackageMap& map) {
    if (!map.tracks) {
        map.tracks = TrackConfigs{{entry.width, entry.height, entry.codecPrivate}, std::nullopt};
    } else if (!map.tracks->webcam) {
        map.tracks->webcam = VideoTrackConfig{entry.width, entry.height, entry.codecPrivate};
    }
}

/// Bytes from pairs of hexadecimal digits; empty for any other text.
Bytes FromHex(const std::string& text) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        std::uint8_t value = 0;
        const char* const end = text.data() + i + 2;
        if (std::from_chars(text.data() + i, end, value, 16).ptr != end) return {};
        bytes.push_back(value);
    }
    return text.size() % 2 == 0 ? bytes : Bytes();
}

void AddTag(IStorage& storage, const Element& tag, PackageMap& map) {
    std::string name;
    std::string value;
    ForEachChild(storage, tag.data, tag.End(), [&](const Element& child) {
        if (child.id == kTagName) name = ReadText(storage, child, 64);
        if (child.id == kTagString) value = ReadText(storage, child, 64);
        return true;
    });
    if (name == kEncryptionKeyTag) map.encryptionKey = FromHex(value);
    if (name != "BPS" || !map.tracks || !map.tracks->audio) return;
    constexpr long kHighest = 10'000'000;
    map.tracks->audio->bitsPerSecond =
        static_cast<int>(std::clamp(std::strtol(value.c_str(), nullptr, 10), 0L, kHighest));
}

}  // namespace

void ReadTracks(IStorage& storage, const Element& tracks, PackageMap& map) {
    constexpr std::uint64_t kVideoType = 1;
    constexpr std::uint64_t kAudioType = 2;
    ForEachChild(storage, tracks.data, tracks.End(), [&](const Element& child) {
        if (child.id != kTrackEntry) return true;
        const TrackEntry entry = ReadEntry(storage, child);
        map.encrypted = map.encrypted || entry.encrypted;
        if (entry.type == kVideoType) AddVideo(entry, map);
        if (entry.type == kAudioType && map.tracks && !map.tracks->audio)
            map.tracks->audio = AudioTrackConfig{entry.sampleRate, entry.channels, 0, entry.codecPrivate};
        return true;
    });
}

void ReadTags(IStorage& storage, const Element& tags, PackageMap& map) {
    ForEachChild(storage, tags.data, tags.End(), [&](const Element& tag) {
        if (tag.id != kTag) return true;
        ForEachChild(storage, tag.data, tag.End(), [&](const Element& simple) {
            if (simple.id == kSimpleTag) AddTag(storage, simple, map);
            return true;
        });
        return true;
    });
}

}  // namespace kestrum::media
