#include "adapters/sim/SettingsStore.h"

namespace kestrum::sim {

namespace {
const String kApplication = u"Larkspin5";
}

std::optional<String> SettingsStore::Read(const String& application, const String& section, const String& key) {
    if (m_faults.Fails(u"settings.Read")) return std::nullopt;
    auto found = m_values.find(Key(application, section, key));
    if (found == m_values.end()) return std::nullopt;
    return found->second;
}

void SettingsStore::Write(const String& application, const String& section, const String& key, const String& value) {
    m_faults.Check(u"settings.Write");
    m_values[Key(application, section, key)] = value;
}

void SettingsStore::Set(const String& section, const String& key, const String& value) {
    m_values[Key(kApplication, section, key)] = value;
}

String SettingsStore::Get(const String& section, const String& key) const {
    auto found = m_values.find(Key(kApplication, section, key));
    return found == m_values.end() ? String() : found->second;
}

}  // namespace kestrum::sim
