// The previewer's sentences, from the language file beside the program; a sentence that is missing there is English.
#pragma once

#include <QString>

namespace kestrum::preview {

/// The text of the entry `key` in `section` of the language file, else `fallback`.
QString GetResString(const QString& section, const QString& key, const QString& fallback);

}  // namespace kestrum::preview
