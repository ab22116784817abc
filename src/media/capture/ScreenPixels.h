// Where the pixels of the screen come from: the display's root window, or the desktop's screen cast where a display
// shows its own windows only. Decides nothing about windows: what is on the screen is in the pixels.
//
// All places lie in the captured rectangle. One thread.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

#include "media/capture/Areas.h"

namespace kestrum::media {

class ScreenPixels {
  public:
    ScreenPixels() = default;
    virtual ~ScreenPixels() = default;
    ScreenPixels(const ScreenPixels&) = delete;
    ScreenPixels& operator=(const ScreenPixels&) = delete;

    /// Readable when Pump has something to do; -1 if the events of the display tell all.
    virtual int FileDescriptor() const = 0;
    /// Takes in what came by the descriptor.
    virtual void Pump() = 0;
    /// Takes in an event of the display.
    virtual void Handle(const xcb_generic_event_t& event) = 0;
    /// Something was drawn since the last TakeDrawn.
    virtual bool HasNews() const = 0;
    /// No more pixels will come.
    virtual bool IsLost() const = 0;
    /// The pixels come in another size than at the start, and do not fit the rectangle any more.
    virtual bool HasNewSize() const = 0;
    /// The pointer is in the pixels.
    virtual bool ShowsPointer() const = 0;

    /// Where something was drawn since the last call; Read gives pixels at least as new.
    virtual Areas TakeDrawn() = 0;
    /// Pixels of `part` as 0x00RRGGBB, its lines without padding. Valid until the next call; nullptr if there are none
    /// now.
    virtual const std::uint32_t* Read(const Area& part) = 0;
};

}  // namespace kestrum::media
