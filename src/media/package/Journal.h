// The journal: the index entries of a running recording as text, kept in the package so that a crash loses none.
// One line per entry ending in LF, four fields separated by TAB: pos (decimal ms), recdate, title, url. In a field
// backslash, TAB, LF and CR are written \\ \t \n \r. The text is always the whole list.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

std::string FormatJournal(const std::vector<JournalEntry>& entries);
/// Reads what can be read: a line whose position is no number is left out, missing fields are empty, an unknown escape
/// stands for itself.
std::vector<JournalEntry> ParseJournal(std::string_view text);

}  // namespace kestrum::media
