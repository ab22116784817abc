// What assistive programs are told of a level meter: that it is one (an indicator with a value), and its value.
#pragma once

namespace kestrum::qt {

/// From now on every LevelBar of the process tells its value. To be called once, by the application object.
void MakeLevelBarsAccessible();

}  // namespace kestrum::qt
