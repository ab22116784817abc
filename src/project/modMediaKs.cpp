#include "project/modMediaKs.h"

#include <string>
#include <utility>
#include <vector>

#include "host/ResumeNext.h"
#include "project/modProject.h"
#include "support/frmStatus.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modMediaKs {
namespace {

constexpr std::int32_t kMinorsPerMajor = 256;
constexpr std::int32_t kMediaMajor = 8;
constexpr std::int32_t kMediaMinor = 0;
/// 127.255: not a generation but the mark of media without one.
constexpr std::int32_t kNoGeneration = 127 * kMinorsPerMajor + 255;
constexpr std::size_t kLongestReportedTitle = 50;

String Res(const support::Context& c, StringView key, StringView text) {
    return modLanguage::GetResString(c, u"frmCommon", key, text);
}

String ProgressText(const support::Context& c, bool whole, bool failedRecording) {
    if (failedRecording)
        return Res(c, u"msgLastRecFailed",
                   u"Recording was not completed successfully. Please wait while checking files.");
    if (whole) return Res(c, u"msgVerifyWholeProject", u"Verifying whole project. Please wait.");
    return Res(c, u"msgVerifyProject", u"Verifying project ...");
}

/// Runs the check under the status window.
bool IsSound(const support::Context& c, const String& media, bool whole, bool failedRecording) {
    c.forms.Get<frmStatus>(c).ShowText(ProgressText(c, whole, failedRecording));
    c.host.loop.DoEvents();
    const std::int32_t sound = whole ? c.host.ksLib.verifyWholeKsFile(media) : c.host.ksLib.verifyKsFile(media);
    c.forms.Get<frmStatus>(c).Unload();
    return sound != 0;
}

struct Version {
    std::int32_t major = 0;
    std::int32_t minor = 0;
};

/// The major number is rounded: a minor one of 128 or more lifts it by one.
Version Split(std::int32_t value) {
    const std::int32_t minor = value % kMinorsPerMajor;
    return {value / kMinorsPerMajor + (minor >= kMinorsPerMajor / 2 ? 1 : 0), minor};
}

bool IsCompatible(std::int32_t value) {
    const Version version = Split(value);
    if (version.major == kMediaMajor && version.minor <= kMediaMinor) return true;
    return value == kNoGeneration || (version.major == 127 && version.minor == 255);
}

/// The positions in the file that ListIndex writes. Throws host::Error if the library cannot list them: a list that
/// could not be read must never look like a list without key frames.
std::vector<String> ReadKeyFrames(const support::Context& c, const String& media, const String& textFile) {
    const bool listed = c.host.ksLib.ListIndex(media, textFile) != -1;
    const std::string bytes = listed ? c.host.fs.ReadFile(textFile) : std::string();
    modGlobal::SafeDeleteFile(c, textFile);
    std::vector<String> positions;
    String number;
    for (const char byte : bytes + '\n') {
        if (byte != '\n' && byte != '\r')
            number.push_back(static_cast<char16_t>(static_cast<unsigned char>(byte)));
        else if (!number.empty())
            positions.push_back(std::exchange(number, String()));
    }
    if (positions.empty())
        throw host::Error(host::ErrorNumber::FileNotFound, u"ListIndex",
                          u"The key frames of the recording could not be read.");
    return positions;
}

bool NeedsZeroItem(const IndexItems& index) {
    for (const CIndexItem& item : index)
        if (item.pos != u"-1") return ToInt32(item.pos) != 0;
    return false;
}

String ReportLine(std::int32_t number, String title) {
    if (title.size() > kLongestReportedTitle) title = title.substr(0, kLongestReportedTitle) + u" ...";
    return u"Slide " + ToText(number) + u" :  \"" + title + u"\"\r\n";
}

/// Removes the entries that are no key frame; one line for each, in ascending order.
String RemoveBadItems(const project::Context& c) {
    CProjectFile& project = c.project.g_Project;
    String report;
    bool reload = true;
    for (std::int32_t i = project.index.Count(); i >= 1; --i) {
        const CIndexItem item = project.index.Item(i);
        const std::int32_t pos = ToInt32(item.pos);
        if (pos <= -1) continue;
        if (!IsKeyFramePos(c, pos, std::exchange(reload, false), c.support.packagePath)) {
            report = ReportLine(i, item.title) + report;
            project.RemoveIndex(i);
        }
    }
    return report;
}

/// Stores the corrected index; the state before stays as a save point. The duration may still be too short for the
/// entries: SaveProject then lifts it to the media's length, and it is put back, since the user is yet to be asked.
void StoreCorrectedIndex(const project::Context& c) {
    const String file = modGlobal::Join(c, c.support.workFolder, u"project.ksp");
    const String durationText = c.project.g_Project.durationText;
    host::ResumeNext{c.host.trace}([&] { c.host.fs.CopyFile(file, file + u".__"); });
    modProject::SaveProject(c);
    c.project.g_Project.durationText = durationText;
}

void RepairIndex(const project::Context& c) {
    CProjectFile& project = c.project.g_Project;
    const bool needsZeroItem = NeedsZeroItem(project.index);
    if (needsZeroItem) project.AddIndex(u"----", u"0", DateTimeText(c.host.loop.Now()), u"", u"", u"", false, 1);
    const String report = RemoveBadItems(c);
    if (!report.empty()) modMsgBox::MsgBox(c, Res(c, u"msgKspIndexErr", u"") + u"\r\n" + report);
    if (!report.empty() || needsZeroItem) StoreCorrectedIndex(c);
}

/// The media's length. Throws host::Error for media whose length cannot be read: 0 would drop every entry.
std::int32_t MediaLength(const project::Context& c) {
    const String& package = c.support.packagePath;
    const std::int32_t length = c.host.ksLib.GetLength(package);
    if (length == 0 && c.host.ksLib.IsEmptyProject(package) == 0)
        throw host::Error(host::ErrorNumber::Automation, u"GetLength",
                          u"The length of the recording could not be read.");
    return length;
}

bool RepairDuration(const project::Context& c) {
    if (!c.host.fs.FileExists(c.support.packagePath)) return true;
    const std::int32_t length = MediaLength(c);
    if (length == c.project.g_Project.duration()) return true;
    if (modMsgBox::MsgBox(c, Res(c, u"msgKspDurationErr", u""), host::BoxButtons::YesNo, u"") != host::BoxAnswer::Yes)
        return false;
    if (!VerifyMedia(c, c.support.packagePath, true, false)) return false;
    c.project.g_Project.SetDuration(length);
    modProject::SaveProject(c);
    modMsgBox::MsgBox(c, Res(c, u"msgRepairSucceed", u""));
    return true;
}

}  // namespace

bool VerifyMedia(const project::Context& c, const String& media, bool whole, bool failedRecording) {
    if (!c.host.fs.FileExists(media)) {
        modMsgBox::MsgBox(c, u"File '" + media + u"' not exist!");
        return false;
    }
    if (!IsSound(c, media, whole, failedRecording)) {
        modMsgBox::MsgBox(c, failedRecording ? Res(c, u"msgRecFailedAndKsErr", u"File format error!")
                                             : Res(c, u"msgVerifyProjectErr", u"Verify project error!"));
        return false;
    }
    return true;
}

bool IsKsFmtCompatible(const project::Context& c, const String& media) {
    try {
        const std::int32_t value = c.host.ksLib.GetFileFormatVersion(media);
        if (IsCompatible(value)) return true;
        const Version version = Split(value);
        const String text =
            Res(c, u"msgIncompatibleKsFmtVer", u"Incompatible file format version (%s)! Please upgrade your Kestrum.");
        modMsgBox::MsgBox(c, modGlobal::Replace(text, u"%s", ToText(version.major) + u"." + ToText(version.minor)));
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(c, error.Description(), host::BoxButtons::Ok, u"IsKsFmtCompatible");
    }
    return false;
}

bool VerifyIndex(const project::Context& c) {
    try {
        RepairIndex(c);
        return RepairDuration(c);
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(c, Res(c, u"msgFixProjErr", u"") + u" (" + error.Description() + u")");
        return false;
    }
}

bool IsKeyFramePos(const project::Context& c, std::int32_t pos, bool reload, const String& media) {
    String& cache = c.project.keyFrameCache;
    if (cache.empty() || reload) {
        const String textFile = modGlobal::Join(c, modGlobal::FolderOf(c, media), u"media.key");
        String text = u" ";
        for (const String& number : ReadKeyFrames(c, media, textFile)) text += number + u" ";
        cache = std::move(text);
    }
    return cache.find(u" " + ToText(pos) + u" ") != String::npos;
}

std::int32_t LastKeyFramePos(const project::Context& c) {
    const String& package = c.support.packagePath;
    if (!c.host.fs.FileExists(package) || c.host.ksLib.IsEmptyProject(package) != 0) return -1;
    return ToInt32(ReadKeyFrames(c, package, modGlobal::Join(c, c.support.workFolder, u"media.key")).back());
}

}  // namespace kestrum::modMediaKs
