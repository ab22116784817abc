// The window of a sheet: shows ink above the show and lets every click and key through to what lies below.
#pragma once

#include <QWidget>

#include "adapters/qt/Ink.h"

namespace kestrum::qt {

class InkWindow : public QWidget {
  public:
    enum class Ground {
        SeeThrough,  ///< mixed with the show by the desktop's compositor
        CutOut,      ///< the window is the ink's pixels and nothing else: needs no compositor
        White,
    };

    /// Covers `place`, pixels of the desktop; on screen at once. `ink` outlives the window and has the size of it.
    InkWindow(const Ink& ink, Ground ground, const QRect& place, const QString& title);

    /// The ink has changed there.
    void Follow(const QRect& part);
    Ground GroundKind() const { return m_ground; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void TakeShape();

    const Ink& m_ink;
    const Ground m_ground;
};

}  // namespace kestrum::qt
