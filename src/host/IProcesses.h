// Child processes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/String.h"

namespace kestrum::host {

/// A child process. Destroying the object leaves the child running and reaps it when it ends.
class IProcess {
  public:
    virtual ~IProcess() = default;
    virtual std::int64_t Id() = 0;
    /// The exit code, none while the child runs. A child ended by a signal has 128 + its number.
    virtual std::optional<std::int32_t> ExitCode() = 0;
    /// Ends the child and all that it started.
    virtual void Terminate() = 0;
};

class IProcesses {
  public:
    virtual ~IProcesses() = default;
    /// Starts `program` (a path, or a name that is looked up) without a window; never waits. Arguments go as they are,
    /// no shell sees them. Output is drained so that the child never blocks on it. Fails if it cannot be started.
    [[nodiscard]] virtual std::unique_ptr<IProcess> Start(const String& program,
                                                          const std::vector<String>& arguments) = 0;
    /// Starts a line of the system's shell without a window.
    [[nodiscard]] virtual std::unique_ptr<IProcess> StartShell(const String& commandLine) = 0;
    /// Opens a document, folder or web address with the program that the desktop has for it. False if there is none.
    virtual bool OpenWithDesktop(const String& target) = 0;
    /// Shows the file, selected, in the desktop's file manager, or at least opens its folder. False if neither can be.
    virtual bool ShowInFolder(const String& file) = 0;
    /// State of a service of the system by its name: "Running", "Stopped" ...; empty if the system has none such.
    virtual String ServiceState(const String& service) = 0;
    /// Ends a service. Fails if that is not allowed.
    virtual void StopService(const String& service) = 0;
    /// The platform's name of our helper program `baseName` ("ffmpeg" is "ffmpeg.exe" on Windows).
    virtual String ProgramName(const String& baseName) = 0;
};

}  // namespace kestrum::host
