#include "apps/commandline/Preflight.h"

#include "apps/commandline/Texts.h"
#include "support/modConfig.h"

namespace kestrum::app {
namespace {

constexpr std::int64_t kNeededMegabytes = 100;
/// A name in a folder, in bytes; and the longest ending that the name of a package gets (".unsaved.tmp").
constexpr std::size_t kLongestName = 255, kLongestEnding = 12;
constexpr std::int32_t kPictureAttempts = 30;
constexpr std::int32_t kAttemptMs = 100;

/// A small window whose text makes its picture anything but uniform.
class PictureProbe final : public ui::Form {
  public:
    explicit PictureProbe(const support::Context& c) : Form(c.forms, u"PictureProbe") {
        m_text.SetCaption(Sentence(c, u"msgLooking", u"Kestrum is looking at the screen ..."));
        SetLayout(ui::Column({m_text}));
        SetStyle({.topmost = true, .borderless = true, .activates = false});
        SetPlace({ui::StartPosition::Manual, kLeft, kTop, kWidth, kHeight});
    }
    static host::Rect Area() { return {kLeft, kTop, kLeft + kWidth, kTop + kHeight}; }

  private:
    static constexpr std::int32_t kLeft = 40, kTop = 40, kWidth = 400, kHeight = 80;
    ui::Label m_text{*this, u"lText"};
};

std::optional<String> CheckPackage(const support::Context& c, const String& package) {
    if (!c.host.fs.FileExists(package) || c.host.ksLib.GetFileFormatVersion(package) != 0) return std::nullopt;
    return Sentence(c, u"msgForeignPackage",
                    u"\"%s1\" is not a Kestrum package; move it elsewhere, the recording needs this name.", {package});
}

bool IsNameTooLong(const support::Context& c, const String& package) {
    return host::ToUtf8(modGlobal::FileNameOf(c, package)).size() + kLongestEnding > kLongestName;
}

}  // namespace

std::optional<String> CheckNoRecording(const support::Context& c) {
    if (!modGlobal::IsRecordingLive(c, u"PowerPoint")) return std::nullopt;
    return Sentence(c, u"msgOtherRecording", u"A recording is in progress: \"%s1\". End it first.",
                    {modConfig::GetSetting(c, modGlobal::kPowerPointTokens, u"project", u"")});
}

std::optional<String> CheckAutomatic(const support::Context& c) {
    if (modConfig::GetSetting(c, u"configure", u"chkAutoRecord", u"0") == u"1") return std::nullopt;
    return Sentence(c, u"msgNotAutomatic",
                    u"Automatic recording is switched off, so no slide show would be recorded. Switch it on in the "
                    u"settings (kestrum configure) and try again.");
}

std::optional<String> CheckDeck(const support::Context& c, const String& deck) {
    if (!c.host.fs.FileExists(deck)) return Sentence(c, u"msgNoDeck", u"There is no presentation \"%s1\".", {deck});
    try {
        c.host.fs.ReadFile(deck);
    } catch (const host::Error& error) {
        return Sentence(c, u"msgDeckUnreadable", u"The presentation \"%s1\" cannot be read: %s2",
                        {deck, error.Description()});
    }
    if (IsNameTooLong(c, modGlobal::PackagePathOf(deck))) {
        return Sentence(
            c, u"msgNameTooLong",
            u"The name of \"%s1\" is too long: the recording is kept beside it under names that are a little "
            u"longer. Give the presentation a shorter name.",
            {deck});
    }
    const String folder = modGlobal::FolderOf(c, deck);
    if (!modGlobal::TestFolderWritable(c, folder)) {
        return Sentence(c, u"msgFolderReadOnly",
                        u"The folder \"%s1\" cannot be written; copy the presentation to a folder of yours, the "
                        u"recording is kept beside it.",
                        {folder});
    }
    if (const std::int64_t free = modGlobal::GetFreeSpaceMB(c, folder); free < kNeededMegabytes) {
        return Sentence(c, u"msgNoRoom",
                        u"Only %s1 MB of space are free in \"%s2\"; a recording needs at least 100 MB. Delete or move "
                        u"files there and try again.",
                        {host::FromUtf8(std::to_string(free)), folder});
    }
    return CheckPackage(c, modGlobal::PackagePathOf(deck));
}

std::optional<String> CheckSound(const support::Context& c) {
    String devices;
    if (c.host.ksLib.ksQueryAudioDevice(devices) == 1 && !devices.empty()) return std::nullopt;
    return Sentence(c, u"msgNoSound",
                    u"There is no sound device to record from; connect a microphone and see that the sound server "
                    u"runs.");
}

std::optional<String> CheckPicture(const support::Context& c) {
    PictureProbe& probe = c.forms.Get<PictureProbe>(c);
    probe.Show();
    bool uniform = true;
    for (std::int32_t attempt = 0; uniform && attempt < kPictureAttempts; ++attempt) {
        c.host.loop.DoEvents();
        c.host.loop.Sleep(kAttemptMs);
        uniform = c.host.ksLib.IsPictureUniform(PictureProbe::Area());
    }
    probe.Unload();
    c.host.loop.DoEvents();
    if (!uniform) return std::nullopt;
    return Sentence(c, u"msgBlackPicture",
                    u"The screen arrives as one plain colour, so nothing of the slides would be recorded; log in to an "
                    u"X11 session and try again.");
}

}  // namespace kestrum::app
