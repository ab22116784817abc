// The screen as a source of changes: which pixels of a rectangle changed, where the pointer is, and whether the screen
// is still the one that was there at the start. Windows of the product are not part of it (see OwnWindows). Decides
// what is fetched, not when. Windows and monitors are those of the X display; pixels are the display's too, or those of
// the desktop's screen cast (see ScreenPixels).
//
// One thread. After the loss of the server or of the pixels IsLost answers true and all else does nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "media/capture/Area.h"
#include "media/capture/CaptureError.h"
#include "media/capture/Picture.h"

namespace kestrum::media {

class ScreenCast;

/// The pointer's image, premultiplied ARGB, and where its upper left corner stands in the captured rectangle.
struct PointerImage {
    Area place;
    std::vector<std::uint32_t> pixels;
};

class Screen {
  public:
    /// Opens `display` (empty: the environment's) for the rectangle `area` of its desktop. Throws CaptureError if the
    /// display does not answer, or the area has an odd side or does not lie on the screen. With a `cast` the pixels are
    /// the cast's, which has to show the area's monitor as large as the display has it.
    Screen(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast = nullptr);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// Readable when Pump has something to do.
    int FileDescriptor() const;
    /// Takes in what the server has sent.
    void Pump();
    /// Something was drawn in the rectangle, or the pointer may have moved, since the last Fetch.
    bool HasNews() const;
    /// The server, the connection to it or the source of pixels has gone.
    bool IsLost() const;
    /// The monitor that held the rectangle has another place or size now, or has gone.
    bool HasNewResolution() const;

    /// Brings `picture` up to date where something was drawn (`everywhere`: reads all of it), and marks what really
    /// changed. The pointer is not part of it.
    void Fetch(BgraPicture& picture, ChangeMap& changes, bool everywhere);
    /// The pointer as it is now; an empty place if it is hidden, outside, or in the pixels already.
    PointerImage FetchPointer();

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// What a picture of an area looks like as a whole.
struct Uniformity {
    bool isUniform = false;    ///< every pixel has one colour, as on a screen that cannot be captured
    std::uint32_t colour = 0;  ///< 0x00RRGGBB of the first pixel
};

/// Looks at the area once. Throws as Screen does.
Uniformity ProbePicture(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast = nullptr);

}  // namespace kestrum::media
