// What the program tells the person who records: before (which microphone, asked once; one line about what would go
// wrong, or what is continued), during (the lecturer's bar; a show of a recorded presentation that is not being
// recorded), and after (the card). Decides what is told and when. The recording itself never waits for it and goes the
// same way without it; a session without a person has none.
#pragma once

#include <memory>

#include "addin/Context.h"
#include "addin/dsrImagePowerPoint.h"
#include "recording/SoundRecord.h"

namespace kestrum {

class Companion final : private host::IApplicationEvents {
  public:
    /// `addIn` calls back until this object goes. `everyShow`: see Session::Accompany.
    Companion(const addin::Context& c, dsrImagePowerPoint& addIn, bool everyShow);
    ~Companion() override;
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    /// The card about a recording is up or still to come, or a dialog that was opened from it is up.
    bool HasCard() const;
    /// Takes the card away: the program ends.
    void Leave();

  private:
    // What the host tells.
    void SlideShowBegin(host::ISlideShowWindow& window) override;
    void SlideShowNextSlide(host::ISlideShowWindow&) override {}
    void SlideShowEnd(host::IPresentation&) override {}
    void PresentationClose(host::IPresentation&) override {}

    bool RecordPressed();
    bool PassesFirstRun();
    void ShowStarts();
    bool IsUnrecorded(const String& fullName) const;
    void Look();
    void Began();
    void Ended();
    void ShowCard();
    void Publish();

    addin::Context m_c;
    dsrImagePowerPoint& m_addIn;
    const bool m_everyShow;
    std::unique_ptr<host::ISubscription> m_subscription;
    std::unique_ptr<host::ITimer> m_look;
    recording::SoundRecord m_sound;
    bool m_runs = false;
    bool m_publishing = false;
    /// Of the recording that runs or has just ended.
    String m_package;
    std::int32_t m_lengthAtStart = 0;
};

}  // namespace kestrum
