#include "media/capture/V4l2Camera.h"

#include <fcntl.h>
#include <linux/videodev2.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include "media/capture/CaptureError.h"
#include "media/capture/PictureBox.h"

namespace kestrum::media {
namespace {

constexpr int kMostDevices = 64;
constexpr std::uint32_t kBuffers = 4;
constexpr std::uint32_t kFramesPerSecond = 15;
constexpr std::uint32_t kCapture = V4L2_BUF_TYPE_VIDEO_CAPTURE;
// Plain pictures first: they cost no decoding, and the sizes recorded are small enough for any bus.
constexpr std::array<std::uint32_t, 2> kFormats = {V4L2_PIX_FMT_YUYV, V4L2_PIX_FMT_MJPEG};

class Device {
  public:
    explicit Device(const std::string& file) : m_fd(open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {}
    ~Device() {
        if (m_fd >= 0) close(m_fd);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    int FileDescriptor() const { return m_fd; }
    /// False with errno set.
    bool Ask(unsigned long request, void* argument) const {
        int result = 0;
        do {
            result = ioctl(m_fd, request, argument);
        } while (result < 0 && errno == EINTR);
        return result >= 0;
    }

  private:
    const int m_fd;
};

/// The device's name, if it is a camera that can be used.
std::optional<std::string> NameOfCamera(const std::string& file) {
    const Device device(file);
    v4l2_capability capability{};
    if (device.FileDescriptor() < 0 || !device.Ask(VIDIOC_QUERYCAP, &capability)) return std::nullopt;
    const bool hasOwn = (capability.capabilities & V4L2_CAP_DEVICE_CAPS) != 0;
    const std::uint32_t can = hasOwn ? capability.device_caps : capability.capabilities;
    if (!(can & V4L2_CAP_VIDEO_CAPTURE) || !(can & V4L2_CAP_STREAMING)) return std::nullopt;
    v4l2_fmtdesc format{};
    for (format.type = kCapture; device.Ask(VIDIOC_ENUM_FMT, &format); ++format.index) {
        for (const std::uint32_t known : kFormats) {
            if (format.pixelformat != known) continue;
            const auto* card = reinterpret_cast<const char*>(capability.card);
            return std::string(card, strnlen(card, sizeof capability.card));
        }
    }
    return std::nullopt;
}

/// One buffer that the driver fills.
class Mapping {
  public:
    Mapping(const Device& device, const v4l2_buffer& buffer)
        : m_size(buffer.length),
          m_memory(mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, device.FileDescriptor(),
                        static_cast<off_t>(buffer.m.offset))) {}
    ~Mapping() {
        if (IsMapped()) munmap(m_memory, m_size);
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    bool IsMapped() const { return m_memory != MAP_FAILED; }
    std::uint8_t* Bytes() const { return static_cast<std::uint8_t*>(m_memory); }
    std::size_t Size() const { return m_size; }

  private:
    const std::size_t m_size;
    void* const m_memory;
};

AvHandle<AVCodecContext> JpegDecoder() {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
    AvHandle<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    CheckAv(avcodec_open2(decoder.get(), codec, nullptr), "open the decoder");
    return decoder;
}

class V4l2Camera : public Camera {
  public:
    V4l2Camera(std::string file, int width, int height) : m_file(std::move(file)), m_device(m_file) {
        if (m_device.FileDescriptor() < 0) Refuse("cannot be opened");
        ChooseFormat(width, height);
        AskForRate();
        MapBuffers();
        int type = kCapture;
        if (!m_device.Ask(VIDIOC_STREAMON, &type)) Refuse(errno == EBUSY ? "is used elsewhere" : "gives no pictures");
    }
    ~V4l2Camera() override {
        int type = kCapture;
        m_device.Ask(VIDIOC_STREAMOFF, &type);
    }

    bool Read(BgraPicture& picture, int timeoutMs) override {
        pollfd ready{m_device.FileDescriptor(), POLLIN, 0};
        if (poll(&ready, 1, timeoutMs) <= 0) return false;
        v4l2_buffer buffer = NewBuffer(0);
        if (!m_device.Ask(VIDIOC_DQBUF, &buffer)) {
            if (errno == EAGAIN) return false;
            Refuse("has gone");
        }
        const bool isDrawn = !(buffer.flags & V4L2_BUF_FLAG_ERROR) && buffer.index < m_buffers.size() &&
                             Draw(*m_buffers[buffer.index], buffer.bytesused, picture);
        if (!m_device.Ask(VIDIOC_QBUF, &buffer)) Refuse("has gone");
        return isDrawn;
    }

  private:
    [[noreturn]] void Refuse(const std::string& why) const {
        throw CaptureError(CaptureErrorKind::kNoCamera, "The camera " + m_file + " " + why + ".");
    }

    static v4l2_buffer NewBuffer(std::uint32_t index) {
        v4l2_buffer buffer{};
        buffer.type = kCapture;
        buffer.memory = V4L2_MEMORY_MMAP;
        buffer.index = index;
        return buffer;
    }

    void ChooseFormat(int width, int height) {
        for (const std::uint32_t wanted : kFormats) {
            m_format.type = kCapture;
            m_format.fmt.pix = {};
            m_format.fmt.pix.width = static_cast<std::uint32_t>(width);
            m_format.fmt.pix.height = static_cast<std::uint32_t>(height);
            m_format.fmt.pix.pixelformat = wanted;
            m_format.fmt.pix.field = V4L2_FIELD_ANY;
            if (m_device.Ask(VIDIOC_S_FMT, &m_format) && m_format.fmt.pix.pixelformat == wanted) return;
            if (errno == EBUSY) Refuse("is used elsewhere");
        }
        Refuse("has no kind of picture that is known");
    }

    // A camera that has one rate only says no, and is read as fast as it comes.
    void AskForRate() {
        v4l2_streamparm rate{};
        rate.type = kCapture;
        rate.parm.capture.timeperframe = {1, kFramesPerSecond};
        m_device.Ask(VIDIOC_S_PARM, &rate);
    }

    void MapBuffers() {
        v4l2_requestbuffers request{};
        request.count = kBuffers;
        request.type = kCapture;
        request.memory = V4L2_MEMORY_MMAP;
        if (!m_device.Ask(VIDIOC_REQBUFS, &request)) Refuse(errno == EBUSY ? "is used elsewhere" : "has no buffers");
        for (std::uint32_t i = 0; i < request.count; ++i) {
            v4l2_buffer buffer = NewBuffer(i);
            if (!m_device.Ask(VIDIOC_QUERYBUF, &buffer)) Refuse("has no buffers");
            m_buffers.push_back(std::make_unique<Mapping>(m_device, buffer));
            if (!m_buffers.back()->IsMapped() || !m_device.Ask(VIDIOC_QBUF, &buffer)) Refuse("has no buffers");
        }
    }

    bool Draw(const Mapping& buffer, std::size_t bytes, BgraPicture& picture) {
        bytes = std::min(bytes, buffer.Size());
        return m_format.fmt.pix.pixelformat == V4L2_PIX_FMT_MJPEG ? DrawJpeg(buffer.Bytes(), bytes, picture)
                                                                  : DrawPlain(buffer.Bytes(), bytes, picture);
    }

    bool DrawPlain(std::uint8_t* bytes, std::size_t size, BgraPicture& picture) {
        const v4l2_pix_format& format = m_format.fmt.pix;
        if (size < static_cast<std::size_t>(format.bytesperline) * format.height) return false;
        const auto frame = NewFrame();
        frame->format = AV_PIX_FMT_YUYV422;
        frame->width = static_cast<int>(format.width);
        frame->height = static_cast<int>(format.height);
        frame->data[0] = bytes;
        frame->linesize[0] = static_cast<int>(format.bytesperline);
        m_box.Draw(*frame, picture);
        return true;
    }

    // A picture damaged on its way is left out.
    bool DrawJpeg(const std::uint8_t* bytes, std::size_t size, BgraPicture& picture) {
        if (!m_jpeg) m_jpeg = JpegDecoder();
        const auto packet = NewPacket();
        const auto frame = NewFrame();
        if (av_new_packet(packet.get(), static_cast<int>(size)) < 0) return false;
        std::memcpy(packet->data, bytes, size);
        if (avcodec_send_packet(m_jpeg.get(), packet.get()) < 0) return false;
        if (avcodec_receive_frame(m_jpeg.get(), frame.get()) < 0) return false;
        m_box.Draw(*frame, picture);
        return true;
    }

    const std::string m_file;
    const Device m_device;
    v4l2_format m_format{};
    std::vector<std::unique_ptr<Mapping>> m_buffers;
    AvHandle<AVCodecContext> m_jpeg;
    PictureBox m_box;
};

}  // namespace

std::vector<CameraInfo> ListV4l2Cameras() {
    std::vector<CameraInfo> cameras;
    for (int number = 0; number < kMostDevices; ++number) {
        const std::string file = "/dev/video" + std::to_string(number);
        if (const auto name = NameOfCamera(file)) cameras.push_back({file, *name});
    }
    return cameras;
}

std::unique_ptr<Camera> OpenV4l2Camera(const std::string& device, int width, int height) {
    return std::make_unique<V4l2Camera>(device, width, height);
}

}  // namespace kestrum::media
