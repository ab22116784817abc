// Where windows lie in the stack of the desktop.
#pragma once

#include <QWidget>
#include <vector>

namespace kestrum::qt {

/// True if no visible window of anybody else lies above one of `windows`.
bool AreOnTop(const std::vector<WId>& windows);

}  // namespace kestrum::qt
