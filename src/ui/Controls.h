// The controls that forms are made of. Members of a form, with the names that its rules give them:
//     ui::CommandButton cmdPublish{*this, u"cmdPublish"};
// Values set before the form's first load are its design and come back when the form is unloaded.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "host/IEventLoop.h"
#include "host/IInputHooks.h"
#include "ui/Control.h"

namespace kestrum::ui {

enum class Alignment { Left, Centre, Right };

struct LabelValues {
    Alignment alignment = Alignment::Left;
    std::int32_t foreColour = -1;
};

/// Text that is read. Line breaks are CR LF; long lines wrap at the form's width.
class Label : public Stateful<CaptionedControl, LabelValues> {
  public:
    Label(Form& owner, String name, std::int32_t index = -1);
    Alignment TextAlignment() const { return m_values.alignment; }
    void SetTextAlignment(Alignment alignment) { Assign(m_values.alignment, alignment); }
    /// Colour of the text as 0x00BBGGRR; -1 is the desktop's.
    std::int32_t ForeColour() const { return m_values.foreColour; }
    void SetForeColour(std::int32_t colour) { Assign(m_values.foreColour, colour); }
};

struct LinkValues {
    bool hot = false;
};

/// A text that the user follows with a click or Enter. Not touched by the language pass: its text is an address.
class Link : public Stateful<CaptionedControl, LinkValues> {
  public:
    Link(Form& owner, String name);
    /// Drawn as under the pointer.
    bool Hot() const { return m_values.hot; }
    void SetHot(bool hot);
    std::function<void()> onClick;
};

struct TextValues {
    String text;
    bool allSelected = false;
    bool readOnly = false;
    bool password = false;
    bool multiLine = false;
    std::int32_t maxLength = 0;
};

class TextBox : public Stateful<Control, TextValues> {
  public:
    TextBox(Form& owner, String name);
    const String& Text() const { return m_values.text; }
    /// Ends a selection.
    void SetText(String text) {
        m_values.allSelected = false;
        Assign(m_values.text, std::move(text));
    }
    /// Selects the whole text: what the user types next replaces it.
    void SelectAll() { Assign(m_values.allSelected, true); }
    bool AllSelected() const { return m_values.allSelected; }
    bool ReadOnly() const { return m_values.readOnly; }
    void SetReadOnly(bool readOnly) { Assign(m_values.readOnly, readOnly); }
    /// Shows dots for characters.
    bool Password() const { return m_values.password; }
    void SetPassword(bool password) { Assign(m_values.password, password); }
    bool MultiLine() const { return m_values.multiLine; }
    void SetMultiLine(bool multiLine) { Assign(m_values.multiLine, multiLine); }
    /// Most characters that the user can type; 0 is no limit.
    std::int32_t MaxLength() const { return m_values.maxLength; }
    void SetMaxLength(std::int32_t maxLength) { Assign(m_values.maxLength, maxLength); }
    std::function<void()> onChange;
    /// Enter in the box. While it is set, Enter presses no button.
    std::function<void()> onEnter;
    /// The keyboard went to another control of the form.
    std::function<void()> onLostFocus;
};

struct CheckValues {
    std::int32_t value = 0;
};

class CheckBox : public Stateful<CaptionedControl, CheckValues> {
  public:
    CheckBox(Form& owner, String name, std::int32_t index = -1);
    /// 0 clear, 1 set; the number that the settings keep.
    std::int32_t Value() const { return m_values.value; }
    void SetValue(std::int32_t value) { Assign(m_values.value, value); }
    bool Checked() const { return m_values.value != 0; }
    std::function<void()> onClick;
};

struct OptionValues {
    bool value = false;
};

/// One of several: setting one clears the others of the same frame (or of the form's own level).
class OptionButton : public Stateful<CaptionedControl, OptionValues> {
  public:
    OptionButton(Form& owner, String name);
    bool Value() const { return m_values.value; }
    void SetValue(bool value);
    std::function<void()> onClick;
};

struct ButtonValues {
    bool isDefault = false;
    bool isCancel = false;
};

class CommandButton : public Stateful<CaptionedControl, ButtonValues> {
  public:
    CommandButton(Form& owner, String name);
    /// Enter presses it.
    bool IsDefault() const { return m_values.isDefault; }
    void SetDefault(bool isDefault) { Assign(m_values.isDefault, isDefault); }
    /// Escape presses it.
    bool IsCancel() const { return m_values.isCancel; }
    void SetCancel(bool isCancel) { Assign(m_values.isCancel, isCancel); }
    std::function<void()> onClick;
};

struct ComboValues {
    std::vector<String> items;
    std::int32_t selected = -1;
};

/// A closed list of texts, one of them selected.
class ComboBox : public Stateful<Control, ComboValues> {
  public:
    ComboBox(Form& owner, String name);
    const std::vector<String>& Items() const { return m_values.items; }
    void AddItem(String text);
    void Clear();
    /// From 0; -1 is none.
    std::int32_t ListIndex() const { return m_values.selected; }
    /// Selects; an index that the list does not have is host::Error 9 (-1 is allowed).
    void SetListIndex(std::int32_t index);
    /// The selected text, empty if there is none.
    String Text() const;
    /// Selects the entry with this text; false, and nothing changes, if there is none.
    bool SelectText(StringView text);
    std::function<void()> onClick;
};

struct RangeValues {
    std::int32_t minimum = 0;
    std::int32_t maximum = 100;
    std::int32_t value = 0;
};

/// A control with a number between two bounds; a value beyond a bound becomes the bound.
class RangeControl : public Stateful<Control, RangeValues> {
  public:
    using Stateful<Control, RangeValues>::Stateful;
    std::int32_t Minimum() const { return m_values.minimum; }
    std::int32_t Maximum() const { return m_values.maximum; }
    std::int32_t Value() const { return m_values.value; }
    /// `minimum` must not be above `maximum`; the value is moved between them.
    void SetRange(std::int32_t minimum, std::int32_t maximum);
    void SetValue(std::int32_t value);
};

class ProgressBar : public RangeControl {
  public:
    ProgressBar(Form& owner, String name);
};

class Slider : public RangeControl {
  public:
    Slider(Form& owner, String name);
    /// Runs on every step of the user's drag.
    std::function<void()> onChange;
};

/// A captioned border around the controls of its group in the layout; hiding or disabling it takes them along.
class Frame : public CaptionedControl {
  public:
    Frame(Form& owner, String name);
};

struct PictureValues {
    String file;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// A picture file, or (with an empty file) a bare surface that a library draws on.
class Picture : public Stateful<Control, PictureValues> {
  public:
    Picture(Form& owner, String name);
    const String& File() const { return m_values.file; }
    void SetFile(String path) { Assign(m_values.file, std::move(path)); }
    /// Size in pixels; 0 by 0 is the file's own.
    std::int32_t Width() const { return m_values.width; }
    std::int32_t Height() const { return m_values.height; }
    void SetSize(std::int32_t width, std::int32_t height);
    /// The native window of the surface, 0 while the form has none. The picture shows no file after the first call.
    host::WindowHandle Surface();
    std::function<void()> onClick;
};

struct MeterValues {
    std::int32_t bars = 20;
    std::int32_t lit = 0;
};

/// A row of bars that light up with the audio level.
class LevelMeter : public Stateful<Control, MeterValues> {
  public:
    LevelMeter(Form& owner, String name);
    std::int32_t Bars() const { return m_values.bars; }
    std::int32_t Lit() const { return m_values.lit; }
    /// Level 0 to 100; lights bars times level / 100 bars, to the nearest number.
    void SetLevel(std::int32_t level);
};

/// An entry of a form's menu; the caption "-" is a separator.
class Menu : public CaptionedControl {
  public:
    Menu(Form& owner, String name);
    bool IsSeparator() const { return Caption() == u"-"; }
    std::function<void()> onClick;
};

struct ToolbarButton {
    String name;
    String caption;
};

struct ToolbarValues {
    std::vector<ToolbarButton> buttons;
};

/// A row of buttons that are no controls of their own.
class Toolbar : public Stateful<Control, ToolbarValues> {
  public:
    Toolbar(Form& owner, String name);
    const std::vector<ToolbarButton>& Buttons() const { return m_values.buttons; }
    void AddButton(String name, String caption);
    /// Buttons are numbered from 1; host::Error 9 beyond.
    void SetButtonCaption(std::int32_t number, String caption);
    /// Gets the number of the button, from 1.
    std::function<void(std::int32_t)> onButtonClick;
};

struct TimerValues {
    std::int32_t interval = 0;
};

/// A periodic timer that runs while it is enabled, its interval is above 0 and its form is loaded. Its handler is not
/// entered again while it runs. Not drawn.
class Timer : public Stateful<Control, TimerValues> {
  public:
    /// Disabled until SetEnabled(true). `intervalMs` 0 never fires.
    Timer(Form& owner, String name, std::int32_t intervalMs = 0);
    std::int32_t Interval() const { return m_values.interval; }
    /// A new interval starts over.
    void SetInterval(std::int32_t intervalMs);
    std::function<void()> onTimer;

  private:
    friend class Form;
    void EnabledChanged() override { Follow(); }
    /// Starts or stops to match the values and the form's life; one that runs already keeps its due time.
    void Follow();
    void Stop() { m_timer.reset(); }

    std::unique_ptr<host::ITimer> m_timer;
};

}  // namespace kestrum::ui
