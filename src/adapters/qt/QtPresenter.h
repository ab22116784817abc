// Forms on screen through Qt: one window for each form that is shown, drawn from its model by one renderer. Windows are
// made when a form is first shown and go when it is unloaded. Notices that belong above a running show are put back on
// top when another program's window covers them.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "adapters/qt/FormWindow.h"
#include "adapters/qt/StackWatch.h"
#include "host/IFormPresenter.h"

namespace kestrum::qt {

class QtPresenter : public host::IFormPresenter {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    explicit QtPresenter(QtEventLoop& loop);
    ~QtPresenter() override;

    void Show(ui::Form& form) override;
    void ShowModal(ui::Form& form) override;
    void Close(ui::Form& form) override;
    void Refresh(ui::Form& form) override;
    host::WindowHandle Window(ui::Form& form) override;
    host::WindowHandle Surface(ui::Picture& picture) override;
    void Changed(ui::Form& form) override;

    /// The form's window for tests and screenshots; null while it has none.
    FormWindow* Find(const ui::Form& form) const;
    /// Closes every dialog that waits for its user, the newest first, as its frame would; one that refuses stays.
    void LeaveDialogs();

  private:
    FormWindow& WindowOf(ui::Form& form);
    void KeepPinnedOnTop();

    QtEventLoop& m_loop;
    std::map<const ui::Form*, std::unique_ptr<FormWindow>> m_windows;
    std::vector<FormWindow*> m_pinned;  ///< in the order in which they were shown
    std::unique_ptr<host::ITimer> m_pinTimer;
    std::unique_ptr<StackWatch> m_stackWatch;
    std::vector<ui::Form*> m_dialogs;  ///< that wait, the newest last
};

}  // namespace kestrum::qt
