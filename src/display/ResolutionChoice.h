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

    /// Notes the monitor (0: the default one) and the size in force, and centres the form on it. Tells the user if the
    /// size cannot be read (re-enters).
    void Enter(host::MonitorHandle monitor);
    modRegion::Size EntrySize() const { return m_entry; }
    modRegion::Size RecommendedSize() const;
    modRegion::Size LargestSize() const;

    /// Brings `size` into force, if it is not, and centres the form again.
    void Pick(modRegion::Size size);
    /// Back to the size at entry, if the display has changed.
    void Restore();

  private:
    modRegion::Size SizeInForce() const;

    Context m_c;
    ui::Form& m_form;
    host::MonitorHandle m_monitor = 0;
    modRegion::Size m_entry;
};

/// Puts the size in place of "%s" in the option's caption. A size of nothing is not on offer: the option is hidden.
void Offer(ui::OptionButton& option, modRegion::Size size);

/// Width "x" height.
String SizeText(modRegion::Size size);

}  // namespace kestrum::display
