#include "adapters/impress/OfficeProfile.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "host/Error.h"

namespace kestrum::impress {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPrefix = "kestrum-office-";
constexpr const char* kOwnerFile = "office.pid";

struct Setting {
    const char* path;
    const char* name;
    const char* value;
};

constexpr Setting kSettings[] = {
    {"/org.openoffice.Office.Common/Misc", "ShowTipOfTheDay", "false"},
    {"/org.openoffice.Office.Common/Misc", "FirstRun", "false"},
    {"/org.openoffice.Office.Common/Misc", "CrashReport", "false"},
    {"/org.openoffice.Setup/Product", "ooSetupLastVersion", "7.4"},
    {"/org.openoffice.Office.Impress/Misc/NewDoc", "AutoPilot", "false"},
    {"/org.openoffice.Office.Impress/Misc/Start", "EnablePresenterScreen", "false"},
    {"/org.openoffice.Office.Recovery/AutoSave", "Enabled", "false"},
};

void WriteSettings(const fs::path& folder) {
    fs::create_directories(folder / "user");
    std::ofstream file(folder / "user" / "registrymodifications.xcu");
    file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\" "
            "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
    for (const auto& setting : kSettings)
        file << "<item oor:path=\"" << setting.path << "\"><prop oor:name=\"" << setting.name
             << "\" oor:op=\"fuse\"><value>" << setting.value << "</value></prop></item>\n";
    file << "</oor:items>\n";
    file.close();
    if (!file)
        throw host::Error(host::ErrorNumber::DiskFull, u"OfficeProfile",
                          u"The settings for Impress cannot be written to the temporary folder.");
}

bool IsOffice(pid_t process) {
    std::error_code ignored;
    const auto program = fs::read_symlink("/proc/" + std::to_string(process) + "/exe", ignored);
    return program.filename().string().rfind("soffice", 0) == 0;
}

/// A profile names its maker too: one that has no office yet is in use while its maker lives.
pid_t MakerOf(const fs::path& folder) {
    return std::atoi(folder.filename().string().substr(std::string(kPrefix).size()).c_str());
}

void SweepLeftOvers(const fs::path& tempFolder) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(tempFolder, ignored))
        if (OfficeProfile::IsLeftOver(entry.path())) fs::remove_all(entry.path(), ignored);
}

}  // namespace

OfficeProfile::OfficeProfile(const fs::path& tempFolder) {
    SweepLeftOvers(tempFolder);
    std::string name = (tempFolder / (kPrefix + std::to_string(getpid()) + "-XXXXXX")).string();
    if (!mkdtemp(name.data()))
        throw host::Error(host::ErrorNumber::PermissionDenied, u"OfficeProfile",
                          u"The temporary folder cannot be written: " + host::FromUtf8(tempFolder.string()));
    m_folder = name;
    WriteSettings(m_folder);
}

OfficeProfile::~OfficeProfile() {
    std::error_code ignored;
    if (!m_kept) fs::remove_all(m_folder, ignored);
}

void OfficeProfile::BelongsTo(pid_t office) {
    std::ofstream(m_folder / kOwnerFile) << office;
}

bool OfficeProfile::IsLeftOver(const fs::path& folder) {
    if (folder.filename().string().rfind(kPrefix, 0) != 0) return false;
    std::error_code ignored;
    if (!fs::exists(folder, ignored)) return true;
    pid_t office = 0;
    std::ifstream(folder / kOwnerFile) >> office;
    if (office > 0) return !IsOffice(office);
    return !fs::exists("/proc/" + std::to_string(MakerOf(folder)), ignored);
}

}  // namespace kestrum::impress
