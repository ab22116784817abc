// The one door to the bytes of a package. Everything the library reads or writes passes it, so that a test can tear any
// single write, and the fuzzer can read from memory.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// One open file. All functions throw media::Error.
class IStorage {
  public:
    IStorage() = default;
    virtual ~IStorage() = default;
    IStorage(const IStorage&) = delete;
    IStorage& operator=(const IStorage&) = delete;

    virtual std::uint64_t Size() = 0;
    /// Fills `target` from `position`; returns less than its size only at the end of the file.
    virtual std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) = 0;
    /// Writes all of `data`, as one call of the system where it lets us; extends the file as needed.
    virtual void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) = 0;
    virtual void Truncate(std::uint64_t size) = 0;
    /// Returns when everything written is on the disk.
    virtual void Sync() = 0;
};

enum class LockResult { kLocked, kHeldByOther };

/// A file of the system.
class FileStorage final : public IStorage {
  public:
    enum class Access { kRead, kReadWrite };

    static std::unique_ptr<FileStorage> Open(const std::string& path, Access access);
    enum class Collision { kRefuse, kReplace };
    /// Makes a file beside `path`, has it filled, and gives it the name: the file is there complete or not at all,
    /// locked from the first moment. Throws kLocked if another process took the name meanwhile and that is refused.
    static std::unique_ptr<FileStorage> Create(const std::string& path, Collision collision,
                                               const std::function<void(IStorage&)>& fill);
    /// True if something of that name exists.
    static bool Exists(const std::string& path);

    ~FileStorage() override;

    /// Takes the exclusive lock of the file until the storage is destroyed; waits up to half a second for it.
    LockResult LockExclusive();
    /// Whether another opening holds the exclusive lock right now.
    bool IsLockedByOther();

    std::uint64_t Size() override;
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override;
    void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override;
    void Truncate(std::uint64_t size) override;
    void Sync() override;

  private:
    FileStorage(int descriptor, std::string path) : m_descriptor(descriptor), m_path(std::move(path)) {}

    int m_descriptor;
    std::string m_path;
};

/// A file in memory, for reading only. The bytes must outlive it.
class MemoryStorage final : public IStorage {
  public:
    explicit MemoryStorage(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    std::uint64_t Size() override { return m_bytes.size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override;
    void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override;
    void Truncate(std::uint64_t size) override;
    void Sync() override {}

  private:
    std::span<const std::uint8_t> m_bytes;
};

/// `size` bytes from `position`; nullopt if the file ends before.
std::optional<Bytes> ReadExactly(IStorage& storage, std::uint64_t position, std::uint64_t size);

/// The whole file `path`; nullopt if there is none.
std::optional<Bytes> ReadWholeFile(const std::string& path);

/// Writes `data` to the file `path`, replacing it.
void WriteWholeFile(const std::string& path, std::span<const std::uint8_t> data);

}  // namespace kestrum::media
