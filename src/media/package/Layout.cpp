#include "media/package/Layout.h"

#include <algorithm>
#include <chrono>
#include <random>

#include "media/package/Ebml.h"
#include "media/package/Error.h"

namespace kestrum::media {

namespace {

using namespace ebml;

constexpr std::size_t kSeekEntrySize = 21;
constexpr std::size_t kDurationSize = 11;
/// The longest header that is patched later: cluster identifier, size, check sum.
constexpr std::uint64_t kPatchedHeaderSize = 4 + 8 + 6;

Bytes EbmlHeader() {
    constexpr std::uint32_t kVersion = 0x4286, kReadVersion = 0x42F7, kMaxIdLength = 0x42F2, kMaxSizeLength = 0x42F3,
                            kDocTypeVersion = 0x4287, kDocTypeReadVersion = 0x4285;
    Bytes children;
    AppendUnsigned(children, kVersion, 1);
    AppendUnsigned(children, kReadVersion, 1);
    AppendUnsigned(children, kMaxIdLength, 4);
    AppendUnsigned(children, kMaxSizeLength, 8);
    AppendText(children, kDocType, "matroska");
    AppendUnsigned(children, kDocTypeVersion, 4);
    AppendUnsigned(children, kDocTypeReadVersion, 2);
    Bytes header;
    AppendBinary(header, kEbmlHead, children);
    return header;
}

/// One entry of fixed size; a Void of the same size for "none".
void AppendSeek(Bytes& target, std::uint32_t id, std::uint64_t filePosition) {
    if (filePosition == 0) return AppendVoid(target, kSeekEntrySize);
    Bytes idBytes;
    AppendId(idBytes, id);
    Bytes children;
    AppendBinary(children, kSeekId, idBytes);
    AppendLongUnsigned(children, kSeekPosition, filePosition - SegmentDataPosition());
    AppendBinary(target, kSeek, children);
}

Bytes BuildSeekHead(const Head& head, std::uint64_t infoPosition) {
    Bytes children;
    AppendSeek(children, kInfo, infoPosition);
    AppendSeek(children, kTracks, head.tracks);
    AppendSeek(children, kCues, head.cues);
    AppendSeek(children, kAttachments, head.attachments);
    AppendSeek(children, kChapters, head.chapters);
    Bytes seekHead;
    AppendBinary(seekHead, kSeekHead, children);
    return seekHead;
}

Bytes BuildInfo(const Head& head) {
    Bytes children;
    AppendUnsigned(children, kTimestampScale, 1'000'000);
    AppendText(children, kMuxingApp, "Kestrum");
    AppendText(
        children, kWritingApp,
        "Kestrum package " + std::to_string(head.formatVersion / 256) + "." + std::to_string(head.formatVersion % 256));
    AppendBinary(children, kSegmentUuid, head.segmentUuid);
    AppendLongUnsigned(children, kDateUtc, static_cast<std::uint64_t>(head.dateUtc));
    if (head.durationMs) {
        AppendFloat(children, kDuration, *head.durationMs);
    } else {
        AppendVoid(children, kDurationSize);
    }
    Bytes info;
    AppendBinary(info, kInfo, children);
    return info;
}

void AppendTrackHead(Bytes& entry, std::uint64_t number, std::uint64_t type, std::string_view codec,
                     const Bytes& codecPrivate) {
    AppendUnsigned(entry, kTrackNumber, number);
    AppendUnsigned(entry, kTrackUid, number);
    AppendUnsigned(entry, kTrackType, type);
    AppendUnsigned(entry, kFlagLacing, 0);
    AppendText(entry, kLanguage, "und");
    AppendText(entry, kCodecId, codec);
    AppendBinary(entry, kCodecPrivate, codecPrivate);
}

Bytes VideoEntry(const VideoTrackConfig& video, std::uint64_t number) {
    constexpr std::uint64_t kProgressive = 2;
    Bytes entry;
    AppendTrackHead(entry, number, 1, "V_MPEG4/ISO/AVC", video.avcC);
    Bytes settings;
    AppendUnsigned(settings, kFlagInterlaced, kProgressive);
    AppendUnsigned(settings, kPixelWidth, static_cast<std::uint64_t>(video.width));
    AppendUnsigned(settings, kPixelHeight, static_cast<std::uint64_t>(video.height));
    AppendBinary(entry, kVideo, settings);
    return entry;
}

Bytes AudioEntry(const AudioTrackConfig& audio) {
    Bytes entry;
    AppendTrackHead(entry, 2, 2, "A_AAC", audio.audioSpecificConfig);
    Bytes settings;
    AppendFloat(settings, kSamplingFrequency, audio.sampleRate);
    AppendUnsigned(settings, kChannels, static_cast<std::uint64_t>(audio.channels));
    AppendBinary(entry, kAudio, settings);
    return entry;
}

/// The nominal bit rate has no place in a track entry; the tag BPS of a track is its usual one.
Bytes BitRateTag(int bitsPerSecond) {
    Bytes targets;
    AppendUnsigned(targets, kTagTrackUid, 2);
    Bytes simple;
    AppendText(simple, kTagName, "BPS");
    AppendText(simple, kTagString, std::to_string(bitsPerSecond));
    Bytes tag;
    AppendBinary(tag, kTargets, targets);
    AppendBinary(tag, kSimpleTag, simple);
    Bytes children;
    AppendBinary(children, kTag, tag);
    return children;
}

bool IsUsable(const VideoTrackConfig& video) {
    return video.width > 0 && video.height > 0 && !video.avcC.empty();
}

void RequireUsable(const TrackConfigs& tracks) {
    const bool video = IsUsable(tracks.video) && (!tracks.webcam || IsUsable(*tracks.webcam));
    const bool audio = !tracks.audio || (tracks.audio->sampleRate > 0 && tracks.audio->channels > 0 &&
                                         !tracks.audio->audioSpecificConfig.empty());
    if (!video || !audio) throw Error(ErrorKind::kBadCall, "The tracks are not described completely.", 0);
}

}  // namespace

std::uint64_t SegmentDataPosition() {
    static const std::uint64_t position = EbmlHeader().size() + kLongHeaderSize;
    return position;
}

Head NewHead() {
    constexpr std::int64_t kSecondsTo2001 = 978'307'200;
    Head head;
    std::random_device random;
    for (int i = 0; i < 16; ++i) head.segmentUuid.push_back(static_cast<std::uint8_t>(random()));
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
    head.dateUtc = (seconds - kSecondsTo2001) * 1'000'000'000;
    return head;
}

Bytes BuildHead(const Head& head) {
    Bytes sector = EbmlHeader();
    AppendId(sector, kSegment);
    AppendLongSize(sector, kUnknownSize);
    // All entries have one size, so a first pass tells where the info comes.
    const std::uint64_t infoPosition = sector.size() + BuildSeekHead(head, 1).size();
    for (const Bytes& part : {BuildSeekHead(head, infoPosition), BuildInfo(head)})
        sector.insert(sector.end(), part.begin(), part.end());
    AppendVoid(sector, kTracksAt - sector.size());
    return sector;
}

Bytes BuildTracksRoom(const TrackConfigs& tracks) {
    RequireUsable(tracks);
    Bytes children;
    AppendBinary(children, kTrackEntry, VideoEntry(tracks.video, 1));
    if (tracks.audio) AppendBinary(children, kTrackEntry, AudioEntry(*tracks.audio));
    if (tracks.webcam) AppendBinary(children, kTrackEntry, VideoEntry(*tracks.webcam, 3));
    Bytes room;
    AppendCheckedMaster(room, kTracks, children);
    if (tracks.audio && tracks.audio->bitsPerSecond > 0)
        AppendCheckedMaster(room, kTags, BitRateTag(tracks.audio->bitsPerSecond));
    constexpr std::uint64_t kRoom = kRegionAt - kTracksAt;
    if (room.size() + kLongVoidHeaderSize > kRoom)
        throw Error(ErrorKind::kBadCall, "The description of the tracks is too long.", 0);
    AppendVoid(room, kRoom - room.size());
    return room;
}

Bytes BuildEmptyPackage() {
    Bytes bytes = BuildHead(NewHead());
    AppendVoid(bytes, kRegionAt - kTracksAt);
    const Bytes region = LongVoidHeader(kMediaAt - kRegionAt);
    bytes.insert(bytes.end(), region.begin(), region.end());
    return bytes;
}

std::uint64_t PaddingBefore(std::uint64_t position) {
    const std::uint64_t inSector = position % kSectorSize;
    if (inSector + kPatchedHeaderSize <= kSectorSize) return 0;
    return std::max<std::uint64_t>(2, kSectorSize - inSector);
}

}  // namespace kestrum::media
