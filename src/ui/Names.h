// Names of forms and controls compare without letter case.
#pragma once

#include "host/String.h"

namespace kestrum::ui {

/// Equal, ASCII letters in either case.
bool SameName(StringView a, StringView b);

}  // namespace kestrum::ui
