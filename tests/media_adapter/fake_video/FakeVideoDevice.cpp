// A video device /dev/video0 for a program that this library is preloaded into: it answers the calls of Video4Linux 2
// that a camera program makes, and gives a picture 15 times a second, red in the left half and green in the right. The
// environment says more:
//   FAKE_VIDEO_JPEG  a file that is every picture; the device gives JPEGs only then
//   FAKE_VIDEO_GONE  a path: while something is there the device is pulled out
//   FAKE_VIDEO_BUSY  a path: while something is there another program streams
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/mman.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t kBufferBytes = 1 << 20;
constexpr std::uint32_t kWidth = 320, kHeight = 240;

struct Open {
    v4l2_pix_format format{};
    std::vector<void*> buffers;
    std::vector<std::uint32_t> queued;
};

struct Table {
    std::mutex mutex;
    std::map<int, Open> devices;
};

Table& Devices() {
    static Table table;
    return table;
}

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool Exists(const char* variable) {
    const std::string path = Variable(variable);
    return !path.empty() && access(path.c_str(), F_OK) == 0;
}

template <typename Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int Fail(int error) {
    errno = error;
    return -1;
}

int OpenDevice() {
    if (Exists("FAKE_VIDEO_GONE")) return Fail(ENOENT);
    const int fd = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    constexpr long kPictureNs = 1'000'000'000 / 15;
    const itimerspec each{{0, kPictureNs}, {0, kPictureNs}};
    timerfd_settime(fd, 0, &each, nullptr);
    Devices().devices[fd] = {};
    return fd;
}

std::uint32_t OnlyFormat() {
    return Variable("FAKE_VIDEO_JPEG").empty() ? V4L2_PIX_FMT_YUYV : V4L2_PIX_FMT_MJPEG;
}

std::size_t FillPlain(void* target) {
    auto* bytes = static_cast<unsigned char*>(target);
    constexpr unsigned char kRed[] = {81, 90, 81, 240}, kGreen[] = {145, 54, 145, 34};
    for (std::uint32_t pair = 0; pair < kWidth * kHeight / 2; ++pair)
        std::memcpy(bytes + pair * 4, pair % (kWidth / 2) < kWidth / 4 ? kRed : kGreen, 4);
    return kWidth * kHeight * 2;
}

std::size_t FillJpeg(void* target) {
    std::ifstream file(Variable("FAKE_VIDEO_JPEG"), std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const std::string picture = bytes.str();
    std::memcpy(target, picture.data(), std::min<std::size_t>(picture.size(), kBufferBytes));
    return picture.size();
}

int Capabilities(v4l2_capability& answer) {
    answer = {};
    std::strcpy(reinterpret_cast<char*>(answer.card), "Fake ## Camera");
    answer.capabilities = V4L2_CAP_DEVICE_CAPS;
    answer.device_caps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
    return 0;
}

int Describe(v4l2_fmtdesc& answer) {
    if (answer.index > 0) return Fail(EINVAL);
    answer.pixelformat = OnlyFormat();
    return 0;
}

int SetFormat(v4l2_format& format, Open& device) {
    device.format = format.fmt.pix;
    device.format.pixelformat = OnlyFormat();
    device.format.width = kWidth;
    device.format.height = kHeight;
    device.format.bytesperline = OnlyFormat() == V4L2_PIX_FMT_YUYV ? kWidth * 2 : 0;
    format.fmt.pix = device.format;
    return 0;
}

int Request(v4l2_requestbuffers& request, Open& device) {
    if (Exists("FAKE_VIDEO_BUSY")) return Fail(EBUSY);
    device.buffers.assign(request.count, nullptr);
    return 0;
}

int Query(v4l2_buffer& buffer) {
    buffer.length = kBufferBytes;
    buffer.m.offset = buffer.index * kBufferBytes;
    return 0;
}

int Dequeue(int fd, v4l2_buffer& buffer, Open& device) {
    if (Exists("FAKE_VIDEO_GONE")) return Fail(ENODEV);
    std::uint64_t ticks = 0;
    if (read(fd, &ticks, sizeof ticks) < 0 || device.queued.empty()) return Fail(EAGAIN);
    buffer.index = device.queued.front();
    buffer.flags = 0;
    device.queued.erase(device.queued.begin());
    void* target = device.buffers[buffer.index];
    buffer.bytesused =
        static_cast<std::uint32_t>(OnlyFormat() == V4L2_PIX_FMT_YUYV ? FillPlain(target) : FillJpeg(target));
    return 0;
}

int Answer(int fd, unsigned long request, void* argument, Open& device) {
    switch (request) {
        case VIDIOC_QUERYCAP:
            return Capabilities(*static_cast<v4l2_capability*>(argument));
        case VIDIOC_ENUM_FMT:
            return Describe(*static_cast<v4l2_fmtdesc*>(argument));
        case VIDIOC_S_FMT:
            return SetFormat(*static_cast<v4l2_format*>(argument), device);
        case VIDIOC_REQBUFS:
            return Request(*static_cast<v4l2_requestbuffers*>(argument), device);
        case VIDIOC_QUERYBUF:
            return Query(*static_cast<v4l2_buffer*>(argument));
        case VIDIOC_QBUF:
            device.queued.push_back(static_cast<v4l2_buffer*>(argument)->index);
            return 0;
        case VIDIOC_DQBUF:
            return Dequeue(fd, *static_cast<v4l2_buffer*>(argument), device);
        case VIDIOC_STREAMON:
        case VIDIOC_STREAMOFF:
            return 0;
        default:
            return Fail(ENOTTY);
    }
}

/// The memory of a buffer, if the descriptor is the device's.
void* Map(int fd, off_t offset) {
    auto& [mutex, devices] = Devices();
    const std::lock_guard lock(mutex);
    const auto device = devices.find(fd);
    if (device == devices.end()) return nullptr;
    using Mmap = void* (*)(void*, std::size_t, int, int, int, off_t);
    void* memory =
        Real<Mmap>("mmap")(nullptr, kBufferBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    device->second.buffers[static_cast<std::size_t>(offset) / kBufferBytes] = memory;
    return memory;
}

int OpenAny(const char* real, const char* path, int flags, mode_t mode) {
    if (std::strcmp(path, "/dev/video0") != 0) return Real<int (*)(const char*, int, ...)>(real)(path, flags, mode);
    const std::lock_guard lock(Devices().mutex);
    return OpenDevice();
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t);
    va_end(rest);
    return OpenAny("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t);
    va_end(rest);
    return OpenAny("open64", path, flags, mode);
}

int ioctl(int fd, unsigned long request, ...) noexcept {
    va_list rest;
    va_start(rest, request);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    {
        auto& [mutex, devices] = Devices();
        const std::lock_guard lock(mutex);
        const auto device = devices.find(fd);
        if (device != devices.end()) return Answer(fd, request, argument, device->second);
    }
    return Real<int (*)(int, unsigned long, ...)>("ioctl")(fd, request, argument);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int fd, off_t offset) noexcept {
    if (void* memory = fd >= 0 ? Map(fd, offset) : nullptr) return memory;
    using Mmap = void* (*)(void*, std::size_t, int, int, int, off_t);
    return Real<Mmap>("mmap")(address, size, protection, flags, fd, offset);
}

void* mmap64(void* address, std::size_t size, int protection, int flags, int fd, off64_t offset) noexcept {
    return mmap(address, size, protection, flags, fd, offset);
}

int close(int fd) {
    {
        auto& [mutex, devices] = Devices();
        const std::lock_guard lock(mutex);
        devices.erase(fd);
    }
    return Real<int (*)(int)>("close")(fd);
}

}  // extern "C"
