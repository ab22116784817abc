// The part of a file that a request asks for.
#pragma once

#include <QByteArray>
#include <algorithm>
#include <optional>

namespace kestrum::preview {

struct ByteRange {
    qint64 begin = 0;
    qint64 length = 0;
};

/// Of a file of `size` bytes, by a field "bytes=100-199", "bytes=100-" or "bytes=-100"; none, which is the whole file,
/// for no field, one of another form, and a part that the file does not have.
inline std::optional<ByteRange> RangeOf(const QByteArray& field, qint64 size) {
    const qsizetype dash = field.indexOf('-');
    if (!field.startsWith("bytes=") || dash < 0 || field.contains(',')) return std::nullopt;
    bool hasBegin = false, hasEnd = false;
    const qint64 first = field.mid(6, dash - 6).toLongLong(&hasBegin);
    const qint64 last = field.mid(dash + 1).toLongLong(&hasEnd);
    const qint64 begin = hasBegin ? first : std::max<qint64>(size - last, 0);
    const qint64 end = hasBegin && hasEnd ? std::min(last + 1, size) : size;
    if ((!hasBegin && !hasEnd) || begin < 0 || begin >= end) return std::nullopt;
    return ByteRange{begin, end - begin};
}

}  // namespace kestrum::preview
