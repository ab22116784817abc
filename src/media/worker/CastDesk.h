// The screen cast of the worker: at most one, asked for by the first who needs it and kept until the recording is over,
// so that the desktop is asked once and shows for no longer than needed that the screen is shared.
#pragma once

#include <memory>
#include <mutex>

#include "media/capture/portal/ScreenCast.h"

namespace kestrum::media {

class CastDesk {
  public:
    /// The cast; asks the desktop if there is none, and its user for as long as `keepWaiting` says. Throws
    /// CaptureError.
    std::shared_ptr<ScreenCast> Open(const KeepWaiting& keepWaiting);
    /// The same for a caller who waits himself: the user has a few seconds.
    std::shared_ptr<ScreenCast> OpenSoon();
    /// Lets it go; it ends with the last who uses it.
    void Close();

  private:
    std::mutex m_mutex;
    std::shared_ptr<ScreenCast> m_cast;
};

}  // namespace kestrum::media
