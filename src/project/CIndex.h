// The working list of index entries behind a publishing dialog: which are picked, how long each lasts, and where it
// lies when only the picked ones are played one after the other. No error handling of its own: a position that is not
// a number, an overflow or an entry number out of range is host::Error and goes to the caller.
#pragma once

#include <cstdint>

#include "host/IKsLib.h"
#include "project/IndexItems.h"

namespace kestrum {

class CIndex {
  public:
    IndexItems items;

    std::int32_t count() const { return items.Count(); }

    void Add(String title, String pos, String recDate, String url, String length, String posEnd, bool selected);
    /// Keeps the selected entries, removes all others.
    void Clear();
    /// Adds every entry to `target`, none selected; `size` stays behind.
    void CopyTo(CIndex& target) const;
    /// Renumbers so that the pieces follow each other from 0; links stay as they are. Needs UpdateLen before.
    void UpdatePos();
    /// Fills `PosEnd` and `Length`; the last entry ends at the media's length as `ksLib` gives it.
    void UpdateLen(host::IKsLib& ksLib, const String& mediaFile);
    /// `PosEnd` of the nearest entry before number `i` that lies in the media; -1 if there is none.
    std::int32_t PrevKsPosEnd(std::int32_t i) const;
    /// `pos` of the nearest entry after number `i` that lies in the media; -1 if there is none.
    std::int32_t NextKsPos(std::int32_t i) const;
};

}  // namespace kestrum
