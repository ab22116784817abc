// One entry of a recording's index: where in the media a slide begins, or a link without a place in the media.
#pragma once

#include "host/String.h"

namespace kestrum {

/// A plain record. Numbers are kept as the decimal text that the project file holds.
struct CIndexItem {
    String title;
    /// Start in ms. Negative: no place in the media. "-1" is a link; an embedded player (`Url` holds "vplayer") has the
    /// negative of its running time.
    String pos;
    /// Local date and time of the mark, as text.
    String RecDate;
    /// End in ms; filled by CIndex::UpdateLen.
    String PosEnd;
    /// Length for display; filled by CIndex::UpdateLen. "-" for a link.
    String Length;
    /// Target of a link, else empty.
    String Url;
    /// Ticked in a publishing dialog.
    bool Selected = false;
    /// Written to the project file when not empty, never read back.
    String size;
};

}  // namespace kestrum
