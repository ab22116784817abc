#include "apps/kestrum/VerifyPackage.h"

#include "adapters/linux/EndSignals.h"
#include "apps/commandline/VerifyCommand.h"
#include "apps/kestrum/BatchProgram.h"

namespace kestrum::app {

int VerifyPackage(Console& console, const VerifyRequest& request) {
    if (request.json) console.ResultsOnly();
    BatchProgram program(console);
    ui::Forms forms(program.Host().presenter, program.Loop());
    support::State state;
    const support::Context c{program.Host(), forms, state};
    int signal = 0;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        signal = number;
        program.Inspector().Cancel();
    });
    VerifyRequest full = request;
    full.package = host::ToUtf8(FullPath(request.package));
    const int code = RunVerify(c, program.Inspector(), console, full, [&] { return signal != 0; });
    return code < 0 ? 128 + signal : code;
}

}  // namespace kestrum::app
