// The pictures of a PipeWire node, the newest at hand. Decides that a picture is never copied but where it is asked
// for: the newest one and the one being read stay with us, all others go back at once.
//
// Pictures come on a thread of PipeWire; the functions may be called from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "media/capture/Areas.h"
#include "media/capture/WakeSignal.h"

namespace kestrum::media {

struct FrameExtent {
    int width = 0;
    int height = 0;
    bool operator==(const FrameExtent&) const = default;
};

class FrameStream {
  public:
    /// `remote` is a connection to PipeWire, the object's from here on. Throws CaptureError (kNoDisplay) if PipeWire
    /// does not take it.
    FrameStream(int remote, std::uint32_t node);
    ~FrameStream();
    FrameStream(const FrameStream&) = delete;
    FrameStream& operator=(const FrameStream&) = delete;

    /// Readable when a picture came or the stream ended, until Acknowledge.
    int FileDescriptor() const;
    void Acknowledge();
    /// A picture came since the last TakeFrame.
    bool HasNewFrame() const;
    /// The node has gone, or has had nothing to do with us for seconds.
    bool IsLost() const;
    /// Of the newest picture; 0x0 before the first, and where pictures come that cannot be read (turned ones).
    FrameExtent Size() const;

    /// Makes the newest picture the one that Copy reads. Where pictures changed since the last call, as their sender
    /// says; all of it if he does not.
    Areas TakeFrame();
    /// Pixels of `part` as 0x00RRGGBB, line by line without padding. False if no picture is at hand, or it is smaller.
    bool Copy(const Area& part, std::uint32_t* target) const;

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
