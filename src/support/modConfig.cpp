#include "support/modConfig.h"

#include "host/ResumeNext.h"
#include "support/modGlobal.h"

namespace kestrum::modConfig {

String GetSetting(const support::Context& c, StringView section, StringView key, StringView fallback) {
    const std::optional<String> stored = c.host.settings.Read(String(kApplication), String(section), String(key));
    return stored ? *stored : String(fallback);
}

bool SaveSetting(const support::Context& c, StringView section, StringView key, StringView value) {
    const host::ResumeNext attempt{c.host.trace};
    return attempt([&] { c.host.settings.Write(String(kApplication), String(section), String(key), String(value)); });
}

String GetHexSetting(const support::Context& c, StringView section, StringView key, StringView fallback) {
    return DecodeHexSetting(GetSetting(c, section, key, fallback), fallback);
}

String DecodeHexSetting(StringView stored, StringView fallback) {
    if (stored.size() <= 2) return String(fallback);
    return stored.starts_with(u"&H") ? modGlobal::DecodeHexText(stored) : String(stored);
}

bool SaveHexSetting(const support::Context& c, StringView section, StringView key, StringView value) {
    return SaveSetting(c, section, key, modGlobal::EncodeHexText(value));
}

}  // namespace kestrum::modConfig
