// The test bench of the device dialogs: a few seconds from the microphone into a raw file, and back. Decides which
// buttons show, and that what would disturb a running test is closed for as long as it runs.
#pragma once

#include <functional>
#include <vector>

#include "devices/Context.h"

namespace kestrum {

class AudioTest {
  public:
    /// The bench's controls on a form, and what else belongs to its busy state. All outlive the bench.
    struct Controls {
        ui::CommandButton& cmdRecord;
        ui::CommandButton& cmdStopRecord;
        ui::CommandButton& cmdPlay;
        ui::CommandButton& cmdStop;
        ui::Label& lTimeString;
        ui::Timer& tmrGetRecTime;
        ui::Timer& tmrGetPlayTime;
        /// The choice of the sound quality, which a test only gives back while there is one.
        std::vector<ui::Control*> quality;
        /// Closed while a test runs, each back as it was afterwards.
        std::vector<ui::Control*> others;
    };

    /// Sets the design of the controls and takes over their handlers.
    AudioTest(const devices::Context& c, Controls controls);

    /// A form with this bench was loaded.
    void Load();
    /// Ends what runs, as its button would; harmless while nothing does.
    void End();
    bool IsRunning() const { return m_isBusy; }

    /// Asked before a test recording; false starts none. Unset: always.
    std::function<bool()> onBeforeRecord;

  private:
    void cmdRecord_Click();
    void cmdStopRecord_Click();
    void cmdPlay_Click();
    void cmdStop_Click();
    void tmrGetRecTime_Timer();
    void tmrGetPlayTime_Timer();

    static void Exchange(ui::CommandButton& gone, ui::CommandButton& come);
    void ShowTime(std::int32_t ms);
    void SetBusy();
    void ClearBusy();

    devices::Context m_c;
    Controls m_bench;
    /// Made anew at each test recording; the earlier file stays where it is.
    String m_file;
    bool m_isBusy = false;
    /// Of the others and of the quality, in this order, before the test.
    std::vector<bool> m_wasEnabled;
};

}  // namespace kestrum
