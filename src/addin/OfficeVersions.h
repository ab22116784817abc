// Major versions of Office from which on something is different.
#pragma once

#include <cstdint>

namespace kestrum::addin {

/// The first with a ribbon.
constexpr std::int16_t kOffice2007 = 12;
/// The first with a customisation file of today's format and name. Between the two none was published.
constexpr std::int16_t kOffice2010 = 14;
/// The first whose uploads run in a process of their own.
constexpr std::int16_t kOffice2013 = 15;

}  // namespace kestrum::addin
