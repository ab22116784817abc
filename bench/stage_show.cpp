// Shows one of three contents on the whole display, so that recorders can be measured on it:
//   slides   a new slide every 10 seconds
//   anim     the same, and a disc of 80 pixels that moves 30 times a second
//   video    all of the screen moves 30 times a second, with grain
// Each picture carries its number in a row of black and white fields, so that it can be told which pictures a recording
// has and how they should look.
//
//   stage_show CONTENT SECONDS            shows it; tells of each picture shown its number, the moment (monotonic
//   clock,
//                                         ns) and how late it was (us): what a recorder takes away from the show
//   stage_show CONTENT --picture NUMBER   that picture as a portable pixmap on the standard output
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr int kWidth = 1920, kHeight = 1080, kRate = 30;
constexpr int kSlideSeconds = 10;
// The number: so many fields of this side, the highest bit first, at this place.
constexpr int kBits = 14, kField = 16, kNumberX = 1440, kNumberY = 16;

std::uint32_t Next(std::uint32_t& seed) {
    seed = seed * 1664525U + 1013904223U;
    return seed >> 8;
}

struct Box {
    int x, y, width, height;
};

class Canvas {
  public:
    Canvas() : m_own(static_cast<std::size_t>(kWidth) * kHeight), m_pixels(m_own.data()) {}
    explicit Canvas(std::uint32_t* pixels) : m_pixels(pixels) {}

    std::uint32_t* Line(int y) { return m_pixels + static_cast<std::ptrdiff_t>(y) * kWidth; }
    const std::uint32_t* Line(int y) const { return m_pixels + static_cast<std::ptrdiff_t>(y) * kWidth; }
    void Fill(const Box& box, std::uint32_t colour) {
        for (int y = box.y; y < box.y + box.height; ++y) std::fill_n(Line(y) + box.x, box.width, colour);
    }

  private:
    std::vector<std::uint32_t> m_own;
    std::uint32_t* m_pixels;
};

void DrawSlide(Canvas& canvas, std::uint32_t number) {
    std::uint32_t seed = number * 977 + 5;
    canvas.Fill({0, 0, kWidth, kHeight}, 0xF4F1E8);
    canvas.Fill({0, 0, kWidth, 160}, 0x2B4C7E + (number % 5) * 0x181008);
    for (int line = 0; line < 10; ++line) {
        const int width = 500 + static_cast<int>(Next(seed) % 700), top = 240 + 78 * line;
        for (int x = 140; x < 140 + width; x += 3) {
            if (Next(seed) % 5 == 0) continue;
            const int begin = static_cast<int>(Next(seed) % 18), height = 6 + static_cast<int>(Next(seed) % 16);
            canvas.Fill({x, top + begin, 2, height}, 0x202030);
        }
    }
    for (int step = 0; step < 240; ++step) {
        canvas.Fill({1440 + step, 560, 1, 300 - step}, 0x3060A0 + static_cast<std::uint32_t>(step) * 0x100);
    }
}

void DrawDisc(Canvas& canvas, int picture) {
    constexpr int kRadius = 40;
    const int centreX = 1560 + static_cast<int>(88 * std::cos(picture / 12.0));
    const int centreY = 360 + static_cast<int>(88 * std::sin(picture / 7.0));
    for (int y = -kRadius; y < kRadius; ++y) {
        const int half = static_cast<int>(std::sqrt(static_cast<double>(kRadius * kRadius - y * y)));
        canvas.Fill({centreX - half, centreY + y, 2 * half, 1}, 0xC03020);
    }
}

void DrawNumber(Canvas& canvas, int number) {
    for (int bit = 0; bit < kBits; ++bit) {
        const bool isSet = (number >> (kBits - 1 - bit) & 1) != 0;
        canvas.Fill({kNumberX + bit * kField, kNumberY, kField, kField}, isSet ? 0xFFFFFF : 0x000000);
    }
}

/// A picture that is twice as wide and high as the screen, with soft hills.
const std::vector<std::uint8_t>& Landscape() {
    static const std::vector<std::uint8_t> land = [] {
        std::vector<std::uint8_t> made(static_cast<std::size_t>(kWidth) * 2 * kHeight * 2);
        for (int y = 0; y < kHeight * 2; ++y) {
            for (int x = 0; x < kWidth * 2; ++x) {
                const double hills = std::sin(x / 97.0 + std::sin(y / 61.0) * 2) + std::cos(y / 83.0 + x / 211.0);
                const double detail = std::sin(x / 5.0) * std::cos(y / 6.0);
                made[static_cast<std::size_t>(y) * kWidth * 2 + static_cast<std::size_t>(x)] =
                    static_cast<std::uint8_t>(120 + 45 * hills + 12 * detail);
            }
        }
        return made;
    }();
    return land;
}

void DrawVideo(Canvas& canvas, int picture) {
    const auto& land = Landscape();
    const double zoom = 1.3 + 0.3 * std::sin(picture / 90.0);
    const int left = static_cast<int>(300 + 250 * std::sin(picture / 50.0));
    const int top = static_cast<int>(200 + 150 * std::cos(picture / 70.0));
    std::uint32_t seed = static_cast<std::uint32_t>(picture);
    std::vector<int> columns(kWidth);
    for (int x = 0; x < kWidth; ++x) columns[static_cast<std::size_t>(x)] = left + static_cast<int>(x * zoom);
    for (int y = 0; y < kHeight; ++y) {
        const std::uint8_t* from =
            land.data() + static_cast<std::ptrdiff_t>(top + static_cast<int>(y * zoom)) * kWidth * 2;
        std::uint32_t* to = canvas.Line(y);
        for (int x = 0; x < kWidth; ++x) {
            seed = seed * 1664525U + 1013904223U;
            const std::uint32_t grey = from[columns[static_cast<std::size_t>(x)]] + (seed >> 29);
            to[x] = grey << 16 | grey << 8 | (grey / 2 + 60);
        }
    }
}

/// What a content looks like, and which part changed since the picture before.
class Content {
  public:
    explicit Content(std::string_view name) : m_isVideo(name == "video"), m_hasDisc(name == "anim") {}

    bool IsSteady() const { return !m_isVideo && !m_hasDisc; }
    /// Number of the first picture of the slide that `picture` shows.
    static int SlideOf(int picture) { return picture / (kRate * kSlideSeconds) * (kRate * kSlideSeconds); }

    Box Draw(Canvas& canvas, int picture) {
        if (m_isVideo) {
            DrawVideo(canvas, picture);
            DrawNumber(canvas, picture);
            return {0, 0, kWidth, kHeight};
        }
        const bool isNew = SlideOf(picture) != m_slide;
        if (isNew) {
            m_slide = SlideOf(picture);
            DrawSlide(m_ground, static_cast<std::uint32_t>(m_slide));
            std::copy_n(m_ground.Line(0), static_cast<std::size_t>(kWidth) * kHeight, canvas.Line(0));
        }
        constexpr Box kMoving{1420, 220, 280, 280};
        if (m_hasDisc) {
            for (int y = kMoving.y; y < kMoving.y + kMoving.height; ++y) {
                std::copy_n(m_ground.Line(y) + kMoving.x, kMoving.width, canvas.Line(y) + kMoving.x);
            }
            DrawDisc(canvas, picture);
        }
        DrawNumber(canvas, m_hasDisc ? picture : m_slide);
        return isNew ? Box{0, 0, kWidth, kHeight} : kMoving;
    }

  private:
    bool m_isVideo;
    bool m_hasDisc;
    int m_slide = -1;
    Canvas m_ground;
};

class Screen {
  public:
    Screen() : m_display(XOpenDisplay(nullptr)) {
        if (!m_display) throw std::string("no display");
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        m_window = XCreateWindow(m_display, DefaultRootWindow(m_display), 0, 0, kWidth, kHeight, 0, CopyFromParent,
                                 InputOutput, nullptr, CWOverrideRedirect, &attributes);
        XMapRaised(m_display, m_window);
        m_gc = XCreateGC(m_display, m_window, 0, nullptr);
        m_image =
            XShmCreateImage(m_display, DefaultVisual(m_display, 0), 24, ZPixmap, nullptr, &m_segment, kWidth, kHeight);
        m_segment.shmid = shmget(IPC_PRIVATE, static_cast<std::size_t>(kWidth) * kHeight * 4, IPC_CREAT | 0600);
        m_segment.shmaddr = m_image->data = static_cast<char*>(shmat(m_segment.shmid, nullptr, 0));
        XShmAttach(m_display, &m_segment);
        XSync(m_display, False);
        shmctl(m_segment.shmid, IPC_RMID, nullptr);
    }
    Canvas Pixels() { return Canvas(reinterpret_cast<std::uint32_t*>(m_image->data)); }
    void Show(const Box& part) {
        XShmPutImage(m_display, m_window, m_gc, m_image, part.x, part.y, part.x, part.y,
                     static_cast<unsigned>(part.width), static_cast<unsigned>(part.height), False);
        XSync(m_display, False);
    }

  private:
    Display* m_display;
    Window m_window;
    GC m_gc;
    XImage* m_image;
    XShmSegmentInfo m_segment{};
};

void Tell(int picture, std::chrono::steady_clock::time_point due) {
    using namespace std::chrono;
    const auto now = steady_clock::now();
    const auto late = duration_cast<microseconds>(now - due).count();
    const auto at = duration_cast<nanoseconds>(now.time_since_epoch()).count();
    std::printf("%d %lld %lld\n", picture, static_cast<long long>(at), static_cast<long long>(late));
    std::fflush(stdout);
}

void Show(const std::string& name, double seconds) {
    constexpr Box kNumber{kNumberX, kNumberY, kBits * kField, kField};
    Screen screen;
    Canvas canvas = screen.Pixels();
    Content content(name);
    const auto begin = std::chrono::steady_clock::now();
    int lastSlide = -1;
    for (int picture = 0; picture < seconds * kRate; ++picture) {
        const auto due = begin + std::chrono::microseconds(1'000'000LL * picture / kRate);
        // On a busy machine pictures are left out, not shown late.
        if (std::chrono::steady_clock::now() > due + std::chrono::milliseconds(30)) continue;
        std::this_thread::sleep_until(due);
        const bool isNewSlide = Content::SlideOf(picture) != lastSlide;
        if (content.IsSteady() && !isNewSlide) continue;
        lastSlide = Content::SlideOf(picture);
        screen.Show(content.Draw(canvas, picture));
        if (!content.IsSteady() && name != "video") screen.Show(kNumber);
        Tell(picture, due);
    }
    std::this_thread::sleep_until(begin + std::chrono::duration<double>(seconds));
}

void Print(const std::string& name, int picture) {
    Canvas canvas;
    Content(name).Draw(canvas, picture);
    std::printf("P6 %d %d 255\n", kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const std::uint32_t pixel = canvas.Line(y)[x];
            for (const int shift : {16, 8, 0}) std::putchar(static_cast<int>(pixel >> shift & 0xFF));
        }
    }
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc == 4 && std::string_view(argv[2]) == "--picture") {
        Print(argv[1], std::atoi(argv[3]));
        return 0;
    }
    if (argc != 3) return 2;
    Show(argv[1], std::atof(argv[2]));
    return 0;
} catch (const std::string& problem) {
    std::fprintf(stderr, "%s\n", problem.c_str());
    return 1;
}
