// Whether the system's sound can be captured, as the test says.
#pragma once

#include "adapters/sim/Transcript.h"
#include "host/IRecSystemAudio.h"

namespace kestrum::sim {

class RecSystemAudio : public host::IRecSystemAudio {
  public:
    explicit RecSystemAudio(Transcript& transcript) : m_transcript(transcript) {}
    std::int32_t CanRecordSystemAudio() override {
        m_transcript.Add(u"recSystemAudio.CanRecordSystemAudio");
        return canRecord;
    }

    std::int32_t canRecord = 1;

  private:
    Transcript& m_transcript;
};

}  // namespace kestrum::sim
