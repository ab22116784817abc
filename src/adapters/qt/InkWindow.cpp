#include "adapters/qt/InkWindow.h"

#include <QPaintEvent>
#include <QPainter>

#include "adapters/qt/QtApplication.h"

namespace kestrum::qt {

InkWindow::InkWindow(const Ink& ink, Ground ground, const QRect& place, const QString& title)
    : m_ink(ink), m_ground(ground) {
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint |
                   Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground, ground == Ground::SeeThrough);
    setAttribute(Qt::WA_NoSystemBackground);
    setWindowTitle(title);
    setGeometry(place);
    MarkOwnWindow(*this, false);  // what is drawn belongs into the recording
    if (ground == Ground::CutOut) {
        TakeShape();
    } else {
        show();
    }
}

void InkWindow::Follow(const QRect& part) {
    if (m_ground == Ground::CutOut) TakeShape();
    update(part);
}

/// A window without a pixel cannot be had: it is off the screen until there is ink.
void InkWindow::TakeShape() {
    const bool hasInk = !m_ink.Shape().isEmpty();
    if (hasInk) setMask(m_ink.Shape());
    setVisible(hasInk);
}

void InkWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect part = event->rect();
    if (m_ground == Ground::SeeThrough) painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (m_ground == Ground::White) painter.fillRect(part, Qt::white);
    painter.drawImage(part, m_ink.Picture(), part);
}

}  // namespace kestrum::qt
