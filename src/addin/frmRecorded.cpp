#include "addin/frmRecorded.h"

#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

constexpr std::int32_t kMsPerSecond = 1000;

/// Hours, minutes and seconds.
String TimeText(std::int32_t ms) {
    return modGlobal::SecondsToText(ms / kMsPerSecond);
}

}  // namespace

frmRecorded::frmRecorded(const addin::Context& c) : Form(c.forms, u"frmRecorded"), m_c(c) {
    cmdPlay.SetDefault(true);
    cmdClose.SetCancel(true);
    chkShowAfter.SetValue(1);
    cmdPlay.onClick = [this] { cmdPlay_Click(); };
    cmdPublish.onClick = [this] {
        const std::function<void()> publish = onPublish;  // the card may be gone when it comes back
        if (publish) publish();
    };
    cmdFolder.onClick = [this] { cmdFolder_Click(); };
    cmdClose.onClick = [this] { Unload(); };
    chkShowAfter.onClick = [this] { chkShowAfter_Click(); };
    SetLayout(ui::Column({lTitle, ui::Field(lLengthName, lLength), ui::Field(lSlidesName, lSlides),
                          ui::Field(lSoundName, lSound), chkShowAfter,
                          ui::Buttons({cmdPlay, cmdPublish, cmdFolder, cmdClose})}));
}

void frmRecorded::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
}

void frmRecorded::ShowLecture(const RecordedLecture& lecture) {
    if (IsLoaded()) Unload();
    Load();
    m_package = lecture.package;
    lTitle.SetCaption(modGlobal::FileNameOf(m_c, lecture.package));
    lLength.SetCaption(LengthOf(lecture));
    lSlides.SetCaption(ToText(lecture.entries));
    lSound.SetCaption(SoundOf(lecture.sound));
    const bool isJudged = lecture.sound.Verdict() != recording::SoundVerdict::Unknown;
    lSoundName.SetVisible(isJudged);
    lSound.SetVisible(isJudged);
    SetFocus(cmdPlay);
    Show();
}

String frmRecorded::LengthOf(const RecordedLecture& lecture) const {
    const String added = TimeText(lecture.lengthMs - lecture.lengthBeforeMs);
    if (lecture.lengthBeforeMs == 0) return added;
    const String text = Text(u"msgLonger", u"%s1 more, %s2 in all");
    return modGlobal::Replace(modGlobal::Replace(text, u"%s1", added), u"%s2", TimeText(lecture.lengthMs));
}

String frmRecorded::SoundOf(const recording::SoundRecord& sound) const {
    switch (sound.Verdict()) {
        case recording::SoundVerdict::Silent:
            return Text(u"msgSilent", u"Silent! The microphone heard nothing.");
        case recording::SoundVerdict::LongSilence: {
            const String text = Text(u"msgLongSilence", u"Silent for %s1, from %s2 on.");
            return modGlobal::Replace(modGlobal::Replace(text, u"%s1", TimeText(sound.LongestSilenceMs())), u"%s2",
                                      TimeText(sound.LongestSilenceAtMs()));
        }
        case recording::SoundVerdict::Clipped:
            return Text(u"msgClipped", u"Too loud: it is distorted. Turn the microphone down.");
        case recording::SoundVerdict::Quiet:
            return Text(u"msgQuiet", u"Quiet. Turn the microphone up or move it closer.");
        case recording::SoundVerdict::Good:
        case recording::SoundVerdict::Unknown:
            break;
    }
    return Text(u"msgGood", u"Good");
}

void frmRecorded::cmdPlay_Click() {
    if (m_c.host.processes.OpenWithDesktop(m_package)) return;
    modMsgBox::MsgBox(m_c, Text(u"msgNoPlayer", u"No program that plays Matroska movies is installed."));
}

void frmRecorded::cmdFolder_Click() {
    if (m_c.host.processes.ShowInFolder(m_package)) return;
    const String text = Text(u"msgNoFileManager", u"No file manager answers. The recording is \"%s\".");
    modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", m_package));
}

void frmRecorded::chkShowAfter_Click() {
    modConfig::SaveSetting(m_c, u"configure", chkShowAfter.Name(), ToText(chkShowAfter.Value()));
}

String frmRecorded::Text(StringView key, const String& fallback) const {
    return modLanguage::GetResString(m_c, u"frmRecorded", key, fallback);
}

}  // namespace kestrum
