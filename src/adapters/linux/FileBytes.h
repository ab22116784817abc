// Bytes in and out of files, complete or failed: short writes and interrupted calls are gone on with.
#pragma once

#include <filesystem>
#include <string>

namespace kestrum::platform {

/// The whole file. Throws host::Error.
std::string ReadAll(const std::filesystem::path& path);

/// Writes `bytes` to the file, made if missing; `append` adds to its end, else it is replaced. Throws host::Error.
void WriteAll(const std::filesystem::path& path, const std::string& bytes, bool append);

/// Copies the bytes of a file over `target`. A failed copy leaves no target. Throws host::Error.
void CopyBytes(const std::filesystem::path& source, const std::filesystem::path& target);

}  // namespace kestrum::platform
