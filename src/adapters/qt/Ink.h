// What has been drawn on a sheet: strokes as a picture that is see-through where there is no ink. The way of the pen is
// rounded between the points that the pointer tells, so that a quick hand draws curves, not corners.
#pragma once

#include <QColor>
#include <QImage>
#include <QRegion>
#include <vector>

class QPainterPath;

namespace kestrum::qt {

/// A round pen.
struct Pen {
    int width = 1;  ///< pixels
    QColor colour;
};

class Ink {
  public:
    enum class Edges {
        Smooth,  ///< mixed with what lies below
        Hard,    ///< a pixel is ink or is not, as a window cut out along it needs
    };

    Ink(QSize size, Edges edges);

    /// A stroke begins with a dot. What a call has changed is in the rectangle that it gives.
    QRect Begin(QPoint at, const Pen& pen);
    /// The stroke under way goes on; nothing happens if none is.
    QRect MoveTo(QPoint at);
    QRect End();
    void Clear();
    /// Draws the same strokes with other edges.
    void SetEdges(Edges edges);

    const QImage& Picture() const { return m_picture; }
    /// The pixels of ink with hard edges; empty with smooth ones.
    const QRegion& Shape() const { return m_shape; }
    bool IsEmpty() const { return m_strokes.empty(); }

  private:
    struct Stroke {
        Pen pen;
        std::vector<QPoint> points;
    };

    void Blank();
    void Redraw();
    QRect DrawStep(const Stroke& stroke, std::size_t last);
    QRect DrawTail(const Stroke& stroke);
    QRect Draw(const QPainterPath& path, const Pen& pen);

    Edges m_edges;
    QImage m_picture;
    QRegion m_shape;
    std::vector<Stroke> m_strokes;
    bool m_drawing = false;
};

}  // namespace kestrum::qt
