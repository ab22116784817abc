// How the controls of a form stand: a tree of rows, columns and groups, written once and drawn by any toolkit at any
// font size. It also gives the tab order (depth first) and which label names which field.
#pragma once

#include <initializer_list>
#include <vector>

#include "ui/Controls.h"

namespace kestrum::ui {

enum class LayoutKind {
    Control,  ///< one control
    Row,      ///< children from left to right
    Column,   ///< children from top to bottom
    Group,    ///< children from top to bottom inside the frame `control`
    Field,    ///< a row whose first child is the label of the second
    Overlay,  ///< controls on the same place, which is as large as the largest; hidden ones leave it to the visible one
    Stretch,  ///< takes the space that is left over
};

struct LayoutNode {
    LayoutKind kind = LayoutKind::Column;
    Control* control = nullptr;
    std::vector<LayoutNode> children;

    LayoutNode() = default;
    /// One control.
    LayoutNode(Control& one) : kind(LayoutKind::Control), control(&one) {}  // implicit: layouts read as lists
    LayoutNode(LayoutKind nodeKind, Control* nodeControl, std::vector<LayoutNode> nodeChildren)
        : kind(nodeKind), control(nodeControl), children(std::move(nodeChildren)) {}
};

LayoutNode Row(std::vector<LayoutNode> children);
LayoutNode Column(std::vector<LayoutNode> children);
/// `children` stand inside `frame`.
LayoutNode Group(Frame& frame, std::vector<LayoutNode> children);
/// `label` names `field`; `more` follows in the same row (a unit, a button).
LayoutNode Field(Label& label, Control& field, std::vector<LayoutNode> more = {});
/// `children` are controls.
LayoutNode Overlay(std::vector<LayoutNode> children);
LayoutNode Stretch();
/// The row of buttons at the foot of a dialog, at its right edge.
LayoutNode Buttons(std::vector<LayoutNode> buttons);

}  // namespace kestrum::ui
