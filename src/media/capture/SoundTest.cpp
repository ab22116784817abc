#include "media/capture/SoundTest.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <utility>

#include "media/capture/Clock.h"
#include "media/capture/PulseConnection.h"

namespace kestrum::media {
namespace {

constexpr pa_sample_spec kSpec{PA_SAMPLE_S16LE, 48000, 1};
constexpr std::int64_t kBytesPerFrame = 2;
constexpr int kPumpMs = 20;
constexpr int kOpenTimeoutMs = 5000;
// A test says a few words; what is longer was forgotten. An hour is 345 MB of memory when it is played.
constexpr std::int64_t kLongestFrames = 3600LL * kSpec.rate;
// What an output may take longer than the samples last before it counts as stuck.
constexpr std::int64_t kOutputPatienceNs = 5 * kNsPerSecond;

struct StreamDeleter {
    void operator()(pa_stream* stream) const {
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
};
using Stream = std::unique_ptr<pa_stream, StreamDeleter>;

Stream NewStream(const PulseConnection& pulse, const char* name) {
    return Stream(pa_stream_new(pulse.Context(), name, &kSpec, nullptr));
}

bool IsGood(const PulseConnection& pulse, const Stream& stream) {
    return stream && !pulse.HasFailed() && PA_STREAM_IS_GOOD(pa_stream_get_state(stream.get()));
}

/// Connects in small steps: a stop must not wait for a server that does not answer.
bool Connect(PulseConnection& pulse, const std::atomic<bool>& stop) {
    for (int waited = 0; !stop && waited < kOpenTimeoutMs; waited += kPumpMs) {
        if (pulse.WaitUntilReady(kPumpMs)) return true;
        if (pulse.HasFailed()) return false;
    }
    return false;
}

void StartRecording(pa_stream* stream, const std::string& source) {
    pa_buffer_attr buffer;
    buffer.maxlength = buffer.tlength = buffer.prebuf = buffer.minreq = static_cast<std::uint32_t>(-1);
    buffer.fragsize = static_cast<std::uint32_t>(pa_bytes_per_second(&kSpec) * kPumpMs / 1000);
    constexpr int kFlags = PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY;
    pa_stream_connect_record(stream, source.empty() ? nullptr : source.c_str(), &buffer,
                             static_cast<pa_stream_flags_t>(kFlags));
}

std::int64_t MsOf(std::int64_t frames) {
    return frames * 1000 / kSpec.rate;
}

std::string ReadSamples(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    std::string samples = bytes.str();
    samples.resize(samples.size() / kBytesPerFrame * kBytesPerFrame);
    return samples;
}

/// A playback that goes on for as long as Step says so.
class Player {
  public:
    Player(PulseConnection& pulse, const std::string& samples)
        : m_pulse(pulse), m_samples(samples), m_stream(NewStream(pulse, "Audio test")) {
        const auto frames = static_cast<std::int64_t>(samples.size()) / kBytesPerFrame;
        m_lengthMs = MsOf(frames);
        m_latestNs = MonotonicNs() + m_lengthMs * kNsPerMs + kOutputPatienceNs;
        constexpr int kFlags = PA_STREAM_INTERPOLATE_TIMING | PA_STREAM_AUTO_TIMING_UPDATE;
        if (m_stream)
            pa_stream_connect_playback(m_stream.get(), nullptr, nullptr, static_cast<pa_stream_flags_t>(kFlags),
                                       nullptr, nullptr);
    }
    ~Player() {
        if (m_drain) pa_operation_unref(m_drain);
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// A little more of the samples; false at the end.
    bool Step() {
        m_pulse.Pump(kPumpMs);
        if (!IsGood(m_pulse, m_stream) || MonotonicNs() >= m_latestNs) return false;
        if (pa_stream_get_state(m_stream.get()) == PA_STREAM_READY) Write();
        return !m_drain || pa_operation_get_state(m_drain) == PA_OPERATION_RUNNING;
    }
    std::int64_t PlayedMs() const {
        pa_usec_t played = 0;
        if (pa_stream_get_time(m_stream.get(), &played) != 0) return 0;
        return std::min(m_lengthMs, static_cast<std::int64_t>(played) / 1000);
    }

  private:
    void Write() {
        const std::size_t count = std::min(pa_stream_writable_size(m_stream.get()), m_samples.size() - m_written);
        if (count > 0) pa_stream_write(m_stream.get(), &m_samples[m_written], count, nullptr, 0, PA_SEEK_RELATIVE);
        m_written += count;
        // Also starts a file that is shorter than the server's first buffer.
        if (m_written == m_samples.size() && !m_drain) m_drain = pa_stream_drain(m_stream.get(), nullptr, nullptr);
    }

    PulseConnection& m_pulse;
    const std::string& m_samples;
    Stream m_stream;
    std::int64_t m_lengthMs = 0;
    std::int64_t m_latestNs = 0;
    std::size_t m_written = 0;
    pa_operation* m_drain = nullptr;
};

}  // namespace

TestRecording::TestRecording(std::string source, const std::string& file)
    : m_source(std::move(source)), m_file(std::fopen(file.c_str(), "wbe")) {
    if (m_file) m_thread = std::thread([this] { Run(); });
}

TestRecording::~TestRecording() {
    m_stop = true;
    if (m_thread.joinable()) m_thread.join();
}

std::int64_t TestRecording::RecordedMs() const {
    return MsOf(m_frames);
}

bool TestRecording::Write(const void* samples, std::size_t bytes) {
    const bool isWritten = std::fwrite(samples, 1, bytes, m_file.get()) == bytes && std::fflush(m_file.get()) == 0;
    if (isWritten) m_frames += static_cast<std::int64_t>(bytes) / kBytesPerFrame;
    return isWritten && m_frames < kLongestFrames;
}

void TestRecording::Run() {
    PulseConnection pulse;
    if (!Connect(pulse, m_stop)) return;
    const Stream stream = NewStream(pulse, "Audio test");
    if (stream) StartRecording(stream.get(), m_source);
    while (!m_stop && IsGood(pulse, stream)) {
        pulse.Pump(kPumpMs);
        const void* data = nullptr;
        std::size_t bytes = 0;
        while (pa_stream_readable_size(stream.get()) > 0 && pa_stream_peek(stream.get(), &data, &bytes) == 0 &&
               bytes > 0) {
            // A hole in the stream has a length and no samples; in a test nobody hears it missing.
            if (data && !Write(data, bytes)) return;
            pa_stream_drop(stream.get());
        }
    }
}

TestPlayback::TestPlayback(const std::string& file) : m_samples(ReadSamples(file)), m_isAtEnd(m_samples.empty()) {
    if (!m_isAtEnd) m_thread = std::thread([this] { Run(); });
}

TestPlayback::~TestPlayback() {
    m_stop = true;
    if (m_thread.joinable()) m_thread.join();
}

std::int64_t TestPlayback::PlayedMs() const {
    return m_isAtEnd ? -1 : m_playedMs.load();
}

void TestPlayback::Run() {
    PulseConnection pulse;
    if (Connect(pulse, m_stop)) {
        Player player(pulse, m_samples);
        while (!m_stop && player.Step()) m_playedMs = player.PlayedMs();
    }
    m_isAtEnd = true;
}

}  // namespace kestrum::media
