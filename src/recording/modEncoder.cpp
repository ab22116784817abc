#include "recording/modEncoder.h"

#include "devices/modDevice.h"
#include "devices/modVolume.h"
#include "project/modProject.h"
#include "recording/frmRecDot.h"
#include "recording/modViewer.h"
#include "support/frmStatus.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modEncoder {

namespace {

constexpr std::int32_t kPollMs = 3000;

String TemporaryFolder(const recording::Context& c) {
    return c.support.packagePath + u"._tmp";
}

String Snapshot(const recording::Context& c) {
    return modGlobal::Join(c, TemporaryFolder(c), u"media.rec.tmp");
}

void ShowKey(const recording::Context& c, StringView section, StringView key, const String& text) {
    modMsgBox::MsgBox(c, modLanguage::GetResString(c, section, key, text));
}

void ShowNoAudio(const recording::Context& c) {
    ShowKey(c, u"frmCommon", u"msgAudioErr",
            u"No audio device can be used. Please connect a microphone, or close the program that uses it!");
}

bool ResetDevices(const recording::Context& c) {
    if (c.host.ksLib.ksResetAVDevice() != 0) return true;
    modViewer::UnloadForm(c, u"frmStatus");
    modMsgBox::MsgBox(c, u"ResetAVDevice Error!");
    return false;
}

// A project that once had a webcam goes on without one.
bool SelectDevices(const recording::Context& c) {
    CProjectFile& project = c.project.g_Project;
    std::int32_t devices = modDevice::InitDevices(c, project.videoSize.empty());
    if (devices < 0) {
        modViewer::UnloadForm(c, u"frmStatus");
        ShowNoAudio(c);
        return false;
    }
    if (devices == modDevice::kAudioOnly && !project.videoSize.empty() &&
        c.host.fs.FileExists(modGlobal::Join(c, c.support.workFolder, c.support.projectFileName))) {
        project.videoSize.clear();
        project.videoBitrate = u"96";
        modProject::SaveProject(c);
    }
    return true;
}

// An index without media is worthless.
void DropIndexWithoutMedia(const recording::Context& c) {
    CProjectFile& project = c.project.g_Project;
    if (!c.host.fs.FileExists(c.support.packagePath) && project.index.Count() > 0) {
        project.RemoveIndex(CProjectFile::kAllItems);
    }
}

bool WaitForFreeEncoder(const recording::Context& c) {
    constexpr int kMostReads = 51;
    constexpr std::int32_t kBetweenReadsMs = 100;
    if (c.host.ksLib.EncoderState() != host::encoder_state::kGone) return true;
    for (int i = 0; i < kMostReads; ++i) {
        c.host.loop.Sleep(kBetweenReadsMs);
        if (c.host.ksLib.EncoderState() != host::encoder_state::kGone) return true;
    }
    ShowKey(c, u"frmMainBar", u"msgKsdError", u"The recording engine is busy. Please try again in a moment!");
    modViewer::UnloadForm(c, u"frmStatus");
    return false;
}

void ReadMediaAtStart(const recording::Context& c) {
    const String& package = c.support.packagePath;
    c.recording.g_MediaLengthAtStart = 0;
    if (!c.host.fs.FileExists(package)) return;
    c.recording.g_MediaLengthAtStart = c.host.ksLib.GetLength(package);
    if (c.host.ksLib.IsEmptyProject(package) != 1) return;
    CProjectFile& project = c.project.g_Project;
    project.audioBitrate = modViewer::Setting(c, u"audioBitrate", u"32");
    project.Save(u"");
    c.host.fs.DeleteFile(package);
}

void ConfigureSystemAudio(const recording::Context& c) {
    constexpr std::int32_t kFirstSystem = 60, kOn = -1, kOff = 0;
    bool wanted = modViewer::Setting(c, u"chkRecSystemAudio", u"0") == u"1" && c.support.g_OsVersion >= kFirstSystem;
    // Called in every case: the library remembers the last value.
    c.host.ksLib.EnableRecSystemAudio(wanted && c.host.recSystemAudio.CanRecordSystemAudio() > 0 ? kOn : kOff);
}

void ConfigureEncoder(const recording::Context& c) {
    constexpr std::int32_t kLayeredByItself = 62;
    host::IKsLib& library = c.host.ksLib;
    const display::State& d = c.display;
    auto plain = [&](const String& path) { return modGlobal::CollapseSeparators(c, path); };
    auto inWorkFolder = [&](StringView name) { return modGlobal::Join(c, c.support.workFolder, name); };
    std::int16_t& result = c.recording.g_LastEncoderResult;
    result = library.EncoderSetFilename(plain(c.support.packagePath), plain(inWorkFolder(u"project.ksp")),
                                        plain(inWorkFolder(u"inteIndex.txt")));
    result = library.SetCaptureArea(d.g_CaptureLeft, d.g_CaptureTop, d.g_CaptureRight, d.g_CaptureBottom);
    library.SetCaptureFrameRate(FrameRateOf(modViewer::Setting(c, u"frameRateLevel", u"medium")));
    if (c.support.g_OsVersion < kLayeredByItself && modViewer::Setting(c, u"AeroState", u"0") == u"0" &&
        modViewer::Setting(c, u"chkLayeredWin", u"0") == u"1") {
        library.EncoderTransparent();
    }
    ConfigureSystemAudio(c);
}

bool OpenDevices(const recording::Context& c) {
    c.host.ksLib.EncoderInitDevice();
    if (c.host.ksLib.EncoderQueryDevice() != 0) return true;
    modViewer::UnloadForm(c, u"frmStatus");
    ShowNoAudio(c);
    c.host.ksLib.EncoderCloseDevice();
    return false;
}

// The status form must be gone from the screen before the first picture.
bool SettleScreen(const recording::Context& c) {
    constexpr std::int32_t kSettleMs = 200;
    modViewer::UnloadForm(c, u"frmStatus");
    c.host.loop.DoEvents();
    c.host.loop.Sleep(kSettleMs);
    if (modViewer::IsShowAlive(c)) return true;
    c.host.ksLib.EncoderCloseDevice();
    modGlobal::DeleteFolder(c, TemporaryFolder(c));
    return false;
}

void WriteMarkers(const recording::Context& c, StringView recording, const String& touchTime, const String& project) {
    modConfig::SaveSetting(c, modGlobal::kPowerPointTokens, u"recording", recording);
    modConfig::SaveSetting(c, modGlobal::kPowerPointTokens, u"touchtime", touchTime);
    modConfig::SaveSetting(c, modGlobal::kPowerPointTokens, u"project", project);
}

void Run(const recording::Context& c) {
    recording::State& r = c.recording;
    // On before the first picture is taken: nothing is ever recorded unseen.
    c.forms.Get<frmRecDot>(c).Light();
    r.g_EncoderStarted = true;
    r.faulted = false;
    c.project.storedProject.clear();  // from now on the worker changes what is stored
    r.g_LastEncoderResult = c.host.ksLib.EncoderStart(0);
    r.g_RecordStartTick = c.host.loop.TickCount();
    r.g_EncoderPollTimer = c.host.loop.StartTimer(u"CheckEncoderState", kPollMs, host::TimerReentry::Entered, [c] {
        recording::Context own = c;  // the stop lets go of this callback while it runs
        CheckEncoderState(own);
    });
    WriteMarkers(c, u"1", ToText(modGlobal::GetPositiveTick(c.host.loop)), c.support.packagePath);
    c.project.g_Project.Save(Snapshot(c));
}

// A start that failed leaves nothing behind, but what an interrupted recording left stays for its recovery.
void DropTemporaryFolder(const recording::Context& c) {
    if (!c.host.fs.FileExists(Snapshot(c))) modGlobal::DeleteFolder(c, TemporaryFolder(c));
}

/// Runs `body`; a failure shows "name(): description" and counts as false.
template <class Body>
bool Guarded(const recording::Context& c, const String& name, Body body) {
    try {
        return body();
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(c, name + u": " + error.Description());
        return false;
    }
}

}  // namespace

std::int32_t FrameRateOf(StringView level) {
    constexpr std::int32_t kBest = 30, kHigh = 20, kMedium = 10, kLow = 4;
    if (level == u"best") return kBest;
    if (level == u"high") return kHigh;
    if (level == u"low") return kLow;
    return kMedium;
}

bool StartEncoder(const recording::Context& c) {
    const bool started = Guarded(c, u"StartEncoder()", [&] {
        if (!ResetDevices(c) || !SelectDevices(c)) return false;
        DropIndexWithoutMedia(c);
        if (!WaitForFreeEncoder(c)) return false;
        c.host.ksHook.EnableHotKey(static_cast<std::int32_t>(Val(modViewer::Setting(c, u"chkEnableHotKey", u"1"))));
        ReadMediaAtStart(c);
        ConfigureEncoder(c);
        if (!OpenDevices(c) || !SettleScreen(c)) return false;
        Run(c);
        return true;
    });
    if (!started && !c.recording.g_EncoderStarted) DropTemporaryFolder(c);
    return started;
}

bool StopEncoder(const recording::Context& c) {
    constexpr std::int32_t kLongestTenths = 1200;
    return Guarded(c, u"StopEncoder()", [&] {
        c.recording.g_EncoderPollTimer.reset();
        modVolume::CheckLowVolume(c, true, modVolume::kSilenceLimit, modVolume::kVolumeThreshold);
        if (c.forms.IsFormLoaded(u"frmVolMsg")) {
            modViewer::UnloadForm(c, u"frmMsgBox");
            modViewer::UnloadForm(c, u"frmVolMsg");
        }
        c.host.ksLib.DeleteCanvas();
        c.host.ksLib.DeleteWhiteboard();
        c.forms.Get<frmStatus>(c).ShowText(
            modLanguage::GetResString(c, u"frmCommon", u"msgEncoderStop", u"Finishing the recording ..."));
        c.host.loop.DoEvents();
        c.host.ksLib.EncoderStop(kLongestTenths);
        modViewer::UnloadForm(c, u"frmRecDot");
        modViewer::UnloadForm(c, u"frmStatus");
        if (modViewer::RegionIsSmaller(c)) modViewer::UnloadMasks(c);
        if (c.host.ksLib.EncoderState() == host::encoder_state::kFileError) {
            c.recording.faulted = true;
            modMsgBox::MsgBox(c, u"write file error!");
            return false;
        }
        modGlobal::SafeDeleteFile(c, Snapshot(c));
        modGlobal::DeleteFolder(c, TemporaryFolder(c));
        WriteMarkers(c, u"0", u"0", u"");
        return true;
    });
}

}  // namespace kestrum::modEncoder
