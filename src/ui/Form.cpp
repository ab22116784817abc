#include "ui/Form.h"

#include <algorithm>

#include "ui/Forms.h"
#include "ui/Names.h"

namespace kestrum::ui {
namespace {

/// Counts a running handler for as long as it stands.
class Running {
  public:
    explicit Running(int& count) : m_count(count) { ++m_count; }
    ~Running() { --m_count; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    int& m_count;
};

}  // namespace

Form::Form(Forms& forms, String name) : m_forms(forms), m_name(std::move(name)) {}

Form::~Form() = default;

void Form::SetCaption(String caption) {
    m_window.caption = std::move(caption);
    NotifyChanged();
}

void Form::SetStyle(const WindowStyle& style) {
    m_window.style = style;
    NotifyChanged();
}

void Form::SetPlace(const WindowPlace& place) {
    m_window.place = place;
    NotifyChanged();
}

void Form::SetBounds(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) {
    SetPlace({StartPosition::Manual, left, top, width, height});
}

void Form::SaveDesign() {
    if (m_designSaved) return;
    m_designSaved = true;
    m_design = m_window;
    for (Control* control : m_controls) control->SaveDesign();
}

void Form::StartTimers() {
    for (Control* control : m_controls) {
        if (control->Kind() == ControlKind::Timer) static_cast<Timer*>(control)->Follow();
    }
}

void Form::Load() {
    if (m_life != Life::Unloaded) return;
    SaveDesign();
    m_life = Life::Loaded;
    m_spent = false;
    m_forms.Joined(*this);
    StartTimers();
    const Running running(m_running);
    OnLoad();
}

void Form::Show() {
    const Running running(m_running);
    Load();
    if (m_life != Life::Loaded) return;
    m_visible = true;
    m_forms.Presenter().Show(*this);
}

void Form::ShowModal() {
    const Running running(m_running);
    Load();
    if (m_life != Life::Loaded) return;
    m_visible = true;
    m_forms.Presenter().ShowModal(*this);
}

void Form::Hide() {
    if (!m_visible) return;
    m_visible = false;
    m_forms.Presenter().Changed(*this);
}

bool Form::Unload(CloseReason reason) {
    if (m_life != Life::Loaded) return true;
    const Running running(m_running);
    if (!OnQueryUnload(reason)) return false;
    if (m_life != Life::Loaded) return true;  // OnQueryUnload re-entered and the form went meanwhile
    m_life = Life::Unloading;
    try {
        OnUnload();
    } catch (...) {
        LeaveScreen();  // the form is gone whatever its handler met
        throw;
    }
    LeaveScreen();
    return true;
}

void Form::Discard() {
    if (m_life != Life::Unloaded) LeaveScreen();
}

void Form::LeaveScreen() {
    m_life = Life::Unloaded;
    m_spent = true;
    m_visible = false;
    m_focus = nullptr;
    m_window = m_design;
    for (Control* control : m_controls) {
        if (control->Kind() == ControlKind::Timer) static_cast<Timer*>(control)->Stop();
        control->RestoreDesign();
    }
    m_forms.Left(*this);
    m_forms.Presenter().Close(*this);
}

void Form::Refresh() {
    if (m_visible) m_forms.Presenter().Refresh(*this);
}

host::WindowHandle Form::Window() {
    return m_forms.Presenter().Window(*this);
}

Control* Form::FindControl(StringView name) const {
    for (Control* control : m_controls) {
        if (SameName(control->FullName(), name)) return control;
    }
    for (Control* control : m_controls) {
        if (SameName(control->Name(), name)) return control;
    }
    return nullptr;
}

void Form::SetLayout(LayoutNode layout) {
    m_layout = std::move(layout);
    Place(m_layout, nullptr);
}

void Form::Place(const LayoutNode& node, const Frame* container) {
    if (node.control != nullptr) node.control->m_container = container;
    if (node.kind == LayoutKind::Group) container = static_cast<const Frame*>(node.control);
    for (const LayoutNode& child : node.children) Place(child, container);
}

namespace {

void CollectFocusable(const LayoutNode& node, std::vector<Control*>& order) {
    if (node.control != nullptr && node.control->IsFocusable()) order.push_back(node.control);
    for (const LayoutNode& child : node.children) CollectFocusable(child, order);
}

const Label* FindLabel(const LayoutNode& node, const Control& field) {
    if (node.kind == LayoutKind::Field && node.children[1].control == &field) {
        return static_cast<const Label*>(node.children[0].control);
    }
    for (const LayoutNode& child : node.children) {
        if (const Label* label = FindLabel(child, field)) return label;
    }
    return nullptr;
}

const CaptionedControl* AsCaptioned(const Control& control) {
    return dynamic_cast<const CaptionedControl*>(&control);
}

CommandButton* FindButton(const std::vector<Control*>& controls, bool (CommandButton::*property)() const) {
    for (Control* control : controls) {
        if (control->Kind() != ControlKind::CommandButton) continue;
        auto* button = static_cast<CommandButton*>(control);
        if ((button->*property)()) return button;
    }
    return nullptr;
}

}  // namespace

std::vector<Control*> Form::TabOrder() const {
    std::vector<Control*> order;
    CollectFocusable(m_layout, order);
    for (Control* control : m_controls) {
        const bool listed = std::find(order.begin(), order.end(), control) != order.end();
        if (control->IsFocusable() && !listed) order.push_back(control);
    }
    return order;
}

const Label* Form::LabelOf(const Control& control) const {
    return FindLabel(m_layout, control);
}

String Form::AccessibleNameOf(const Control& control) const {
    if (!control.AccessibleName().empty()) return control.AccessibleName();
    if (const CaptionedControl* captioned = AsCaptioned(control)) return captioned->Caption();
    if (const Label* label = LabelOf(control)) return label->Caption();
    return control.ToolTip();
}

CommandButton* Form::DefaultButton() const {
    return FindButton(m_controls, &CommandButton::IsDefault);
}

CommandButton* Form::CancelButton() const {
    return FindButton(m_controls, &CommandButton::IsCancel);
}

void Form::SetFocus(Control& control) {
    m_focus = &control;
    NotifyChanged();
}

void Form::Dispatch(const std::function<void()>& handler) {
    if (!handler) return;
    const Running running(m_running);
    handler();
}

void Form::NotifyChanged() {
    if (m_visible) m_forms.Presenter().Changed(*this);
}

}  // namespace kestrum::ui
