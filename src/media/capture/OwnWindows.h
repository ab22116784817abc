// Where windows of the product lie in the captured rectangle, and what the screen would show there without them. A
// compositor paints a window's shadow beside it, and takes a window off the screen a little later than the window goes:
// with one, a margin around the window, and for a while each place it was at, are treated like the window itself.
//
// As long as no own window lies in the rectangle nothing is asked of the server but to tell of windows that appear.
#pragma once

#include <cstdint>
#include <vector>

#include "media/capture/Areas.h"
#include "media/capture/Picture.h"
#include "media/capture/WindowPictures.h"
#include "media/capture/WindowStack.h"

namespace kestrum::media {

class OwnWindows {
  public:
    /// `area`: the captured rectangle. Areas given out are places in it. `image` as with WindowPictures.
    OwnWindows(xcb_connection_t* connection, xcb_window_t root, int screenNumber, Stacking stacking, const Area& area,
               SharedImage& image);

    void Handle(const xcb_generic_event_t& event);
    /// Windows moved, or something was drawn below an own one.
    bool HasNews() const { return m_stack.IsStale() || (m_pictures.HasNews() && !m_stack.HasCompositor()); }
    /// Windows moved: what Hidden answers may be out of date.
    bool IsStale() const { return m_stack.IsStale(); }

    /// Asks the server where the windows are now, if they moved; `again`: also if it told nothing, as of a new shape or
    /// compositor. The areas that are not hidden any more.
    Areas Update(bool again);
    /// What must not be taken from the screen as it is.
    const Areas& Hidden() const { return m_hidden; }
    /// The parts of Hidden that changed since the last call; all of it if asked for `everywhere`. With a compositor
    /// what was drawn reaches the screen a little later: then it counts from when the screen was drawn
    /// (`isScreenDrawn`), so that all of a picture shows the same moment.
    Areas TakeChanged(bool isScreenDrawn, bool everywhere);
    /// `part` as it looks without own windows; where nothing is known, as in `picture`.
    std::vector<std::uint32_t> Compose(const Area& part, const BgraPicture& picture);

  private:
    struct Past {
        Area place;
        std::int64_t untilNs = 0;
    };

    void Follow();
    void FindPlaces();
    void KeepPast(const Areas& gone);
    void ForgetPast();
    Areas InArea(const Area& window) const;

    Area m_area;
    WindowStack m_stack;
    WindowPictures m_pictures;
    Areas m_places;  ///< of the own windows
    Areas m_hidden;
    Areas m_changed;
    std::vector<Past> m_past;
};

}  // namespace kestrum::media
