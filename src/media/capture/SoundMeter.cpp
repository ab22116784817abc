#include "media/capture/SoundMeter.h"

#include <utility>
#include <vector>

#include "media/capture/Clock.h"
#include "media/capture/LevelMeter.h"

namespace kestrum::media {
namespace {

constexpr int kPumpMs = 50;

}  // namespace

SoundMeter::SoundMeter(const std::string& source, std::function<void(int)> onLevel)
    : m_input({source}, AudioLayout{}), m_onLevel(std::move(onLevel)) {
    m_input.Open();
    m_input.Start(MonotonicNs());
    m_thread = std::thread([this] { Run(); });
}

SoundMeter::~SoundMeter() {
    m_stop = true;
    m_thread.join();
    m_onLevel(0);
}

void SoundMeter::Run() {
    const AudioLayout layout;
    LevelMeter meter(layout.rate, layout.channels);
    std::vector<float> samples;
    while (!m_stop) {
        m_input.Pump(kPumpMs);
        samples.clear();
        m_input.TakeMixed(samples);
        if (const auto level = meter.Push(samples)) m_onLevel(*level);
    }
}

}  // namespace kestrum::media
