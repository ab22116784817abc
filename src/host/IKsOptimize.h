// The conversion library. One contract for every job: a start call returns at once, a status call is polled, a stop
// call asks for the end. A status is a position in ms; negative values end the job.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::host {

namespace job_status {
constexpr std::int32_t kFinished = -1;
constexpr std::int32_t kFailed = -2;
constexpr std::int32_t kOutOfMemory = -3;
constexpr std::int32_t kSizeLimit = -256;
}  // namespace job_status

class IKsOptimize {
  public:
    virtual ~IKsOptimize() = default;
    /// 1 when the package has a webcam track; the two values are the smallest webcam size.
    virtual std::int32_t GetVideoMinDim(const String& package, std::int32_t& width, std::int32_t& height) = 0;
    /// Where the webcam picture goes in the movie; all zero means nowhere. The last value outlives a job.
    virtual void SetVideoAreaInMp4(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t left) = 0;
    /// Video bitrate in kbit/s; 0 is the library's default. The last value outlives a job.
    virtual void SetCustomBitrate(std::int32_t kilobits) = 0;
    /// Starts the conversion of `package` to `outputFolder`/media.mp4. Non-zero when started.
    virtual std::int32_t ks2mp4(const String& package, const String& workFolder, const String& outputFolder,
                                const String& programFolder, std::int32_t& width, std::int32_t& height,
                                std::int32_t& mode, std::int32_t fixedOne, std::int32_t audioBitrate,
                                std::int32_t fixedZero) = 0;
    virtual std::int32_t getKs2mp4Status() = 0;
    virtual void stopKs2mp4() = 0;
};

}  // namespace kestrum::host
