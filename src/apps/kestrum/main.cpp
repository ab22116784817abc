// kestrum: the recorder's command line.
#include <unistd.h>

#include <iostream>

#include "adapters/linux/EndSignals.h"
#include "apps/commandline/DeviceList.h"
#include "apps/commandline/InfoCommand.h"
#include "apps/kestrum/AttachCommand.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/PublishCommand.h"
#include "apps/kestrum/RecordCommand.h"
#include "apps/kestrum/SettingsCommands.h"
#include "apps/kestrum/VerifyPackage.h"
#include "apps/kestrum/WatchCommand.h"
#include "project/modProject.h"

namespace kestrum::app {
namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

int RunPortable(Console& console, const Request& request) {
    BatchProgram program(console);
    ui::Forms forms(program.Host().presenter, program.Loop());
    support::State state;
    const support::Context c{program.Host(), forms, state};
    if (const auto* info = std::get_if<InfoRequest>(&request)) {
        InfoRequest full = *info;
        full.package = host::ToUtf8(FullPath(info->package));
        return RunInfo(c, program.Inspector(), console, full);
    }
    if (const auto* devices = std::get_if<DevicesRequest>(&request)) return RunDeviceList(c, console, devices->json);
    console.Result("kestrum " + host::ToUtf8(modProject::GetProgramVersion(c)));
    return 0;
}

int Run(Console& console, const std::vector<std::string>& arguments) {
    const Request request = ParseCommandLine(arguments);
    if (const auto* record = std::get_if<RecordRequest>(&request)) return RunRecord(console, *record);
    if (const auto* watch = std::get_if<WatchRequest>(&request)) return RunWatch(console, *watch);
    if (const auto* attach = std::get_if<AttachRequest>(&request)) return RunAttach(console, *attach);
    if (const auto* publish = std::get_if<PublishRequest>(&request)) return RunPublish(console, *publish);
    if (const auto* verify = std::get_if<VerifyRequest>(&request)) return VerifyPackage(console, *verify);
    if (const auto* configure = std::get_if<ConfigureRequest>(&request)) return RunConfigure(console, *configure);
    if (const auto* devices = std::get_if<DevicesRequest>(&request); devices && !devices->list)
        return RunDevices(console, *devices);
    if (std::holds_alternative<ResolutionRequest>(request)) return RunResolution(console);
    if (std::holds_alternative<RegisterRequest>(request)) return 0;
    if (!std::holds_alternative<HelpRequest>(request)) return RunPortable(console, request);
    std::cout << HelpText();
    return 0;
}

}  // namespace
}  // namespace kestrum::app

int main(int argc, char** argv) {
    namespace app = kestrum::app;
    kestrum::platform::EndSignals::Hold();
    app::Console console(isatty(STDOUT_FILENO) == 1);
    try {
        return app::Run(console, std::vector<std::string>(argv + 1, argv + argc));
    } catch (const app::UsageError& error) {
        console.Failure(kestrum::host::FromUtf8(error.what()));
        return app::kUsage;
    } catch (const kestrum::host::Error& error) {
        console.Failure(error.Description());
    } catch (const std::exception& error) {
        console.Failure(kestrum::host::FromUtf8(error.what()));
    }
    return app::kFailed;
}
