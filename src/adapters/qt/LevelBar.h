// A row of bars, lit from the left up to the level; the last quarter warns in another colour.
#pragma once

#include <QWidget>

namespace kestrum::qt {

class LevelBar : public QWidget {
  public:
    explicit LevelBar(QWidget* parent);

    void SetBars(int bars, int lit);
    int Bars() const { return m_bars; }
    int Lit() const { return m_lit; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int m_bars = 0;
    int m_lit = 0;
};

}  // namespace kestrum::qt
