#include "ui/Controls.h"

#include <algorithm>
#include <cmath>

#include "host/Error.h"
#include "ui/Forms.h"

namespace kestrum::ui {
namespace {

[[noreturn]] void OutOfRange(StringView source) {
    throw host::Error(host::ErrorNumber::OutOfRange, String(source), u"Item number out of range");
}

}  // namespace

Label::Label(Form& owner, String name, std::int32_t index)
    : Stateful(owner, ControlKind::Label, u"Label", std::move(name), index) {}

Link::Link(Form& owner, String name) : Stateful(owner, ControlKind::Link, u"Link", std::move(name)) {}

void Link::SetHot(bool hot) {
    if (hot != m_values.hot) Assign(m_values.hot, hot);
}

TextBox::TextBox(Form& owner, String name) : Stateful(owner, ControlKind::TextBox, u"TextBox", std::move(name)) {}

CheckBox::CheckBox(Form& owner, String name, std::int32_t index)
    : Stateful(owner, ControlKind::CheckBox, u"CheckBox", std::move(name), index) {}

OptionButton::OptionButton(Form& owner, String name)
    : Stateful(owner, ControlKind::OptionButton, u"OptionButton", std::move(name)) {}

void OptionButton::SetValue(bool value) {
    if (value) {
        for (Control* control : Owner().Controls()) {
            if (control == this || control->Kind() != ControlKind::OptionButton) continue;
            if (control->Container() == Container()) static_cast<OptionButton*>(control)->m_values.value = false;
        }
    }
    Assign(m_values.value, value);
}

CommandButton::CommandButton(Form& owner, String name)
    : Stateful(owner, ControlKind::CommandButton, u"CommandButton", std::move(name)) {}

ComboBox::ComboBox(Form& owner, String name) : Stateful(owner, ControlKind::ComboBox, u"ComboBox", std::move(name)) {}

void ComboBox::AddItem(String text) {
    m_values.items.push_back(std::move(text));
    Touch();
}

void ComboBox::Clear() {
    m_values.items.clear();
    Assign(m_values.selected, -1);
}

void ComboBox::SetListIndex(std::int32_t index) {
    if (index < -1 || index >= static_cast<std::int32_t>(m_values.items.size())) OutOfRange(Name());
    Assign(m_values.selected, index);
}

String ComboBox::Text() const {
    return m_values.selected < 0 ? String() : m_values.items[static_cast<std::size_t>(m_values.selected)];
}

bool ComboBox::SelectText(StringView text) {
    const auto found = std::find(m_values.items.begin(), m_values.items.end(), text);
    if (found == m_values.items.end()) return false;
    SetListIndex(static_cast<std::int32_t>(found - m_values.items.begin()));
    return true;
}

void RangeControl::SetRange(std::int32_t minimum, std::int32_t maximum) {
    m_values.minimum = minimum;
    m_values.maximum = maximum;
    SetValue(m_values.value);
}

void RangeControl::SetValue(std::int32_t value) {
    Assign(m_values.value, std::clamp(value, m_values.minimum, m_values.maximum));
}

ProgressBar::ProgressBar(Form& owner, String name)
    : RangeControl(owner, ControlKind::ProgressBar, u"ProgressBar", std::move(name)) {}

Slider::Slider(Form& owner, String name) : RangeControl(owner, ControlKind::Slider, u"Slider", std::move(name)) {}

Frame::Frame(Form& owner, String name) : CaptionedControl(owner, ControlKind::Frame, u"Frame", std::move(name)) {}

Picture::Picture(Form& owner, String name) : Stateful(owner, ControlKind::Picture, u"PictureBox", std::move(name)) {}

void Picture::SetSize(std::int32_t width, std::int32_t height) {
    m_values.width = width;
    Assign(m_values.height, height);
}

host::WindowHandle Picture::Surface() {
    return Owner().Owner().Presenter().Surface(*this);
}

LevelMeter::LevelMeter(Form& owner, String name)
    : Stateful(owner, ControlKind::LevelMeter, u"LevelMeter", std::move(name)) {}

void LevelMeter::SetLevel(std::int32_t level) {
    const double exact = static_cast<double>(m_values.bars) * std::clamp(level, 0, 100) / 100.0;
    const auto lit = static_cast<std::int32_t>(std::nearbyint(exact));  // the default mode rounds half to even
    if (lit != m_values.lit) Assign(m_values.lit, lit);
}

Menu::Menu(Form& owner, String name) : CaptionedControl(owner, ControlKind::Menu, u"Menu", std::move(name)) {}

Toolbar::Toolbar(Form& owner, String name) : Stateful(owner, ControlKind::Toolbar, u"Toolbar", std::move(name)) {}

void Toolbar::AddButton(String name, String caption) {
    m_values.buttons.push_back({std::move(name), std::move(caption)});
    Touch();
}

void Toolbar::SetButtonCaption(std::int32_t number, String caption) {
    if (number < 1 || number > static_cast<std::int32_t>(m_values.buttons.size())) OutOfRange(Name());
    Assign(m_values.buttons[static_cast<std::size_t>(number - 1)].caption, std::move(caption));
}

Timer::Timer(Form& owner, String name, std::int32_t intervalMs)
    : Stateful(owner, ControlKind::Timer, u"Timer", std::move(name)) {
    SetEnabled(false);
    m_values.interval = intervalMs;
}

void Timer::SetInterval(std::int32_t intervalMs) {
    m_values.interval = intervalMs;
    Stop();
    Follow();
}

void Timer::Follow() {
    const bool wanted = Enabled() && m_values.interval > 0 && Owner().IsLoaded();
    if (!wanted) {
        Stop();
    } else if (!m_timer) {
        m_timer = Owner().Owner().Loop().StartTimer(Owner().Name() + u"." + Name(), m_values.interval,
                                                    host::TimerReentry::Skipped, [this] { Owner().Dispatch(onTimer); });
    }
}

}  // namespace kestrum::ui
