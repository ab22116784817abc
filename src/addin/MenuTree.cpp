#include "addin/MenuTree.h"

#include <algorithm>

#include "support/modLanguage.h"

namespace kestrum {

String MenuTree::CaptionOf(const addin::Context& c, StringView key) {
    const auto isKey = [&](const auto& one) { return one.key == key; };
    const auto* entry = std::find_if(kEntries.begin(), kEntries.end(), isKey);
    if (entry != kEntries.end()) return modLanguage::GetResString(c, kSection, key, entry->caption);
    const auto* other = std::find_if(kOthers.begin(), kOthers.end(), isKey);
    return other == kOthers.end() ? String() : modLanguage::GetResString(c, kSection, key, other->caption);
}

}  // namespace kestrum
