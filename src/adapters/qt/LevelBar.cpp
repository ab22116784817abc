#include "adapters/qt/LevelBar.h"

#include <QAccessible>
#include <QPainter>

namespace kestrum::qt {
namespace {

constexpr int kGap = 2;
constexpr int kHeight = 18;
constexpr int kBarWidth = 10;

}  // namespace

LevelBar::LevelBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::SetBars(int bars, int lit) {
    if (bars == m_bars && lit == m_lit) return;
    m_bars = bars;
    m_lit = lit;
    update();
    QAccessibleValueChangeEvent change(this, lit);
    QAccessible::updateAccessibility(&change);
}

QSize LevelBar::sizeHint() const {
    return {m_bars * (kBarWidth + kGap), kHeight};
}

void LevelBar::paintEvent(QPaintEvent*) {
    if (m_bars <= 0) return;
    QPainter painter(this);
    const QColor dark = palette().color(QPalette::Mid);
    const double step = static_cast<double>(width() + kGap) / m_bars;
    for (int i = 0; i < m_bars; ++i) {
        const QColor lit = i * 4 >= m_bars * 3 ? QColor(0xE0, 0x8A, 0x1E) : QColor(0x2F, 0xA3, 0x5B);
        painter.fillRect(QRectF(i * step, 0, step - kGap, height()), i < m_lit ? lit : dark);
    }
}

}  // namespace kestrum::qt
