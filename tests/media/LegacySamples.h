// What older versions left behind, made from a package of today: media of generation 7, a project folder, encrypted
// media. The encryption is done with the system's openssl, so that it checks ours.
#pragma once

#include <string>

#include "PackageSamples.h"

namespace kestrum::media::test {

/// Writes another format version, such as "7.0", into a package.
void SetFormatVersion(const std::string& package, const std::string& version);

/// A project file of version `ver` as it was written then: media of that time, and less told than today.
Bytes OldProjectFile(const std::string& ver, const std::vector<std::int64_t>& positions);

/// A folder `path` with a recording of generation 7, its project file, cursor, photo "me.jpg" and index text.
void MakeLegacyFolder(const std::string& path);

/// Brings a closed package into the encrypted state; all of its samples, flag and key.
void EncryptPackage(const std::string& package);
/// Only flag or key, to be added to the tracks.
enum class Marks { kFlagAndKey, kFlagOnly };
void MarkEncrypted(const std::string& package, Marks marks);

}  // namespace kestrum::media::test
