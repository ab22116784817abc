// A view of a web page inside a dialog, which can be told to run scripts of the page. There is no adapter for it yet,
// and no command opens the dialog that needs one (frmConfigSound): it runs in tests only.
#pragma once

#include <functional>

#include "host/String.h"

namespace kestrum::host {

class IPageView {
  public:
    virtual ~IPageView() = default;
    /// Opens a page of a local folder in place of the last one. `onLoaded` runs once from a pump, when the page's
    /// scripts can be called; never if the page cannot be shown.
    virtual void OpenPage(const String& file, std::function<void()> onLoaded) = 0;
    /// Runs a script in the page; nothing, before it has loaded.
    virtual void RunScript(const String& script) = 0;
    /// Leaves the page: its sounds end, and an `onLoaded` that has not run never does. Harmless without one.
    virtual void ClosePage() = 0;
};

}  // namespace kestrum::host
