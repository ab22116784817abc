// The sending side of a screen cast, as a compositor is: pictures of one colour, with a word about where they changed.
#pragma once

#include <cstdint>
#include <memory>

#include "media/capture/Areas.h"

namespace kestrum::media {

class CastSender {
  public:
    /// `remote`: a connection to PipeWire, the object's from here on.
    CastSender(int remote, int width, int height);
    ~CastSender();
    CastSender(const CastSender&) = delete;
    CastSender& operator=(const CastSender&) = delete;

    /// The node to be read from.
    std::uint32_t Node() const;
    /// A reader has been linked, and takes pictures.
    bool IsRead() const;
    /// Sends a picture of which `part` has this colour (0x00RRGGBB), and says so if `tells`. False if no room was free.
    bool Send(std::uint32_t colour, const Area& part, bool tells);
    /// Sends a picture that must not be used.
    bool SendDamaged();
    /// Sends pictures of another size from now on.
    void Resize(int width, int height);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
