#include "media/capture/CastPixels.h"

#include <string>
#include <utility>

#include "media/capture/CaptureError.h"

namespace kestrum::media {
namespace {

std::string Text(int width, int height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

/// The size of its pictures, which is the monitor's.
FrameExtent RequireMonitor(ScreenCast& cast, const Area& monitor) {
    const FrameExtent size = cast.Frames().Size();
    const auto place = cast.Place();
    const bool isElsewhere = place && (place->x != monitor.x || place->y != monitor.y);
    if (!isElsewhere && size == FrameExtent{monitor.width, monitor.height}) return size;
    cast.Forget();
    if (isElsewhere) {
        throw CaptureError(CaptureErrorKind::kNoDisplay,
                           "The desktop gives the picture of another monitor than the one that is recorded; record "
                           "again, and choose that one.");
    }
    throw CaptureError(CaptureErrorKind::kNoDisplay, "The desktop gives a picture of " + Text(size.width, size.height) +
                                                         " for a monitor of " + Text(monitor.width, monitor.height) +
                                                         "; set the monitor's scale to 100 % and record again.");
}

}  // namespace

CastPixels::CastPixels(std::shared_ptr<ScreenCast> cast, const Area& area, const Area& monitor)
    : m_cast(std::move(cast)),
      m_inFrame(Moved(area, -monitor.x, -monitor.y)),
      m_size(RequireMonitor(*m_cast, monitor)) {}

Areas CastPixels::TakeDrawn() {
    Areas drawn = Intersect(m_cast->Frames().TakeFrame(), m_inFrame);
    for (Area& area : drawn) area = Moved(area, -m_inFrame.x, -m_inFrame.y);
    return drawn;
}

const std::uint32_t* CastPixels::Read(const Area& part) {
    m_pixels.resize(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
    return m_cast->Frames().Copy(Moved(part, m_inFrame.x, m_inFrame.y), m_pixels.data()) ? m_pixels.data() : nullptr;
}

}  // namespace kestrum::media
