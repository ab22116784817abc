#include "adapters/qt/CoveredPictures.h"

#include <xcb/composite.h>

#include <cstdlib>

#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

bool HasComposite(xcb_connection_t* connection) {
    const auto* data = xcb_get_extension_data(connection, &xcb_composite_id);
    if (!data || !data->present) return false;
    std::free(xcb_composite_query_version_reply(connection, xcb_composite_query_version(connection, 0, 4), nullptr));
    return true;
}

}  // namespace

// The display counts: each asking is ended by one of its own, or by the end of the connection.
CoveredPictures::CoveredPictures() {
    xcb_connection_t* connection = DisplayConnection();
    if (!connection || !HasComposite(connection)) return;
    xcb_composite_redirect_subwindows(connection, RootOf(connection), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

CoveredPictures::~CoveredPictures() {
    xcb_connection_t* connection = DisplayConnection();
    if (!connection || !HasComposite(connection)) return;
    xcb_composite_unredirect_subwindows(connection, RootOf(connection), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection);
}

}  // namespace kestrum::qt
