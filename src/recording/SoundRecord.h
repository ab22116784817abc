// How the sound of a recording was, told from its own level: looked at again and again while it runs, and judged at the
// end. Decides what counts as silent, long silent, too loud and too quiet. Knows no clock: a look stands for kLookMs.
#pragma once

#include <array>
#include <cstdint>

namespace kestrum::recording {

enum class SoundVerdict {
    Unknown,  ///< hardly anything was looked at
    Good,
    Silent,       ///< nothing was heard at all
    LongSilence,  ///< nothing was heard for minutes on end
    Clipped,      ///< again and again at the loudest that can be recorded
    Quiet,        ///< heard, but never as loud as speech should be
};

class SoundRecord {
  public:
    static constexpr std::int32_t kLookMs = 200;

    /// `level` is 0 to 100 (IKsLib::SetVolumeMeter).
    void Add(std::int32_t level);
    SoundVerdict Verdict() const;
    /// The longest silence, and how long after the first look it began.
    std::int32_t LongestSilenceMs() const { return m_longest * kLookMs; }
    std::int32_t LongestSilenceAtMs() const { return m_longestAt * kLookMs; }

  private:
    std::int32_t Heard() const;
    /// The level that all but a twentieth of what was heard does not go above.
    std::int32_t UsualPeak() const;

    static constexpr std::int32_t kLoudest = 100;
    std::array<std::int32_t, kLoudest + 1> m_looks{};  ///< how many there were of each level
    std::int32_t m_count = 0, m_silent = 0, m_longest = 0, m_longestAt = 0;
};

}  // namespace kestrum::recording
