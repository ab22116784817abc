// The root window of an X display as the source of pixels: what is drawn on it is told by the server (DAMAGE).
#pragma once

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include "media/capture/ScreenPixels.h"
#include "media/capture/SharedImage.h"

namespace kestrum::media {

class RootPixels final : public ScreenPixels {
  public:
    /// `area`: the captured rectangle. `image` as with WindowPictures. Both extensions have been asked for by the
    /// caller; `damageEvent` is the first event of DAMAGE.
    RootPixels(xcb_connection_t* connection, const xcb_screen_t& screen, const Area& area, SharedImage& image,
               std::uint8_t damageEvent);

    int FileDescriptor() const override { return -1; }
    void Pump() override {}
    void Handle(const xcb_generic_event_t& event) override;
    bool HasNews() const override { return m_wasDrawn; }
    bool IsLost() const override { return false; }
    bool HasNewSize() const override { return false; }
    bool ShowsPointer() const override { return false; }
    Areas TakeDrawn() override;
    const std::uint32_t* Read(const Area& part) override;

  private:
    xcb_connection_t* m_connection;
    const xcb_screen_t& m_screen;
    const Area m_area;
    SharedImage& m_image;
    const std::uint8_t m_damageEvent;
    xcb_damage_damage_t m_damage = 0;
    xcb_xfixes_region_t m_drawnRegion = 0;
    bool m_wasDrawn = false;
};

}  // namespace kestrum::media
