#include "devices/PictureSize.h"

#include "support/Numbers.h"
#include "support/modGlobal.h"

namespace kestrum {

PictureSize ParsePictureSize(StringView text) {
    const std::vector<String> parts = modGlobal::Split(text, u"x");
    const auto number = [&](std::size_t part) {
        return part < parts.size() ? static_cast<std::int32_t>(Val(parts[part])) : 0;
    };
    return {number(0), number(1)};
}

StringView VideoBitrateOf(StringView size) {
    if (size == u"320x240") return u"320";
    if (size == u"240x180") return u"192";
    return size == u"160x120" ? u"96" : u"";
}

}  // namespace kestrum
