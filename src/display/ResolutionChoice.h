// What the resolution dialogs share: the size of the monitor as the dialog found it, the change to another at the
// moment it is picked, and the way back.
#pragma once

#include "display/Context.h"
#include "display/modRegion.h"
#include "ui/Form.h"

namespace kestrum::display {

class ResolutionChoice {
  public:
    /// Neither `form` nor the references in `c` may end before this object.
    ResolutionChoice(const Context& c, ui::Form& form) : m_c(c), m_form(form) {}

    /// Notes the size in force. Tells the user if it cannot be read (re-enters).
    void Enter();
    modRegion::Size EntrySize() const { return m_entry; }
    modRegion::Size RecommendedSize() const;

    /// Brings `size` into force, if it is not, and centres the form again.
    void Pick(modRegion::Size size);
    /// Back to the size at entry, if the display has changed.
    void Restore();

  private:
    modRegion::Size SizeInForce() const;

    Context m_c;
    ui::Form& m_form;
    modRegion::Size m_entry;
};

/// Width "x" height.
String SizeText(modRegion::Size size);

}  // namespace kestrum::display
