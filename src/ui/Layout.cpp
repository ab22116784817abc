#include "ui/Layout.h"

#include <iterator>

namespace kestrum::ui {

LayoutNode Row(std::vector<LayoutNode> children) {
    return {LayoutKind::Row, nullptr, std::move(children)};
}

LayoutNode Column(std::vector<LayoutNode> children) {
    return {LayoutKind::Column, nullptr, std::move(children)};
}

LayoutNode Group(Frame& frame, std::vector<LayoutNode> children) {
    return {LayoutKind::Group, &frame, std::move(children)};
}

LayoutNode Field(Label& label, Control& field, std::vector<LayoutNode> more) {
    std::vector<LayoutNode> children{label, field};
    children.insert(children.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    return {LayoutKind::Field, nullptr, std::move(children)};
}

LayoutNode Overlay(std::vector<LayoutNode> children) {
    return {LayoutKind::Overlay, nullptr, std::move(children)};
}

LayoutNode Stretch() {
    return {LayoutKind::Stretch, nullptr, {}};
}

LayoutNode Buttons(std::vector<LayoutNode> buttons) {
    buttons.insert(buttons.begin(), Stretch());
    return {LayoutKind::Row, nullptr, std::move(buttons)};
}

}  // namespace kestrum::ui
