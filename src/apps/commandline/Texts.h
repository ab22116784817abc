// The sentences of the command line, from section `commandLine` of the language file.
#pragma once

#include <vector>

#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum::app {

inline constexpr char16_t kTextSection[] = u"commandLine";

/// The sentence `key`, `fallback` without a language file; "%s1", "%s2" ... become the values.
inline String Sentence(const support::Context& c, StringView key, StringView fallback,
                       const std::vector<String>& values = {}) {
    String text = modLanguage::GetResString(c, kTextSection, key, fallback);
    for (std::size_t i = 0; i < values.size(); ++i) {
        text = modGlobal::Replace(text, u"%s" + host::FromUtf8(std::to_string(i + 1)), values[i]);
    }
    return text;
}

}  // namespace kestrum::app
