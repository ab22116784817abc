// What the whole session shares: paths of the open project, host and system facts, the values that message boxes, the
// log, child processes and the text codecs hand around. Plain values; the routines of the modules give them meaning.
#pragma once

#include <cstdint>
#include <memory>

#include "host/String.h"

namespace kestrum::modXml {
class Document;
}

namespace kestrum::support {

/// What the message box on screen asks; see modMsgBox.
struct MsgBoxState {
    String text;
    String title;
    std::int32_t buttons = 0;
    std::int32_t result = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool showCheck = false;
    String checkCaption;
    bool topmost = false;
    bool checked = false;
    /// A message box is up.
    bool active = false;
};

/// What the message box with a link shows.
struct MsgLinkState {
    String text;
    String link;
    String title;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct State {
    // The open project.
    String packagePath;
    String packageFolder;
    String workFolder;
    String projectFileName;
    /// The host tag of the project; "PPT" for every run of this program.
    String projectSource = u"PPT";
    /// What a long routine is doing, for step errors.
    String currentStep;

    // The session.
    String g_HostMode;
    std::int32_t g_OsVersion = 0;
    String g_AppDataFolder;
    /// Title of boxes that have none of their own.
    String applicationTitle;

    // Child processes.
    /// Asks RunCancellable to end its child.
    bool cancelRun = false;
    /// Window of the child of frmExecCmd, 0 until it is found.
    std::uint64_t childWindow = 0;

    MsgBoxState msgBox;
    MsgLinkState msgLink;

    /// The language file, parsed on the first lookup; an empty document if it cannot be read.
    std::shared_ptr<const modXml::Document> language;
    /// What the last ParseJson found wrong.
    String jsonErrors;
    /// The log of this run has been opened.
    bool logBegun = false;
};

}  // namespace kestrum::support
