#include "adapters/qt/StackOrder.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <algorithm>
#include <cstdlib>
#include <memory>

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
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || windows.empty()) return true;
    xcb_connection_t* connection = x11->connection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const ReplyPtr<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr), std::free);
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
