// The sound sources of a recording, each read on the recording's own time line and mixed into one stream. Decides what
// happens when a source goes: its place is filled with silence while it is looked for once a second; it is never
// exchanged for another one. Whoever records is told of each loss and each return.
//
// All functions run on one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "media/capture/AudioEncoder.h"

namespace kestrum::media {

class SoundInput {
  public:
    /// `sources`: names as the server knows them, one or more. The server converts to the layout.
    SoundInput(std::vector<std::string> sources, const AudioLayout& layout);
    ~SoundInput();
    SoundInput(const SoundInput&) = delete;
    SoundInput& operator=(const SoundInput&) = delete;

    /// Opens all sources and waits up to 5 s until they run. Throws CaptureError (kNoSound) naming the one that does
    /// not.
    void Open();
    /// Waits up to 4 s until the age of the samples can be believed, without which they cannot be placed exactly.
    void Settle();
    /// The recording begins at this moment.
    void Start(std::int64_t startNs);
    /// Waits up to `timeoutMs` for sound and reads it; looks after lost sources.
    void Pump(int timeoutMs);
    /// Appends to `out` the mixed samples that all sources have reached.
    void TakeMixed(std::vector<float>& out);
    /// Appends silence up to this moment to whatever is behind it.
    void FillTo(std::int64_t ns);
    /// Every source is there and gives sound.
    bool IsComplete() const;
    /// `onChange` is called by Pump with the name of a source that was lost, or has given sound again.
    using ChangeSink = std::function<void(const std::string& source, bool isBack)>;
    void OnChange(ChangeSink onChange);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
