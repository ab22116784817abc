#include "recording/modViewer.h"

#include "host/ResumeNext.h"
#include "project/modKspXml.h"
#include "project/modProject.h"
#include "recording/frmViewer.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"

namespace kestrum::modViewer {

namespace {

const String kRecorderWindow = u"LarkspinWin";
constexpr std::int32_t kCopyData = 74;

}  // namespace

bool IsShowAlive(const recording::Context& c) {
    if (!c.recording.g_ShowWindow) return false;
    return host::ResumeNext(c.host.trace)([&] { c.recording.g_ShowWindow->View()->State(); });
}

bool IsShowRunningForActive(const recording::Context& c) {
    return host::ResumeNext(c.host.trace).If([&] {
        String active = c.host.app.ActivePresentation()->FullName();
        std::int32_t count = c.host.app.SlideShowWindowCount();
        for (std::int32_t i = 1; i <= count; ++i) {
            if (c.host.app.SlideShowWindow(i)->Presentation()->FullName() == active) return true;
        }
        return false;
    });
}

bool IsMarkedFinal(const recording::Context& c, bool inShow) {
    host::ResumeNext Try(c.host.trace);
    if (!inShow) return !Try([&] { c.host.app.ActivateWindow(); });
    return !Try([&] {
        if (c.recording.g_ShowWindow) c.recording.g_ShowWindow->Activate();
    });
}

void ExitSlideShow(const recording::Context& c) {
    c.host.app.ActivePresentation()->SlideShowSettings()->Run()->View()->Exit();
}

void AbortRecording(const recording::Context& c) {
    if (c.recording.viewer) c.recording.viewer->AbortRecording();
}

void RestoreSaved(const recording::Context& c) {
    host::ResumeNext Try(c.host.trace);
    Try([&] { c.host.app.ActivePresentation()->SetSaved(c.recording.g_SavedState); });
}

bool IsRecordingLive(const recording::Context& c) {
    return modGlobal::IsRecordingLive(c, u"PowerPoint");
}

bool IsForeignRecording(const recording::Context& c, const String& fullName) {
    const String package = modGlobal::PackagePathOf(fullName);
    // Our own is known without asking a store that may not answer: its end must never be taken for another's.
    if (c.recording.g_Recording && package == c.support.packagePath) return false;
    return IsRecordingLive(c) && package != modConfig::GetSetting(c, modGlobal::kPowerPointTokens, u"project", u"");
}

std::optional<host::WindowHandle> FindRecorderWindow(const recording::Context& c) {
    if (auto window = c.host.windows.FindWindow(kRecorderWindow, u"")) return window;
    return c.host.windows.FindWindow(u"", kRecorderWindow);
}

void SendSlideTitle(const recording::Context& c, host::WindowHandle window, const String& title) {
    constexpr char16_t kLastSingleByte = 0xFF;
    std::string bytes(title.size() * 2, '\0');
    for (std::size_t i = 0; i < title.size(); ++i) {
        bytes[i] = title[i] > kLastSingleByte ? '?' : static_cast<char>(title[i]);
    }
    c.host.windows.SendMessage(window, host::WindowMessage{kCopyData, 0, 0, bytes});
}

void UnloadForm(const recording::Context& c, StringView name) {
    if (ui::Form* form = c.forms.Find(name)) form->Unload();
}

void UnloadMasks(const recording::Context& c) {
    UnloadForm(c, u"frmMask1");
    UnloadForm(c, u"frmMask2");
}

bool RegionIsSmaller(const recording::Context& c) {
    const display::State& d = c.display;
    return d.g_RegionWidth < d.g_ScreenWidth || d.g_RegionHeight < d.g_ScreenHeight;
}

void HandOverJournal(const recording::Context& c) {
    if (!c.recording.g_EncoderStarted) return;
    if (!c.host.ksLib.WriteIndexJournal(modKspXml::JournalText(c.project.g_Project))) {
        c.host.trace.Note(u"The index journal could not be kept.");
    }
}

void ReleaseRecordingUi(const recording::Context& c) {
    if (Setting(c, u"chkShowRecStatus", u"0") == u"1") UnloadForm(c, u"frmRecStatus");
    c.host.ksLib.DeleteCanvas();
    c.host.ksLib.DeleteWhiteboard();
    c.forms.UnloadAll();
    if (!c.support.workFolder.empty()) modProject::DeleteWorkFolder(c);
}

String Setting(const recording::Context& c, StringView key, StringView fallback) {
    return modConfig::GetSetting(c, u"configure", key, fallback);
}

}  // namespace kestrum::modViewer
