// The card after a recording: how long it is, how many slides it has, how its sound was, and what to do with it next.
// Stays until it is closed or the next show begins; whoever does not want it switches it off on the card itself.
#pragma once

#include <functional>

#include "addin/Context.h"
#include "recording/SoundRecord.h"

namespace kestrum {

/// What the card tells.
struct RecordedLecture {
    String package;
    /// Length of all media in the package, and of what was there before.
    std::int32_t lengthMs = 0, lengthBeforeMs = 0;
    /// Index entries that came with this recording.
    std::int32_t entries = 0;
    recording::SoundRecord sound;
};

class frmRecorded : public ui::Form {
  public:
    explicit frmRecorded(const addin::Context& c);

    void ShowLecture(const RecordedLecture& lecture);

    /// The card's Publish button.
    std::function<void()> onPublish;

    ui::Label lTitle{*this, u"lTitle"};
    ui::Label lLengthName{*this, u"lLengthName"};
    ui::Label lLength{*this, u"lLength"};
    ui::Label lSlidesName{*this, u"lSlidesName"};
    ui::Label lSlides{*this, u"lSlides"};
    ui::Label lSoundName{*this, u"lSoundName"};
    ui::Label lSound{*this, u"lSound"};
    ui::CheckBox chkShowAfter{*this, u"chkShowAfter"};
    ui::CommandButton cmdPlay{*this, u"cmdPlay"};
    ui::CommandButton cmdPublish{*this, u"cmdPublish"};
    ui::CommandButton cmdFolder{*this, u"cmdFolder"};
    ui::CommandButton cmdClose{*this, u"cmdClose"};

  protected:
    void OnLoad() override;

  private:
    void cmdPlay_Click();
    void cmdFolder_Click();
    void chkShowAfter_Click();
    String LengthOf(const RecordedLecture& lecture) const;
    String SoundOf(const recording::SoundRecord& sound) const;
    String Text(StringView key, const String& fallback) const;

    addin::Context m_c;
    String m_package;
};

}  // namespace kestrum
