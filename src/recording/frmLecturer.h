// The bar that tells the lecturer how the recording goes: its state in words, its running time, the level of the sound.
// Stands where only the lecturer sees it (LecturerPlace.h) and is never part of the picture; without such a place it
// does not come up, and the red light alone says that it is recording.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class frmLecturer : public ui::Form {
  public:
    explicit frmLecturer(const recording::Context& c);

    /// Comes up for the recording that runs, if there is a place for it.
    void ShowRecording();

    ui::Label Label1{*this, u"Label1"};
    ui::Label lState{*this, u"lState"};
    ui::Label lTime{*this, u"lTime"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Timer tmrLook{*this, u"tmrLook", 200};

  protected:
    void OnLoad() override;

  private:
    void tmrLook_Timer();
    String StateText() const;

    recording::Context m_c;
    std::int32_t m_silentLooks = 0;
};

}  // namespace kestrum
