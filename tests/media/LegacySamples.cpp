#include "LegacySamples.h"

#include <gtest/gtest.h>

#include <zlib.h>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "media/package/Ebml.h"
#include "media/package/Layout.h"
#include "media/package/PackageMap.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media::test {

namespace {

using namespace ebml;

constexpr const char* kKey = "000102030405060708090a0b0c0d0e0f";

/// What openssl makes of `sample` for the block at this place.
Bytes Encrypted(std::uint64_t track, std::int64_t ms, const Bytes& sample) {
    const TempFolder folder;
    const std::string in = folder.File("in"), out = folder.File("out");
    WriteWholeFile(in, sample);
    char counter[33];
    std::snprintf(counter, sizeof counter, "%014llx%02x0000000000000000", static_cast<unsigned long long>(ms),
                  static_cast<unsigned>(track));
    const ToolResult done =
        RunTool({"openssl", "enc", "-aes-128-ctr", "-K", kKey, "-iv", counter, "-in", in, "-out", out});
    EXPECT_EQ(done.exitCode, 0) << done.output;
    return ReadWholeFile(out).value();
}

void EncryptCluster(IStorage& file, const Element& cluster) {
    std::int64_t clusterMs = 0;
    ForEachChild(file, cluster.data, cluster.End(), [&](const Element& child) {
        if (child.id == kTimestamp) clusterMs = static_cast<std::int64_t>(ReadUnsigned(file, child));
        if (child.id != kSimpleBlock) return true;
        const Bytes block = ReadExactly(file, child.data, child.size).value();
        const std::int64_t ms = clusterMs + static_cast<std::int16_t>(block[1] << 8 | block[2]);
        file.WriteAt(child.data + 4, Encrypted(block[0] & 0x7F, ms, Bytes(block.begin() + 4, block.end())));
        return true;
    });
    const Bytes checked = ReadExactly(file, cluster.data + kCrcElementSize, cluster.size - kCrcElementSize).value();
    Bytes crc;
    AppendCrc(crc, static_cast<std::uint32_t>(crc32_z(crc32(0, nullptr, 0), checked.data(), checked.size())));
    file.WriteAt(cluster.data, crc);
}

Bytes EncodingsElement() {
    constexpr std::uint32_t kOrder = 0x5031, kScope = 0x5032, kType = 0x5033, kAlgorithm = 0x47E1;
    Bytes encryption;
    AppendUnsigned(encryption, kAlgorithm, 5);
    Bytes encoding;
    AppendUnsigned(encoding, kOrder, 0);
    AppendUnsigned(encoding, kScope, 1);
    AppendUnsigned(encoding, kType, 1);
    AppendBinary(encoding, kContentEncryption, encryption);
    Bytes encodings;
    AppendBinary(encodings, kContentEncoding, encoding);
    Bytes element;
    AppendBinary(element, kContentEncodings, encodings);
    return element;
}

Bytes KeyTag() {
    Bytes simple;
    AppendText(simple, kTagName, "KESTRUM_KEY");
    AppendText(simple, kTagString, kKey);
    Bytes tag;
    AppendBinary(tag, kTargets, {});
    AppendBinary(tag, kSimpleTag, simple);
    Bytes element;
    AppendBinary(element, kTag, tag);
    return element;
}

void Append(Bytes& target, const Bytes& more) {
    target.insert(target.end(), more.begin(), more.end());
}

/// The children of a checked master, each given to `change` first.
Bytes Children(IStorage& file, const Element& master, const std::function<Bytes(const Element&)>& change) {
    Bytes children;
    ForEachChild(file, master.data + kCrcElementSize, master.End(), [&](const Element& child) {
        Append(children, change(child));
        return true;
    });
    return children;
}

}  // namespace

void SetFormatVersion(const std::string& package, const std::string& version) {
    const auto file = FileStorage::Open(package, FileStorage::Access::kReadWrite);
    const std::string head = AsText(ReadExactly(*file, 0, kSectorSize).value());
    const std::string mark = "Kestrum package ";
    const std::size_t at = head.find(mark);
    ASSERT_NE(at, std::string::npos);
    file->WriteAt(at + mark.size(), AsBytes(version));
}

Bytes OldProjectFile(const std::string& ver, const std::vector<std::int64_t>& positions) {
    std::string items;
    for (const std::int64_t pos : positions)
        items += "<item><title>Old " + std::to_string(pos) + "</title><recdate>2009/5/4 10:00:00</recdate><pos>" +
                 std::to_string(pos) + "</pos></item>";
    return AsBytes("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<kestrum ver=\"" + ver +
                   "\"><project><abstract><title>Botany\tIII 植物</title><author>A. &amp; B.</author></abstract>"
                   "<configure><template>blue</template><photo size=\"90x90\">me.jpg</photo><profile>"
                   "<audio codec=\"OGG\"><bitrate>64</bitrate></audio><video><bitrate>96</bitrate><size/></video>"
                   "<screen><size>160x120</size></screen></profile></configure><index duration=\"00:04\">" +
                   items + "</index></project></kestrum>");
}

void MakeLegacyFolder(const std::string& path) {
    std::filesystem::create_directories(path + "/icons");
    const std::int64_t length = RecordFile(path + "/media.ks");
    SetFormatVersion(path + "/media.ks", "7.0");
    std::string project = AsText(OldProjectFile("7.1.2", {0, 2000}));
    const std::string noted = "00:04";
    project.replace(project.find(noted), noted.size(), DurationText(length));
    WriteWholeFile(path + "/project.ksp", AsBytes(project));
    WriteWholeFile(path + "/icons/cursor.gif", AsBytes("the cursor"));
    WriteWholeFile(path + "/me.jpg", AsBytes("the photo"));
    WriteWholeFile(path + "/inteIndex.txt", AsBytes("the index text"));
}

void MarkEncrypted(const std::string& package, Marks marks) {
    const auto file = FileStorage::Open(package, FileStorage::Access::kReadWrite);
    const Element tracks = ReadElement(*file, kTracksAt, kRegionAt).value();
    const Element tags = ReadElement(*file, tracks.End(), kRegionAt).value();
    const auto asIs = [&](const Element& child) {
        return ReadExactly(*file, child.position, child.End() - child.position).value();
    };
    Bytes room;
    AppendCheckedMaster(room, kTracks, Children(*file, tracks, [&](const Element& child) {
                            Bytes entry = ReadExactly(*file, child.data, child.size).value();
                            Append(entry, EncodingsElement());
                            Bytes element;
                            AppendBinary(element, child.id, entry);
                            return element;
                        }));
    Bytes allTags = Children(*file, tags, asIs);
    if (marks == Marks::kFlagAndKey) Append(allTags, KeyTag());
    AppendCheckedMaster(room, kTags, allTags);
    AppendVoid(room, kRegionAt - kTracksAt - room.size());
    file->WriteAt(kTracksAt, room);
}

void EncryptPackage(const std::string& package) {
    MarkEncrypted(package, Marks::kFlagAndKey);
    const auto file = FileStorage::Open(package, FileStorage::Access::kReadWrite);
    const PackageMap map = ReadMap(*file);
    ForEachChild(*file, map.mediaBegin, map.fileSize, [&](const Element& element) {
        if (element.id == kCluster) EncryptCluster(*file, element);
        return true;
    });
}

}  // namespace kestrum::media::test
