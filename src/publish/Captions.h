// The captions of a lecture: .vtt or .srt files beside the package with its name, "lecture.vtt" or "lecture.de.srt".
// They are carried along in captions.js, because a page opened as a file may load a script but no captions.
#pragma once

#include <string>
#include <vector>

#include "publish/Context.h"

namespace kestrum::publish {

struct CaptionTrack {
    String file;      ///< name without folder
    String language;  ///< its tag, "de" or "zh-Hans"; empty if the name has none
    String webVtt;
};

struct Captions {
    std::vector<CaptionTrack> tracks;
    /// What was found, or how captions are added, and what is wrong with them; for people.
    String sentence;
};

/// Looks beside the open package. Never fails: what cannot be read is named in the sentence.
Captions FindCaptions(const support::Context& c);

/// captions.js: the list `captions` of objects with lang, label and text.
String CaptionsScript(support::State& state, const Captions& captions);

}  // namespace kestrum::publish
