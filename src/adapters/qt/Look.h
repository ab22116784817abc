// How our forms look: one style and one small palette on every desktop, light or dark after the desktop's own choice.
#pragma once

#include <QApplication>
#include <QPixmap>

namespace kestrum::qt {

void ApplyLook(QApplication& application);

/// A round badge in our colour with one letter.
QPixmap Badge(QChar letter);

/// Spaces inside forms, in pixels.
inline constexpr int kMargin = 16;
inline constexpr int kSpacing = 10;
/// Text wider than this is wrapped, in pixels.
inline constexpr int kTextWidth = 520;

}  // namespace kestrum::qt
