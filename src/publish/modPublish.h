// What all publish dialogs share: where the output goes, how progress is put, how the result is opened.
#pragma once

#include "publish/Context.h"

namespace kestrum::modPublish {

/// The colour 0x00BBGGRR of a status text that tells an end without success.
inline constexpr std::int32_t kEndedColour = 0x606060;

/// Time between two looks at a job, ms.
inline constexpr std::int32_t kPollMs = 100;

/// `base`, or `base` + "(1)", "(2)" ... : the first name that no folder has.
String FreeFolder(const support::Context& c, const String& base);

/// "stage ... 07.50%".
String PercentText(const String& stage, float percent);

/// "stage ... text".
String StageText(const String& stage, const String& text);

/// `value` down to a multiple of 4, as the encoders want picture sides; towards zero.
std::int32_t DownToFour(std::int32_t value);

/// What is asked when a movie has been published; Yes opens the page.
String SuccessQuestion(const support::Context& c);

/// Opens a published page with the browser of the desktop. False if there is none.
bool OpenPage(const support::Context& c, const String& page);

}  // namespace kestrum::modPublish
