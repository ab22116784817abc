#include "adapters/qt/Ink.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace kestrum::qt {
namespace {

QPointF Between(QPointF a, QPointF b) {
    return (a + b) / 2;
}

/// The middle of a pixel.
QPointF Centre(QPoint pixel) {
    return QPointF(pixel) + QPointF(0.5, 0.5);
}

QPen RoundPen(const Pen& pen) {
    return {pen.colour, static_cast<qreal>(pen.width), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

QPainterPath Dot(QPointF at) {
    constexpr qreal kNearlyNothing = 0.25;  // a path without length would not be drawn
    QPainterPath path(at);
    path.lineTo(at + QPointF(kNearlyNothing, 0));
    return path;
}

/// No smaller than what the pen touches on its way.
QRect Reach(const QPainterPath& path, const Pen& pen) {
    const int reach = pen.width / 2 + 2;
    return path.boundingRect().toAlignedRect().adjusted(-reach, -reach, reach, reach);
}

/// The runs of opaque pixels, line by line, in the order that a region asks for.
QRegion OpaquePixels(const QImage& picture, QPoint corner) {
    std::vector<QRect> runs;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const int begin = x;
            while (x < picture.width() && qAlpha(line[x]) != 0) ++x;
            if (x > begin) runs.emplace_back(corner.x() + begin, corner.y() + y, x - begin, 1);
        }
    }
    QRegion region;
    region.setRects(runs.data(), static_cast<int>(runs.size()));
    return region;
}

/// The pixels that a pen covers on its way, each wholly; the thinnest pen covers the one it ends on at least.
QRegion PixelsOf(const QPainterPath& path, const Pen& pen, const QRect& sheet) {
    const QRect part = Reach(path, pen) & sheet;
    if (part.isEmpty()) return {};
    QImage drawn(part.size(), QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.translate(-part.topLeft());
    painter.strokePath(path, RoundPen(pen));
    const QPointF end = path.currentPosition();
    painter.fillRect(int(std::floor(end.x())), int(std::floor(end.y())), 1, 1, pen.colour);
    painter.end();
    return OpaquePixels(drawn, part.topLeft());
}

}  // namespace

Ink::Ink(QSize size, Edges edges) : m_edges(edges), m_picture(size, QImage::Format_ARGB32_Premultiplied) {
    Blank();
}

void Ink::Blank() {
    m_picture.fill(Qt::transparent);
    m_shape = QRegion();
}

QRect Ink::Begin(QPoint at, const Pen& pen) {
    m_strokes.push_back({pen, {at}});
    m_drawing = true;
    return Draw(Dot(Centre(at)), pen);
}

QRect Ink::MoveTo(QPoint at) {
    if (!m_drawing || m_strokes.back().points.back() == at) return {};
    Stroke& stroke = m_strokes.back();
    stroke.points.push_back(at);
    return DrawStep(stroke, stroke.points.size() - 1);
}

QRect Ink::End() {
    if (!m_drawing) return {};
    m_drawing = false;
    return DrawTail(m_strokes.back());
}

void Ink::Clear() {
    m_strokes.clear();
    m_drawing = false;
    Blank();
}

void Ink::SetEdges(Edges edges) {
    if (m_edges == edges) return;
    m_edges = edges;
    Redraw();
}

void Ink::Redraw() {
    Blank();
    for (const Stroke& stroke : m_strokes) {
        Draw(Dot(Centre(stroke.points.front())), stroke.pen);
        for (std::size_t i = 1; i < stroke.points.size(); ++i) DrawStep(stroke, i);
        if (!m_drawing || &stroke != &m_strokes.back()) DrawTail(stroke);
    }
}

/// From the middle of the piece before to the middle of this piece, bent towards the point between them: pieces drawn
/// so meet without a corner.
QRect Ink::DrawStep(const Stroke& stroke, std::size_t last) {
    const QPointF to = Centre(stroke.points[last]), bend = Centre(stroke.points[last - 1]);
    QPainterPath path;
    if (last == 1) {
        path.moveTo(bend);
        path.lineTo(Between(bend, to));
    } else {
        path.moveTo(Between(Centre(stroke.points[last - 2]), bend));
        path.quadTo(bend, Between(bend, to));
    }
    return Draw(path, stroke.pen);
}

/// The half of the last piece that waited for a further point.
QRect Ink::DrawTail(const Stroke& stroke) {
    const std::size_t count = stroke.points.size();
    if (count < 2) return {};
    const QPointF to = Centre(stroke.points[count - 1]);
    QPainterPath path(Between(Centre(stroke.points[count - 2]), to));
    path.lineTo(to);
    return Draw(path, stroke.pen);
}

QRect Ink::Draw(const QPainterPath& path, const Pen& pen) {
    QPainter painter(&m_picture);
    if (m_edges == Edges::Hard) {
        const QRegion pixels = PixelsOf(path, pen, m_picture.rect());
        for (const QRect& part : pixels) painter.fillRect(part, pen.colour);
        m_shape += pixels;
        return pixels.boundingRect();
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, RoundPen(pen));
    return Reach(path, pen) & m_picture.rect();
}

}  // namespace kestrum::qt
