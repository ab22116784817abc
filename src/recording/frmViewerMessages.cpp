// The window messages of the hook library and of other processes; pen, canvas and whiteboard.
#include <array>

#include "recording/frmViewer.h"
#include "recording/modViewer.h"
#include "support/modGlobal.h"

namespace kestrum {

namespace {

namespace message {
constexpr std::int32_t kWindowPosChanging = 70, kCopyData = 74, kAudioLevel = 1143, kPointer = 0x8001,
                       kLeftDown = 0x8002, kLeftUp = 0x8003, kRightUp = 0x8004, kCanvas = 0x800A, kWhiteboard = 0x800B,
                       kStop = 0x800C;
}

constexpr std::int64_t kInsertAfterTopmost = -1;
constexpr std::int32_t kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kYellow = 0x00FFFF;

std::int32_t NextColour(std::int32_t colour) {
    switch (colour) {
        case kRed:
            return kGreen;
        case kGreen:
            return kBlue;
        case kBlue:
            return kYellow;
        default:
            return kRed;
    }
}

}  // namespace

/// The answer to message 70 is the insert-after value that belongs into its position record.
std::int64_t frmViewer::OnMessage(const host::WindowMessage& m) {
    if (!m_hookInstalled) return 0;
    ViewerWndProc(m);
    return m.message == message::kWindowPosChanging ? kInsertAfterTopmost : 0;
}

void frmViewer::ViewerWndProc(const host::WindowMessage& m) {
    recording::State& r = m_c.recording;
    switch (m.message) {
        case message::kCopyData:
            if (r.g_Recording) TitleFromOutside(m.data);
            break;
        case message::kAudioLevel:
            m_c.devices.g_AudioLevel = static_cast<std::int32_t>(m.first);
            break;
        case message::kPointer:
            r.pointerPosition = host::Point{static_cast<std::int32_t>(m.first), static_cast<std::int32_t>(m.second)};
            break;
        case message::kLeftDown:
        case message::kLeftUp:
        case message::kRightUp:
            PenStroke(m.message);
            break;
        case message::kCanvas:
            if (r.g_Recording) ToggleCanvas();
            break;
        case message::kWhiteboard:
            if (r.g_Recording) ToggleWhiteboard();
            break;
        case message::kStop:
            StopHotKey();
            break;
        default:
            break;
    }
}

// The bytes hold one character each; what follows the first zero is filling.
void frmViewer::TitleFromOutside(const std::string& bytes) {
    String title;
    for (char byte : bytes) {
        if (byte == '\0') break;
        title.push_back(static_cast<unsigned char>(byte));
    }
    std::int32_t position = m_c.host.ksLib.AddKeyFrame();
    if (position > 0) {
        Try([&] {
            CProjectFile& project = m_c.project.g_Project;
            project.SetDuration(position);
            project.Save(m_c.support.packagePath + u"._tmp" + m_c.host.fs.Separator() + u"media.rec.tmp");
            project.AddIndex(title, ToText(position), DateTimeText(m_c.host.loop.Now()), u"", u"", u"", false, 0);
            modViewer::HandOverJournal(m_c);
        });
    }
    m_c.recording.showInProgress = title.find(u"** after") == String::npos;
}

// --- pen -----------------------------------------------------------------------------------------------------------

bool frmViewer::PenMode() {
    return Try.If([&] { return View && View->PointerType() == host::PointerType::Pen; });
}

void frmViewer::SendPenOp(std::int32_t number) {
    if (!PenMode()) return;
    if (auto window = modViewer::FindRecorderWindow(m_c)) {
        m_c.host.windows.SendMessage(*window, host::WindowMessage{number, 0, 0, {}});
    }
}

void frmViewer::PenStroke(std::int32_t number) {
    if (!m_c.recording.g_Recording) return SendPenOp(number);
    if (number != message::kLeftDown) return m_c.host.ksLib.EndDraw();
    if (PenMode()) m_c.host.ksLib.StartDraw();
}

void frmViewer::SwitchPen() {
    if (!modViewer::IsShowRunningForActive(m_c)) return;
    Try([&] {
        auto view = PptApp->ActivePresentation()->SlideShowSettings()->Run()->View();
        if (view->PointerType() != host::PointerType::Pen) return view->SetPointerType(host::PointerType::Pen);
        Try([&] { view->SetPointerType(host::PointerType::Arrow); });
        Try([&] { view->SetPointerColor(NextColour(view->PointerColor())); });
        Try([&] { view->SetPointerType(host::PointerType::Pen); });
    });
}

// --- canvas and whiteboard -----------------------------------------------------------------------------------------

namespace {

void SetCanvasPen(host::IKsLib& library) {
    constexpr std::int32_t kWidth = 2;
    library.SetPenAttr(kWidth, kRed);
}

}  // namespace

void frmViewer::YieldToEvents() {
    constexpr int kRounds = 10;
    for (int i = 0; i < kRounds; ++i) {
        m_c.host.loop.DoEvents();
        m_c.host.loop.Sleep(0);
    }
}

// The recording may end in the events that run meanwhile: a sheet opened then would never be closed.
void frmViewer::ToggleCanvas() {
    host::IKsLib& library = m_c.host.ksLib;
    if (library.WhiteboardEnabled() == 1) {
        library.DeleteWhiteboard();
        YieldToEvents();
        if (!m_c.recording.g_Recording) return;
    }
    SetCanvasPen(library);
    library.CanvasEnabled() == 1 ? library.DeleteCanvas() : library.CreateCanvas();
}

void frmViewer::ToggleWhiteboard() {
    host::IKsLib& library = m_c.host.ksLib;
    if (library.CanvasEnabled() == 1) {
        library.DeleteCanvas();
        YieldToEvents();
        if (!m_c.recording.g_Recording) return;
    }
    SetCanvasPen(library);
    library.WhiteboardEnabled() == 1 ? library.DeleteWhiteboard() : library.CreateWhiteboard();
}

void frmViewer::StopHotKey() {
    constexpr std::int32_t kSettle = 200;  // ms
    recording::State& r = m_c.recording;
    if (r.handlingStopKey) return;
    r.handlingStopKey = true;
    if (r.g_Recording) AbortRecording();
    m_c.host.loop.Sleep(kSettle);
    r.handlingStopKey = false;
}

}  // namespace kestrum
