// What a person should know before a recording begins: what would go wrong with it or be missing from it, and what it
// continues. Decides what is worth a line, and what counts most. Nothing here keeps a recording from starting, and
// nothing is changed but the microphone that the media library has in mind, which each start chooses anew.
//
// Whether a microphone hears anything is not asked: before a lecture a room is silent. That it is switched off, is.
#pragma once

#include <vector>

#include "recording/Context.h"

namespace kestrum::recording {

/// In the order of their weight.
enum class AdviceKind {
    NoMicrophone,
    MicrophoneOff,       ///< muted, or its level stands at nothing
    MicrophoneReplaced,  ///< the one that was chosen is not there
    LittleSpace,
    TemporaryFolder,     ///< the recording would lie where the system clears up
    SynchronisedFolder,  ///< another program copies the growing package again and again
    ScreenSleeps,        ///< nothing on this desktop keeps the screen awake
    LargeScreen,         ///< of a new recording; the window of the Record command asks by itself
    Continues,           ///< nothing is wrong: the recording that is continued
};

struct Advice {
    AdviceKind kind;
    String line;
};

/// What there is to say about a recording of `deck` (full path) that would start now, what counts most first. Asks the
/// media library for the microphone. What cannot be asked is left out.
std::vector<Advice> StartAdvice(const Context& c, const String& deck);

}  // namespace kestrum::recording
