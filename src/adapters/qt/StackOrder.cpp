#include "adapters/qt/StackOrder.h"

#include <algorithm>

#include "adapters/linux/X11Connection.h"
#include "adapters/qt/QtApplication.h"
#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

using platform::XReply;

/// From the bottom to the top.
std::vector<xcb_window_t> TopLevelWindows(xcb_connection_t* connection) {
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, RootOf(connection)), nullptr));
    if (!tree) return {};
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

bool IsViewable(xcb_connection_t* connection, xcb_window_t window) {
    const XReply<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE && reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

}  // namespace

bool AreOnTop(const std::vector<WId>& windows) {
    xcb_connection_t* const connection = DisplayConnection();
    if (!connection) return true;
    const std::vector<xcb_window_t> stack = TopLevelWindows(connection);
    std::size_t ours = windows.size();
    for (auto at = stack.rbegin(); at != stack.rend() && ours > 0; ++at) {
        if (std::find(windows.begin(), windows.end(), *at) != windows.end()) {
            --ours;
        } else if (IsViewable(connection, *at)) {
            return false;
        }
    }
    return true;
}

bool IsCovered(const std::vector<WId>& windows) {
    xcb_connection_t* const connection = DisplayConnection();
    if (!connection) return false;
    bool above = false;
    for (const xcb_window_t window : TopLevelWindows(connection)) {
        if (std::find(windows.begin(), windows.end(), window) != windows.end()) {
            above = true;
        } else if (above && IsViewable(connection, window) && !IsOwnWindow(window)) {
            return true;
        }
    }
    return false;
}

void AwaitServer() {
    xcb_connection_t* const connection = DisplayConnection();
    if (!connection) return;
    const XReply<xcb_get_input_focus_reply_t> any(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace kestrum::qt
