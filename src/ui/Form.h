// A window as a model: controls, one layout, a life of load, show and unload. It decides what the user can do and which
// handler runs; a presenter (host/IFormPresenter.h) draws it and hands the user's acts to it.
//
// Life. Load makes the form a member of the loaded-forms collection, starts its enabled timers and runs OnLoad. Show
// and ShowModal load first. Unload asks OnQueryUnload, runs OnUnload, stops the timers, takes the window off the screen
// and puts window and controls back to their design. The object and its fields live on until its running handlers have
// returned; `Forms::Get` then makes a new one. So fields can be read after ShowModal has returned, and no reference to
// a form is kept across another `Get` of it.
//
// Failures of a handler pass through to whoever pumped: each handler ends in a message or a log of its own.
#pragma once

#include <functional>
#include <vector>

#include "host/IFormPresenter.h"
#include "host/IMonitors.h"
#include "ui/Layout.h"

namespace kestrum::ui {

class Forms;

enum class CloseReason {
    Code,  ///< the program unloads the form
    User,  ///< the user closes the window by its frame or the desktop
};

enum class StartPosition {
    Manual,              ///< left and top as set
    CentreScreen,        ///< in the middle of the default monitor
    CentreHorizontally,  ///< top as set, in the middle of the default monitor's width
    CentreArea,          ///< in the middle of `area`, again each time that is set to another
};

struct WindowStyle {
    bool topmost = false;              ///< above all other windows
    bool borderless = false;           ///< no frame and no title
    bool layered = false;              ///< drawn with `opacity`
    std::int32_t opacity = 255;        ///< 0 invisible to 255 solid
    bool excludedFromCapture = false;  ///< never part of a recorded picture
    bool closable = true;              ///< the frame's close button works
    bool activates = true;             ///< takes the keyboard when it appears
};

/// Pixels. A width or height of 0 fits the content.
struct WindowPlace {
    StartPosition start = StartPosition::CentreScreen;
    std::int32_t left = 0, top = 0, width = 0, height = 0;
    host::Rect area = {};  ///< for CentreArea
    bool operator==(const WindowPlace&) const = default;
};

class Form {
  public:
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const String& Name() const { return m_name; }
    const String& Caption() const { return m_window.caption; }
    void SetCaption(String caption);
    const WindowStyle& Style() const { return m_window.style; }
    void SetStyle(const WindowStyle& style);
    const WindowPlace& Place() const { return m_window.place; }
    void SetPlace(const WindowPlace& place);
    /// Moves and sizes to the pixels given (start position Manual).
    void SetBounds(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height);

    /// Loads if needed; runs OnLoad. Harmless when loaded.
    void Load();
    /// Loads, makes visible, returns at once. A form that unloads itself while it loads is not shown.
    void Show();
    /// Loads, makes visible and pumps until the form is unloaded (re-enters).
    void ShowModal();
    /// Off the screen, still loaded; ends a modal wait only when the form is unloaded.
    void Hide();
    /// False if OnQueryUnload refused. Harmless (true) when not loaded or already being unloaded.
    bool Unload(CloseReason reason = CloseReason::Code);
    /// Paints pending changes now.
    void Refresh();
    bool IsLoaded() const { return m_life != Life::Unloaded; }
    bool IsVisible() const { return m_visible; }
    /// The native window, 0 while there is none.
    host::WindowHandle Window();

    /// In order of declaration.
    const std::vector<Control*>& Controls() const { return m_controls; }
    /// By name or by full name ("Check1(0)"), letter case apart; null if there is none.
    Control* FindControl(StringView name) const;
    const LayoutNode& Layout() const { return m_layout; }
    /// Controls that take the keyboard, in the order of the layout; those outside the layout follow.
    std::vector<Control*> TabOrder() const;
    /// What assistive programs call the control: its accessible name, else its caption, else its field label's
    /// caption, else its tool tip.
    String AccessibleNameOf(const Control& control) const;
    /// The label that names `control` in the layout, null if none does.
    const Label* LabelOf(const Control& control) const;
    CommandButton* DefaultButton() const;
    CommandButton* CancelButton() const;
    /// The control that has (or will have, once shown) the keyboard; null is the first of the tab order.
    Control* Focus() const { return m_focus; }
    void SetFocus(Control& control);

    // The user's acts, called by presenters. Each returns false, and does nothing, if the form is not visible or the
    // control hidden, disabled, or none that the act fits.

    /// A button, link, check box, option, picture or menu entry.
    bool Click(Control& control);
    bool Click(StringView control);
    /// An entry of a combo box, from 0.
    bool Select(Control& control, std::int32_t index);
    bool Select(StringView control, std::int32_t index);
    /// Replaces the text of a text box that is not read-only.
    bool Type(Control& control, const String& text);
    bool Type(StringView control, const String& text);
    /// Moves a slider.
    bool Slide(Control& control, std::int32_t value);
    bool Slide(StringView control, std::int32_t value);
    /// Button `number` of a toolbar, from 1.
    bool ClickToolbar(Control& control, std::int32_t number);
    /// The pointer moves over a control, or (null) over the form's own ground.
    void PointAt(Control* control);
    /// The keyboard goes to a control.
    bool MoveFocus(Control& control);
    /// Enter: a text box that handles it, the focused button or link, else the default button.
    bool PressEnter();
    /// Escape: the cancel button.
    bool PressEscape();
    /// The frame's close button; false if it does not work or the form refuses.
    bool CloseByUser();

    /// The window got the keyboard; presenters call it each time.
    void Activated();

    /// Runs a handler; the form's object outlives it. For controls and presenters.
    void Dispatch(const std::function<void()>& handler);
    /// A control's value changed; the presenter follows while the form is visible.
    void NotifyChanged();
    /// Has been unloaded and runs no handler any more: `Forms::Get` may replace the object.
    bool IsSpent() const { return m_spent && m_life == Life::Unloaded && m_running == 0; }
    /// Takes the form down without asking it or running its handlers; for the end of the program.
    void Discard();

    /// The collection that the form belongs to.
    Forms& Owner() const { return m_forms; }

  protected:
    Form(Forms& forms, String name);
    void SetLayout(LayoutNode layout);

    virtual void OnLoad() {}
    /// False keeps the form loaded.
    virtual bool OnQueryUnload(CloseReason) { return true; }
    virtual void OnUnload() {}
    /// The pointer moved over the form's own ground.
    virtual void OnMouseMove() {}
    /// The window got the keyboard.
    virtual void OnActivate() {}

  private:
    friend class Control;
    enum class Life { Unloaded, Loaded, Unloading };
    struct WindowValues {
        String caption;
        WindowStyle style;
        WindowPlace place;
    };

    bool Accepts(const Control& control) const;
    void TakeFocus(Control& control);
    void SaveDesign();
    void LeaveScreen();
    void StartTimers();
    void Place(const LayoutNode& node, const Frame* container);

    Forms& m_forms;
    String m_name;
    std::vector<Control*> m_controls;
    LayoutNode m_layout;
    WindowValues m_window;
    WindowValues m_design;
    Control* m_focus = nullptr;
    Life m_life = Life::Unloaded;
    bool m_designSaved = false;
    bool m_visible = false;
    bool m_spent = false;
    int m_running = 0;
};

}  // namespace kestrum::ui
