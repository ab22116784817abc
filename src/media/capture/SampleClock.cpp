#include "media/capture/SampleClock.h"

#include <algorithm>
#include <cmath>

#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

// Samples are missing, not merely late, if this much is short in so many blocks one after the other. Too many samples
// are never thrown away for it: the drift takes care of them.
constexpr double kGapSeconds = 0.25;
constexpr int kGapBlocks = 3;
// Sound and picture may be apart by this much before the sample rate is bent, and by the second before it is bent
// harder; a lack as large as the second that stays the same for a second is filled with silence at once. It comes from
// servers that tell a wrong latency while a source starts.
constexpr double kDriftSeconds = 0.004;
constexpr double kDisplacedSeconds = 0.030;
constexpr double kSteadySeconds = 0.010;
// Weight of a new block in the smoothed error: with 20 ms blocks it follows within about a second.
constexpr double kSmoothing = 0.02;
// Frames added or left out in so many: 0.1 % is never heard, 1 % hardly.
constexpr std::size_t kFramesPerCorrection = 1000;
constexpr int kGentleCorrection = 1;
constexpr int kHardCorrection = 10;

}  // namespace

void SampleClock::Start(std::int64_t startNs) {
    m_started = true;
    m_startNs = startNs;
}

std::int64_t SampleClock::FrameAt(std::int64_t ns) const {
    return std::llround(static_cast<double>(ns - m_startNs) * m_rate / kNsPerSecond);
}

bool SampleClock::IsGap(std::int64_t errorFrames) {
    const bool isLate = static_cast<double>(errorFrames) > kGapSeconds * m_rate;
    m_lateBlocks = isLate ? m_lateBlocks + 1 : 0;
    return m_lateBlocks >= kGapBlocks;
}

void SampleClock::Push(std::int64_t heardNs, std::span<const float> samples) {
    if (!m_started || samples.empty()) return;
    const std::int64_t error = FrameAt(heardNs) - m_produced;
    if (m_anchored && !IsGap(error)) return FollowDrift(error, samples);
    m_drift = 0;
    m_lateBlocks = 0;
    // What lies before the start, or where silence was put already, is left out.
    const std::size_t surplus = error < 0 ? static_cast<std::size_t>(-error) * static_cast<std::size_t>(m_channels) : 0;
    if (surplus >= samples.size()) return;
    AppendSilence(error);
    Append(samples.subspan(surplus));
    m_anchored = true;
}

void SampleClock::FillTo(std::int64_t ns) {
    if (!m_started) return;
    m_anchored = false;
    AppendSilence(FrameAt(ns) - m_produced);
}

bool SampleClock::IsSteady(std::int64_t errorFrames, std::size_t frames) {
    const bool isNear = std::abs(static_cast<double>(errorFrames) - m_drift) < kSteadySeconds * m_rate;
    m_steadyFrames = isNear ? m_steadyFrames + frames : 0;
    return m_steadyFrames >= static_cast<std::size_t>(m_rate);
}

int SampleClock::Correction(std::size_t frames) {
    m_sinceCorrection = std::min(m_sinceCorrection + frames, 2 * kFramesPerCorrection);
    const double apart = std::abs(m_drift);
    if (m_sinceCorrection < kFramesPerCorrection || frames < 4U * kHardCorrection) return 0;
    if (apart <= kDriftSeconds * m_rate) return 0;
    m_sinceCorrection -= kFramesPerCorrection;
    const int strength = apart > kDisplacedSeconds * m_rate ? kHardCorrection : kGentleCorrection;
    return m_drift > 0 ? strength : -strength;
}

void SampleClock::FollowDrift(std::int64_t errorFrames, std::span<const float> samples) {
    m_drift += (static_cast<double>(errorFrames) - m_drift) * kSmoothing;
    const std::size_t frames = samples.size() / static_cast<std::size_t>(m_channels);
    if (IsSteady(errorFrames, frames) && m_drift > kDisplacedSeconds * m_rate) {
        AppendSilence(std::llround(m_drift));
        m_drift = 0;
        m_steadyFrames = 0;
    }
    if (const int correction = Correction(frames)) {
        AppendStretched(samples, correction);
    } else {
        Append(samples);
    }
}

void SampleClock::AppendSilence(std::int64_t frames) {
    if (frames <= 0) return;
    m_output.insert(m_output.end(), static_cast<std::size_t>(frames) * m_channels, 0.0F);
    m_produced += frames;
}

void SampleClock::Append(std::span<const float> samples) {
    m_output.insert(m_output.end(), samples.begin(), samples.end());
    m_produced += static_cast<std::int64_t>(samples.size()) / m_channels;
}

void SampleClock::AppendStretched(std::span<const float> samples, int change) {
    const auto channels = static_cast<std::size_t>(m_channels);
    const std::size_t frames = samples.size() / channels;
    const std::size_t wanted = static_cast<std::size_t>(static_cast<std::int64_t>(frames) + change);
    const double step = static_cast<double>(frames - 1) / static_cast<double>(wanted - 1);
    for (std::size_t i = 0; i < wanted; ++i) {
        const double at = static_cast<double>(i) * step;
        const std::size_t low = std::min(static_cast<std::size_t>(at), frames - 1);
        const std::size_t high = std::min(low + 1, frames - 1);
        const auto part = static_cast<float>(at - static_cast<double>(low));
        for (std::size_t c = 0; c < channels; ++c) {
            m_output.push_back(samples[low * channels + c] * (1 - part) + samples[high * channels + c] * part);
        }
    }
    m_produced += static_cast<std::int64_t>(wanted);
    m_drift -= change;
}

}  // namespace kestrum::media
