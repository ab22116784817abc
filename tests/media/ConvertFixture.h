// Small recordings for the conversion tests, made with the ffmpeg program, and what ffprobe says about a movie.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "media/convert/AvHandles.h"
#include "media/convert/Mp4Conversion.h"
#include "real/ChildProcess.h"

namespace kestrum::media {

/// How a test's recording differs from the plain one: 6 s of 320x240 H.264 at 10 pictures a second with key frames at
/// 0, 2 and 4 s, and AAC.
struct RecordingKind {
    std::string size = "320x240";
    std::string audioCodec = "aac";
    std::string keyFrames = "0,2,4";
    bool withAudio = true;
    std::string length = "6";
    bool still = false;  ///< one picture each two seconds only
};

/// Tells whether a track is the same, byte by byte.
inline std::string EncodedHash(const std::string& movie, const std::string& track) {
    return real::Run({"ffmpeg", "-v", "error", "-i", movie, "-map", track, "-c", "copy", "-bsf:v", "h264_mp4toannexb",
                      "-f", "streamhash", "-"})
        .output;
}

class ConvertTest : public testing::Test {
  protected:
    ConvertTest() { av_log_set_level(AV_LOG_FATAL); }

    std::string File(const std::string& name) const { return m_folder / name; }

    std::string MakeRecording(const std::string& name, const RecordingKind& kind) const {
        const std::string path = File(name);
        const std::string rate = kind.still ? "1/2" : "10";
        std::vector<std::string> command = {
            "ffmpeg", "-v",    "error", "-y",
            "-f",     "lavfi", "-i",    "testsrc2=size=" + kind.size + ":rate=" + rate + ":duration=6"};
        if (kind.withAudio) command.insert(command.end(), {"-f", "lavfi", "-i", "sine=frequency=440:duration=6"});
        command.insert(command.end(),
                       {"-c:v", "libx264", "-preset", "ultrafast", "-bf", "0", "-g", "1000", "-sc_threshold", "0",
                        "-pix_fmt", "yuv420p", "-force_key_frames", kind.keyFrames});
        if (kind.withAudio) command.insert(command.end(), {"-c:a", kind.audioCodec, "-ar", "48000"});
        // The encoder starts before 0; ffmpeg would move the whole recording back for it.
        if (kind.withAudio && kind.audioCodec == "aac")
            command.insert(command.end(), {"-bsf:a", "setts=pts=PTS+21:dts=DTS+21"});
        command.insert(command.end(), {"-t", kind.length, "-f", "matroska", path});
        EXPECT_EQ(real::Run(command).code, 0) << "ffmpeg could not make the recording";
        return path;
    }

    ConvertRequest Request(const std::string& package) const {
        ConvertRequest request;
        request.package = package;
        request.output = File("media.mp4");
        request.entriesGiven = true;
        return request;
    }

    /// Fields of ffprobe, one value a line.
    static std::vector<std::string> Probe(const std::string& movie, const std::vector<std::string>& arguments) {
        std::vector<std::string> command = {"ffprobe", "-v", "error", "-of", "default=nw=1:nk=1"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        command.push_back(movie);
        std::istringstream output(real::Run(command).output);
        std::vector<std::string> lines;
        for (std::string line; std::getline(output, line);)
            if (!line.empty()) lines.push_back(line);
        return lines;
    }

    static double DurationOf(const std::string& movie) {
        const auto lines = Probe(movie, {"-show_entries", "format=duration"});
        return lines.empty() ? -1 : std::atof(lines[0].c_str());
    }

    /// What is in the output folder.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    real::TempFolder m_folder;
};

}  // namespace kestrum::media
