// Slide changes as index entries, and the end of a recording.
#include "project/modSlide.h"
#include "recording/frmViewer.h"
#include "recording/modEncoder.h"
#include "recording/modViewer.h"
#include "support/modGlobal.h"

namespace kestrum {

namespace {

constexpr std::int32_t kSettleMs = 150;         // the new slide is on screen by then
constexpr std::int32_t kFirstTimedStart = 14;   // hosts from here on start through the timer
constexpr std::int32_t kNeedsRepaint = 14;      // this host leaves the show window stale
constexpr std::uint32_t kQuickChangeMs = 2000;  // a slide shown shorter was only passed through

std::uint32_t Since(std::int32_t earlier, std::int32_t later) {
    return static_cast<std::uint32_t>(later) - static_cast<std::uint32_t>(earlier);
}

}  // namespace

String frmViewer::TitleOf(host::ISlideShowView& view, std::int32_t position) {
    String title = u"Slide " + ToText(position);
    Try.Set(title, [&] { return modSlide::GetSlideTitle(m_c, *view.Slide(), title); });
    return title;
}

void frmViewer::PptApp_SlideShowNextSlide(host::ISlideShowWindow& window) {
    recording::State& r = m_c.recording;
    if (Try.If([&] { return modViewer::IsForeignRecording(m_c, window.Presentation()->FullName()); })) return;
    if (!r.g_Recording) FeedOtherRecorder(window);
    if (modViewer::Setting(m_c, u"chkAutoRecord", u"0") == u"0" && !r.g_RecordRequested) return TraceOnly(window);
    if (r.g_PrepareStarted && !r.g_EncoderStarted) return;
    if (!r.g_PrepareStarted) return FirstSlide(window);
    if (!r.g_Recording) return;
    if (Try.If([&] { return window.View()->CurrentShowPosition() == r.g_CurrentSlide; })) return;
    if (OfficeMajor() == kNeedsRepaint) {
        if (auto show = m_c.host.windows.FindWindow(u"screenClass", u"")) m_c.host.windows.InvalidateAndUpdate(*show);
    }
    m_c.host.loop.Sleep(kSettleMs);
    IndexSlide(window);
}

void frmViewer::FeedOtherRecorder(host::ISlideShowWindow& window) {
    auto recorder = modViewer::FindRecorderWindow(m_c);
    if (!recorder) return;
    m_c.host.loop.Sleep(kSettleMs);
    Try([&] {
        auto view = window.View();
        modViewer::SendSlideTitle(m_c, *recorder, TitleOf(*view, view->CurrentShowPosition()));
    });
}

// A show that is none of the driver's business: its pen strokes may interest a recorder of its own process.
void frmViewer::TraceOnly(host::ISlideShowWindow& window) {
    EnsureMouseHooker();
    Try([&] { View = window.View(); });
}

void frmViewer::FirstSlide(host::ISlideShowWindow& window) {
    if (OfficeMajor() >= kFirstTimedStart) {
        Load();
        tmrPrepareAndRecord.SetEnabled(true);
        return;
    }
    if (Try.If([&] { return window.View()->CurrentShowPosition() == m_c.recording.g_InitialSlide; })) {
        PrepareAndRecord();
    }
}

void frmViewer::IndexSlide(host::ISlideShowWindow& window) {
    recording::State& r = m_c.recording;
    String title = u"Slide " + ToText(r.g_CurrentSlide);
    Try([&] {
        auto view = window.View();
        Try.Set(r.g_CurrentSlide, [&] { return view->CurrentShowPosition(); });
        title = TitleOf(*view, r.g_CurrentSlide);
    });
    std::int32_t position = m_c.host.ksLib.AddKeyFrame();
    if (position > 0) Try([&] { AddEntry(title, position); });
    LastSlideTick = m_c.host.loop.TickCount();
}

void frmViewer::AddEntry(const String& title, std::int32_t position) {
    CProjectFile& project = m_c.project.g_Project;
    String date = DateTimeText(m_c.host.loop.Now());
    if (SkipPres && Since(LastSlideTick, m_c.host.loop.TickCount()) < kQuickChangeMs) {
        project.SetLastItem(title, ToText(position), date, u"", u"", u"", false, 0);
    } else {
        // The save comes first: the file on disk lags one entry behind the list. The journal does not.
        project.SetDuration(position);
        project.Save(u"");
        project.AddIndex(title, ToText(position), date, u"", u"", u"", false, 0);
    }
    modViewer::HandOverJournal(m_c);
}

void frmViewer::DoSlideShowEnd() {
    recording::State& r = m_c.recording;
    if (!r.g_Recording || r.stopping) return;
    r.stopping = true;
    RemoveViewerHook();
    if (r.g_EncoderStarted) Try([&] { modEncoder::StopEncoder(m_c); });
    Try([&] { StoreDuration(); });
    Try([&] { StoreFrameSize(); });
    Try([&] { modSlide::WriteAbstract(m_c); });
    Try([&] { modViewer::ReleaseRecordingUi(m_c); });
    r.g_Recording = false;
    r.stopping = false;
}

// A media library that cannot tell the length must not cost the entries, which a save drops beyond the media's end.
void frmViewer::StoreDuration() {
    CProjectFile& project = m_c.project.g_Project;
    std::int32_t length = m_c.host.ksLib.GetLength(m_c.support.packagePath);
    std::int32_t last = project.index.Count();
    if (length <= 0 && last > 0) length = ToInt32(project.index.Item(last).pos) + 1;
    project.SetDuration(length);
}

void frmViewer::StoreFrameSize() {
    std::int32_t width = 0, height = 0;
    if (m_c.host.ksLib.GetFileHeaderDim(m_c.support.packagePath, width, height) == 0) return;
    m_c.project.g_Project.screenSize = ToText(width) + u"x" + ToText(height);
}

}  // namespace kestrum
