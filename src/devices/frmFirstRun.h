// Asks a new user, once and before the first recording, for what the program cannot know: which microphone is theirs,
// with its level to see that it hears them, and, where there are several monitors, on which of them slides appear.
// Continue keeps the choices, Skip (and Escape) keeps nothing; both count as answered, and g_DialogResult is 1. The
// frame's close button calls the recording off, leaves the question for the next time, and g_DialogResult is 2.
#pragma once

#include <memory>

#include "devices/modDevice.h"
#include "host/IApplication.h"

namespace kestrum {

class frmFirstRun : public ui::Form {
  public:
    explicit frmFirstRun(const devices::Context& c);

    /// This user has neither been asked nor chosen a microphone elsewhere.
    static bool IsDue(const devices::Context& c);
    /// With more than one monitor, asks for that of the shows, too. To be called before the form is shown.
    void OfferMonitors(std::unique_ptr<host::ISlideShowSettings> shows);

    ui::Label lMsg{*this, u"lMsg"};
    ui::Label lMicrophone{*this, u"lMicrophone"};
    ui::ComboBox cmbAudioDevice{*this, u"cmbAudioDevice"};
    ui::Label lInputLevel{*this, u"lInputLevel"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Label lNote{*this, u"lNote"};
    ui::Label lMonitor{*this, u"lMonitor"};
    ui::ComboBox cmbMonitor{*this, u"cmbMonitor"};
    ui::CommandButton cmdSave{*this, u"cmdSave"};
    ui::CommandButton cmdSkip{*this, u"cmdSkip"};
    ui::Timer tmrInitDevice{*this, u"tmrInitDevice", 50};
    ui::Timer tmrGetVol{*this, u"tmrGetVol", 100};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    void tmrInitDevice_Timer();
    void FillMicrophones();
    /// Listens to the microphone that is selected.
    void Listen();
    void Answer(bool keep);
    void KeepMonitor();
    String NameOf(host::MonitorHandle monitor) const;
    String Text(StringView key, const String& fallback) const;

    devices::Context m_c;
    std::unique_ptr<host::ISlideShowSettings> m_shows;
};

}  // namespace kestrum
