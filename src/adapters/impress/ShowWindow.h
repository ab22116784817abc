// The window of a running show: found among the office's frames, measured by the X server (the office's own answer is
// wrong on a second monitor).
#pragma once

#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <cstdint>
#include <string>

#include "adapters/impress/OfficeDocument.h"

namespace kestrum::impress {

/// Pixels of the desktop.
struct WindowRectangle {
    std::int32_t left = 0, top = 0, width = 0, height = 0;
};

/// The full-screen frame of the document's show; its document window if the show runs inside that. Inside a job.
css::uno::Reference<css::frame::XFrame> FindShowFrame(const css::uno::Reference<css::uno::XComponentContext>& remote,
                                                      const css::uno::Reference<css::frame::XModel>& model);

/// X window of a frame, 0 if it has none. Inside a job.
std::uint32_t XidOf(const css::uno::Reference<css::frame::XFrame>& frame);

/// Brings the frame's window to the front and gives it the keyboard. Inside a job.
void BringToFront(const css::uno::Reference<css::frame::XFrame>& frame);

/// Place of window `xid` on X display `display` (empty: DISPLAY). Raises host::Error.
WindowRectangle MeasureWindow(const std::string& display, std::uint32_t xid);

}  // namespace kestrum::impress
