// The lock file that an office puts beside a presentation it has open. Another office that meets it would ask the user
// in a box of its own, and hang in it when nobody is there to answer; so it is looked at before.
#pragma once

#include <filesystem>
#include <optional>

#include "host/String.h"

namespace kestrum::impress {

struct DeckLock {
    String user;  ///< name of the person, else of the account
    String machine;
    String since;  ///< as the office writes it
    std::filesystem::path profile;
};

/// Path of the lock file of `deck`.
std::filesystem::path LockFileOf(const std::filesystem::path& deck);

/// The lock of `deck`; none if it is not locked.
std::optional<DeckLock> ReadDeckLock(const std::filesystem::path& deck);

/// Removes the lock that an office of ours left behind when it was killed; raises host::Error with a sentence that
/// names the holder if anybody else has the presentation open.
void RefuseLockedDeck(const std::filesystem::path& deck);

/// Removes the lock if the office with profile `profile` holds it. For an office that is known to have died.
void RemoveLockOf(const std::filesystem::path& profile, const std::filesystem::path& deck);

}  // namespace kestrum::impress
