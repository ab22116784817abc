// The settings store: one SQLite file under the user's configuration folder, readable by its user alone.
//
// The file is opened for each call, which takes well under a millisecond, so that no process holds it, and all see it
// at once when a damaged file is set aside. A rollback journal is used, not a write-ahead log: home folders of lecture
// halls are often network mounts. A damaged file is renamed to "<file>.damaged-<time>", its readable part is carried
// over into a new one, and the trace says so. A value that cannot be stored holds for the life of this object, so that
// a session goes on as its user set it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "host/ISettingsStore.h"
#include "host/ITrace.h"

struct sqlite3;

namespace kestrum::platform {

class SqliteSettings : public host::ISettingsStore {
  public:
    /// Uses (and makes at the first write) `file`, its folder too.
    SqliteSettings(std::string file, host::ITrace& trace) : m_file(std::move(file)), m_trace(trace) {}

    std::optional<String> Read(const String& application, const String& section, const String& key) override;
    void Write(const String& application, const String& section, const String& key, const String& value) override;

    /// "kestrum/settings.sqlite" in the user's configuration folder.
    static std::string DefaultFile();

  private:
    int WithStore(bool create, const std::function<int(sqlite3*)>& use);
    void SetAside();

    std::string m_file;
    host::ITrace& m_trace;
    /// What could not be stored, by application, section and key.
    std::map<std::tuple<String, String, String>, String> m_unstored;
};

}  // namespace kestrum::platform
