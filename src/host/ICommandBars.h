// The command bars of Office's object model, under its own names: the toolbar button and the menu tree of an office
// without a ribbon. Every call may throw host::Error. Objects are cheap views; hold none across a re-entry point.
// List numbers are one-based.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "host/IApplication.h"
#include "host/String.h"

namespace kestrum::host {

/// The kinds of controls that the rules name, in Office's numbers.
enum class CommandBarControlType : std::int32_t { Button = 1, Popup = 10 };

class ICommandBarControl {
  public:
    virtual ~ICommandBarControl() = default;
    virtual String Caption() = 0;
    virtual void SetCaption(const String& caption) = 0;
    /// A mark of the owner's, by which FindControl finds the control again.
    virtual void SetTag(const String& tag) = 0;
    /// What Office does on a click by itself: "!<" program id ">" loads that add-in.
    virtual void SetOnAction(const String& action) = 0;
    /// Takes the control off its bar; the object is of no use afterwards.
    virtual void Delete() = 0;
};

class ICommandBarButton : public ICommandBarControl {
  public:
    /// Gives the button the picture that is on the clipboard.
    virtual void PasteFace() = 0;
    /// `click` runs at each click, on the core's thread, until the handle is destroyed; it must not throw. The flag
    /// asks Office to leave out what OnAction says.
    [[nodiscard]] virtual std::unique_ptr<ISubscription> OnClick(
        std::function<void(ICommandBarButton& button, bool& cancelDefault)> click) = 0;
};

class ICommandBarPopup;

/// The controls of a bar or of a popup, in their order.
class ICommandBarControls {
  public:
    virtual ~ICommandBarControls() = default;
    virtual std::int32_t Count() = 0;
    /// Control `index`, 1 to Count; raises outside.
    virtual std::unique_ptr<ICommandBarControl> Item(std::int32_t index) = 0;
    /// Adds a button at the end.
    virtual std::unique_ptr<ICommandBarButton> AddButton() = 0;
    /// Adds a popup at the end.
    virtual std::unique_ptr<ICommandBarPopup> AddPopup() = 0;
};

class ICommandBarPopup : public ICommandBarControl {
  public:
    virtual std::unique_ptr<ICommandBarControls> Controls() = 0;
};

class ICommandBar {
  public:
    virtual ~ICommandBar() = default;
    virtual std::unique_ptr<ICommandBarControls> Controls() = 0;
    /// The first control of this type and tag, inside popups too if `recursive`; null if there is none.
    virtual std::unique_ptr<ICommandBarControl> FindControl(CommandBarControlType type, const String& tag,
                                                            bool recursive) = 0;
};

class ICommandBars {
  public:
    virtual ~ICommandBars() = default;
    /// The bar of this name; raises if there is none.
    virtual std::unique_ptr<ICommandBar> Item(const String& name) = 0;
    virtual std::unique_ptr<ICommandBar> ActiveMenuBar() = 0;
    /// Puts the picture file on the clipboard, for PasteFace.
    virtual void CopyPicture(const String& file) = 0;
};

/// Office's handle to the ribbon of one add-in. Kept, and asked for nothing.
class IRibbonUI {
  public:
    virtual ~IRibbonUI() = default;
};

}  // namespace kestrum::host
