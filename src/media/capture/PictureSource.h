// The picture of a recording: the screen's rectangle with the pointer in it, in the frame of the package, kept up to
// date piece by piece.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "media/capture/Picture.h"
#include "media/capture/PictureFitter.h"
#include "media/capture/PointerOverlay.h"
#include "media/capture/Screen.h"

namespace kestrum::media {

class PictureSource {
  public:
    /// `frameWidth`, `frameHeight`: size of the pictures given out. The others as with Screen. Throws CaptureError.
    PictureSource(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast, int frameWidth,
                  int frameHeight);

    Screen& GetScreen() { return m_screen; }
    const Screen& GetScreen() const { return m_screen; }
    /// Takes over what changed on the screen (`everywhere`: compares all of it, which finds what the server did not
    /// tell). True if the picture changed.
    bool Refresh(bool everywhere);
    /// The picture now.
    const I420Picture& Picture() const { return m_picture; }
    /// What changed since the last Encoded, in macroblocks of the picture.
    const ChangeMap& Changes() const { return m_frameChanges ? *m_frameChanges : m_changes; }
    /// The picture has been encoded: changes count from here.
    void Encoded();

  private:
    void Convert();

    Screen m_screen;
    BgraPicture m_pixels;
    ChangeMap m_fresh;    ///< since the last Refresh
    ChangeMap m_changes;  ///< since the last Encoded
    PointerOverlay m_pointer;
    I420Picture m_picture;
    std::optional<PictureFitter> m_fitter;
    std::optional<ChangeMap> m_frameChanges;  ///< only with a fitter: all or nothing
};

}  // namespace kestrum::media
