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

/// Captions are plain text, while Qt's buttons read "&" as the mark of a mnemonic.
inline QString ToCaption(StringView text) {
    return ToQt(text).replace(u'&', QStringLiteral("&&"));
}

}  // namespace kestrum::qt
