// A presenter without a screen: remembers which forms are shown. A modal form gets the next planned act, then the loop
// runs until the form is closed.
#pragma once

#include <deque>
#include <functional>
#include <set>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Failure.h"
#include "host/IFormPresenter.h"

namespace kestrum::sim {

class Presenter : public host::IFormPresenter {
  public:
    explicit Presenter(EventLoop& loop) : m_loop(loop) {}

    void Show(ui::Form& form) override { m_shown.insert(&form); }
    void ShowModal(ui::Form& form) override {
        if (modalActs.empty()) throw Failure("no act was planned for a modal form");
        m_shown.insert(&form);
        auto act = std::move(modalActs.front());
        modalActs.pop_front();
        act(form);
        m_loop.RunUntil([&] { return !m_shown.count(&form); });
    }
    void Close(ui::Form& form) override { m_shown.erase(&form); }
    void Refresh(ui::Form&) override {}
    host::WindowHandle Window(ui::Form& form) override { return m_shown.count(&form) ? kWindow : 0; }
    void Changed(ui::Form&) override {}

    bool IsShown(ui::Form& form) const { return m_shown.count(&form) > 0; }

    std::deque<std::function<void(ui::Form&)>> modalActs;

  private:
    static constexpr host::WindowHandle kWindow = 50;
    EventLoop& m_loop;
    std::set<ui::Form*> m_shown;
};

}  // namespace kestrum::sim
