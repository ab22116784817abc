#include "support/modLog.h"

#include "support/modGlobal.h"
#include "support/modMsgBox.h"

namespace kestrum::modLog {
namespace {

constexpr std::size_t kMostCharacters = 32768;

/// Cuts the file of an earlier run to its newest part, then opens this run's section.
void Begin(const support::Context& c, const String& path) {
    c.support.logBegun = true;
    if (c.host.fs.FileExists(path)) {
        const String text = host::FromUtf8(c.host.fs.ReadFile(path));
        if (text.size() > kMostCharacters) {
            c.host.fs.WriteFile(path, host::ToUtf8(StringView(text).substr(text.size() - kMostCharacters)));
        }
    }
    const String line = u"\r\n=== Begin (" + DateTimeText(c.host.loop.Now()) + u") ===\r\n";
    c.host.fs.AppendFile(path, host::ToUtf8(line));
}

}  // namespace

void ShowStepError(const support::Context& c, const String& description, const String& title) {
    if (title.empty()) {
        modMsgBox::MsgBox(c, description);
    } else {
        modMsgBox::MsgBox(c, c.support.currentStep + u": " + description, host::BoxButtons::Ok, title);
    }
}

void WriteErrLog(const support::Context& c, const String& line) {
    if (c.support.workFolder.empty()) return;
    try {
        const String path = modGlobal::Join(c, c.support.workFolder, u"err_log.txt");
        if (!c.support.logBegun) Begin(c, path);
        c.host.fs.AppendFile(path, host::ToUtf8(line + u"\r\n"));
    } catch (const host::Error& error) {
        c.host.trace.Skipped(error);
    }
}

}  // namespace kestrum::modLog
