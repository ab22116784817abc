#include "adapters/sim/CommandBars.h"

#include <algorithm>

namespace kestrum::sim {

namespace {

using Siblings = std::vector<std::shared_ptr<BarControl>>;
using host::CommandBarControlType;

std::shared_ptr<BarControl> FindIn(const BarControl& parent, bool recursive,
                                   const std::function<bool(const BarControl&)>& fits) {
    for (const auto& control : parent.controls) {
        if (fits(*control)) return control;
        const auto inner = recursive ? FindIn(*control, true, fits) : nullptr;
        if (inner) return inner;
    }
    return nullptr;
}

/// Takes `control` out wherever it is.
bool TakeOut(BarControl& parent, const BarControl* control) {
    Siblings& list = parent.controls;
    const auto at = std::find_if(list.begin(), list.end(), [&](const auto& one) { return one.get() == control; });
    if (at == list.end())
        return std::any_of(list.begin(), list.end(), [&](auto& one) { return TakeOut(*one, control); });
    list.erase(at);
    return true;
}

}  // namespace

class CommandBars::ClickHandle : public host::ISubscription {
  public:
    explicit ClickHandle(std::shared_ptr<BarControl> control) : m_control(std::move(control)) {}
    ~ClickHandle() override { m_control->click = nullptr; }

  private:
    std::shared_ptr<BarControl> m_control;
};

/// A view of one control; `Port` is the interface it answers for.
template <class Port>
class ControlView : public Port {
  public:
    ControlView(CommandBars& bars, Faults& faults, std::shared_ptr<BarControl> control)
        : m_bars(bars), m_faults(faults), m_control(std::move(control)) {}

    String Caption() override {
        m_faults.Check(u"bars.Caption");
        return m_control->caption;
    }
    void SetCaption(const String& caption) override {
        m_faults.Check(u"bars.SetCaption");
        m_control->caption = caption;
    }
    void SetTag(const String& tag) override {
        m_faults.Check(u"bars.SetTag");
        m_control->tag = tag;
    }
    void SetOnAction(const String& action) override {
        m_faults.Check(u"bars.SetOnAction");
        m_control->onAction = action;
    }
    void Delete() override {
        m_faults.Check(u"bars.Delete");
        if (!TakeOut(m_bars.standard, m_control.get())) TakeOut(m_bars.menuBar, m_control.get());
    }

  protected:
    CommandBars& m_bars;
    Faults& m_faults;
    std::shared_ptr<BarControl> m_control;
};

class CommandBars::Button : public ControlView<host::ICommandBarButton> {
  public:
    using ControlView::ControlView;
    void PasteFace() override {
        m_bars.Check(u"PasteFace");
        m_control->face = m_bars.m_clipboard;
    }
    std::unique_ptr<host::ISubscription> OnClick(std::function<void(host::ICommandBarButton&, bool&)> click) override {
        m_bars.Check(u"OnClick");
        m_control->click = std::move(click);
        return std::make_unique<ClickHandle>(m_control);
    }
};

class CommandBars::Controls : public host::ICommandBarControls {
  public:
    Controls(CommandBars& bars, std::shared_ptr<BarControl> owner) : m_bars(bars), m_owner(std::move(owner)) {}

    std::int32_t Count() override {
        m_bars.Check(u"Count");
        return static_cast<std::int32_t>(m_owner->controls.size());
    }
    std::unique_ptr<host::ICommandBarControl> Item(std::int32_t index) override {
        m_bars.Check(u"Item");
        if (index < 1 || static_cast<std::size_t>(index) > m_owner->controls.size()) {
            throw host::Error(host::ErrorNumber::OutOfRange, u"CommandBarControls.Item", u"No such control");
        }
        return std::make_unique<Button>(m_bars, m_bars.m_faults,
                                        m_owner->controls[static_cast<std::size_t>(index) - 1]);
    }
    std::unique_ptr<host::ICommandBarButton> AddButton() override;
    std::unique_ptr<host::ICommandBarPopup> AddPopup() override;

  private:
    std::shared_ptr<BarControl> Add(CommandBarControlType type) {
        m_owner->controls.push_back(std::make_shared<BarControl>());
        m_owner->controls.back()->type = type;
        return m_owner->controls.back();
    }
    CommandBars& m_bars;
    std::shared_ptr<BarControl> m_owner;
};

class CommandBars::Popup : public ControlView<host::ICommandBarPopup> {
  public:
    using ControlView::ControlView;
    std::unique_ptr<host::ICommandBarControls> Controls() override {
        m_bars.Check(u"Controls");
        return std::make_unique<CommandBars::Controls>(m_bars, m_control);
    }
};

std::unique_ptr<host::ICommandBarButton> CommandBars::Controls::AddButton() {
    m_bars.Check(u"AddButton");
    return std::make_unique<Button>(m_bars, m_bars.m_faults, Add(CommandBarControlType::Button));
}

std::unique_ptr<host::ICommandBarPopup> CommandBars::Controls::AddPopup() {
    m_bars.Check(u"AddPopup");
    return std::make_unique<Popup>(m_bars, m_bars.m_faults, Add(CommandBarControlType::Popup));
}

class CommandBars::Bar : public host::ICommandBar {
  public:
    Bar(CommandBars& bars, BarControl& bar) : m_bars(bars), m_bar(bar) {}
    std::unique_ptr<host::ICommandBarControls> Controls() override {
        m_bars.Check(u"Controls");
        // The world owns its bars.
        return std::make_unique<CommandBars::Controls>(m_bars, std::shared_ptr<BarControl>(&m_bar, [](BarControl*) {}));
    }
    std::unique_ptr<host::ICommandBarControl> FindControl(CommandBarControlType type, const String& tag,
                                                          bool recursive) override {
        m_bars.Check(u"FindControl");
        const auto found =
            FindIn(m_bar, recursive, [&](const BarControl& one) { return one.type == type && one.tag == tag; });
        if (!found) return nullptr;
        return std::make_unique<Popup>(m_bars, m_bars.m_faults, found);
    }

  private:
    CommandBars& m_bars;
    BarControl& m_bar;
};

std::unique_ptr<host::ICommandBar> CommandBars::Item(const String& name) {
    Check(u"Bar");
    if (name != u"Standard") throw host::Error(host::ErrorNumber::Automation, u"CommandBars.Item", u"No such bar");
    return std::make_unique<Bar>(*this, standard);
}

std::unique_ptr<host::ICommandBar> CommandBars::ActiveMenuBar() {
    Check(u"ActiveMenuBar");
    return std::make_unique<Bar>(*this, menuBar);
}

void CommandBars::CopyPicture(const String& file) {
    Check(u"CopyPicture");
    m_clipboard = file;
}

void CommandBars::Put(BarControl& bar, CommandBarControlType type, const String& caption, const String& tag) {
    bar.controls.push_back(std::make_shared<BarControl>());
    bar.controls.back()->type = type;
    bar.controls.back()->caption = caption;
    bar.controls.back()->tag = tag;
}

std::shared_ptr<BarControl> CommandBars::Find(const String& caption) const {
    const auto fits = [&](const BarControl& one) { return one.caption == caption; };
    const auto found = FindIn(standard, true, fits);
    return found ? found : FindIn(menuBar, true, fits);
}

bool CommandBars::Click(const String& caption) {
    const auto control = Find(caption);
    if (!control || !control->click) return false;
    Button button(*this, m_faults, control);
    bool cancel = false;
    control->click(button, cancel);
    return true;
}

std::vector<std::string> CommandBars::Captions(const BarControl& bar, int level) {
    std::vector<std::string> lines;
    for (const auto& control : bar.controls) {
        lines.push_back(std::string(static_cast<std::size_t>(level), ' ') + host::ToUtf8(control->caption));
        const auto inner = Captions(*control, level + 1);
        lines.insert(lines.end(), inner.begin(), inner.end());
    }
    return lines;
}

}  // namespace kestrum::sim
