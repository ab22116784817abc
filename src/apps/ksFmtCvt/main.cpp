// ksFmtCvt FOLDER PACKAGE: makes a package from a project folder of an older version.
#include "media/legacy/ConverterProgram.h"
#include "media/legacy/LegacyFolder.h"

int main(int argc, char** argv) {
    using namespace kestrum::media;
    const ConverterProgram program{
        "ksFmtCvt", "FOLDER PACKAGE",
        "Makes PACKAGE from the project folder of generation 6 or 7; the folder stays as it is.", 2,
        [](const auto& words, const Watch& watch) { ConvertLegacyFolder(words[0], words[1], watch); }};
    return RunConverterProgram(program, argc, argv);
}
