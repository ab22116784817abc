// The publication itself: the steps that frmExportMp4 runs from its timer.
#include "project/Paths.h"
#include "project/modProject.h"
#include "publish/KeyFrameSnap.h"
#include "publish/PlayerData.h"
#include "publish/frmExportMp4.h"
#include "publish/modPublish.h"
#include "support/Numbers.h"
#include "support/modExec.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modLog.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

/// The library's way of writing an MP4 for this player; its other ways belong to other formats.
constexpr std::int32_t kMp4Mode = 2;
/// Time for the library to let go of the files after a cancelled job, ms.
constexpr std::int32_t kReleaseMs = 1000;

}  // namespace

void frmExportMp4::Step(StringView label) {
    m_c.support.currentStep = label;
}

String frmExportMp4::OutputFile(StringView name) const {
    return modGlobal::Join(m_c, m_output, name);
}

void frmExportMp4::EndWith(const String& text) {
    m_c.publish.failure = text;
    txtConvert.SetForeColour(modPublish::kEndedColour);
    txtConvert.SetCaption(text);
    cmdCancel.SetCaption(m_texts.exitCaption);
}

void frmExportMp4::Timer1_Timer() {
    Timer1.SetEnabled(false);
    try {
        RunPipeline();
    } catch (const host::Error& error) {
        m_c.publish.failure = m_c.support.currentStep + u": " + error.Description();
        modLog::ShowStepError(m_c, error.Description(), Name());
        cmdCancel.SetCaption(m_texts.exitCaption);
        Unload();
    }
}

void frmExportMp4::RunPipeline() {
    Step(u"Copy mp4 folder");
    CopyPlayer();
    Step(u"ConvertToMp4");
    if (!ConvertToMp4()) {
        cmdCancel.SetCaption(m_texts.exitCaption);
        return;
    }
    Step(u"Generate cover.jpg");
    if (!MakeCover()) return EndWith(m_texts.coverError);
    Step(u"Generate keyframe.txt");
    if (!ListKeyFrames()) return EndWith(m_texts.keyFrameError);
    Step(u"Remove inserted file");
    RemoveInsertedFiles();
    Step(u"Check and Fix Index time");
    FixIndexTimes();
    Step(u"Generate config.js");
    WritePlayerData();
    Step(u"Delete tmp file");
    DeleteTemporaryFiles();
    SignPage();
    OfferPage();
}

void frmExportMp4::CopyPlayer() {
    ShowFreeFolder();
    m_c.host.fs.CopyFolder(modGlobal::Join(m_c, m_c.host.installFolder, u"mp4"), m_output);
    const String author = OutputFile(u"author.png");
    modGlobal::SafeMoveFile(m_c, OutputFile(u"author_120.png"), author, false);
    m_c.host.ksLib.DrawImageToFit(author, project::PhotoFile(m_c));
}

// --- The conversion --------------------------------------------------------------------------------------------------

bool frmExportMp4::ConvertToMp4() {
    try {
        m_cancel = false;
        const std::int32_t length = m_c.host.ksLib.GetLength(m_c.support.packagePath);
        SetWebcamArea();
        SetBitrate();
        // A conversion that does not start counts as done: the missing movie shows at the cover.
        return EndOfConversion(StartConversion() ? PollConversion(length) : host::job_status::kFinished);
    } catch (const host::Error& error) {
        m_c.publish.failure = error.Description();
        modMsgBox::MsgBox(m_c, error.Description(), host::BoxButtons::Ok, u"ConvertToMp4");
        return false;
    }
}

void frmExportMp4::SetWebcamArea() {
    host::IKsOptimize& library = m_c.host.ksOptimize;
    std::int32_t leastWidth = 0;
    std::int32_t leastHeight = 0;
    if (library.GetVideoMinDim(m_c.support.packagePath, leastWidth, leastHeight) != 1) return;
    const auto sides = modGlobal::Split(cmbWebcamSize.Text(), u"x");
    const std::int32_t width = ToInt32(StringView(ItemAt(sides, 1)));
    const std::int32_t height = ToInt32(StringView(ItemAt(sides, 2)));
    // A webcam picture that does not fit leaves the library's last setting as it is.
    if (width > m_movie.width || height > m_movie.height) return;
    const std::int32_t right = m_movie.width - width;
    const std::int32_t bottom = m_movie.height - height;
    switch (cmbWebcamPos.ListIndex()) {
        case 0:
            return library.SetVideoAreaInMp4(width, height, 0, right);
        case 1:
            return library.SetVideoAreaInMp4(width, height, bottom, right);
        case 2:
            return library.SetVideoAreaInMp4(width, height, 0, 0);
        case 3:
            return library.SetVideoAreaInMp4(width, height, bottom, 0);
        default:
            return library.SetVideoAreaInMp4(0, 0, 0, 0);
    }
}

void frmExportMp4::SetBitrate() {
    const bool custom = cmbQuality.ListIndex() != 0;
    m_c.host.ksOptimize.SetCustomBitrate(custom ? publish::TypedNumber(TxtCustomBitrate.Text()) : 0);
}

bool frmExportMp4::StartConversion() {
    std::int32_t mode = kMp4Mode;
    return m_c.host.ksOptimize.ks2mp4(m_c.support.packagePath, m_c.support.workFolder, m_output, m_c.host.installFolder,
                                      m_movie.width, m_movie.height, mode, 1,
                                      ToInt32(StringView(m_c.project.g_Project.audioBitrate)), 0) != 0;
}

std::int32_t frmExportMp4::PollConversion(std::int32_t length) {
    host::IKsOptimize& library = m_c.host.ksOptimize;
    std::int32_t status = library.getKs2mp4Status();
    while (status >= 0) {
        ShowConversion(status, length);
        if (m_cancel) {
            library.stopKs2mp4();
            txtConvert.SetForeColour(modPublish::kEndedColour);
            txtConvert.SetCaption(modPublish::StageText(m_texts.convert, m_texts.cancelled));
        }
        m_c.host.loop.DoEvents();
        m_c.host.loop.Sleep(modPublish::kPollMs);
        status = library.getKs2mp4Status();
    }
    return status;
}

void frmExportMp4::ShowConversion(std::int32_t status, std::int32_t length) {
    const auto percent = static_cast<float>(Div(status * 100.0, length));
    if (percent < 0 || percent > 100) return;
    ProgressBar1.SetValue(ToInt32(static_cast<double>(percent)));
    txtConvert.SetCaption(modPublish::PercentText(m_texts.convert, percent));
}

bool frmExportMp4::EndOfConversion(std::int32_t status) {
    if (status == host::job_status::kSizeLimit) {
        EndWith(modPublish::StageText(m_texts.convert, m_texts.tooBig));
        return false;
    }
    if (m_cancel) {
        m_c.host.loop.Sleep(kReleaseMs);
        modGlobal::DeleteFolder(m_c, m_output);
        m_c.publish.failure = modPublish::StageText(m_texts.convert, m_texts.cancelled);
        return false;
    }
    ProgressBar1.SetValue(100);
    return true;
}

// --- The page --------------------------------------------------------------------------------------------------------

bool frmExportMp4::MakeCover() {
    const String project = OutputFile(u"project.xml");
    m_c.host.fs.CopyFile(modGlobal::Join(m_c, m_c.support.workFolder, u"project.ksp"), project);
    m_c.project.g_Project.Load(project);
    m_c.host.fs.SetCurrentFolder(m_output);
    modExec::ShellExecuteWait(m_c,
                              modGlobal::Join(m_c, m_c.host.installFolder, m_c.host.processes.ProgramName(u"ffmpeg")),
                              {u"-i", u"media.mp4", u"-ss", u"0.1", u"-vframes", u"1", u"-s",
                               ToText(m_movie.width) + u"x" + ToText(m_movie.height), u"-f", u"image2", u"cover.jpg"},
                              true);
    if (!m_c.host.fs.FileExists(OutputFile(u"cover.jpg"))) return false;
    m_c.host.fs.SetCurrentFolder(m_c.host.installFolder);
    return true;
}

bool frmExportMp4::ListKeyFrames() {
    const String list = OutputFile(u"keyframe.txt");
    modExec::ShellExecuteWait(
        m_c, modGlobal::Join(m_c, m_c.host.installFolder, m_c.host.processes.ProgramName(u"mp4GetKeyFrame")),
        {OutputFile(u"media.mp4"), list}, true);
    return m_c.host.fs.FileExists(list);
}

void frmExportMp4::RemoveInsertedFiles() {
    CProjectFile& project = m_c.project.g_Project;
    for (std::int32_t i = project.index.Count(); i >= 1; --i)
        if (!project.index.Item(i).Url.empty()) project.RemoveIndex(i);
}

void frmExportMp4::FixIndexTimes() {
    const String times = host::FromUtf8(m_c.host.fs.ReadFile(OutputFile(u"keyframe.txt")));
    publish::SnapIndex(m_c.project.g_Project.index, publish::ReadKeyFrames(times));
}

/// A lecture is published without its captions rather than not at all.
void frmExportMp4::WriteCaptions() {
    m_captions = publish::FindCaptions(m_c);
    lCaptions.SetCaption(m_captions.sentence);
    if (m_captions.tracks.empty()) return;
    const auto write = [this](const publish::Captions& captions) {
        const std::string script = host::ToUtf8(publish::CaptionsScript(m_c.support, captions));
        m_c.host.fs.WriteFile(OutputFile(u"captions.js"), script);
    };
    try {
        write(m_captions);
    } catch (const host::Error&) {
        write({});  // half a script would be an error on the page
    }
}

void frmExportMp4::WritePlayerData() {
    const auto write = [this](StringView name, const String& text) {
        m_c.host.fs.WriteFile(OutputFile(name), host::ToUtf8(text));
    };
    WriteCaptions();
    write(u"config.js", publish::PlayerConfig(m_c.support, m_c.project.g_Project, m_movie.width, m_movie.height));
    write(u"ques_config.js", publish::QuizConfig(m_c));
}

void frmExportMp4::DeleteTemporaryFiles() {
    modGlobal::SafeDeleteFile(m_c, OutputFile(u"project.xml"));
    modGlobal::SafeDeleteFile(m_c, OutputFile(u"keyframe.txt"));
    cmdCancel.SetCaption(m_texts.exitCaption);
}

void frmExportMp4::SignPage() {
    m_c.host.fs.AppendFile(OutputFile(u"index.html"),
                           host::ToUtf8(u"\r\n<!-- Kestrum " + modProject::GetProgramVersion(m_c) + u" --!>"));
}

void frmExportMp4::OfferPage() {
    const String page = OutputFile(u"index.html");
    m_c.publish.publishedPage = page;
    if (modMsgBox::MsgBox(m_c, modPublish::SuccessQuestion(m_c), host::BoxButtons::YesNo, u"") == host::BoxAnswer::Yes)
        modPublish::OpenPage(m_c, page);
    Unload();
}

}  // namespace kestrum
