#include "recording/SoundRecord.h"

#include <algorithm>

#include "devices/modVolume.h"

namespace kestrum::recording {

namespace {

constexpr std::int32_t kFewLooks = 15;            // three seconds
constexpr std::int32_t kLongSilenceMs = 120'000;  // longer than anybody thinks or shows a picture without a word
constexpr std::int32_t kClippedShare = 50;        // one look in that many is at the top
constexpr std::int32_t kQuietPeak = 45;           // 22 dB below the loudest; speech peaks at 6 to 16 dB below

}  // namespace

void SoundRecord::Add(std::int32_t level) {
    level = std::clamp(level, 0, kLoudest);
    ++m_looks[static_cast<std::size_t>(level)];
    ++m_count;
    m_silent = level <= modVolume::kVolumeThreshold ? m_silent + 1 : 0;
    if (m_silent <= m_longest) return;
    m_longest = m_silent;
    m_longestAt = m_count - m_silent;
}

std::int32_t SoundRecord::Heard() const {
    std::int32_t heard = 0;
    for (std::int32_t level = modVolume::kVolumeThreshold + 1; level <= kLoudest; ++level) {
        heard += m_looks[static_cast<std::size_t>(level)];
    }
    return heard;
}

std::int32_t SoundRecord::UsualPeak() const {
    constexpr std::int32_t kOneIn = 20;
    std::int32_t above = Heard() / kOneIn;
    for (std::int32_t level = kLoudest; level > 0; --level) {
        above -= m_looks[static_cast<std::size_t>(level)];
        if (above < 0) return level;
    }
    return 0;
}

SoundVerdict SoundRecord::Verdict() const {
    if (m_count < kFewLooks) return SoundVerdict::Unknown;
    const std::int32_t heard = Heard();
    if (heard == 0) return SoundVerdict::Silent;
    if (LongestSilenceMs() >= kLongSilenceMs) return SoundVerdict::LongSilence;
    if (m_looks[kLoudest] * kClippedShare >= heard) return SoundVerdict::Clipped;
    return UsualPeak() < kQuietPeak ? SoundVerdict::Quiet : SoundVerdict::Good;
}

}  // namespace kestrum::recording
