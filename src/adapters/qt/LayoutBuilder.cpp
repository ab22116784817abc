#include "adapters/qt/LayoutBuilder.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <algorithm>

#include "adapters/qt/Look.h"

namespace kestrum::qt {
namespace {

using ui::ControlKind;
using ui::LayoutKind;
using ui::LayoutNode;

constexpr int kColumns = 2;  ///< labels, boxes

bool TakesSpace(ControlKind kind) {
    switch (kind) {
        case ControlKind::TextBox:
        case ControlKind::ProgressBar:
        case ControlKind::Slider:
        case ControlKind::LevelMeter:
            return true;
        default:
            return false;
    }
}

/// Something in the row wants all space that is left, so the row needs no filler at its end.
bool FillsItself(const std::vector<LayoutNode>& row) {
    return std::any_of(row.begin(), row.end(), [](const LayoutNode& node) {
        if (node.kind == LayoutKind::Control) return TakesSpace(node.control->Kind());
        return node.kind == LayoutKind::Stretch || node.kind == LayoutKind::Group || FillsItself(node.children);
    });
}

/// The label of a box of several lines stands at its first.
Qt::Alignment LabelPlace(const LayoutNode& field) {
    const bool isTall =
        field.control->Kind() == ControlKind::TextBox && static_cast<const ui::TextBox*>(field.control)->MultiLine();
    return isTall ? Qt::Alignment(Qt::AlignTop) : Qt::Alignment();
}

QGridLayout* NewColumn() {
    auto* column = new QGridLayout;
    column->setColumnStretch(1, 1);
    column->setHorizontalSpacing(kSpacing);
    column->setVerticalSpacing(kSpacing);
    return column;
}

}  // namespace

LayoutBuilder::LayoutBuilder(const ui::Form& form, QWidget& window, PostAct post, Views& views)
    : m_form(form), m_window(window), m_post(std::move(post)), m_views(views) {}

QLayout* LayoutBuilder::Build() {
    QGridLayout* root = NewColumn();
    const LayoutNode& layout = m_form.Layout();
    if (layout.kind == LayoutKind::Column) {
        for (const LayoutNode& child : layout.children) AddToColumn(*root, child, &m_window);
    } else {
        AddToColumn(*root, layout, &m_window);
    }
    AddUnplaced(*root);
    return root;
}

/// A control that the layout forgot is shown at the foot: better there than not at all.
void LayoutBuilder::AddUnplaced(QGridLayout& root) {
    for (ui::Control* control : m_form.Controls()) {
        const bool placed = std::any_of(m_views.begin(), m_views.end(),
                                        [control](const auto& view) { return &view->Control() == control; });
        if (!placed) AddToColumn(root, *control, &m_window);
    }
}

QWidget* LayoutBuilder::MakeWidget(ui::Control& control, QWidget* parent) {
    auto view = MakeView(control, parent, m_post);
    if (!view) return nullptr;
    QWidget* widget = &view->Widget();
    m_views.push_back(std::move(view));
    return widget;
}

QLayout* LayoutBuilder::Column(const std::vector<LayoutNode>& children, QWidget* parent) {
    QGridLayout* column = NewColumn();
    for (const LayoutNode& child : children) AddToColumn(*column, child, parent);
    return column;
}

QLayout* LayoutBuilder::Row(const std::vector<LayoutNode>& children, QWidget* parent) {
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpacing);
    for (const LayoutNode& child : children) AddToRow(*row, child, parent);
    // What fills the row may be hidden at times: the rest keeps its size then too.
    row->addStretch(FillsItself(children) ? 0 : 1);
    return row;
}

/// The place of the largest, hidden ones too: what stands around does not move when they take turns.
QLayout* LayoutBuilder::Overlay(const std::vector<LayoutNode>& children, QWidget* parent) {
    auto* place = new QGridLayout;
    for (const LayoutNode& child : children) {
        QWidget* widget = MakeWidget(*child.control, parent);
        QSizePolicy policy = widget->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        widget->setSizePolicy(policy);
        place->addWidget(widget, 0, 0, Qt::AlignVCenter);
    }
    return place;
}

QWidget* LayoutBuilder::Group(const LayoutNode& node, QWidget* parent) {
    QWidget* frame = MakeWidget(*node.control, parent);
    frame->setLayout(Column(node.children, frame));
    return frame;
}

void LayoutBuilder::AddToColumn(QGridLayout& column, const LayoutNode& node, QWidget* parent) {
    const int row = column.rowCount();
    switch (node.kind) {
        case LayoutKind::Control:
            if (QWidget* widget = MakeWidget(*node.control, parent)) column.addWidget(widget, row, 0, 1, kColumns);
            break;
        case LayoutKind::Field:
            column.addWidget(MakeWidget(*node.children.front().control, parent), row, 0, LabelPlace(node.children[1]));
            column.addLayout(Row({node.children.begin() + 1, node.children.end()}, parent), row, 1);
            break;
        case LayoutKind::Row:
            column.addLayout(Row(node.children, parent), row, 0, 1, kColumns);
            break;
        case LayoutKind::Group:
            column.addWidget(Group(node, parent), row, 0, 1, kColumns);
            break;
        case LayoutKind::Column:
            column.addLayout(Column(node.children, parent), row, 0, 1, kColumns);
            break;
        case LayoutKind::Overlay:
            column.addLayout(Overlay(node.children, parent), row, 0, 1, kColumns);
            break;
        case LayoutKind::Stretch:
            column.addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), row, 0);
            break;
    }
}

void LayoutBuilder::AddToRow(QHBoxLayout& row, const LayoutNode& node, QWidget* parent) {
    switch (node.kind) {
        case LayoutKind::Control:
            if (QWidget* widget = MakeWidget(*node.control, parent)) {
                row.addWidget(widget, TakesSpace(node.control->Kind()) ? 1 : 0);
            }
            break;
        case LayoutKind::Group:
            row.addWidget(Group(node, parent), 1);
            break;
        case LayoutKind::Field:
        case LayoutKind::Row:
            row.addLayout(Row(node.children, parent), FillsItself(node.children) ? 1 : 0);
            break;
        case LayoutKind::Column:
            row.addLayout(Column(node.children, parent));
            break;
        case LayoutKind::Overlay:
            row.addLayout(Overlay(node.children, parent));
            break;
        case LayoutKind::Stretch:
            row.addStretch(1);
            break;
    }
}

}  // namespace kestrum::qt
