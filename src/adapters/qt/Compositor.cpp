#include "adapters/qt/Compositor.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

template <class Reply>
using ReplyPtr = std::unique_ptr<Reply, decltype(&std::free)>;

}  // namespace

bool IsComposited() {
    constexpr std::string_view kManager = "_NET_WM_CM_S0";
    xcb_connection_t* const c = DisplayConnection();
    if (!c) return false;
    const ReplyPtr<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, std::uint16_t{kManager.size()}, kManager.data()), nullptr),
        std::free);
    if (!atom) return false;
    const ReplyPtr<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, atom->atom), nullptr), std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace kestrum::qt
