#include "adapters/qt/QtPresenter.h"

#include <algorithm>

#include "adapters/qt/StackOrder.h"

namespace kestrum::qt {
namespace {

// For what the display does not tell.
constexpr std::int32_t kLookForCoversMs = 250;

}  // namespace

QtPresenter::QtPresenter(QtEventLoop& loop) : m_loop(loop) {}

QtPresenter::~QtPresenter() = default;

FormWindow* QtPresenter::Find(const ui::Form& form) const {
    const auto found = m_windows.find(&form);
    return found == m_windows.end() ? nullptr : found->second.get();
}

FormWindow& QtPresenter::WindowOf(ui::Form& form) {
    std::unique_ptr<FormWindow>& window = m_windows[&form];
    if (!window) window = std::make_unique<FormWindow>(form, m_loop);
    return *window;
}

void QtPresenter::Show(ui::Form& form) {
    FormWindow& window = WindowOf(form);
    window.Appear(false);
    if (!window.IsPinned()) return;
    std::erase(m_pinned, &window);
    m_pinned.push_back(&window);
    if (m_pinTimer) return;
    m_pinTimer =
        m_loop.StartTimer(u"notices", kLookForCoversMs, host::TimerReentry::Skipped, [this] { KeepPinnedOnTop(); });
    m_stackWatch = std::make_unique<StackWatch>([this] { KeepPinnedOnTop(); });
}

void QtPresenter::ShowModal(ui::Form& form) {
    WindowOf(form).Appear(true);
    m_dialogs.push_back(&form);
    m_loop.RunUntil([&form] { return !form.IsLoaded(); });
    std::erase(m_dialogs, &form);
}

void QtPresenter::LeaveDialogs() {
    const std::vector<ui::Form*> dialogs = m_dialogs;
    for (auto dialog = dialogs.rbegin(); dialog != dialogs.rend(); ++dialog) (*dialog)->Unload(ui::CloseReason::User);
}

/// Acts are carried out as tasks of the loop, so no code of the window is on the stack and it can go at once.
void QtPresenter::Close(ui::Form& form) {
    const auto found = m_windows.find(&form);
    if (found == m_windows.end()) return;
    std::erase(m_pinned, found->second.get());
    if (m_pinned.empty()) {
        m_pinTimer.reset();
        m_stackWatch.reset();
    }
    m_windows.erase(found);
}

void QtPresenter::Refresh(ui::Form& form) {
    if (FormWindow* window = Find(form)) window->PaintNow();
}

host::WindowHandle QtPresenter::Window(ui::Form& form) {
    const FormWindow* window = Find(form);
    return window ? static_cast<host::WindowHandle>(window->winId()) : 0;
}

host::WindowHandle QtPresenter::Surface(ui::Picture& picture) {
    FormWindow* window = Find(picture.Owner());
    return window ? static_cast<host::WindowHandle>(window->Surface(picture)) : 0;
}

void QtPresenter::Changed(ui::Form& form) {
    if (FormWindow* window = Find(form)) window->SyncLater();
}

/// All of them are raised, in their order, so that they do not take turns in covering each other.
void QtPresenter::KeepPinnedOnTop() {
    std::vector<WId> windows;
    for (const FormWindow* window : m_pinned) {
        if (window->isVisible()) windows.push_back(window->winId());
    }
    if (AreOnTop(windows)) return;
    for (FormWindow* window : m_pinned) {
        if (window->isVisible()) window->raise();
    }
}

}  // namespace kestrum::qt
