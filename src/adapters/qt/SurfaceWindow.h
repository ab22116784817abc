// What a window needs that another program draws into.
#pragma once

#include <QWidget>

namespace kestrum::qt {

/// The display server fills what nobody has drawn yet, and what comes to light again, with a dark ground.
void DarkenGround(WId window);

}  // namespace kestrum::qt
