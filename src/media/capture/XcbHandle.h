// Ownership of what XCB allocates.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace kestrum::media {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
/// A reply, event or error of the server.
template <typename T>
using XcbOwned = std::unique_ptr<T, FreeDeleter>;

template <typename T>
XcbOwned<T> Own(T* p) {
    return XcbOwned<T>(p);
}

struct DisconnectDeleter {
    void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectDeleter>;

}  // namespace kestrum::media
