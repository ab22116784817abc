// The toolkit's connection to the display, for what the toolkit has no words for.
#pragma once

#include <xcb/xcb.h>

#include <QApplication>

namespace kestrum::qt {

/// nullptr where the toolkit does not draw on X11 or has ended.
inline xcb_connection_t* DisplayConnection() {
    const auto* x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

inline xcb_window_t RootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

}  // namespace kestrum::qt
