// The program's side of the media library while it records: the order of calls that configures and starts the encoder,
// the poll of its state, what each state means, and the stop. Nothing here touches pictures or samples.
#pragma once

#include "recording/Context.h"

namespace kestrum::modEncoder {

/// Configures and starts the encoder; true if it runs. Each failure has told why. Re-enters (boxes, one pump).
bool StartEncoder(const recording::Context& c);

/// Waits for the encoder to finish; true if the files were finished cleanly. Re-enters.
bool StopEncoder(const recording::Context& c);

/// One look at the encoder; runs every 3000 ms while it records. A fault ends the recording and tells why. Re-enters,
/// and may be entered again while its message is up.
void CheckEncoderState(const recording::Context& c);

/// Frames per second of a level; the comparison is exact, other texts count as "medium".
std::int32_t FrameRateOf(StringView level);

}  // namespace kestrum::modEncoder
