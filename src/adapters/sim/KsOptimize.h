// The conversion library: a job advances with virtual time and leaves `media.mp4` in its output folder. Faults:
// "ksOptimize.ks2mp4" (does not start).
#pragma once

#include <deque>

#include "adapters/sim/FileSystem.h"
#include "adapters/sim/Transcript.h"
#include "host/IKsOptimize.h"

namespace kestrum::sim {

class KsOptimize : public host::IKsOptimize {
  public:
    KsOptimize(Faults& faults, Transcript& transcript, EventLoop& loop, FileSystem& fs)
        : m_faults(faults), m_transcript(transcript), m_loop(loop), m_fs(fs) {}

    std::int32_t GetVideoMinDim(const String& package, std::int32_t& width, std::int32_t& height) override;
    void SetVideoAreaInMp4(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t left) override;
    void SetCustomBitrate(std::int32_t kilobits) override;
    std::int32_t ks2mp4(const String& package, const String& workFolder, const String& outputFolder,
                        const String& programFolder, std::int32_t& width, std::int32_t& height, std::int32_t& mode,
                        std::int32_t fixedOne, std::int32_t audioBitrate, std::int32_t fixedZero) override;
    std::int32_t getKs2mp4Status() override;
    void stopKs2mp4() override;

    /// Media milliseconds that one virtual millisecond converts.
    std::int32_t speed = 20;
    /// Length of the media; set by the test that starts a job.
    std::int32_t mediaLengthMs = 10000;
    /// Statuses that the next polls give in place of the true one.
    std::deque<std::int32_t> nextStatuses;
    std::int32_t webcamTrack = 0, webcamWidth = 0, webcamHeight = 0;
    std::string output = "an mp4 file";
    bool running = false;

  private:
    Faults& m_faults;
    Transcript& m_transcript;
    EventLoop& m_loop;
    FileSystem& m_fs;
    std::int64_t m_startedAt = 0;
    String m_target;
};

}  // namespace kestrum::sim
