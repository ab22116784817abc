// Cameras as a source of pictures. Decides where they are looked for: the system's video devices, or, where the
// environment names a folder (KESTRUM_CAMERAS), the files in it, for machines without a camera and for tests. A file
// that appears in the folder is a camera plugged in, one that goes a camera pulled out.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "media/capture/Picture.h"

namespace kestrum::media {

struct CameraInfo {
    std::string id;           ///< OpenCamera finds it by this
    std::string description;  ///< as a person knows it; twins are possible
};

class Camera {
  public:
    virtual ~Camera() = default;

    /// Waits up to `timeoutMs` for the next picture and draws it into `picture`, whole, with black bars where the
    /// proportions differ. False if none came. Throws CaptureError (kNoCamera) when the camera has gone.
    virtual bool Read(BgraPicture& picture, int timeoutMs) = 0;
};

/// The cameras there are now, in a fixed order.
std::vector<CameraInfo> ListCameras();

/// Opens a camera, which gives pictures from now on; they come in a size near the one named. Throws CaptureError
/// (kNoCamera) if it is not there or another program has it.
std::unique_ptr<Camera> OpenCamera(const std::string& id, int width, int height);

}  // namespace kestrum::media
