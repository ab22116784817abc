// Asks a new user, once and before the first recording, for the one thing that the program cannot know: which
// microphone is theirs, with its level to see that it hears them. Continue keeps the choice, Skip (and Escape) keeps
// nothing; both count as answered, and g_DialogResult is 1. The frame's close button calls the recording off, leaves
// the question for the next time, and g_DialogResult is 2.
#pragma once

#include "devices/modDevice.h"

namespace kestrum {

class frmFirstRun : public ui::Form {
  public:
    explicit frmFirstRun(const devices::Context& c);

    /// This user has neither been asked nor chosen a microphone elsewhere.
    static bool IsDue(const devices::Context& c);

    ui::Label lMsg{*this, u"lMsg"};
    ui::Label lMicrophone{*this, u"lMicrophone"};
    ui::ComboBox cmbAudioDevice{*this, u"cmbAudioDevice"};
    ui::Label lInputLevel{*this, u"lInputLevel"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Label lNote{*this, u"lNote"};
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
    String Text(StringView key, const String& fallback) const;

    devices::Context m_c;
};

}  // namespace kestrum
