// A profile folder for one office of our own: it starts without tips, welcome windows, template choice, presenter
// console or autosave, and shares nothing with the user's office. It also says which process uses it, so that what a
// killed program left behind can be told from what is in use.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>

namespace kestrum::impress {

class OfficeProfile {
  public:
    /// Makes a fresh profile in `tempFolder` and sweeps away those that dead offices left there. Raises host::Error.
    explicit OfficeProfile(const std::filesystem::path& tempFolder);
    /// Removes the folder, unless kept.
    ~OfficeProfile();
    OfficeProfile(const OfficeProfile&) = delete;
    OfficeProfile& operator=(const OfficeProfile&) = delete;

    const std::filesystem::path& Folder() const { return m_folder; }
    /// Notes the office that uses the profile.
    void BelongsTo(pid_t office);
    /// The office goes on without us: its profile stays.
    void Keep() { m_kept = true; }

    /// True if `folder` is a profile of ours whose office is gone.
    static bool IsLeftOver(const std::filesystem::path& folder);

  private:
    std::filesystem::path m_folder;
    bool m_kept = false;
};

}  // namespace kestrum::impress
