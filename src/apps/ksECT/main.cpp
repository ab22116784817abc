// ksECT PACKAGE: takes a package out of the encrypted state.
#include <filesystem>

#include "media/legacy/ConverterProgram.h"
#include "media/legacy/Decryption.h"

namespace {

/// A link keeps pointing at what is replaced.
std::string RealPath(const std::string& path) {
    std::error_code failed;
    const auto real = std::filesystem::canonical(path, failed);
    return failed ? path : real.string();
}

}  // namespace

int main(int argc, char** argv) {
    using namespace kestrum::media;
    const ConverterProgram program{
        "ksECT", "PACKAGE", "Decrypts the media of PACKAGE in its place; one that is not encrypted stays as it is.", 1,
        [](const auto& words, const Watch& watch) { DecryptPackage(RealPath(words[0]), watch); }};
    return RunConverterProgram(program, argc, argv);
}
