// Text between the core (UTF-16) and Qt (UTF-16 too, in a class of its own).
#pragma once

#include <QString>

#include "host/String.h"

namespace kestrum::qt {

inline QString ToQt(StringView text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline String FromQt(const QString& text) {
    return text.toStdU16String();
}

/// Captions are plain text, while Qt's buttons read "&" as the mark of a mnemonic. `accessKey` is the place of the
/// letter that gets the mark, npos for none.
inline QString ToCaption(StringView text, std::size_t accessKey = StringView::npos) {
    const auto plain = [](StringView part) { return ToQt(part).replace(u'&', QStringLiteral("&&")); };
    if (accessKey >= text.size()) return plain(text);
    return plain(text.substr(0, accessKey)) + u'&' + plain(text.substr(accessKey));
}

}  // namespace kestrum::qt
