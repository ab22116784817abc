// Cameras that are files: a movie that is played for ever, at its own speed, or, for an empty file, a drawn test
// picture in which a white bar wanders over a blue ground 15 times a second. A file that is removed is a camera that
// was pulled out.
#pragma once

#include "media/capture/Camera.h"

namespace kestrum::media {

/// Throws CaptureError (kNoCamera) if there is no such file, or it is no movie.
std::unique_ptr<Camera> OpenFileCamera(const std::string& path);

}  // namespace kestrum::media
