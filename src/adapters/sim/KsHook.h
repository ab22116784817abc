// The hook library: a test lets it post its messages to the window that was given. Faults:
// "ksHook.InstallMessageHook" (answers 0).
#pragma once

#include "adapters/sim/Faults.h"
#include "adapters/sim/Windows.h"
#include "host/IKsHook.h"

namespace kestrum::sim {

class KsHook : public host::IKsHook {
  public:
    KsHook(Faults& faults, Transcript& transcript, Windows& windows)
        : m_faults(faults), m_transcript(transcript), m_windows(windows) {}

    std::int32_t InstallMessageHook(host::WindowHandle window, std::int32_t hostKind) override {
        m_transcript.Add(u"ksHook.InstallMessageHook " + host::FromUtf8(std::to_string(hostKind)));
        if (m_faults.Fails(u"ksHook.InstallMessageHook")) return 0;
        m_window = window;
        return 1;
    }
    void UnInstallMessageHook() override {
        m_transcript.Add(u"ksHook.UnInstallMessageHook");
        m_window = 0;
    }
    void EnableHotKey(std::int32_t enable) override {
        m_transcript.Add(u"ksHook.EnableHotKey " + host::FromUtf8(std::to_string(enable)));
    }

    /// Posts a message to the hooked window; nothing happens while no hook is installed.
    void PostMessage(std::int32_t message, std::int64_t first = 0, std::int64_t second = 0) {
        if (m_window) m_windows.PostMessage(m_window, host::WindowMessage{message, first, second, {}});
    }
    bool Installed() const { return m_window != 0; }

  private:
    Faults& m_faults;
    Transcript& m_transcript;
    Windows& m_windows;
    host::WindowHandle m_window = 0;
};

}  // namespace kestrum::sim
