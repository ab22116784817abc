#include "media/legacy/FileCopy.h"

#include <algorithm>

namespace kestrum::media {

WatchedPart::WatchedPart(const Watch& watch, int firstPercent, int lastPercent, std::uint64_t size)
    : m_watch(watch), m_first(firstPercent), m_last(lastPercent), m_size(std::max<std::uint64_t>(size, 1)) {}

void WatchedPart::Reached(std::uint64_t unit) {
    if (m_watch.cancel()) throw Error(ErrorKind::kIo, "Stopped before the end. Nothing was changed.", 0);
    const auto share = static_cast<std::uint64_t>(m_last - m_first) * std::min(unit, m_size) / m_size;
    const int percent = m_first + static_cast<int>(share);
    if (percent <= m_told) return;
    m_told = percent;
    m_watch.progress(percent);
}

SourcePackage OpenSource(const std::string& path, FileStorage::Access access) {
    SourcePackage source;
    source.storage = FileStorage::Open(path, access);
    const bool held = access == FileStorage::Access::kRead ? source.storage->IsLockedByOther()
                                                           : source.storage->LockExclusive() != LockResult::kLocked;
    if (held) throw Error(ErrorKind::kLocked, "'" + path + "' is being recorded or written by another program.", 0);
    source.map = ReadMap(*source.storage);
    if (!source.map.IsOurs()) throw Error(ErrorKind::kNotAPackage, "'" + path + "' is no Kestrum recording.", 0);
    if (!source.map.headReadable) throw Error(ErrorKind::kDamaged, "The head of '" + path + "' is damaged.", 0);
    return source;
}

void CopyBytes(IStorage& source, IStorage& target, WatchedPart part) {
    const std::uint64_t size = source.Size();
    Bytes buffer(1 << 20);
    for (std::uint64_t position = 0; position < size; position += buffer.size()) {
        const auto piece = std::span(buffer).first(std::min<std::uint64_t>(buffer.size(), size - position));
        if (source.ReadAt(position, piece) != piece.size())
            throw Error(ErrorKind::kIo, "The file became shorter while it was copied.", 0);
        target.WriteAt(position, piece);
        part.Reached(position + piece.size());
    }
}

}  // namespace kestrum::media
