// How loud the sound is, as a number that a person sees on a meter and that tells speech from the noise of a room.
// Decides the scale: 0 to 100 are the 40 dB below the loudest sample that can be, so that 5, the most that counts as
// silence, is 38 dB below it. Speech peaks lie above that even from a microphone that is set low, the noise of a room
// and of the microphone itself below.
//
// A peak falls off slowly, so that a look every 200 ms misses no word.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>

namespace kestrum::media {

class LevelMeter {
  public:
    static constexpr int kLevelsPerSecond = 20;

    LevelMeter(int rate, int channels) : m_window(static_cast<std::int64_t>(rate) * channels / kLevelsPerSecond) {}

    /// Takes interleaved samples; a new level when a twentieth of a second is complete.
    std::optional<int> Push(std::span<const float> samples) {
        for (const float sample : samples) m_peak = std::max(m_peak, std::abs(sample));
        m_taken += static_cast<std::int64_t>(samples.size());
        if (m_taken < m_window) return std::nullopt;
        m_level = std::max(LevelOf(m_peak), m_level - kFall);
        m_peak = 0;
        m_taken = 0;
        return m_level;
    }
    /// The level of a peak, 1 being the loudest there is.
    static int LevelOf(float peak) {
        if (peak <= 0) return 0;
        const double decibels = 20 * std::log10(static_cast<double>(peak));
        return static_cast<int>(std::lround(std::clamp(1 + decibels / kRangeDecibels, 0.0, 1.0) * 100));
    }

  private:
    static constexpr double kRangeDecibels = 40;
    static constexpr int kFall = 8;  ///< for each level told: from the loudest to silence in little over half a second

    const std::int64_t m_window;
    std::int64_t m_taken = 0;
    float m_peak = 0;
    int m_level = 0;
};

}  // namespace kestrum::media
