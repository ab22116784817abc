// Child processes over posix_spawn. Each child leads a process group of its own, has the null device for its three
// standard streams (so it can neither block on output nor wait for input), and inherits no other descriptor.
#pragma once

#include "host/IProcesses.h"

namespace kestrum::platform {

class LinuxProcesses : public host::IProcesses {
  public:
    [[nodiscard]] std::unique_ptr<host::IProcess> Start(const String& program,
                                                        const std::vector<String>& arguments) override;
    [[nodiscard]] std::unique_ptr<host::IProcess> StartShell(const String& commandLine) override;
    /// Asks `xdg-open`. Waits up to half a second for its "there is none".
    bool OpenWithDesktop(const String& target) override;
    /// Asks the file manager on the session's bus (org.freedesktop.FileManager1); without one opens the folder.
    bool ShowInFolder(const String& file) override;
    /// None of the services that the rules name exists here.
    String ServiceState(const String&) override { return {}; }
    void StopService(const String&) override {}
    /// The name itself: programs carry no ending here. The recorder's own is written in small letters.
    String ProgramName(const String& baseName) override { return baseName == u"Kestrum" ? u"kestrum" : baseName; }
};

}  // namespace kestrum::platform
