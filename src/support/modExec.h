// Child processes, in three of the four ways that the program runs them: wait with events flowing, wait with a cancel
// flag, hand over to the system. The fourth is the modal form frmExecCmd.
#pragma once

#include <vector>

#include "support/Context.h"

namespace kestrum::modExec {

/// Runs a line of the system's shell, hidden, and waits for its end, looking every 250 ms. Re-enters. The exit code is
/// dropped; a line that cannot be started returns at once.
void ShellAndWait(const support::Context& c, const String& commandLine);

/// Runs a line of the system's shell, hidden, and waits for its end, looking every 100 ms. Re-enters; setting
/// `cancelRun` of the state ends the child. Gives the exit code, 0 if it was cancelled or could not be started.
std::int32_t RunCancellable(const support::Context& c, const String& commandLine);

/// Starts `file` with `parameters`, or, without parameters and without waiting, opens it with the program that the
/// desktop has for it (documents, folders, addresses). `wait` waits without limit and dispatches nothing. False if it
/// could not be started.
bool ShellExecuteWait(const support::Context& c, const String& file, const std::vector<String>& parameters, bool wait);

}  // namespace kestrum::modExec
