// What stands between windows and the screen: a window manager, a compositor, both, or nothing.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "real/ChildProcess.h"

namespace kestrum::real {

inline bool HasSelectionOwner(const std::string& display, const std::string& name) {
    xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
    const auto length = static_cast<std::uint16_t>(name.size());
    auto* atom = xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, length, name.c_str()), nullptr);
    auto* owner =
        atom ? xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr)
             : nullptr;
    const bool has = owner && owner->owner != XCB_NONE;
    std::free(owner);
    std::free(atom);
    xcb_disconnect(connection);
    return has;
}

/// Starts a program of the desktop on `display` and waits until it is at work. Throws if it does not come.
inline ChildProcess StartOfDesktop(const std::string& display, const std::vector<std::string>& command,
                                   const std::function<bool()>& isAtWork) {
    ChildProcess::Options options;
    options.quiet = true;
    options.env = {{"DISPLAY", display}};
    ChildProcess program(command, options);
    if (!WaitFor(isAtWork)) throw std::runtime_error(command.front() + " did not start");
    return program;
}

inline ChildProcess StartWindowManager(const std::string& display) {
    return StartOfDesktop(display, {"openbox"}, [&] {
        return Run({"xprop", "-display", display, "-root", "_NET_CLIENT_LIST"}).output.find('#') != std::string::npos;
    });
}

/// With shadows and fading, which a recording must not show either.
inline ChildProcess StartCompositor(const std::string& display) {
    return StartOfDesktop(
        display,
        {"picom", "--config", "/dev/null", "--backend", "xrender", "--shadow", "--fading", "--fade-delta", "5"},
        [&] { return HasSelectionOwner(display, "_NET_WM_CM_S0"); });
}

}  // namespace kestrum::real
