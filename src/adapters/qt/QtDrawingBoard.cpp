#include "adapters/qt/QtDrawingBoard.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>

#include "adapters/linux/KeyGrab.h"
#include "adapters/linux/PointerPad.h"
#include "adapters/qt/Compositor.h"
#include "adapters/qt/InkWindow.h"
#include "adapters/qt/StackOrder.h"

namespace kestrum::qt {
namespace {

constexpr std::int32_t kLookForCoversMs = 250;
constexpr std::uint32_t kEscape = 0xFF1B;  // as X names it

QRect MonitorOf(const host::Rect& area) {
    const QRect wanted(QPoint(area.left, area.top), QPoint(area.right - 1, area.bottom - 1));
    const auto shared = [&wanted](const QScreen* screen) {
        const QRect common = screen->geometry() & wanted;
        return qint64{common.width()} * common.height();
    };
    const QScreen* best = QGuiApplication::primaryScreen();
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (shared(screen) > shared(best)) best = screen;
    }
    return best->geometry();
}

host::Rect RectOf(const QRect& place) {
    return {place.left(), place.top(), place.right() + 1, place.bottom() + 1};
}

QColor ColourOf(std::int32_t bgr) {
    return {bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF};
}

InkWindow::Ground GroundFor(adapters::IDrawingBoard::Sheet sheet) {
    if (sheet == adapters::IDrawingBoard::Sheet::Whiteboard) return InkWindow::Ground::White;
    return IsComposited() ? InkWindow::Ground::SeeThrough : InkWindow::Ground::CutOut;
}

Ink::Edges EdgesFor(InkWindow::Ground ground) {
    return ground == InkWindow::Ground::CutOut ? Ink::Edges::Hard : Ink::Edges::Smooth;
}

QString TitleOf(adapters::IDrawingBoard::Sheet sheet) {
    return sheet == adapters::IDrawingBoard::Sheet::Canvas ? QStringLiteral("Kestrum canvas")
                                                           : QStringLiteral("Kestrum whiteboard");
}

}  // namespace

/// A sheet on screen: its ink, the window that shows it, and the pad above that hears the pointer.
class QtDrawingBoard::OpenSheet {
  public:
    OpenSheet(QtDrawingBoard& board, Sheet sheet, const QRect& place)
        : m_board(board),
          m_sheet(sheet),
          m_place(place),
          m_ink(place.size(), EdgesFor(GroundFor(sheet))),
          m_window(NewWindow(GroundFor(sheet))),
          m_pad(board.m_loop, RectOf(place),
                [this](auto act, host::Point at) {
                    Stroke(act, {at.x, at.y});
                }),
          m_escape(board.m_loop, kEscape, [&board] { board.CloseSoon(); }),
          m_timer(board.m_loop.StartTimer(u"drawing board", kLookForCoversMs, host::TimerReentry::Skipped,
                                          [this] { Look(); })) {}

    Sheet Kind() const { return m_sheet; }
    void Clear() {
        m_ink.Clear();
        m_window->Follow(m_window->rect());
    }

  private:
    std::unique_ptr<InkWindow> NewWindow(InkWindow::Ground ground) const {
        return std::make_unique<InkWindow>(m_ink, ground, m_place, TitleOf(m_sheet));
    }

    void Stroke(platform::PointerPad::Act act, QPoint at) {
        using Act = platform::PointerPad::Act;
        const Pen pen{std::max(m_board.m_width, 1), ColourOf(m_board.m_colour)};
        QRect changed;
        if (act == Act::Down) changed = m_ink.Begin(at, pen);
        if (act != Act::Down) changed = m_ink.MoveTo(at);
        if (act == Act::Up) changed |= m_ink.End();
        if (!changed.isEmpty()) m_window->Follow(changed);
    }

    void Look() {
        FollowCompositor();
        if (!IsCovered({m_window->winId(), m_pad.Window()})) return;
        m_window->raise();
        AwaitServer();  // the pad's own connection must not overtake
        m_pad.Raise();
    }

    /// A compositor may come and go while a sheet is open: a see-through window would turn black.
    void FollowCompositor() {
        const InkWindow::Ground ground = GroundFor(m_sheet);
        if (ground == m_window->GroundKind()) return;
        m_ink.SetEdges(EdgesFor(ground));
        m_window = NewWindow(ground);
        AwaitServer();
        m_pad.Raise();
    }

    QtDrawingBoard& m_board;
    const Sheet m_sheet;
    const QRect m_place;
    Ink m_ink;
    std::unique_ptr<InkWindow> m_window;
    platform::PointerPad m_pad;
    platform::KeyGrab m_escape;
    std::unique_ptr<host::ITimer> m_timer;
};

QtDrawingBoard::QtDrawingBoard(QtEventLoop& loop) : m_loop(loop) {}

QtDrawingBoard::~QtDrawingBoard() = default;

void QtDrawingBoard::Open(Sheet sheet, const host::Rect& area) {
    if (IsOpen(sheet)) return;
    m_open.reset();  // its Escape key must be free before the next sheet asks for it
    m_open = std::make_unique<OpenSheet>(*this, sheet, MonitorOf(area));
}

void QtDrawingBoard::Close(Sheet sheet) {
    if (IsOpen(sheet)) m_open.reset();
}

bool QtDrawingBoard::IsOpen(Sheet sheet) const {
    return m_open && m_open->Kind() == sheet;
}

void QtDrawingBoard::SetPen(std::int32_t width, std::int32_t colour) {
    m_width = width;
    m_colour = colour;
}

void QtDrawingBoard::SlideShowNextSlide(host::ISlideShowWindow&) {
    if (IsOpen(Sheet::Canvas)) m_open->Clear();
}

/// The key's grab goes with the sheet, and must not end inside its own call.
void QtDrawingBoard::CloseSoon() {
    m_loop.Post([this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired()) m_open.reset();
    });
}

}  // namespace kestrum::qt
