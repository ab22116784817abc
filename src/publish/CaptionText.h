// Captions as people have them, .vtt or .srt files of any program and encoding, brought to the one form that the page
// reads: WebVTT with times and words and nothing else. Notes, styles and numbers stay behind.
#pragma once

#include <cstdint>
#include <string>

#include "host/String.h"

namespace kestrum::publish {

enum class CaptionFormat { WebVtt, SubRip };

struct CaptionText {
    String webVtt;
    std::int32_t cues = 0;     ///< in `webVtt`
    std::int32_t leftOut = 0;  ///< those whose times cannot be understood
};

/// Never fails: what is no caption is passed over. UTF-8 and UTF-16 are known by their marks, UTF-8 also without; other
/// bytes are taken for Windows' western European ones.
CaptionText ReadCaptions(const std::string& bytes, CaptionFormat format);

}  // namespace kestrum::publish
