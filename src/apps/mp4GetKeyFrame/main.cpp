// mp4GetKeyFrame MOVIE TEXTFILE: writes the time of each key frame of a movie, in seconds, one a line.
#include <cstdio>
#include <exception>
#include <string>

#include "media/convert/KeyFrameTimes.h"

namespace {

/// The text file appears only when it is whole: its presence is what the caller tests.
bool WriteWhole(const std::string& path, const std::string& text) {
    const std::string temporary = path + ".part";
    std::FILE* file = std::fopen(temporary.c_str(), "wb");
    if (file == nullptr) return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const bool closed = std::fclose(file) == 0;
    if (written && closed && std::rename(temporary.c_str(), path.c_str()) == 0) return true;
    std::remove(temporary.c_str());
    return false;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("mp4GetKeyFrame MOVIE TEXTFILE\n", stderr);
        return 2;
    }
    try {
        if (WriteWhole(arguments[2], kestrum::media::KeyFrameText(kestrum::media::KeyFrameTimes(arguments[1]))))
            return 0;
        std::fprintf(stderr, "Cannot write %s.\n", arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
