// Whether a package's media is sound, of our generation, and in step with the index; and the repair where it is not.
#pragma once

#include <cstdint>

#include "host/String.h"
#include "project/Context.h"

namespace kestrum::modMediaKs {

/// Checks the media's structure under a status window; `whole` may take minutes and recovers an interrupted recording.
/// `failedRecording` chooses the texts. False after telling why. Re-enters.
bool VerifyMedia(const project::Context& c, const String& media, bool whole, bool failedRecording);

/// True for media of generation 8.0, or the version 127.255 that marks no generation. False after telling so.
bool IsKsFmtCompatible(const project::Context& c, const String& media);

/// Brings g_Project's index and duration in step with the package: an entry at 0 comes first, entries that are no key
/// frame are removed and told, a differing length is repaired if the user wants. False ends the command. Re-enters.
bool VerifyIndex(const project::Context& c);

/// True if `pos` is a key frame of `media`. The list is read if `reload` is set or nothing was read yet. Throws
/// host::Error if the list cannot be read: no answer is not "no key frame".
bool IsKeyFramePos(const project::Context& c, std::int32_t pos, bool reload, const String& media);

/// Position of the package's last key frame in ms, -1 without package or media.
std::int32_t LastKeyFramePos(const project::Context& c);

}  // namespace kestrum::modMediaKs
