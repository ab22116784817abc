// How forms get on screen. A form is a toolkit-neutral model (ui/Form.h); a presenter draws it, sends user acts to its
// handlers and follows its changes. One presenter per toolkit, one without a screen for tests and batch use.
#pragma once

#include "host/IInputHooks.h"

namespace kestrum::ui {
class Form;
class Picture;
}  // namespace kestrum::ui

namespace kestrum::host {

class IFormPresenter {
  public:
    virtual ~IFormPresenter() = default;
    /// Makes the form visible and returns at once. Showing a visible form brings it to the front.
    virtual void Show(ui::Form& form) = 0;
    /// Makes the form visible and pumps until it is no longer loaded (re-enters).
    virtual void ShowModal(ui::Form& form) = 0;
    /// Takes the form off the screen. Called by the form when it is unloaded; harmless for one never shown.
    virtual void Close(ui::Form& form) = 0;
    /// Paints pending changes of the form now, without handling other events.
    virtual void Refresh(ui::Form& form) = 0;
    /// The form's window, 0 while it has none.
    virtual WindowHandle Window(ui::Form& form) = 0;
    /// A window of the picture's own inside its form's, which another program may draw into. Made at the first call;
    /// from then on the presenter leaves its ground dark and paints nothing on it. 0 while the form has no window.
    virtual WindowHandle Surface(ui::Picture& picture) = 0;
    /// The model changed (a caption, a value, visibility, place, focus): follow it. Cheap; painting may come later.
    virtual void Changed(ui::Form& form) = 0;
};

}  // namespace kestrum::host
