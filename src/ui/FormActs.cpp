// The user's acts on a form: each is refused unless a user at the screen could do it.

#include <utility>

#include "ui/Form.h"

namespace kestrum::ui {
namespace {

bool TakesClick(ControlKind kind) {
    switch (kind) {
        case ControlKind::CommandButton:
        case ControlKind::Link:
        case ControlKind::Picture:
        case ControlKind::Menu:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return true;
        default:
            return false;
    }
}

/// The click's own effect on a control that takes one; gives the handler that follows.
const std::function<void()>& Clicked(Control& control) {
    switch (control.Kind()) {
        case ControlKind::Link:
            return static_cast<Link&>(control).onClick;
        case ControlKind::Picture:
            return static_cast<Picture&>(control).onClick;
        case ControlKind::Menu:
            return static_cast<Menu&>(control).onClick;
        case ControlKind::CheckBox: {
            auto& box = static_cast<CheckBox&>(control);
            box.SetValue(box.Checked() ? 0 : 1);
            return box.onClick;
        }
        case ControlKind::OptionButton: {
            auto& option = static_cast<OptionButton&>(control);
            option.SetValue(true);
            return option.onClick;
        }
        default:
            return static_cast<CommandButton&>(control).onClick;
    }
}

}  // namespace

bool Form::Accepts(const Control& control) const {
    return m_visible && m_life == Life::Loaded && control.IsUsable();
}

/// The control that loses the keyboard hears of it before the act that took it.
void Form::TakeFocus(Control& control) {
    Control* left = std::exchange(m_focus, &control);
    if (left == nullptr || left == &control || left->Kind() != ControlKind::TextBox) return;
    Dispatch(static_cast<TextBox*>(left)->onLostFocus);
}

bool Form::MoveFocus(Control& control) {
    if (!control.IsFocusable() || !Accepts(control)) return false;
    TakeFocus(control);
    return true;
}

bool Form::Click(Control& control) {
    if (!Accepts(control) || !TakesClick(control.Kind())) return false;
    if (control.IsFocusable()) TakeFocus(control);
    if (!Accepts(control)) return true;  // the control that lost the keyboard took this one away
    Dispatch(Clicked(control));
    return true;
}

bool Form::Click(StringView control) {
    Control* found = FindControl(control);
    return found != nullptr && Click(*found);
}

bool Form::Select(Control& control, std::int32_t index) {
    if (!Accepts(control) || control.Kind() != ControlKind::ComboBox) return false;
    auto& box = static_cast<ComboBox&>(control);
    if (index < 0 || index >= static_cast<std::int32_t>(box.Items().size())) return false;
    TakeFocus(control);
    box.SetListIndex(index);
    Dispatch(box.onClick);
    return true;
}

bool Form::Select(StringView control, std::int32_t index) {
    Control* found = FindControl(control);
    return found != nullptr && Select(*found, index);
}

bool Form::Type(Control& control, const String& text) {
    if (!Accepts(control) || control.Kind() != ControlKind::TextBox) return false;
    auto& box = static_cast<TextBox&>(control);
    if (box.ReadOnly()) return false;
    TakeFocus(control);
    const auto limit = static_cast<std::size_t>(box.MaxLength());
    box.SetText(limit > 0 && text.size() > limit ? text.substr(0, limit) : text);
    Dispatch(box.onChange);
    return true;
}

bool Form::Type(StringView control, const String& text) {
    Control* found = FindControl(control);
    return found != nullptr && Type(*found, text);
}

bool Form::Slide(Control& control, std::int32_t value) {
    if (!Accepts(control) || control.Kind() != ControlKind::Slider) return false;
    auto& slider = static_cast<Slider&>(control);
    TakeFocus(control);
    slider.SetValue(value);
    Dispatch(slider.onChange);
    return true;
}

bool Form::Slide(StringView control, std::int32_t value) {
    Control* found = FindControl(control);
    return found != nullptr && Slide(*found, value);
}

bool Form::ClickToolbar(Control& control, std::int32_t number) {
    if (!Accepts(control) || control.Kind() != ControlKind::Toolbar) return false;
    auto& bar = static_cast<Toolbar&>(control);
    if (number < 1 || number > static_cast<std::int32_t>(bar.Buttons().size())) return false;
    Dispatch([&bar, number] {
        if (bar.onButtonClick) bar.onButtonClick(number);
    });
    return true;
}

void Form::PointAt(Control* control) {
    if (!m_visible || m_life != Life::Loaded) return;
    if (control == nullptr) {
        Dispatch([this] { OnMouseMove(); });
    } else if (control->IsShown()) {
        Dispatch(control->onMouseMove);
    }
}

void Form::Activated() {
    if (m_visible && m_life == Life::Loaded) Dispatch([this] { OnActivate(); });
}

bool Form::PressEnter() {
    if (m_focus != nullptr && m_focus->Kind() == ControlKind::TextBox && Accepts(*m_focus)) {
        const auto& box = static_cast<TextBox&>(*m_focus);
        if (box.onEnter) {
            Dispatch(box.onEnter);
            return true;
        }
    }
    const bool pressesFocus =
        m_focus != nullptr && (m_focus->Kind() == ControlKind::CommandButton || m_focus->Kind() == ControlKind::Link);
    if (pressesFocus) return Click(*m_focus);
    CommandButton* button = DefaultButton();
    return button != nullptr && Click(*button);
}

bool Form::PressEscape() {
    CommandButton* button = CancelButton();
    return button != nullptr && Click(*button);
}

bool Form::CloseByUser() {
    if (!m_visible || !m_window.style.closable) return false;
    return Unload(CloseReason::User);
}

}  // namespace kestrum::ui
