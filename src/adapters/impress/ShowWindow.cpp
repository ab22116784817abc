#include "adapters/impress/ShowWindow.h"

#include <xcb/xcb.h>

#include <com/sun/star/awt/SystemDependentXWindow.hpp>
#include <com/sun/star/awt/XSystemDependentWindowPeer.hpp>
#include <com/sun/star/awt/XTopWindow.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XController2.hpp>
#include <com/sun/star/lang/SystemDependent.hpp>
#include <cstdlib>
#include <memory>

#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Reference<css::frame::XFrame> FindShowFrame(const Reference<css::uno::XComponentContext>& remote,
                                            const Reference<css::frame::XModel>& model) {
    const auto frames = css::frame::Desktop::create(remote)->getFrames();
    for (sal_Int32 i = 0; i < frames->getCount(); ++i) {
        Reference<css::frame::XFrame> frame(frames->getByIndex(i), UNO_QUERY_THROW);
        Reference<css::frame::XController2> controller(frame->getController(), UNO_QUERY);
        if (controller.is() && controller->getViewControllerName() == "FullScreenPresentation" &&
            controller->getModel() == model)
            return frame;
    }
    const auto controller = model->getCurrentController();
    return controller.is() ? controller->getFrame() : nullptr;
}

std::uint32_t XidOf(const Reference<css::frame::XFrame>& frame) {
    if (!frame.is()) return 0;
    Reference<css::awt::XSystemDependentWindowPeer> peer(frame->getContainerWindow(), UNO_QUERY_THROW);
    css::awt::SystemDependentXWindow window;
    peer->getWindowHandle(css::uno::Sequence<sal_Int8>(), css::lang::SystemDependent::SYSTEM_XWINDOW) >>= window;
    return static_cast<std::uint32_t>(window.WindowHandle);
}

void BringToFront(const Reference<css::frame::XFrame>& frame) {
    if (!frame.is()) return;
    const auto window = frame->getContainerWindow();
    if (Reference<css::awt::XTopWindow> top(window, UNO_QUERY); top.is()) top->toFront();
    window->setFocus();
}

WindowRectangle MeasureWindow(const std::string& display, std::uint32_t xid) {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get())) throw OfficeError(u"Window", u"The display cannot be opened.");
    const auto geometryAsked = xcb_get_geometry(connection.get(), xid);
    const std::unique_ptr<xcb_get_geometry_reply_t, decltype(&std::free)> geometry(
        xcb_get_geometry_reply(connection.get(), geometryAsked, nullptr), &std::free);
    if (!geometry) throw OfficeError(u"Window", u"The window of the show is gone.");
    const auto placeAsked = xcb_translate_coordinates(connection.get(), xid, geometry->root, 0, 0);
    const std::unique_ptr<xcb_translate_coordinates_reply_t, decltype(&std::free)> place(
        xcb_translate_coordinates_reply(connection.get(), placeAsked, nullptr), &std::free);
    if (!place) throw OfficeError(u"Window", u"The window of the show is gone.");
    return {place->dst_x, place->dst_y, geometry->width, geometry->height};
}

}  // namespace kestrum::impress
