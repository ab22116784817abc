// The calls of the media library that work on a package as a file.
#include <algorithm>

#include "adapters/sim/KsLib.h"

namespace kestrum::sim {

std::optional<Package> KsLib::Read(const String& path) const {
    if (!m_fs.FileExists(path)) return std::nullopt;
    return Package::FromBytes(m_fs.Bytes(path));
}

std::optional<Package> KsLib::Get(const String& path) const {
    return Read(path);
}

void KsLib::Put(const String& path, const Package& package) {
    m_fs.Put(path, package.ToBytes());
}

std::int32_t KsLib::GetLength(const String& package) {
    if (Fails(u"GetLength")) return 0;
    if (m_running && package == m_package) return Position();
    auto read = Read(package);
    return read ? read->lengthMs : 0;
}

std::int32_t KsLib::GetFileHeaderDim(const String& package, std::int32_t& width, std::int32_t& height) {
    auto read = Read(package);
    if (Fails(u"GetFileHeaderDim") || !read || read->lengthMs == 0) return 0;
    width = read->width;
    height = read->height;
    return 1;
}

std::int32_t KsLib::GetKeyframeDim(const String& package, std::int32_t& width, std::int32_t& height) {
    if (Fails(u"GetKeyframeDim")) return 0;
    return GetFileHeaderDim(package, width, height);
}

std::int32_t KsLib::IsEmptyProject(const String& package) {
    if (Fails(u"IsEmptyProject")) return 0;
    if (!m_fs.FileExists(package)) return 2;
    auto read = Read(package);
    return read && !read->damaged && !read->torn && read->lengthMs == 0 ? 1 : 0;
}

std::int32_t KsLib::GetExtendDataFromProject(const String& package, const host::StoredFiles& targets) {
    Line(u"GetExtendDataFromProject " + package);
    auto read = Read(package);
    if (Fails(u"GetExtendDataFromProject") || !read || !read->stored.count("project")) return -1;
    const std::pair<const char*, String> wanted[] = {{"project", targets.projectFile},
                                                     {"cursor", targets.cursorImage},
                                                     {"photo", targets.photo},
                                                     {"index", targets.indexText}};
    for (const auto& [name, path] : wanted) {
        auto found = read->stored.find(name);
        if (!path.empty() && found != read->stored.end()) m_fs.Put(path, found->second);
    }
    return 0;
}

std::int32_t KsLib::SetExtendDataInProject(const String& package, const host::StoredFiles& sources) {
    Line(u"SetExtendDataInProject " + package);
    if (Fails(u"SetExtendDataInProject")) return -1;
    auto read = Read(package);
    if (!read && m_fs.FileExists(package)) return -1;
    Package changed = read.value_or(Package());
    if (changed.torn && !m_running) {
        changed.torn = false;  // any write to a torn package recovers it first
        if (!changed.journal.empty()) changed.MergeJournal();
    }
    const std::pair<const char*, String> given[] = {{"project", sources.projectFile},
                                                    {"cursor", sources.cursorImage},
                                                    {"photo", sources.photo},
                                                    {"index", sources.indexText}};
    for (const auto& [name, path] : given) {
        if (path.empty()) continue;
        changed.stored.erase(name);
        Store(changed, name, path);
    }
    try {
        m_fs.WriteFile(package, changed.ToBytes() + '\n');
    } catch (const host::Error&) {
        if (read)
            m_fs.Put(package, read->ToBytes());
        else
            m_fs.Remove(package);
        return -1;
    }
    return 0;
}

std::int32_t KsLib::GetECTState(const String& package) {
    if (Fails(u"GetECTState")) return -1;
    auto read = Read(package);
    return read ? read->ectState : -1;
}

std::int32_t KsLib::verifyKsFile(const String& package) {
    Line(u"verifyKsFile " + package);
    auto read = Read(package);
    return !Fails(u"verifyKsFile") && read && !read->torn && !read->damaged ? 1 : 0;
}

std::int32_t KsLib::verifyWholeKsFile(const String& package) {
    Line(u"verifyWholeKsFile " + package);
    auto read = Read(package);
    if (Fails(u"verifyWholeKsFile") || !read || read->damaged) return 0;
    if (read->torn) {
        read->torn = false;
        if (!read->journal.empty()) read->MergeJournal();
        m_fs.Put(package, read->ToBytes());
        m_lastRecovery = u"Recovered " + host::FromUtf8(std::to_string(read->lengthMs)) + u" ms.";
    }
    return 1;
}

std::int32_t KsLib::GetFileFormatVersion(const String& package) {
    auto read = Read(package);
    return read && !Fails(u"GetFileFormatVersion") ? read->formatVersion : 0;
}

std::int32_t KsLib::ListIndex(const String& package, const String& textFile) {
    auto read = Read(package);
    if (Fails(u"ListIndex") || !read) return -1;
    std::vector<std::int32_t> keys = read->keyFrames;
    std::sort(keys.begin(), keys.end());
    std::string text;
    for (std::int32_t key : keys) text += std::to_string(key) + "\r\n";
    m_fs.Put(textFile, text);
    return 0;
}

std::int32_t KsLib::GetVideoAttribute(const String& package) {
    auto read = Read(package);
    return read && !Fails(u"GetVideoAttribute") ? read->videoAttribute : 0;
}

std::int32_t KsLib::GetAudioBitrate(const String& package) {
    auto read = Read(package);
    return read && !Fails(u"GetAudioBitrate") ? read->audioBitrate : 0;
}

std::int32_t KsLib::GetOptimizeLevel(const String& package) {
    auto read = Read(package);
    return read && !Fails(u"GetOptimizeLevel") ? read->optimizeLevel : 0;
}

std::int32_t KsLib::DrawImageToFit(const String& target, const String& source) {
    Line(u"DrawImageToFit " + target + u" " + source);
    if (Fails(u"DrawImageToFit") || !m_fs.FileExists(target) || !m_fs.FileExists(source)) return -1;
    m_fs.Put(target, m_fs.Bytes(source));
    return 0;
}

}  // namespace kestrum::sim
