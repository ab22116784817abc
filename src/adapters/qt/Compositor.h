// Whether the desktop mixes windows: without that a window is see-through nowhere.
#pragma once

namespace kestrum::qt {

/// True while a compositing manager serves the screen of the application.
bool IsComposited();

}  // namespace kestrum::qt
