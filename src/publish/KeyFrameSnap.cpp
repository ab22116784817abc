#include "publish/KeyFrameSnap.h"

#include "support/Numbers.h"
#include "support/modGlobal.h"

namespace kestrum::publish {

namespace {

/// How far a key frame after the position may lie to be taken in place of the one before, ms.
constexpr std::int32_t kNearMs = 200;

}  // namespace

std::vector<std::int32_t> ReadKeyFrames(StringView text) {
    std::vector<std::int32_t> frames;
    for (const String& line : modGlobal::Split(text, u"\n")) {
        const String number = modGlobal::Trim(modGlobal::Replace(line, u"\r", u""));
        if (number.empty()) break;
        frames.push_back(ToInt32(ToDouble(number) * 1000));
    }
    return frames;
}

std::int32_t SnapToKeyFrame(std::int32_t pos, const std::vector<std::int32_t>& frames) {
    std::int32_t previous = 0;
    std::int32_t next = 0;
    for (std::size_t j = 1; j < frames.size(); ++j) {
        previous = frames[j - 1];
        next = frames[j];
        if (pos < next) break;
    }
    const std::int64_t distance = std::int64_t{next} - pos;
    return distance <= kNearMs ? next : previous;
}

void SnapIndex(IndexItems& index, const std::vector<std::int32_t>& frames) {
    for (std::int32_t i = 2; i <= index.Count(); ++i)
        index.Item(i).pos = ToText(SnapToKeyFrame(ToInt32(StringView(index.Item(i).pos)), frames));
}

}  // namespace kestrum::publish
