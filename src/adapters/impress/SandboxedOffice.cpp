#include "adapters/impress/SandboxedOffice.h"

namespace kestrum::impress {

namespace fs = std::filesystem;

namespace {

/// A place that is missing, or that may not be looked at, holds nothing.
bool Exists(const fs::path& place) {
    std::error_code error;
    return fs::exists(place, error);
}

}  // namespace

String SandboxWithOffice(const fs::path& root, const fs::path& home) {
    const fs::path flatpak = "app/org.libreoffice.LibreOffice";
    if (Exists(root / "var/lib/flatpak" / flatpak) || Exists(home / ".local/share/flatpak" / flatpak))
        return u"Flatpak";
    if (Exists(root / "snap/bin/libreoffice")) return u"Snap";
    return {};
}

String MissingOfficeSentence(const String& sandbox) {
    if (sandbox.empty())
        return u"LibreOffice Impress is not installed. Install the package libreoffice-impress and try again.";
    return u"LibreOffice is installed as a " + sandbox +
           u", which no recorder can drive. Install the package libreoffice-impress beside it and try again.";
}

}  // namespace kestrum::impress
