// The package reader on bytes in memory: head, map of parts, media preview, stored files, recovery of an interrupted
// one.
#include "Fuzz.h"
#include "Zeros.h"
#include "media/package/Package.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::vector<std::uint8_t> file;
    kestrum::fuzz::Expand({data, size}, file);
    const int keyFrames = kestrum::media::ProbePackage(file);
    kestrum::fuzz::Require(keyFrames >= -1, "a package has no negative number of key frames");
    return 0;
}
