#include "ui/Control.h"

#include "ui/Form.h"

namespace kestrum::ui {

Control::Control(Form& owner, ControlKind kind, StringView typeName, String name, std::int32_t index)
    : m_owner(owner), m_kind(kind), m_typeName(typeName), m_name(std::move(name)), m_index(index) {
    m_owner.m_controls.push_back(this);
}

Control::~Control() {
    std::erase(m_owner.m_controls, this);
}

String Control::FullName() const {
    if (m_index < 0) return m_name;
    const std::string digits = std::to_string(m_index);
    return m_name + u"(" + String(digits.begin(), digits.end()) + u")";
}

void Control::SetVisible(bool visible) {
    m_values.visible = visible;
    Touch();
}

void Control::SetEnabled(bool enabled) {
    m_values.enabled = enabled;
    EnabledChanged();
    Touch();
}

void Control::SetToolTip(String text) {
    m_values.toolTip = std::move(text);
    Touch();
}

void Control::SetAccessibleName(String text) {
    m_values.accessibleName = std::move(text);
    Touch();
}

bool Control::IsShown() const {
    return m_values.visible && (m_container == nullptr || m_container->IsShown());
}

bool Control::IsUsable() const {
    return m_values.visible && m_values.enabled && (m_container == nullptr || m_container->IsUsable());
}

bool Control::IsFocusable() const {
    switch (m_kind) {
        case ControlKind::Link:
        case ControlKind::TextBox:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
        case ControlKind::CommandButton:
        case ControlKind::ComboBox:
        case ControlKind::Slider:
        case ControlKind::Toolbar:
            return true;
        case ControlKind::Label:
        case ControlKind::ProgressBar:
        case ControlKind::Frame:
        case ControlKind::Picture:
        case ControlKind::LevelMeter:
        case ControlKind::Menu:
        case ControlKind::Timer:
            return false;
    }
    return false;
}

void Control::SaveDesign() {
    m_design = m_values;
}

void Control::RestoreDesign() {
    m_values = m_design;
}

void Control::Touch() {
    m_owner.NotifyChanged();
}

}  // namespace kestrum::ui
