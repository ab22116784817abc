#include "adapters/impress/SandboxedOffice.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

class SandboxedOfficeTest : public ::testing::Test {
  protected:
    String Found() const { return SandboxWithOffice(folder.Path() / "root", folder.Path() / "home"); }
    TempFolder folder;
};

TEST_F(SandboxedOfficeTest, WithoutOne_TheSentenceNamesThePackageThatIsMissing) {
    EXPECT_EQ(Found(), u"");
    EXPECT_EQ(MissingOfficeSentence(Found()),
              u"LibreOffice Impress is not installed. Install the package libreoffice-impress and try again.");
}

TEST_F(SandboxedOfficeTest, AFlatpakForEverybody_IsNamed) {
    fs::create_directories(folder.Path() / "root/var/lib/flatpak/app/org.libreoffice.LibreOffice");
    EXPECT_EQ(MissingOfficeSentence(Found()),
              u"LibreOffice is installed as a Flatpak, which no recorder can drive. Install the package "
              u"libreoffice-impress beside it and try again.");
}

TEST_F(SandboxedOfficeTest, AFlatpakOfTheUser_IsFound) {
    fs::create_directories(folder.Path() / "home/.local/share/flatpak/app/org.libreoffice.LibreOffice");
    EXPECT_EQ(Found(), u"Flatpak");
}

TEST_F(SandboxedOfficeTest, AnotherFlatpak_IsNone) {
    fs::create_directories(folder.Path() / "root/var/lib/flatpak/app/org.videolan.VLC");
    EXPECT_EQ(Found(), u"");
}

TEST_F(SandboxedOfficeTest, ASnap_IsFound) {
    fs::create_directories(folder.Path() / "root/snap/bin");
    std::ofstream(folder.Path() / "root/snap/bin/libreoffice") << "";
    EXPECT_EQ(Found(), u"Snap");
}

}  // namespace
}  // namespace kestrum::impress
