#include "adapters/media/MediaRecSystemAudio.h"

#include "adapters/media/DeviceNames.h"

namespace kestrum::adapters {

std::int32_t MediaRecSystemAudio::CanRecordSystemAudio() {
    return FindSystemSound(m_worker) ? 1 : 0;
}

}  // namespace kestrum::adapters
