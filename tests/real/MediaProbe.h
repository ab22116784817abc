// What an independent reader (FFmpeg) finds in a media file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "real/ChildProcess.h"

namespace kestrum::real {

struct Rgb {
    int red = 0, green = 0, blue = 0;
};

/// Positions in ms of the packets of a track ("v" or "a"); key frames only if asked.
inline std::vector<std::int64_t> PacketPositions(const std::string& file, const std::string& track, bool keysOnly) {
    const auto found = Run({"ffprobe", "-v", "error", "-select_streams", track + ":0", "-show_entries",
                            "packet=pts_time,flags", "-of", "csv=p=0", file});
    std::vector<std::int64_t> positions;
    std::istringstream lines(found.output);
    for (std::string line; std::getline(lines, line);) {
        const auto comma = line.find(',');
        if (comma == std::string::npos || (keysOnly && line.find('K', comma) == std::string::npos)) continue;
        positions.push_back(static_cast<std::int64_t>(std::stod(line.substr(0, comma)) * 1000 + 0.5));
    }
    return positions;
}

/// A picture of a file: where it lies, and the colour in its middle.
struct ShownPicture {
    std::int64_t ms = 0;
    Rgb colour;
};

/// All pictures of a file in order, decoded.
inline std::vector<ShownPicture> Pictures(const std::string& file) {
    const auto raw = Run({"ffmpeg", "-v", "error", "-i", file, "-map", "0:v", "-vsync", "passthrough", "-vf",
                          "crop=2:2:iw/2:ih/2,format=rgb24", "-f", "rawvideo", "-"})
                         .output;
    const auto positions = PacketPositions(file, "v", false);
    constexpr std::size_t kBytes = 12;
    std::vector<ShownPicture> pictures;
    for (std::size_t i = 0; i < positions.size() && (i + 1) * kBytes <= raw.size(); ++i) {
        const auto* pixel = reinterpret_cast<const unsigned char*>(raw.data()) + i * kBytes;
        pictures.push_back({positions[i], {pixel[0], pixel[1], pixel[2]}});
    }
    return pictures;
}

/// The colour in the middle of the picture shown at `ms`: the last picture that is not later.
inline Rgb ColourAt(const std::string& file, std::int64_t ms) {
    Rgb colour{-1, -1, -1};
    for (const auto& picture : Pictures(file)) {
        if (picture.ms <= ms) colour = picture.colour;
    }
    return colour;
}

/// Lossy coding shifts colours a little; a different test colour differs by far more.
inline bool IsNear(const Rgb& colour, std::uint32_t wanted, int tolerance = 24) {
    const auto near = [tolerance](int a, std::uint32_t b) {
        return std::abs(a - static_cast<int>(b & 0xFF)) <= tolerance;
    };
    return near(colour.red, wanted >> 16) && near(colour.green, wanted >> 8) && near(colour.blue, wanted);
}

/// The sound track as mono samples of 48 kHz.
inline std::vector<std::int16_t> Samples(const std::string& file) {
    const auto found =
        Run({"ffmpeg", "-v", "error", "-i", file, "-map", "0:a", "-ac", "1", "-ar", "48000", "-f", "s16le", "-"});
    const auto* begin = reinterpret_cast<const std::int16_t*>(found.output.data());
    return {begin, begin + found.output.size() / 2};
}

}  // namespace kestrum::real
