#include "media/capture/FileCamera.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/PictureBox.h"
#include "media/convert/AvHandles.h"
#include "media/package/Error.h"

namespace kestrum::media {
namespace {

constexpr std::int64_t kPictureNs = kNsPerSecond / 15;
// A reader that comes later than this is not given what it missed.
constexpr std::int64_t kLatestNs = kNsPerSecond / 2;

[[noreturn]] void Refuse(const std::string& path, const std::string& why) {
    throw CaptureError(CaptureErrorKind::kNoCamera, "The camera \"" + path + "\" " + why);
}

void RequireFile(const std::string& path) {
    if (access(path.c_str(), R_OK) != 0) Refuse(path, "is not there.");
}

/// Waits until a moment, at most so long; whether it has come.
bool WaitUntil(std::int64_t dueNs, int timeoutMs) {
    const std::int64_t waitNs = std::clamp<std::int64_t>(dueNs - MonotonicNs(), 0, timeoutMs * kNsPerMs);
    std::this_thread::sleep_for(std::chrono::nanoseconds(waitNs));
    return MonotonicNs() >= dueNs;
}

class TestPictureCamera : public Camera {
  public:
    explicit TestPictureCamera(std::string path) : m_path(std::move(path)) {}

    bool Read(BgraPicture& picture, int timeoutMs) override {
        RequireFile(m_path);
        if (!WaitUntil(m_dueNs, timeoutMs)) return false;
        m_dueNs = std::max(m_dueNs + kPictureNs, MonotonicNs() - kLatestNs);
        Draw(picture);
        return true;
    }

  private:
    void Draw(BgraPicture& picture) {
        constexpr std::uint32_t kBlue = 0xFF2040C0, kWhite = 0xFFFFFFFF;
        constexpr int kBarsPerWidth = 10;
        std::fill(picture.pixels.begin(), picture.pixels.end(), kBlue);
        const int bar = std::max(1, picture.width / kBarsPerWidth);
        const int left = m_count++ * bar / 2 % picture.width;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = left; x < std::min(left + bar, picture.width); ++x) picture.Line(y)[x] = kWhite;
        }
    }

    const std::string m_path;
    std::int64_t m_dueNs = MonotonicNs();
    int m_count = 0;
};

class MovieCamera : public Camera {
  public:
    explicit MovieCamera(std::string path) : m_path(std::move(path)), m_input(OpenInput(m_path)) {
        m_stream =
            CheckAv(av_find_best_stream(m_input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0), "find a picture");
        m_decoder = OpenDecoder(*m_input->streams[m_stream], 0);
    }

    bool Read(BgraPicture& picture, int timeoutMs) override {
        RequireFile(m_path);
        if (!m_hasFrame) Next();
        if (!WaitUntil(m_dueNs, timeoutMs)) return false;
        m_box.Draw(*m_frame, picture);
        m_hasFrame = false;
        return true;
    }

  private:
    void Next() {
        if (!Decode() && !(Rewind() && Decode())) Refuse(m_path, "gives no picture.");
        const AVRational base = m_input->streams[m_stream]->time_base;
        const std::int64_t pts = m_frame->best_effort_timestamp;
        const std::int64_t atNs = pts == AV_NOPTS_VALUE ? m_lastNs + kPictureNs
                                                        : static_cast<std::int64_t>(av_q2d(base) * pts * kNsPerSecond);
        // The first picture, the first after the movie's end, and what comes too late count from now.
        m_dueNs += m_lastNs < 0 ? 0 : atNs - m_lastNs;
        m_dueNs = std::max(m_dueNs, MonotonicNs() - kLatestNs);
        m_lastNs = atNs;
        m_hasFrame = true;
    }

    bool Decode() {
        for (;;) {
            const int result = avcodec_receive_frame(m_decoder.get(), m_frame.get());
            if (result == 0) return true;
            if (result != AVERROR(EAGAIN)) return false;
            Feed();
        }
    }
    void Feed() {
        while (av_read_frame(m_input.get(), m_packet.get()) == 0) {
            const bool isOurs = m_packet->stream_index == m_stream;
            if (isOurs) avcodec_send_packet(m_decoder.get(), m_packet.get());
            av_packet_unref(m_packet.get());
            if (isOurs) return;
        }
        avcodec_send_packet(m_decoder.get(), nullptr);
    }
    bool Rewind() {
        avcodec_flush_buffers(m_decoder.get());
        m_dueNs += kPictureNs;
        m_lastNs = -1;
        return av_seek_frame(m_input.get(), m_stream, 0, AVSEEK_FLAG_BACKWARD) >= 0;
    }

    const std::string m_path;
    AvHandle<AVFormatContext> m_input;
    int m_stream = 0;
    AvHandle<AVCodecContext> m_decoder;
    AvHandle<AVPacket> m_packet = NewPacket();
    AvHandle<AVFrame> m_frame = NewFrame();
    PictureBox m_box;
    bool m_hasFrame = false;
    std::int64_t m_dueNs = MonotonicNs();
    std::int64_t m_lastNs = -1;  ///< place of the last picture in the movie
};

}  // namespace

std::unique_ptr<Camera> OpenFileCamera(const std::string& path) {
    RequireFile(path);
    std::error_code failure;
    if (std::filesystem::file_size(path, failure) == 0) return std::make_unique<TestPictureCamera>(path);
    try {
        return std::make_unique<MovieCamera>(path);
    } catch (const Error& error) {
        Refuse(path, std::string("cannot be used: ") + error.what());
    }
}

}  // namespace kestrum::media
