// Plain answers about the machine that the command line wants before a recording, so that a refusal is one sentence and
// not half a lecture.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::platform::SystemChecks {

enum class Session {
    X11,      ///< go on
    Wayland,  ///< only the desktop can give the picture of the screen: ask HasScreenCast
    None,     ///< no graphical session is known: go on if the display opens
};

/// Told by the session's own type (XDG_SESSION_TYPE); where there is none, by WAYLAND_DISPLAY. DISPLAY says nothing: a
/// Wayland session has one too.
Session SessionType();

/// A desktop portal on the session bus offers screen casts. Starts it if it is not running; waits for 10 s at most.
bool HasScreenCast();

/// The X display named by DISPLAY answers.
bool CanOpenDisplay();

/// A file can be made in the folder. Tries it.
bool IsFolderWritable(const String& folder);

/// Bytes available to the user where `path` would be written; 0 if that cannot be told.
std::int64_t FreeBytes(const String& path);

}  // namespace kestrum::platform::SystemChecks
