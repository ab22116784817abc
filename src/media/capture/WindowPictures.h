// The pictures of single windows, also where others cover them: the server keeps each window's picture apart for as
// long as that is asked for (COMPOSITE, in its automatic form, which changes nothing on the screen). Decides when it
// is asked for, and which parts of a picture can be relied on.
//
// A window that was covered before its picture was kept apart is unknown there until it has been drawn again; what is
// unknown is never painted.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdint>
#include <vector>

#include "media/capture/Areas.h"
#include "media/capture/Picture.h"
#include "media/capture/SharedImage.h"
#include "media/capture/WindowStack.h"

namespace kestrum::media {

class WindowPictures {
  public:
    /// `image` is shared with the reader of the screen: each reading ends the validity of the last.
    WindowPictures(xcb_connection_t* connection, xcb_window_t root, SharedImage& image);
    ~WindowPictures();
    WindowPictures(const WindowPictures&) = delete;
    WindowPictures& operator=(const WindowPictures&) = delete;

    /// From now on the pictures of those of `windows` (the lowest first) that touch `wanted` are kept; an empty
    /// `wanted` ends that. `covered` is what other windows hide of them. `isBlended`: a compositor makes windows
    /// see-through.
    void Follow(const std::vector<TopLevel>& windows, const Areas& wanted, const Areas& covered, bool isBlended);
    void Handle(const xcb_generic_event_t& event);
    /// Something was drawn in a window that is followed.
    bool HasNews() const { return m_wasDrawn; }
    /// Where; on the desktop.
    Areas TakeDrawn();
    /// Paints what of the windows lies in `part` of the desktop over `pixels`, `part`'s lines without padding. What is
    /// not known of a window keeps the colour that `pixels` had.
    void Paint(const Area& part, std::vector<std::uint32_t>& pixels);

  private:
    struct Kept {
        TopLevel window;
        xcb_pixmap_t picture = 0;
        std::uint32_t damage = 0;
        Areas shape;    ///< on the desktop
        Areas unknown;  ///< on the desktop

        void MoveTo(const TopLevel& now);
        bool Hides(const Area& part, bool isBlended) const;
    };

    bool IsKeptApart(xcb_window_t window);
    void Begin(const Areas& covered);
    void End();
    void Drop(const Kept& kept);
    void Refresh(Kept& kept);
    void TakePicture(Kept& kept);
    void WatchDrawing(Kept& kept);
    void PaintWindow(const Kept& kept, const Area& part, std::vector<std::uint32_t>& pixels);

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    SharedImage& m_image;
    xcb_xfixes_region_t m_region = 0;
    std::uint8_t m_damageEvent = 0;
    bool m_isAvailable = false;
    bool m_isActive = false;
    bool m_isBlended = false;
    bool m_wasDrawn = false;
    std::vector<Kept> m_kept;
};

}  // namespace kestrum::media
