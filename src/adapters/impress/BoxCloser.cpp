#include "adapters/impress/BoxCloser.h"

#include <chrono>
#include <com/sun/star/accessibility/AccessibleRole.hpp>
#include <com/sun/star/accessibility/XAccessible.hpp>
#include <com/sun/star/accessibility/XAccessibleAction.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XExtendedToolkit.hpp>
#include <vector>

namespace kestrum::impress {

namespace role = css::accessibility::AccessibleRole;
using css::accessibility::XAccessible;
using css::accessibility::XAccessibleContext;
using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

constexpr int kLookMs = 300;
constexpr int kDepth = 6;  // of a button below its box

bool IsBox(const Reference<XAccessibleContext>& window) {
    const auto kind = window->getAccessibleRole();
    return kind == role::ALERT || kind == role::DIALOG || kind == role::OPTION_PANE;
}

void CollectButtons(const Reference<XAccessibleContext>& parent, int depth,
                    std::vector<Reference<css::accessibility::XAccessibleAction>>& buttons) {
    if (depth == 0) return;
    for (sal_Int32 i = 0; i < parent->getAccessibleChildCount(); ++i) {
        const auto child = parent->getAccessibleChild(i);
        const auto context = child.is() ? child->getAccessibleContext() : nullptr;
        if (!context.is()) continue;
        Reference<css::accessibility::XAccessibleAction> button(context, UNO_QUERY);
        if (context->getAccessibleRole() == role::PUSH_BUTTON && button.is()) buttons.push_back(button);
        CollectButtons(context, depth - 1, buttons);
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // nothing newer lists the office's windows
void PressSingleButtons(const Reference<css::uno::XComponentContext>& remote) {
    Reference<css::awt::XExtendedToolkit> toolkit(css::awt::Toolkit::create(remote), UNO_QUERY);
    for (sal_Int32 i = 0; toolkit.is() && i < toolkit->getTopWindowCount(); ++i) {
        Reference<XAccessible> window(toolkit->getTopWindow(i), UNO_QUERY);
        const auto context = window.is() ? window->getAccessibleContext() : nullptr;
        if (!context.is() || !IsBox(context)) continue;
        std::vector<Reference<css::accessibility::XAccessibleAction>> buttons;
        CollectButtons(context, kDepth, buttons);
        if (buttons.size() == 1) buttons.front()->doAccessibleAction(0);
    }
}
#pragma GCC diagnostic pop

}  // namespace

BoxCloser::BoxCloser(const Reference<css::uno::XComponentContext>& remote) : m_office(remote) {
    m_thread = std::thread([this, remote] {
        std::unique_lock lock(m_mutex);
        while (!m_changed.wait_for(lock, std::chrono::milliseconds(kLookMs), [this] { return m_stop; }))
            m_office.Submit([remote] {
                try {
                    PressSingleButtons(remote);
                } catch (const css::uno::Exception&) {
                    // The box has gone meanwhile.
                }
            });
    });
}

BoxCloser::~BoxCloser() {
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
        m_changed.notify_all();
    }
    m_thread.join();
}

}  // namespace kestrum::impress
