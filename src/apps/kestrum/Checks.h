// What is looked at before a deck is opened for recording, with this session's own settings, sound and screen. Both
// throw host::Error with the sentence of the first thing that is wrong.
#pragma once

#include "apps/commandline/Console.h"
#include "apps/kestrum/ScreenProgram.h"

namespace kestrum::app {

/// Throws the sentence, if there is one.
void RefuseIf(const std::optional<String>& sentence);

/// What needs no screen comes before one is asked for: the deck, its folder, its package, another recording.
/// `automatic`: shows are recorded only if the settings say so.
void CheckWithoutScreen(Console& console, const String& deck, bool automatic);

/// Sound, the desktop's permission and picture. Re-enters.
void CheckWithScreen(ScreenProgram& program);

}  // namespace kestrum::app
