// What a picture of a lecture costs that changed little: time, bits, closeness to the source. The peer is x264 with the
// recorder's own settings, told which macroblocks rest; each content is encoded by both in turns.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>

#include "media/StreamDecoder.h"
#include "media/capture/ColourConvert.h"
#include "media/capture/VideoEncoder.h"

namespace {

using namespace kestrum::media;

constexpr int kWidth = 1920, kHeight = 1080, kRate = 30, kPictures = 300;

/// The screen, with what was drawn on it since the last picture.
class Stage {
  public:
    Stage() { DrawSlide(1); }

    void Fill(const Area& area, std::uint32_t colour) {
        for (int y = area.y; y < area.Bottom(); ++y) {
            std::fill_n(m_screen.Line(y) + area.x, area.width, colour);
        }
        changes.Mark(area);
    }
    /// Something like a line of text: strokes of two pixels, the same for the same seed.
    void DrawText(int x, int y, int width, int height, unsigned seed) {
        for (int column = 0; column < width; column += 2) {
            seed = seed * 1664525U + 1013904223U;
            if (seed >> 30 == 0) continue;
            const int top = static_cast<int>(seed >> 8) % (height / 2),
                      bottom = height / 2 + static_cast<int>(seed >> 16) % (height / 2);
            for (int line = y + top; line < y + bottom; line += 1 + static_cast<int>(seed >> 24) % 3) {
                std::fill_n(m_screen.Line(line) + x + column, 2, 0x202030U);
            }
        }
        changes.Mark({x, y, width, height});
    }
    void DrawSlide(unsigned seed) {
        Fill({0, 0, kWidth, kHeight}, 0xF4F1E8);
        Fill({0, 0, kWidth, 160}, 0x2B4C7E);
        for (int line = 0; line < 9; ++line)
            DrawText(160, 260 + 80 * line, 1200, 32, seed + static_cast<unsigned>(line));
    }
    void DrawDisc(int centreX, int centreY, int radius, std::uint32_t colour) {
        for (int y = -radius; y < radius; ++y) {
            const int half = static_cast<int>(std::sqrt(static_cast<double>(radius * radius - y * y)));
            Fill({centreX - half, centreY + y, 2 * half, 1}, colour);
        }
    }
    void Restore(const Stage& other, const Area& area) {
        for (int y = area.y; y < area.Bottom(); ++y) {
            std::copy_n(other.m_screen.Line(y) + area.x, area.width, m_screen.Line(y) + area.x);
        }
        changes.Mark(area);
    }
    const I420Picture& Picture() {
        ConvertChanged(m_screen, m_picture, changes);
        return m_picture;
    }

    ChangeMap changes{kWidth, kHeight};

  private:
    BgraPicture m_screen{kWidth, kHeight};
    I420Picture m_picture{kWidth, kHeight};
};

struct Content {
    const char* name;
    std::function<void(Stage&, const Stage& slide, int picture)> draw;
};

const Content kContents[] = {
    {"disc of 80 pixels moving",
     [](Stage& stage, const Stage& slide, int i) {
         const auto at = [](int n) {
             return Area{1500 + static_cast<int>(90 * std::cos(n / 9.0)),
                         600 + static_cast<int>(90 * std::sin(n / 9.0)), 0, 0};
         };
         const Area before = at(i - 1), now = at(i);
         stage.Restore(slide, {before.x - 42, before.y - 42, 84, 84});
         stage.DrawDisc(now.x, now.y, 40, 0xC03020);
     }},
    {"disc moving over text",
     [](Stage& stage, const Stage& slide, int i) {
         const auto x = [](int n) { return 250 + (n * 5) % 900; };
         stage.Restore(slide, {x(i - 1) - 42, 518, 84, 84});
         stage.DrawDisc(x(i), 560, 40, 0x30A040);
     }},
    {"pointer moving",
     [](Stage& stage, const Stage& slide, int i) {
         const auto x = [](int n) { return 200 + (n * 7) % 1300; };
         stage.Restore(slide, {x(i - 1), 700, 16, 24});
         stage.Fill({x(i), 700, 10, 20}, 0x000000);
     }},
    {"text appearing", [](Stage& stage, const Stage&,
                          int i) { stage.DrawText(200 + (i * 24) % 1200, 980, 24, 32, static_cast<unsigned>(i)); }},
    {"a list scrolling in a window",
     [](Stage& stage, const Stage&, int i) {
         stage.Fill({1420, 260, 400, 240}, 0xFFFFFF);
         for (int line = 0; line < 6; ++line) {
             const int y = 260 + line * 40 + (40 - (i * 4) % 40) % 40;
             if (y + 24 < 500) stage.DrawText(1430, y, 380, 24, static_cast<unsigned>(line + (i * 4) / 40));
         }
     }},
};

struct Cost {
    double milliseconds = 0;
    double bytes = 0;
    double noise = 0;  ///< mean square of the differences, of the changed macroblocks
};

double Noise(const AVFrame& shown, const I420Picture& source, const ChangeMap& changes) {
    double sum = 0, count = 1e-9;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (!changes.IsChanged(x / kBlock, y / kBlock)) continue;
            const double off = shown.data[0][y * shown.linesize[0] + x] -
                               source.luma[static_cast<std::size_t>(y * source.lumaStride + x)];
            sum += off * off;
            ++count;
        }
    }
    return sum / count;
}

/// One encoder with its player; the cost of the pictures so far.
class Candidate {
  public:
    explicit Candidate(bool smallPictures)
        : m_encoder({kWidth, kHeight, kRate, false, smallPictures}), m_player(m_encoder.AvcC()) {}

    void Take(const I420Picture& picture, const ChangeMap& changes, bool key) {
        const std::clock_t begin = std::clock();
        const EncodedPicture encoded = m_encoder.Encode(picture, changes, key);
        const double ms = 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        const AVFrame* shown = m_player.Decode(encoded.sample);
        const double noise = shown ? Noise(*shown, picture, changes) : 1e9;
        if (key) return;
        cost.milliseconds += ms / kPictures;
        cost.bytes += static_cast<double>(encoded.sample.size()) / kPictures;
        cost.noise += noise / kPictures;
    }

    /// So long that it is not the time after a new slide any more.
    void Rest(const I420Picture& picture) {
        for (int i = 0; i < 3 * kRate; ++i)
            m_player.Decode(m_encoder.Encode(picture, ChangeMap(kWidth, kHeight), false).sample);
    }

    Cost cost;

  private:
    VideoEncoder m_encoder;
    test::StreamDecoder m_player;
};

double Decibel(double noise) {
    return 10 * std::log10(255.0 * 255.0 / std::max(noise, 1e-3));
}

void Measure(const Content& content) {
    const Stage slide;
    Stage stage;
    Candidate own(true), peer(false);
    for (Candidate* one : {&own, &peer}) {
        one->Take(stage.Picture(), stage.changes, true);
        one->Rest(stage.Picture());
    }
    for (int i = 1; i <= kPictures; ++i) {
        stage.changes.Clear();
        content.draw(stage, slide, i);
        const I420Picture& picture = stage.Picture();
        own.Take(picture, stage.changes, false);
        peer.Take(picture, stage.changes, false);
    }
    std::printf("%-30s %7.3f %7.3f %8.1f | %7.0f %7.0f %6.2f | %5.1f %5.1f\n", content.name, own.cost.milliseconds,
                peer.cost.milliseconds, peer.cost.milliseconds / own.cost.milliseconds, own.cost.bytes, peer.cost.bytes,
                own.cost.bytes / peer.cost.bytes, Decibel(own.cost.noise), Decibel(peer.cost.noise));
}

}  // namespace

int main() {
    std::printf("%d pictures of %dx%d; own writer, x264, ratio\n", kPictures, kWidth, kHeight);
    std::printf("%-30s %7s %7s %8s | %7s %7s %6s | %5s %5s\n", "content", "ms", "x264", "times", "bytes", "x264",
                "ratio", "dB", "x264");
    for (const Content& content : kContents) Measure(content);
}
