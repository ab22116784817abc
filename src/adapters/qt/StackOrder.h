// Where windows lie in the stack of the desktop.
#pragma once

#include <QWidget>
#include <vector>

namespace kestrum::qt {

/// True if no visible window of anybody else lies above one of `windows`.
bool AreOnTop(const std::vector<WId>& windows);

/// True if a visible window of another program lies above one of `windows`; our own do not count.
bool IsCovered(const std::vector<WId>& windows);

/// Returns when the server has done what Qt has asked for so far.
void AwaitServer();

}  // namespace kestrum::qt
