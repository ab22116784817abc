// Plays silence, and beeps of which the moment they are heard is known.
#pragma once

#include <pulse/simple.h>
#include <time.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace kestrum::real {

inline std::int64_t NowNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

class TonePlayer {
  public:
    TonePlayer(const std::string& server, const std::string& sink) {
        const pa_sample_spec spec{PA_SAMPLE_S16NE, kRate, 1};
        pa_buffer_attr buffer;
        buffer.maxlength = buffer.prebuf = buffer.minreq = buffer.fragsize = static_cast<std::uint32_t>(-1);
        buffer.tlength = kRate / 10 * 2;
        m_stream = pa_simple_new(server.c_str(), "Beeper", PA_STREAM_PLAYBACK, sink.c_str(), "beep", &spec, nullptr,
                                 &buffer, nullptr);
        if (!m_stream) throw std::runtime_error("the beeper found no sound server");
        m_thread = std::thread([this] { Run(); });
    }
    TonePlayer(const TonePlayer&) = delete;
    TonePlayer& operator=(const TonePlayer&) = delete;
    ~TonePlayer() {
        m_stop = true;
        m_thread.join();
        pa_simple_free(m_stream);
    }

    /// Beeps for 200 ms; returns at once the moment (CLOCK_MONOTONIC) at which the beep's first sample is heard, which
    /// lies about 100 ms ahead.
    std::int64_t Beep() {
        m_heardNs = 0;
        m_wanted = true;
        while (m_heardNs == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return m_heardNs;
    }

  private:
    static constexpr std::uint32_t kRate = 48000;
    static constexpr double kPi = 3.14159265358979;

    void Run() {
        while (!m_stop) {
            const bool beep = m_wanted.exchange(false);
            if (beep) m_heardNs = NowNs() + static_cast<std::int64_t>(pa_simple_get_latency(m_stream, nullptr)) * 1000;
            Write(beep ? kRate / 5 : kRate / 100, beep);
        }
    }
    void Write(std::uint32_t frames, bool loud) {
        std::vector<std::int16_t> samples(frames, 0);
        for (std::uint32_t i = 0; loud && i < frames; ++i) {
            samples[i] = static_cast<std::int16_t>(16000 * std::cos(2 * kPi * 1000 * i / kRate));
        }
        pa_simple_write(m_stream, samples.data(), samples.size() * 2, nullptr);
    }

    pa_simple* m_stream;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_wanted{false};
    std::atomic<std::int64_t> m_heardNs{0};
    std::thread m_thread;
};

}  // namespace kestrum::real
