// The desktop's cast of a monitor as the source of pixels. Decides that a cast is used only if it shows the monitor
// that is recorded, pixel for pixel.
#pragma once

#include <memory>
#include <vector>

#include "media/capture/ScreenPixels.h"
#include "media/capture/portal/ScreenCast.h"

namespace kestrum::media {

class CastPixels final : public ScreenPixels {
  public:
    /// `area`: the captured rectangle, `monitor` the one that holds it, both on the desktop of the display. Throws
    /// CaptureError (kNoDisplay) if the cast shows another monitor, or this one in another size.
    CastPixels(std::shared_ptr<ScreenCast> cast, const Area& area, const Area& monitor);

    int FileDescriptor() const override { return m_cast->Frames().FileDescriptor(); }
    void Pump() override { m_cast->Frames().Acknowledge(); }
    void Handle(const xcb_generic_event_t&) override {}
    bool HasNews() const override { return m_cast->Frames().HasNewFrame(); }
    bool IsLost() const override { return m_cast->IsLost(); }
    bool HasNewSize() const override { return m_cast->Frames().Size() != m_size; }
    bool ShowsPointer() const override { return m_cast->ShowsPointer(); }
    Areas TakeDrawn() override;
    const std::uint32_t* Read(const Area& part) override;

  private:
    const std::shared_ptr<ScreenCast> m_cast;
    const Area m_inFrame;  ///< the captured rectangle in the cast's picture
    const FrameExtent m_size;
    std::vector<std::uint32_t> m_pixels;
};

}  // namespace kestrum::media
