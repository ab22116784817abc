// The system's video devices (Video4Linux 2) as cameras: /dev/video0 and so on, as far as they give moving pictures in
// a form that every webcam has, plain (YUYV) or as JPEGs.
#pragma once

#include "media/capture/Camera.h"

namespace kestrum::media {

std::vector<CameraInfo> ListV4l2Cameras();

/// `device` is the device file. Throws CaptureError (kNoCamera).
std::unique_ptr<Camera> OpenV4l2Camera(const std::string& device, int width, int height);

}  // namespace kestrum::media
