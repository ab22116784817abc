// What all controls of a form share: a name, a type name that the language pass asks for, visibility, availability.
// A control is a value that a presenter draws and the user acts on. Setting a value in code tells the presenter and
// nobody else: handlers run for the user's acts only, a routine that wants one calls it.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "host/String.h"

namespace kestrum::ui {

class Form;
class Frame;

enum class ControlKind {
    Label,
    Link,
    TextBox,
    CheckBox,
    OptionButton,
    CommandButton,
    ComboBox,
    ProgressBar,
    Slider,
    Frame,
    Picture,
    LevelMeter,
    Menu,
    Toolbar,
    Timer
};

class Control {
  public:
    /// Joins `owner`, which must be the form that holds the control as a member. `index` is the place in a control
    /// array (controls of one name), -1 outside arrays.
    Control(Form& owner, ControlKind kind, StringView typeName, String name, std::int32_t index = -1);
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Form& Owner() const { return m_owner; }
    ControlKind Kind() const { return m_kind; }
    /// "Label", "CommandButton" ...: what the language pass tests for.
    StringView TypeName() const { return m_typeName; }
    const String& Name() const { return m_name; }
    std::int32_t Index() const { return m_index; }
    /// The name, followed by "(index)" in a control array.
    String FullName() const;

    bool Visible() const { return m_values.visible; }
    void SetVisible(bool visible);
    bool Enabled() const { return m_values.enabled; }
    void SetEnabled(bool enabled);
    /// Text of the hint under the pointer; also the description that assistive programs read.
    const String& ToolTip() const { return m_values.toolTip; }
    void SetToolTip(String text);
    /// Name for assistive programs where neither a caption nor a field label gives one.
    const String& AccessibleName() const { return m_values.accessibleName; }
    void SetAccessibleName(String text);

    /// The frame around the control in the form's layout; null at the form's own level.
    const Frame* Container() const { return m_container; }
    /// The control and all frames around it are visible.
    bool IsShown() const;
    /// Shown, and the control and all frames around it are enabled: the user can act on it.
    bool IsUsable() const;
    /// A user reaches the control with the Tab key while it is usable.
    bool IsFocusable() const;

    /// The pointer moved over the control.
    std::function<void()> onMouseMove;

  protected:
    friend class Form;
    /// Keeps the present values as those of the design; the form calls it at its first load.
    virtual void SaveDesign();
    /// Back to the values of the design; the form calls it when it is unloaded.
    virtual void RestoreDesign();
    /// Tells the presenter.
    void Touch();
    /// Enabled was set, perhaps to what it was.
    virtual void EnabledChanged() {}

  private:
    struct Values {
        bool visible = true;
        bool enabled = true;
        String toolTip;
        String accessibleName;
    };

    Form& m_owner;
    ControlKind m_kind;
    StringView m_typeName;
    String m_name;
    std::int32_t m_index;
    const Frame* m_container = nullptr;
    Values m_values;
    Values m_design;
};

/// A control whose own values are the plain struct `Values`, kept and restored with the form.
template <class Base, class Values>
class Stateful : public Base {
  public:
    using Base::Base;

  protected:
    void SaveDesign() override {
        Base::SaveDesign();
        m_design = m_values;
    }
    void RestoreDesign() override {
        Base::RestoreDesign();
        m_values = m_design;
    }
    /// `member` = `value`; the presenter hears of it.
    template <class Member, class Value>
    void Assign(Member& member, Value&& value) {
        member = std::forward<Value>(value);
        this->Touch();
    }

    Values m_values;

  private:
    Values m_design;
};

struct CaptionValues {
    String caption;
};

/// A control with a caption: plain text, an "&" is an ampersand. The language pass gives most of them theirs.
class CaptionedControl : public Stateful<Control, CaptionValues> {
  public:
    using Stateful<Control, CaptionValues>::Stateful;
    const String& Caption() const { return m_values.caption; }
    void SetCaption(String caption) { Assign(m_values.caption, std::move(caption)); }
};

}  // namespace kestrum::ui
