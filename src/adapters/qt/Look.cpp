#include "adapters/qt/Look.h"

#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyleFactory>

namespace kestrum::qt {
namespace {

const QColor kAccent(0x1B, 0x6E, 0xC2);

QPalette LightPalette() {
    QPalette palette(QColor(0xF4, 0xF5, 0xF7));
    palette.setColor(QPalette::Window, QColor(0xF4, 0xF5, 0xF7));
    palette.setColor(QPalette::WindowText, QColor(0x1E, 0x24, 0x2C));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Text, QColor(0x1E, 0x24, 0x2C));
    palette.setColor(QPalette::PlaceholderText, QColor(0x6B, 0x74, 0x80));
    palette.setColor(QPalette::Button, QColor(0xFB, 0xFC, 0xFD));
    palette.setColor(QPalette::ButtonText, QColor(0x1E, 0x24, 0x2C));
    return palette;
}

QPalette DarkPalette() {
    QPalette palette(QColor(0x2B, 0x2F, 0x36));
    palette.setColor(QPalette::Window, QColor(0x2B, 0x2F, 0x36));
    palette.setColor(QPalette::WindowText, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::Base, QColor(0x20, 0x23, 0x29));
    palette.setColor(QPalette::AlternateBase, QColor(0x2B, 0x2F, 0x36));
    palette.setColor(QPalette::Text, QColor(0xEC, 0xEF, 0xF3));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9A, 0xA3, 0xAF));
    palette.setColor(QPalette::Button, QColor(0x3A, 0x3F, 0x48));
    palette.setColor(QPalette::ButtonText, QColor(0xEC, 0xEF, 0xF3));
    return palette;
}

void SetShared(QPalette& palette, const QColor& disabled) {
    palette.setColor(QPalette::Highlight, kAccent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, kAccent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
}

/// A red dot on a dark plate: recording.
QIcon AppIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 64}) {
        QPixmap plate(size, size);
        plate.fill(Qt::transparent);
        QPainter painter(&plate);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0x24, 0x2B, 0x35));
        painter.drawRoundedRect(QRectF(0, 0, size, size), size * 0.2, size * 0.2);
        painter.setBrush(QColor(0xE5, 0x3E, 0x3E));
        painter.drawEllipse(QPointF(size / 2.0, size / 2.0), size * 0.25, size * 0.25);
        icon.addPixmap(plate);
    }
    return icon;
}

}  // namespace

QPixmap Badge(QChar letter) {
    constexpr int kSize = 40;
    QPixmap badge(kSize, kSize);
    badge.fill(Qt::transparent);
    QPainter painter(&badge);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kAccent);
    painter.drawEllipse(badge.rect());
    QFont font = QApplication::font();
    font.setPixelSize(kSize * 3 / 5);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(badge.rect(), Qt::AlignCenter, letter);
    return badge;
}

void ApplyLook(QApplication& application) {
    const bool dark = application.palette().color(QPalette::Window).lightness() < 128;
    application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette palette = dark ? DarkPalette() : LightPalette();
    SetShared(palette, dark ? QColor(0x80, 0x88, 0x94) : QColor(0x8A, 0x92, 0x9C));
    application.setPalette(palette);
    application.setWindowIcon(AppIcon());
    application.setStyleSheet(
        QStringLiteral("QPushButton { min-width: 72px; padding: 5px 14px; }"
                       "QLineEdit, QComboBox { min-height: 22px; }"
                       "QGroupBox { font-weight: 600; }"));
}

}  // namespace kestrum::qt
