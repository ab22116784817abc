// Office's command bars as a tree that a test can look at and click. Two bars: the toolbar "Standard" and the menu bar.
// Faults: "bars." + the call's name ("bars.AddButton", "bars.PasteFace" ...).
#pragma once

#include <memory>
#include <vector>

#include "adapters/sim/Faults.h"
#include "host/ICommandBars.h"

namespace kestrum::sim {

/// A control on a bar or in a popup.
struct BarControl {
    host::CommandBarControlType type = host::CommandBarControlType::Button;
    String caption, tag, onAction;
    /// The picture file that was pasted as the face.
    String face;
    std::vector<std::shared_ptr<BarControl>> controls;
    std::function<void(host::ICommandBarButton&, bool&)> click;
};

class CommandBars : public host::ICommandBars {
  public:
    explicit CommandBars(Faults& faults) : m_faults(faults) {}

    std::unique_ptr<host::ICommandBar> Item(const String& name) override;
    std::unique_ptr<host::ICommandBar> ActiveMenuBar() override;
    void CopyPicture(const String& file) override;

    /// Puts a control on a bar as an earlier version, or another add-in, left it.
    static void Put(BarControl& bar, host::CommandBarControlType type, const String& caption, const String& tag);
    /// The user clicks the button of this caption; false if there is none, or nobody listens.
    bool Click(const String& caption);
    /// Captions of a bar's controls in order; a popup's entries follow it, indented by a blank a level.
    static std::vector<std::string> Captions(const BarControl& bar, int level = 0);
    /// The first control of this caption on either bar; null if there is none.
    std::shared_ptr<BarControl> Find(const String& caption) const;

    BarControl standard, menuBar;

  private:
    class Bar;
    class Button;
    class ClickHandle;
    class Controls;
    class Popup;

    void Check(const char16_t* call) { m_faults.Check(u"bars." + String(call)); }

    Faults& m_faults;
    String m_clipboard;
};

}  // namespace kestrum::sim
