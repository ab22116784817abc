// Writes the seeds of the package target into the folder given: an empty package, a short lecture, the same one torn
// by a death of its recorder with a journal in it. The samples are no pictures; the reader never looks into them.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "Zeros.h"
#include "media/package/Package.h"
#include "media/package/PackageWriter.h"
#include "media/package/Storage.h"

using namespace kestrum::media;

namespace {

Bytes BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

StoredFiles Project() {
    return {{kProjectFileName,
             BytesOf("<kestrum ver=\"8.0\"><project><abstract><title>t</title></abstract><index duration=\"00:00\" "
                     "type=\"OL\"><item><title>One</title><pos>0</pos><recdate/><url/></item></index>"
                     "</project></kestrum>")},
            {kPhotoName, BytesOf("GIF89a")}};
}

void Record(PackageWriter& writer) {
    TrackConfigs tracks;
    tracks.video = {160, 120, {1, 66, 0, 10, 255, 224, 0}};
    tracks.audio = AudioTrackConfig{48000, 2, 64000, {0x11, 0x90}};
    writer.SetTracks(tracks);
    for (std::int64_t ms = 0; ms < 2000; ms += 250) {
        writer.WriteVideo(ms, ms % 1000 == 0, BytesOf("picture"));
        writer.WriteAudio(ms, BytesOf("sound"));
        writer.Flush();
    }
    writer.WriteJournal("0\t2024/3/7 09:05:00\tOne\t\n1000\t2024/3/7 09:05:01\tTwo\t\n");
}

/// Puts the file that was made into its short form.
void ShortenFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    const Bytes file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const Bytes seed = kestrum::fuzz::Shorten(file);
    Bytes again;
    kestrum::fuzz::Expand(seed, again);
    if (again != file) throw std::runtime_error("the short form is not the file");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return std::fputs("usage: make_package_seeds FOLDER\n", stderr), 2;
    const std::string folder = std::string(argv[1]) + "/";
    WriteStored(folder + "empty", Project());
    {
        const auto writer = PackageWriter::Open(folder + "lecture");
        writer->StoreFiles(Project());
        Record(*writer);
        writer->Close(2000);
    }
    {
        const auto writer = PackageWriter::Open(folder + "torn");
        writer->StoreFiles(Project());
        Record(*writer);
    }
    for (const char* name : {"empty", "lecture", "torn"}) {
        std::printf("%s: %d key frames\n", name, ProbePackage(*ReadWholeFile(folder + name)));
        ShortenFile(folder + name);
    }
    return 0;
}
