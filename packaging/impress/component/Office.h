// What the extension asks of the office around it.
#pragma once

#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <functional>

namespace kestrum::extension {

namespace css = com::sun::star;

using Context = css::uno::Reference<css::uno::XComponentContext>;

/// Runs `task` on the office's main thread by and by. Any thread. Nothing may leave the task.
void OnMainThread(const Context& context, std::function<void()> task);

/// Shows one sentence with an OK button, in front of `frame` if it still has a window. Main thread; re-enters.
void ShowSentence(const Context& context, const css::uno::Reference<css::frame::XFrame>& frame,
                  const rtl::OUString& sentence);

/// Runs `task` as soon as no slide show runs in this office: a box would keep the keys from a show. Main thread.
void AfterShows(const Context& context, std::function<void()> task);

/// Where programs of this user can connect to the office, as long as the door is kept.
struct Channel {
    rtl::OUString pipe;  ///< its name, which nobody can guess; empty: closed
    css::uno::Reference<css::uno::XInterface> door;
};

/// Raises a UNO exception if that cannot be.
Channel OpenChannel(const Context& context);

}  // namespace kestrum::extension
