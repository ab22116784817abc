// The conversion library over the media worker: each conversion is a process `ksmedia convert-mp4`. One runs at a time;
// starting another ends the one before. Webcam area and bitrate outlive a job.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/media/ConversionProcess.h"
#include "host/IKsLib.h"
#include "host/IKsOptimize.h"

namespace kestrum::adapters {

class MediaOptimize : public host::IKsOptimize {
  public:
    /// `worker`: path of the program ksmedia. `packages` answers for the picture size and the webcam; it outlives this
    /// object.
    MediaOptimize(String worker, host::IKsLib& packages);

    std::int32_t GetVideoMinDim(const String& package, std::int32_t& width, std::int32_t& height) override;
    void SetVideoAreaInMp4(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t left) override;
    void SetCustomBitrate(std::int32_t kilobits) override;
    /// A size that is the package's rounded down to a multiple of 4 means the package's own: it is written back, and
    /// the pictures need no scaling. Other sides are made even.
    std::int32_t ks2mp4(const String& package, const String& workFolder, const String& outputFolder,
                        const String& programFolder, std::int32_t& width, std::int32_t& height, std::int32_t& mode,
                        std::int32_t fixedOne, std::int32_t audioBitrate, std::int32_t fixedZero) override;
    std::int32_t getKs2mp4Status() override;
    void stopKs2mp4() override;

  private:
    struct Area {
        std::int32_t width = 0, height = 0, top = 0, left = 0;
    };
    struct Size {
        std::int32_t width = 0, height = 0;
    };

    void KeepPackageSize(const String& package, std::int32_t& width, std::int32_t& height);
    Area AreaIn(const Size& asked, std::int32_t width, std::int32_t height) const;
    std::vector<std::string> SettingArguments(const Area& area) const;

    std::string m_worker;
    host::IKsLib& m_packages;
    Area m_area;
    std::int32_t m_bitrate = 0;
    std::unique_ptr<ConversionProcess> m_job;
};

}  // namespace kestrum::adapters
