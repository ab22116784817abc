// The level of one microphone while nothing is recorded, for a dialog that lets a person set it.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "media/capture/SoundInput.h"

namespace kestrum::media {

class SoundMeter {
  public:
    /// Opens the source. Throws CaptureError (kNoSound). `onLevel` is called about 20 times a second on a thread of the
    /// meter, and with 0 at last.
    SoundMeter(const std::string& source, std::function<void(int)> onLevel);
    ~SoundMeter();
    SoundMeter(const SoundMeter&) = delete;
    SoundMeter& operator=(const SoundMeter&) = delete;

  private:
    void Run();

    SoundInput m_input;
    const std::function<void(int)> m_onLevel;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace kestrum::media
