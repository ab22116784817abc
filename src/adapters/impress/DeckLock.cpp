#include "adapters/impress/DeckLock.h"

#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "adapters/impress/OfficeProfile.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

namespace fs = std::filesystem;

namespace {

/// Fields are divided by commas and ended by a semicolon; a backslash guards one that belongs to the text.
std::vector<std::string> FieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    for (std::size_t i = 0; i < line.size() && line[i] != ';'; ++i) {
        if (line[i] == '\\' && i + 1 < line.size())
            fields.back() += line[++i];
        else if (line[i] == ',')
            fields.emplace_back();
        else
            fields.back() += line[i];
    }
    fields.resize(5);
    return fields;
}

String MachineName() {
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    return host::FromUtf8(name);
}

bool IsLeftOver(const DeckLock& lock) {
    return lock.machine == MachineName() && OfficeProfile::IsLeftOver(lock.profile);
}

fs::path ProfileOf(const std::string& url) {
    fs::path profile = host::ToUtf8(PathOfUrl(ToUno(host::FromUtf8(url))));
    if (!profile.has_filename()) profile = profile.parent_path();
    return profile;
}

}  // namespace

fs::path LockFileOf(const fs::path& deck) {
    return deck.parent_path() / (".~lock." + deck.filename().string() + "#");
}

std::optional<DeckLock> ReadDeckLock(const fs::path& deck) {
    std::ifstream file(LockFileOf(deck));
    if (!file) return std::nullopt;
    std::string line;
    std::getline(file, line);
    const auto fields = FieldsOf(line);
    const auto& person = fields[0].empty() ? fields[1] : fields[0];
    return DeckLock{host::FromUtf8(person), host::FromUtf8(fields[2]), host::FromUtf8(fields[3]), ProfileOf(fields[4])};
}

void RefuseLockedDeck(const fs::path& deck) {
    const auto lock = ReadDeckLock(deck);
    if (!lock) return;
    if (IsLeftOver(*lock)) {
        std::error_code ignored;
        fs::remove(LockFileOf(deck), ignored);
        return;
    }
    throw host::Error(host::ErrorNumber::FileAlreadyOpen, u"Open",
                      u"The presentation is open in another office (user " + lock->user + u" on " + lock->machine +
                          u", since " + lock->since + u"). Close it there; if it is open nowhere, delete \"" +
                          host::FromUtf8(LockFileOf(deck).string()) + u"\".");
}

void RemoveLockOf(const fs::path& profile, const fs::path& deck) {
    const auto lock = ReadDeckLock(deck);
    std::error_code ignored;
    if (lock && lock->profile == profile && lock->machine == MachineName()) fs::remove(LockFileOf(deck), ignored);
}

}  // namespace kestrum::impress
