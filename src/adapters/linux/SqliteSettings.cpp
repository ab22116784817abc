#include "adapters/linux/SqliteSettings.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/LinuxShellFolders.h"
#include "adapters/linux/PosixError.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;

constexpr int kBusyTimeoutMs = 5000;
constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS settings (application TEXT, section TEXT, key TEXT, value TEXT NOT NULL,"
    " PRIMARY KEY (application, section, key)) WITHOUT ROWID";
constexpr const char* kRead = "SELECT value FROM settings WHERE application = ?1 AND section = ?2 AND key = ?3";
constexpr const char* kWrite = "INSERT OR REPLACE INTO settings VALUES (?1, ?2, ?3, ?4)";
constexpr const char* kReadAll = "SELECT application, section, key, value FROM settings";

using Store = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;
using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;
using Row = std::array<std::string, 4>;

bool IsDamage(int code) {
    const int primary = code & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

Store Open(const std::string& file, int flags, int& code) {
    sqlite3* raw = nullptr;
    code = sqlite3_open_v2(file.c_str(), &raw, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, nullptr);
    if (raw) sqlite3_busy_timeout(raw, kBusyTimeoutMs);
    return Store(raw, sqlite3_close);
}

Statement Prepare(sqlite3* store, const char* sql, int& code) {
    sqlite3_stmt* raw = nullptr;
    code = sqlite3_prepare_v2(store, sql, -1, &raw, nullptr);
    return Statement(raw, sqlite3_finalize);
}

void Bind(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

std::string Column(sqlite3_stmt* statement, int index) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, index))) : std::string();
}

/// Stores one row in a store that may still be without its table.
int Put(sqlite3* store, const Row& row) {
    int code = sqlite3_exec(store, kSchema, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) return code;
    const Statement statement = Prepare(store, kWrite, code);
    if (code != SQLITE_OK) return code;
    for (std::size_t i = 0; i < row.size(); ++i) Bind(statement.get(), static_cast<int>(i) + 1, row[i]);
    return sqlite3_step(statement.get());
}

/// Every row that a damaged store still gives.
std::vector<Row> Salvage(const std::string& file) {
    std::vector<Row> rows;
    int code = SQLITE_OK;
    const Store store = Open(file, SQLITE_OPEN_READONLY, code);
    if (code != SQLITE_OK) return rows;
    const Statement statement = Prepare(store.get(), kReadAll, code);
    if (code != SQLITE_OK) return rows;
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        rows.push_back({Column(statement.get(), 0), Column(statement.get(), 1), Column(statement.get(), 2),
                        Column(statement.get(), 3)});
    }
    return rows;
}

/// True if the store itself says that its pages are not in order. What cannot be told is not damage.
bool IsDamaged(const std::string& file) {
    int code = SQLITE_OK;
    const Store store = Open(file, SQLITE_OPEN_READWRITE, code);
    if (code != SQLITE_OK) return IsDamage(code);
    const Statement check = Prepare(store.get(), "PRAGMA quick_check(1)", code);
    if (code != SQLITE_OK) return IsDamage(code);
    code = sqlite3_step(check.get());
    return IsDamage(code) || (code == SQLITE_ROW && Column(check.get(), 0) != "ok");
}

/// A name beside `file` that nothing has yet.
std::string AsideName(const std::string& file) {
    const std::string base = file + ".damaged-" + std::to_string(std::time(nullptr));
    std::string name = base;
    std::error_code ignored;
    for (int n = 2; stdfs::exists(name, ignored); ++n) name = base + "-" + std::to_string(n);
    return name;
}

/// Makes folder and file so that only the user reads them: a stored password is readable text to who can.
void MakePrivateFile(const std::string& file) {
    std::error_code ignored;
    const stdfs::path folder = stdfs::path(file).parent_path();
    if (stdfs::create_directories(folder, ignored)) {
        stdfs::permissions(folder, stdfs::perms::owner_all, ignored);
    }
    const Descriptor made(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!made) ThrowSystemError(errno, u"WriteSetting", host::FromUtf8(file));
}

}  // namespace

std::string SqliteSettings::DefaultFile() {
    return ConfigFolder() + "/kestrum/settings.sqlite";
}

std::optional<String> SqliteSettings::Read(const String& application, const String& section, const String& key) {
    const auto unstored = m_unstored.find({application, section, key});
    if (unstored != m_unstored.end()) return unstored->second;
    std::optional<String> value;
    std::error_code unreadable;
    if (!stdfs::exists(m_file, unreadable)) return value;
    WithStore(false, [&](sqlite3* store) {
        int code = SQLITE_OK;
        const Statement statement = Prepare(store, kRead, code);
        if (code != SQLITE_OK) return code;
        Bind(statement.get(), 1, host::ToUtf8(application));
        Bind(statement.get(), 2, host::ToUtf8(section));
        Bind(statement.get(), 3, host::ToUtf8(key));
        code = sqlite3_step(statement.get());
        if (code == SQLITE_ROW) value = host::FromUtf8(Column(statement.get(), 0));
        return code;
    });
    return value;
}

void SqliteSettings::Write(const String& application, const String& section, const String& key, const String& value) {
    m_unstored[{application, section, key}] = value;
    MakePrivateFile(m_file);
    const Row row{host::ToUtf8(application), host::ToUtf8(section), host::ToUtf8(key), host::ToUtf8(value)};
    const int code = WithStore(true, [&](sqlite3* store) { return Put(store, row); });
    if (code == SQLITE_DONE) {
        m_unstored.erase({application, section, key});
        return;
    }
    const auto number =
        (code & 0xFF) == SQLITE_FULL ? host::ErrorNumber::DiskFull : host::ErrorNumber::PermissionDenied;
    throw host::Error(number, u"WriteSetting",
                      u"The settings could not be stored: " + host::FromUtf8(sqlite3_errstr(code)) + u".");
}

/// Runs `use` on the opened store and gives its SQLite code. If the file proves damaged it is set aside and `use` runs
/// once more on a new one.
int SqliteSettings::WithStore(bool create, const std::function<int(sqlite3*)>& use) {
    int code = SQLITE_OK;
    for (int attempt = 0; attempt < 2; ++attempt) {
        {
            const Store store = Open(m_file, SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0), code);
            if (code == SQLITE_OK) code = use(store.get());
        }
        if (!IsDamage(code)) break;
        SetAside();
    }
    return code;
}

/// One process at a time, and only if the file is still the damaged one when its turn comes. The journal goes first: it
/// must never be rolled back into a new file.
void SqliteSettings::SetAside() {
    const Descriptor guard(open((m_file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!guard || flock(guard.Get(), LOCK_EX) != 0) return;
    if (!IsDamaged(m_file)) return;
    const std::vector<Row> rows = Salvage(m_file);
    const std::string aside = AsideName(m_file);
    std::error_code ignored;
    stdfs::rename(m_file + "-journal", aside + "-journal", ignored);
    stdfs::rename(m_file, aside, ignored);
    MakePrivateFile(m_file);
    int code = SQLITE_OK;
    const Store fresh = Open(m_file, SQLITE_OPEN_READWRITE, code);
    for (const Row& row : rows) Put(fresh.get(), row);
    m_trace.Note(u"settings: the damaged file was set aside as " + host::FromUtf8(aside) + u", " +
                 host::FromUtf8(std::to_string(rows.size())) + u" values were carried over");
}

}  // namespace kestrum::platform
