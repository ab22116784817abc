// What is looked at before a recording, so that a lecture never begins that could not be kept. Each function answers
// with the sentence for the user, or nothing if all is well; none changes anything.
#pragma once

#include <optional>

#include "support/Context.h"

namespace kestrum::app {

/// No other recording runs for this user: two would fight for the screen, and the second show would be part of the
/// first recording.
std::optional<String> CheckNoRecording(const support::Context& c);

/// Automatic recording is switched on: else a show that is started by hand would run unrecorded.
std::optional<String> CheckAutomatic(const support::Context& c);

/// The deck is there and can be read, its name leaves room for the endings of the files beside it, its folder takes
/// files and has room, a package beside it is one of ours.
std::optional<String> CheckDeck(const support::Context& c, const String& deck);

/// A microphone (or another source) is there.
std::optional<String> CheckSound(const support::Context& c);

/// A window of ours that is not uniform arrives in the captured picture. Shows that window for a moment (re-enters).
std::optional<String> CheckPicture(const support::Context& c);

}  // namespace kestrum::app
