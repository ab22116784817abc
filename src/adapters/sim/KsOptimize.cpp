#include "adapters/sim/KsOptimize.h"

namespace kestrum::sim {

namespace {

String Number(std::int64_t value) {
    return host::FromUtf8(std::to_string(value));
}

}  // namespace

std::int32_t KsOptimize::GetVideoMinDim(const String&, std::int32_t& width, std::int32_t& height) {
    width = webcamWidth;
    height = webcamHeight;
    return webcamTrack;
}

void KsOptimize::SetVideoAreaInMp4(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t left) {
    m_transcript.Add(u"ksOptimize.SetVideoAreaInMp4 " + Number(width) + u" " + Number(height) + u" " + Number(top) +
                     u" " + Number(left));
}

void KsOptimize::SetCustomBitrate(std::int32_t kilobits) {
    m_transcript.Add(u"ksOptimize.SetCustomBitrate " + Number(kilobits));
}

std::int32_t KsOptimize::ks2mp4(const String& package, const String& workFolder, const String& outputFolder,
                                const String& programFolder, std::int32_t& width, std::int32_t& height,
                                std::int32_t& mode, std::int32_t fixedOne, std::int32_t audioBitrate,
                                std::int32_t fixedZero) {
    m_transcript.Add(u"ksOptimize.ks2mp4 " + package + u" " + workFolder + u" " + outputFolder + u" " + programFolder +
                     u" " + Number(width) + u" " + Number(height) + u" " + Number(mode) + u" " + Number(fixedOne) +
                     u" " + Number(audioBitrate) + u" " + Number(fixedZero));
    if (m_faults.Fails(u"ksOptimize.ks2mp4")) return 0;
    running = true;
    m_startedAt = m_loop.Elapsed();
    m_target = outputFolder + m_fs.Separator() + u"media.mp4";
    m_fs.Put(m_target, output.substr(0, output.size() / 2));
    return 1;
}

std::int32_t KsOptimize::getKs2mp4Status() {
    if (!nextStatuses.empty()) {
        std::int32_t status = nextStatuses.front();
        nextStatuses.pop_front();
        return status;
    }
    if (!running) return host::job_status::kFailed;
    std::int64_t position = (m_loop.Elapsed() - m_startedAt) * speed;
    if (position < mediaLengthMs) return static_cast<std::int32_t>(position);
    running = false;
    m_fs.Put(m_target, output);
    return host::job_status::kFinished;
}

void KsOptimize::stopKs2mp4() {
    m_transcript.Add(u"ksOptimize.stopKs2mp4");
    running = false;
}

}  // namespace kestrum::sim
