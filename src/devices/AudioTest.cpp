#include "devices/AudioTest.h"

#include "devices/AudioQuality.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

constexpr std::int32_t kMsOfASecond = 1000;

}  // namespace

AudioTest::AudioTest(const devices::Context& c, Controls controls) : m_c(c), m_bench(std::move(controls)) {
    m_bench.cmdStopRecord.SetVisible(false);
    m_bench.cmdStop.SetVisible(false);
    m_bench.cmdPlay.SetEnabled(false);  // nothing has been recorded
    m_bench.cmdRecord.onClick = [this] { cmdRecord_Click(); };
    m_bench.cmdStopRecord.onClick = [this] { cmdStopRecord_Click(); };
    m_bench.cmdPlay.onClick = [this] { cmdPlay_Click(); };
    m_bench.cmdStop.onClick = [this] { cmdStop_Click(); };
    m_bench.tmrGetRecTime.onTimer = [this] { tmrGetRecTime_Timer(); };
    m_bench.tmrGetPlayTime.onTimer = [this] { tmrGetPlayTime_Timer(); };
}

void AudioTest::Load() {
    m_file.clear();
    m_isBusy = false;
    ShowTime(0);
}

void AudioTest::End() {
    if (m_bench.tmrGetRecTime.Enabled()) cmdStopRecord_Click();
    if (m_bench.tmrGetPlayTime.Enabled()) cmdStop_Click();
}

void AudioTest::cmdRecord_Click() {
    if (onBeforeRecord && !onBeforeRecord()) return;
    Exchange(m_bench.cmdRecord, m_bench.cmdStopRecord);
    m_file = modGlobal::Join(m_c, m_c.host.shell.Environment(u"temp"), String(m_c.host.fs.TemporaryName()) + u".raw");
    m_c.host.ksLib.StartTestRecordAudio(m_file);
    SetBusy();
    m_bench.cmdPlay.SetEnabled(false);
    m_bench.tmrGetRecTime.SetEnabled(true);
}

void AudioTest::cmdStopRecord_Click() {
    Exchange(m_bench.cmdStopRecord, m_bench.cmdRecord);
    m_c.host.ksLib.StopTestRecordAudio();
    m_bench.cmdPlay.SetEnabled(true);
    ClearBusy();
    m_bench.tmrGetRecTime.SetEnabled(false);
}

void AudioTest::cmdPlay_Click() {
    Exchange(m_bench.cmdPlay, m_bench.cmdStop);
    m_c.host.ksLib.PlayTestAudio(m_file);
    SetBusy();
    m_bench.cmdRecord.SetEnabled(false);
    m_bench.tmrGetPlayTime.SetEnabled(true);
}

void AudioTest::cmdStop_Click() {
    Exchange(m_bench.cmdStop, m_bench.cmdPlay);
    m_c.host.ksLib.StopTestAudio();
    ClearBusy();
    m_bench.cmdRecord.SetEnabled(true);
    m_bench.tmrGetPlayTime.SetEnabled(false);
}

void AudioTest::tmrGetRecTime_Timer() {
    ShowTime(m_c.host.ksLib.GetTestRecordTime());
}

void AudioTest::tmrGetPlayTime_Timer() {
    const std::int32_t played = m_c.host.ksLib.GetPlayTestTime();
    if (played < 0) {
        cmdStop_Click();
    } else {
        ShowTime(played);
    }
}

/// One button takes the place of the other, and the keyboard with it.
void AudioTest::Exchange(ui::CommandButton& gone, ui::CommandButton& come) {
    const bool hadKeyboard = gone.Owner().Focus() == &gone;
    gone.SetVisible(false);
    come.SetVisible(true);
    if (hadKeyboard) come.Owner().SetFocus(come);
}

void AudioTest::ShowTime(std::int32_t ms) {
    m_bench.lTimeString.SetCaption(modGlobal::SecondsToText(ms / kMsOfASecond));
}

void AudioTest::SetBusy() {
    m_isBusy = true;
    m_wasEnabled.clear();
    for (const std::vector<ui::Control*>* part : {&m_bench.others, &m_bench.quality}) {
        for (ui::Control* control : *part) {
            m_wasEnabled.push_back(control->Enabled());
            control->SetEnabled(false);
        }
    }
}

void AudioTest::ClearBusy() {
    m_isBusy = false;
    auto wasEnabled = m_wasEnabled.begin();
    for (ui::Control* control : m_bench.others) control->SetEnabled(*wasEnabled++);
    const bool isFixed = devices::AudioQualityIsFixed(m_c);
    for (ui::Control* control : m_bench.quality) control->SetEnabled(*wasEnabled++ && !isFixed);
}

}  // namespace kestrum
