#include "media/capture/SoundLoop.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

constexpr int kPumpMs = 50;
constexpr std::int64_t kEndPatienceNs = kNsPerSecond / 2;

}  // namespace

SoundLoop::SoundLoop(SoundInput& input, const AudioLayout& layout, std::function<void(int)> onLevel)
    : m_input(input),
      m_layout(layout),
      m_encoder(layout),
      m_meter(layout.rate, layout.channels),
      m_onLevel(std::move(onLevel)) {}

SoundLoop::~SoundLoop() {
    if (m_thread.joinable()) Stop(MonotonicNs());
}

void SoundLoop::Start(PackageFeeder& feeder, std::int64_t startMs, std::int64_t startNs) {
    m_feeder = &feeder;
    m_startMs = startMs;
    m_startNs = startNs;
    m_input.Start(startNs);
    m_thread = std::thread([this] { Run(); });
}

void SoundLoop::Stop(std::int64_t endNs) {
    m_endNs = endNs;
    if (m_thread.joinable()) m_thread.join();
}

std::int64_t SoundLoop::FrameAt(std::int64_t ns) const {
    return std::llround(static_cast<double>(ns - m_startNs) * m_layout.rate / kNsPerSecond);
}

void SoundLoop::Run() {
    try {
        while (m_endNs == 0) Take();
        while (m_framesTaken < FrameAt(m_endNs) && MonotonicNs() < m_endNs + kEndPatienceNs) Take();
        Finish();
    } catch (const CaptureError&) {
        // The encoder refuses only what it refused at the start; what came before is in the package.
        m_isComplete = false;
    }
}

void SoundLoop::Take() {
    m_input.Pump(kPumpMs);
    m_isComplete = m_input.IsComplete();
    m_input.TakeMixed(m_samples);
    Encode();
}

void SoundLoop::Encode() {
    if (const auto level = m_meter.Push(m_samples); level && m_onLevel) m_onLevel(*level);
    m_framesTaken += static_cast<std::int64_t>(m_samples.size()) / m_layout.channels;
    m_encoder.Encode(m_samples, Output());
    m_samples.clear();
}

void SoundLoop::Finish() {
    m_input.FillTo(m_endNs);
    m_input.TakeMixed(m_samples);
    const std::int64_t room = std::max<std::int64_t>(0, FrameAt(m_endNs) - m_framesTaken) * m_layout.channels;
    if (static_cast<std::int64_t>(m_samples.size()) > room) m_samples.resize(static_cast<std::size_t>(room));
    Encode();
    m_encoder.Finish(Output());
    if (m_onLevel) m_onLevel(0);
}

AudioEncoder::Output SoundLoop::Output() {
    return [this](std::int64_t firstFrame, std::span<const std::uint8_t> unit) {
        const std::int64_t ms = (firstFrame * 1000 + m_layout.rate / 2) / m_layout.rate;
        m_bytes += static_cast<std::int64_t>(unit.size());
        m_feeder->PushAudio(m_startMs + ms, media::Bytes(unit.begin(), unit.end()));
    };
}

}  // namespace kestrum::media
