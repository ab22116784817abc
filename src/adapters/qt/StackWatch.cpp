#include "adapters/qt/StackWatch.h"

#include <utility>

#include "adapters/linux/X11Connection.h"
#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

// Another program that keeps itself on top, too, must not make a race of it.
constexpr int kBurstMs = 20;

/// The toolkit has events of its own on the root window; they stay.
void AskForStackEvents(xcb_connection_t* connection) {
    const xcb_window_t root = RootOf(connection);
    const auto cookie = xcb_get_window_attributes(connection, root);
    const platform::XReply<xcb_get_window_attributes_reply_t> now(
        xcb_get_window_attributes_reply(connection, cookie, nullptr));
    if (!now) return;
    const std::uint32_t events = now->your_event_mask | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection);
}

bool IsAboutTheStack(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_MAP_NOTIFY:
        case XCB_CONFIGURE_NOTIFY:
        case XCB_CIRCULATE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            return true;
        default:
            return false;
    }
}

}  // namespace

StackWatch::StackWatch(std::function<void()> changed) {
    m_burst.setSingleShot(true);
    m_burst.setInterval(kBurstMs);
    QObject::connect(&m_burst, &QTimer::timeout, &m_burst, std::move(changed));
    xcb_connection_t* const connection = DisplayConnection();
    if (!connection) return;
    AskForStackEvents(connection);
    qApp->installNativeEventFilter(this);
}

StackWatch::~StackWatch() {
    if (qApp) qApp->removeNativeEventFilter(this);
}

bool StackWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    const bool isX = type == "xcb_generic_event_t";
    if (isX && IsAboutTheStack(*static_cast<const xcb_generic_event_t*>(message)) && !m_burst.isActive()) {
        m_burst.start();
    }
    return false;
}

}  // namespace kestrum::qt
