#include "media/capture/SoundInput.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <utility>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/PulseConnection.h"
#include "media/capture/SampleClock.h"
#include "media/capture/SoundSources.h"

namespace kestrum::media {
namespace {

constexpr int kOpenTimeoutMs = 5000;
// A source that starts may tell an age of its samples that is far too high for a second or two; the recording waits for
// a believable one, but not for ever.
constexpr std::int64_t kBelievableAgeNs = 150 * kNsPerMs;
constexpr int kSettleTimeoutMs = 4000;
constexpr std::int64_t kRetryNs = kNsPerSecond;
// A source that is lost counts as silent up to so far before now, so that it can come back without an overlap.
constexpr std::int64_t kSilenceLagNs = 300 * kNsPerMs;
// A source that is there but gives nothing for so long (a suspended card) counts as silent too.
constexpr std::int64_t kStallNs = 5 * kNsPerSecond;
// Sound comes in blocks of about 20 ms.
constexpr int kBlocksPerSecond = 50;
// The server's own delay is not what it will be when a stream is new, and changes when other programs come and go.
constexpr std::int64_t kFirstQuestionsNs = 50 * kNsPerMs;
constexpr std::int64_t kQuestionsNs = kNsPerSecond;
constexpr std::int64_t kSteadyDelayNs = 2 * kNsPerMs;
constexpr std::int64_t kBelievableDelayNs = 3 * kNsPerSecond;

struct OperationDeleter {
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};

struct StreamDeleter {
    void operator()(pa_stream* stream) const {
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
};

/// One source: its stream while it is there, and its samples on the time line.
class Source {
  public:
    Source(std::string name, const AudioLayout& layout)
        : m_name(std::move(name)),
          m_layout(layout),
          m_isSystemSound(m_name.ends_with(kMonitorEnding)),
          m_clock(layout.rate, layout.channels) {}

    const std::string& Name() const { return m_name; }
    SampleClock& Clock() { return m_clock; }
    bool IsReady() const { return m_stream && pa_stream_get_state(m_stream.get()) == PA_STREAM_READY; }
    /// Samples come, and the server knows how old they are: without that the first ones cannot be placed.
    bool IsSettled() const {
        return m_hasAge && (m_hasDelay || !m_isSystemSound) && std::abs(m_ageNs) < kBelievableAgeNs;
    }
    bool HasFailed() const { return !m_stream || !PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream.get())); }

    void Connect(pa_context* context) {
        pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(m_layout.rate),
                            static_cast<std::uint8_t>(m_layout.channels)};
        m_stream.reset(pa_stream_new(context, "Recording", &spec, nullptr));
        if (!m_stream) return;
        pa_stream_set_read_callback(
            m_stream.get(), [](pa_stream*, std::size_t, void* self) { static_cast<Source*>(self)->Read(); }, this);
        pa_buffer_attr buffer;
        buffer.maxlength = buffer.tlength = buffer.prebuf = buffer.minreq = static_cast<std::uint32_t>(-1);
        buffer.fragsize = static_cast<std::uint32_t>(pa_bytes_per_second(&spec) / kBlocksPerSecond);
        constexpr int kFlags = PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY | PA_STREAM_INTERPOLATE_TIMING |
                               PA_STREAM_AUTO_TIMING_UPDATE;
        pa_stream_connect_record(m_stream.get(), m_name.c_str(), &buffer, static_cast<pa_stream_flags_t>(kFlags));
        m_lastDataNs = MonotonicNs();
        m_hasSound = false;
    }
    void Disconnect() {
        m_question.reset();
        m_stream.reset();
        m_clock.Interrupted();
    }
    bool IsStalled(std::int64_t nowNs) const { return nowNs - m_lastDataNs > kStallNs; }
    bool IsPresent() const { return m_isPresent; }
    /// Looks whether the source gives sound now; true if that has changed.
    bool UpdatePresence(std::int64_t nowNs) {
        const bool gives = IsReady() && !IsStalled(nowNs);
        // A connection that is back is believed with the first sound only.
        const bool isPresent = m_isPresent ? gives : gives && m_hasSound;
        return std::exchange(m_isPresent, isPresent) != isPresent;
    }

  private:
    void Read() {
        const void* data = nullptr;
        std::size_t bytes = 0;
        while (pa_stream_readable_size(m_stream.get()) > 0 && pa_stream_peek(m_stream.get(), &data, &bytes) == 0) {
            if (bytes == 0) return;
            Take(static_cast<const float*>(data), bytes / sizeof(float));
            pa_stream_drop(m_stream.get());
        }
    }

    void Take(const float* samples, std::size_t count) {
        pa_usec_t latency = 0;
        int isNegative = 0;
        m_lastDataNs = MonotonicNs();
        m_hasSound = true;
        if (pa_stream_get_latency(m_stream.get(), &latency, &isNegative) != 0) return;
        m_hasAge = true;
        m_ageNs = static_cast<std::int64_t>(latency) * 1000 * (isNegative ? -1 : 1);
        const std::vector<float> hole(samples ? 0 : count, 0.0F);
        m_clock.Push(m_lastDataNs - m_ageNs - m_delayNs.value_or(0),
                     samples ? std::span(samples, count) : std::span(hole));
        if (m_isSystemSound && m_lastDataNs >= m_nextQuestionNs) AskForDelay();
    }

    /// Of what a computer plays the server keeps back as much as it may still have to take back, and does not count
    /// that in the age that it tells. (A virtual microphone that hears a sink counts it.)
    void AskForDelay() {
        m_nextQuestionNs = m_lastDataNs + (m_hasDelay ? kQuestionsNs : kFirstQuestionsNs);
        m_question.reset(pa_context_get_source_output_info(
            pa_stream_get_context(m_stream.get()), pa_stream_get_index(m_stream.get()),
            [](pa_context*, const pa_source_output_info* info, int, void* self) {
                static_cast<Source*>(self)->TakeDelay(info);
            },
            this));
    }

    /// `info` is null at the end of an answer, and where the server does not know the stream.
    void TakeDelay(const pa_source_output_info* info) {
        if (!info) return;
        const std::int64_t delayNs = static_cast<std::int64_t>(info->buffer_usec) * 1000;
        if (delayNs > kBelievableDelayNs) return;
        m_hasDelay |= m_delayNs && std::abs(delayNs - *m_delayNs) < kSteadyDelayNs;
        m_delayNs = delayNs;
    }

    const std::string m_name;
    const AudioLayout m_layout;
    const bool m_isSystemSound;  ///< what a sink plays
    SampleClock m_clock;
    std::int64_t m_lastDataNs = 0;
    std::int64_t m_ageNs = 0;
    std::optional<std::int64_t> m_delayNs;
    std::int64_t m_nextQuestionNs = 0;
    bool m_hasAge = false;
    bool m_hasDelay = false;  ///< two answers that agree
    bool m_hasSound = false;  ///< since the last connection
    bool m_isPresent = true;
    std::unique_ptr<pa_stream, StreamDeleter> m_stream;
    std::unique_ptr<pa_operation, OperationDeleter> m_question;
};

}  // namespace

class SoundInput::Impl {
  public:
    Impl(std::vector<std::string> names, const AudioLayout& layout) : m_channels(layout.channels) {
        for (auto& name : names) m_sources.push_back(std::make_unique<Source>(std::move(name), layout));
        pulse = std::make_unique<PulseConnection>();
    }

    void Open() {
        if (!pulse->WaitUntilReady(kOpenTimeoutMs)) {
            throw CaptureError(CaptureErrorKind::kNoSound, "The sound server does not answer.");
        }
        for (auto& source : m_sources) source->Connect(pulse->Context());
        for (auto& source : m_sources) {
            PumpUntil(kOpenTimeoutMs, [&] { return source->IsReady() || source->HasFailed(); });
            if (source->IsReady()) continue;
            throw CaptureError(CaptureErrorKind::kNoSound,
                               "The sound source \"" + source->Name() + "\" cannot be opened.");
        }
    }

    void Settle() {
        PumpUntil(kSettleTimeoutMs, [this] {
            return std::all_of(m_sources.begin(), m_sources.end(),
                               [](const auto& source) { return source->IsSettled(); });
        });
    }

    void Start(std::int64_t startNs) {
        for (auto& source : m_sources) source->Clock().Start(startNs);
    }

    void Pump(int timeoutMs) {
        pulse->Pump(timeoutMs);
        const std::int64_t now = MonotonicNs();
        if (now >= m_nextRetryNs && !IsConnected()) {
            m_nextRetryNs = now + kRetryNs;
            Reconnect();
        }
        for (auto& source : m_sources) {
            if (!source->IsReady() || source->IsStalled(now)) source->Clock().FillTo(now - kSilenceLagNs);
            if (source->UpdatePresence(now) && onChange) onChange(source->Name(), source->IsPresent());
        }
    }

    void TakeMixed(std::vector<float>& out) {
        std::size_t count = m_sources.front()->Clock().Output().size();
        for (auto& source : m_sources) count = std::min(count, source->Clock().Output().size());
        const std::size_t begin = out.size();
        out.resize(begin + count, 0.0F);
        for (auto& source : m_sources) {
            auto& samples = source->Clock().Output();
            for (std::size_t i = 0; i < count; ++i) out[begin + i] += samples[i];
            samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
        }
        if (m_sources.size() > 1) {
            for (std::size_t i = begin; i < out.size(); ++i) out[i] = std::clamp(out[i], -1.0F, 1.0F);
        }
    }

    void FillTo(std::int64_t ns) {
        for (auto& source : m_sources) source->Clock().FillTo(ns);
    }

    bool IsComplete() const {
        return std::all_of(m_sources.begin(), m_sources.end(), [](const auto& source) { return source->IsPresent(); });
    }

    std::unique_ptr<PulseConnection> pulse;
    ChangeSink onChange;

  private:
    bool IsConnected() const {
        return std::all_of(m_sources.begin(), m_sources.end(), [](const auto& source) { return source->IsReady(); });
    }

    void PumpUntil(int timeoutMs, const std::function<bool()>& done) {
        const std::int64_t end = MonotonicNs() + timeoutMs * kNsPerMs;
        while (!done() && MonotonicNs() < end) pulse->Pump(20);
    }

    void Reconnect() {
        if (pulse->HasFailed()) {
            for (auto& source : m_sources) source->Disconnect();
            pulse = std::make_unique<PulseConnection>();
        }
        if (!pulse->IsReady()) return;
        for (auto& source : m_sources) {
            if (!source->HasFailed()) continue;
            source->Disconnect();
            source->Connect(pulse->Context());
        }
    }

    const int m_channels;
    std::vector<std::unique_ptr<Source>> m_sources;
    std::int64_t m_nextRetryNs = 0;
};

SoundInput::SoundInput(std::vector<std::string> sources, const AudioLayout& layout)
    : m_impl(std::make_unique<Impl>(std::move(sources), layout)) {}
SoundInput::~SoundInput() = default;
void SoundInput::Open() {
    m_impl->Open();
}
void SoundInput::Settle() {
    m_impl->Settle();
}
void SoundInput::OnChange(ChangeSink onChange) {
    m_impl->onChange = std::move(onChange);
}
void SoundInput::Start(std::int64_t startNs) {
    m_impl->Start(startNs);
}
void SoundInput::Pump(int timeoutMs) {
    m_impl->Pump(timeoutMs);
}
void SoundInput::TakeMixed(std::vector<float>& out) {
    m_impl->TakeMixed(out);
}
void SoundInput::FillTo(std::int64_t ns) {
    m_impl->FillTo(ns);
}
bool SoundInput::IsComplete() const {
    return m_impl->IsComplete();
}

}  // namespace kestrum::media
