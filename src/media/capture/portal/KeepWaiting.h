// How long an answer of a person or of another program is waited for.
#pragma once

#include <functional>

namespace kestrum::media {

/// Asked about ten times a second; false ends the waiting.
using KeepWaiting = std::function<bool()>;

}  // namespace kestrum::media
