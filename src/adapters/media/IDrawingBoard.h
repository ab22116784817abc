// Where the lecturer draws over a running show: the sheets behind the media library's canvas and whiteboard calls. What
// is drawn is on the screen and so in the recording, which takes the screen's picture.
#pragma once

#include <cstdint>

#include "host/IMonitors.h"

namespace kestrum::adapters {

class IDrawingBoard {
  public:
    enum class Sheet {
        Canvas,      ///< see-through: one draws on what the show shows
        Whiteboard,  ///< white and opaque
    };

    virtual ~IDrawingBoard() = default;
    /// Lays an empty sheet over the monitor that holds most of `area`, the primary one for an empty rectangle. One
    /// sheet is open at a time: another one closes. Nothing happens if it is open already.
    virtual void Open(Sheet sheet, const host::Rect& area) = 0;
    /// Takes the sheet away with all that was drawn on it. Nothing happens if it is not open.
    virtual void Close(Sheet sheet) = 0;
    /// False too once its user has closed it.
    virtual bool IsOpen(Sheet sheet) const = 0;
    /// The pen of the strokes that begin from now on: width in pixels, at least 1; colour 0x00BBGGRR.
    virtual void SetPen(std::int32_t width, std::int32_t colour) = 0;
};

}  // namespace kestrum::adapters
