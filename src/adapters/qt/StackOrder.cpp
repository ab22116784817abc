#include "adapters/qt/StackOrder.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

template <class Reply>
using ReplyPtr = std::unique_ptr<Reply, decltype(&std::free)>;

bool IsViewable(xcb_connection_t* connection, xcb_window_t window) {
    const ReplyPtr<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr), std::free);
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE && reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

}  // namespace

bool AreOnTop(const std::vector<WId>& windows) {
    xcb_connection_t* connection = DisplayConnection();
    if (!connection || windows.empty()) return true;
    const ReplyPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, RootOf(connection)), nullptr), std::free);
    if (!tree) return true;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    std::size_t ours = windows.size();
    for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0 && ours > 0; --i) {
        if (std::find(windows.begin(), windows.end(), children[i]) != windows.end()) {
            --ours;
        } else if (IsViewable(connection, children[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace kestrum::qt
