// The audio test of the scripted media library: a test file of n bytes lasts n milliseconds.
#include "adapters/sim/KsLib.h"

namespace kestrum::sim {

void KsLib::StartTestRecordAudio(const String& file) {
    Line(u"StartTestRecordAudio " + file);
    if (Fails(u"StartTestRecordAudio")) return;
    m_testFile = file;
    m_testRecordFrom = m_loop.Elapsed();
}

void KsLib::StopTestRecordAudio() {
    Line(u"StopTestRecordAudio");
    if (!m_testRecordFrom) return;
    m_fs.Put(m_testFile, std::string(static_cast<std::size_t>(GetTestRecordTime()), 's'));
    m_testRecordFrom.reset();
}

std::int32_t KsLib::GetTestRecordTime() {
    return m_testRecordFrom ? static_cast<std::int32_t>(m_loop.Elapsed() - *m_testRecordFrom) : 0;
}

void KsLib::PlayTestAudio(const String& file) {
    Line(u"PlayTestAudio " + file);
    m_testLength = Fails(u"PlayTestAudio") ? 0 : static_cast<std::int64_t>(m_fs.Bytes(file).size());
    m_testPlayFrom = m_loop.Elapsed();
}

void KsLib::StopTestAudio() {
    Line(u"StopTestAudio");
    m_testPlayFrom.reset();
}

std::int32_t KsLib::GetPlayTestTime() {
    constexpr std::int32_t kAtEnd = -1;
    if (!m_testPlayFrom) return kAtEnd;
    const std::int64_t played = m_loop.Elapsed() - *m_testPlayFrom;
    return played < m_testLength ? static_cast<std::int32_t>(played) : kAtEnd;
}

}  // namespace kestrum::sim
