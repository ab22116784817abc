#include "project/Converters.h"

#include "project/Paths.h"
#include "support/frmExecCmd.h"
#include "support/modGlobal.h"
#include "support/modMsgBox.h"

namespace kestrum::project {
namespace {

constexpr std::int32_t kEncrypted = 1;
constexpr std::int32_t kCannotOpen = -1;

}  // namespace

void RunConverter(const support::Context& c, StringView program, const std::vector<String>& arguments) {
    frmExecCmd& window = c.forms.Get<frmExecCmd>(c);
    window.InitCmd(InInstallFolder(c, c.host.processes.ProgramName(String(program))), arguments, false);
    window.ShowModal();
}

bool EnsureDecrypted(const support::Context& c, const String& media) {
    const String path = modGlobal::CollapseSeparators(c, media);
    const std::int32_t state = c.host.ksLib.GetECTState(path);
    if (state == kCannotOpen) {
        modMsgBox::MsgBox(c, u"Failed to get encryption state! (open file error)");
        return false;
    }
    if (state != kEncrypted) return true;
    RunConverter(c, u"ksECT", {media});
    return c.host.ksLib.GetECTState(path) != kEncrypted;
}

}  // namespace kestrum::project
