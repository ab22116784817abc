// The settings in a map. Faults: "settings.Read" (answers none), "settings.Write" (raises).
#pragma once

#include <map>
#include <tuple>

#include "adapters/sim/Faults.h"
#include "host/ISettingsStore.h"

namespace kestrum::sim {

class SettingsStore : public host::ISettingsStore {
  public:
    explicit SettingsStore(Faults& faults) : m_faults(faults) {}

    std::optional<String> Read(const String& application, const String& section, const String& key) override;
    void Write(const String& application, const String& section, const String& key, const String& value) override;

    /// Sets a value without passing the fault switch, under the application name of the program, "Larkspin5".
    void Set(const String& section, const String& key, const String& value);
    /// A value as another process of the user sees it; empty if it was never set.
    String Get(const String& section, const String& key) const;

  private:
    using Key = std::tuple<String, String, String>;
    Faults& m_faults;
    std::map<Key, String> m_values;
};

}  // namespace kestrum::sim
