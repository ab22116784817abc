// From the layout of a form to the layouts of the toolkit. Fields that follow each other in a column share one edge for
// their labels and one for their boxes.
#pragma once

#include <QLayout>
#include <vector>

#include "adapters/qt/ControlView.h"

class QGridLayout;
class QHBoxLayout;

namespace kestrum::qt {

class LayoutBuilder {
  public:
    using Views = std::vector<std::unique_ptr<ControlView>>;

    /// Makes the views of `form` as children of `window` and adds them to `views`.
    LayoutBuilder(const ui::Form& form, QWidget& window, PostAct post, Views& views);

    /// The layout of the whole form; the caller gives it to the window. Call once.
    QLayout* Build();

  private:
    QWidget* MakeWidget(ui::Control& control, QWidget* parent);
    QLayout* Column(const std::vector<ui::LayoutNode>& children, QWidget* parent);
    QLayout* Row(const std::vector<ui::LayoutNode>& children, QWidget* parent);
    QLayout* Overlay(const std::vector<ui::LayoutNode>& children, QWidget* parent);
    void AddToColumn(QGridLayout& column, const ui::LayoutNode& node, QWidget* parent);
    void AddToRow(QHBoxLayout& row, const ui::LayoutNode& node, QWidget* parent);
    QWidget* Group(const ui::LayoutNode& node, QWidget* parent);
    void AddUnplaced(QGridLayout& root);

    const ui::Form& m_form;
    QWidget& m_window;
    PostAct m_post;
    Views& m_views;
};

}  // namespace kestrum::qt
