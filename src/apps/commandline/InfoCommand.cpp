#include "apps/commandline/InfoCommand.h"

#include "apps/commandline/PackageDescription.h"
#include "support/JSON.h"

namespace kestrum::app {

int RunInfo(const support::Context& c, host::IPackageInspector& inspector, Console& console,
            const InfoRequest& request) {
    const PackageDescription description = Describe(c, inspector, host::FromUtf8(request.package));
    String text = request.json ? JSON::ToJsonText(ToJson(description)) : ToText(description);
    while (!text.empty() && text.back() == u'\n') text.pop_back();
    console.Result(host::ToUtf8(text));
    return 0;
}

}  // namespace kestrum::app
