#include "adapters/qt/SurfaceWindow.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <cstdint>

namespace kestrum::qt {

void DarkenGround(WId window) {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return;
    constexpr std::uint32_t kDark = 0x20242B;
    const auto id = static_cast<xcb_window_t>(window);
    xcb_change_window_attributes(x11->connection(), id, XCB_CW_BACK_PIXEL, &kDark);
    xcb_clear_area(x11->connection(), 0, id, 0, 0, 0, 0);
    xcb_flush(x11->connection());
}

}  // namespace kestrum::qt
