// The data files that the MP4 player reads beside its page.
#pragma once

#include <cstdint>

#include "publish/Context.h"

namespace kestrum::publish {

/// config.js: what is played and its index. Takes the three dots off the titles of indented entries, in `project` too.
/// Fails with host::Error 9 for a duration that is no time.
String PlayerConfig(support::State& state, CProjectFile& project, std::int32_t width, std::int32_t height);

/// ques_config.js: an empty quiz and its texts.
String QuizConfig(const support::Context& c);

}  // namespace kestrum::publish
