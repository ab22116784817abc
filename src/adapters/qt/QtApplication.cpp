#include "adapters/qt/QtApplication.h"

#include <QEvent>
#include <QPlatformSurfaceEvent>
#include <QWidget>
#include <QWindow>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "adapters/qt/AccessibleWidgets.h"
#include "adapters/qt/Look.h"
#include "adapters/qt/XcbDisplay.h"

namespace kestrum::qt {
namespace {

/// Must be in place before Qt looks at the display.
int& PrepareEnvironment(int& argc) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    for (const char* scale : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_AUTO_SCREEN_SCALE_FACTOR"}) {
        qunsetenv(scale);
    }
    return argc;
}

xcb_atom_t OwnWindowAtom(xcb_connection_t* connection) {
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(kOwnWindowProperty)), kOwnWindowProperty);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    std::free(reply);
    return atom;
}

void Mark(WId window, bool excludedFromCapture) {
    xcb_connection_t* connection = DisplayConnection();
    if (!connection) return;
    const xcb_atom_t atom = OwnWindowAtom(connection);
    const std::uint32_t value = excludedFromCapture ? 1 : 0;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window), atom, XCB_ATOM_CARDINAL,
                        32, 1, &value);
    xcb_flush(connection);
}

/// Marks menus, lists and hints too, as they get their native windows.
class Marker : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* window = qobject_cast<QWindow*>(object);
        if (window && event->type() == QEvent::PlatformSurface && !window->parent()) {
            const auto type = static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType();
            if (type == QPlatformSurfaceEvent::SurfaceCreated) Mark(window->winId(), false);
        }
        return QObject::eventFilter(object, event);
    }
};

}  // namespace

QtApplication::QtApplication(int& argc, char** argv) : m_application(PrepareEnvironment(argc), argv) {
    // A surface inside a form is a native window; what stands beside it need not be.
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    QApplication::setQuitOnLastWindowClosed(false);
    ApplyLook(m_application);
    MakeWidgetsAccessible();
    m_application.installEventFilter(new Marker(&m_application));
}

void MarkOwnWindow(const QWidget& widget, bool excludedFromCapture) {
    Mark(widget.winId(), excludedFromCapture);
}

bool IsOwnWindow(WId window) {
    xcb_connection_t* connection = DisplayConnection();
    if (!connection) return false;
    const auto cookie = xcb_get_property(connection, 0, static_cast<xcb_window_t>(window), OwnWindowAtom(connection),
                                         XCB_ATOM_CARDINAL, 0, 1);
    xcb_get_property_reply_t* reply = xcb_get_property_reply(connection, cookie, nullptr);
    const bool marked = reply && xcb_get_property_value_length(reply) > 0;
    std::free(reply);
    return marked;
}

}  // namespace kestrum::qt
