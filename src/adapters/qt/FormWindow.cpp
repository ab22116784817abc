#include "adapters/qt/FormWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>

#include "adapters/qt/Look.h"
#include "adapters/qt/QtApplication.h"
#include "adapters/qt/QtText.h"
#include "adapters/qt/TextViews.h"
#include "ui/AccessKeys.h"

namespace kestrum::qt {
namespace {

constexpr int kExposeWaitMs = 500;
const QColor kPlate(0x24, 0x2B, 0x35);
const QColor kPlateEdge(0x4A, 0x55, 0x63);

bool IsPinnedStyle(const ui::WindowStyle& style) {
    return style.topmost && style.borderless && !style.activates;
}

/// A notice that never takes the keyboard is drawn past the window manager: a full-screen show cannot cover it then.
Qt::WindowFlags FlagsOf(const ui::WindowStyle& style) {
    Qt::WindowFlags flags = Qt::Window;
    if (style.borderless) {
        flags |= Qt::FramelessWindowHint;
    } else {
        flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
        if (style.closable) flags |= Qt::WindowCloseButtonHint;
    }
    if (style.topmost) flags |= Qt::WindowStaysOnTopHint;
    if (!style.activates) flags |= Qt::WindowDoesNotAcceptFocus;
    if (IsPinnedStyle(style)) flags |= Qt::BypassWindowManagerHint;
    return flags;
}

QPalette NoticePalette() {
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, kPlate);
    return palette;
}

}  // namespace

FormWindow::FormWindow(ui::Form& form, QtEventLoop& loop) : m_form(form), m_loop(loop) {
    SyncStyle();
    if (form.Style().borderless) {
        setPalette(NoticePalette());
        setStyleSheet(QStringLiteral("QLabel { color: white; font-size: 12pt; }"));
    }
    LayoutBuilder builder(
        form, *this, [this](Act act) { Post(std::move(act)); }, m_views);
    QLayout* root = builder.Build();
    BuildMenu(*root);
    setLayout(root);
    for (const auto& view : m_views) view->Widget().installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusMoved(now); });
}

FormWindow::~FormWindow() = default;

void FormWindow::Post(Act act) {
    ++m_pendingActs;
    m_loop.Post([this, alive = std::weak_ptr(m_alive), act = std::move(act)] {
        if (alive.expired()) return;
        --m_pendingActs;
        act(m_form);
        if (!alive.expired()) Sync();
    });
}

void FormWindow::SyncLater() {
    if (std::exchange(m_syncPosted, true)) return;
    m_loop.Post([this, alive = std::weak_ptr(m_alive)] {
        if (alive.expired()) return;
        m_syncPosted = false;
        Sync();
    });
}

void FormWindow::Appear(bool modal) {
    const Qt::WindowModality modality = modal ? Qt::ApplicationModal : Qt::NonModal;
    if (isVisible() && modality != windowModality()) hide();
    setWindowModality(modality);
    Sync();
    const bool activates = m_form.Style().activates;
    setAttribute(Qt::WA_ShowWithoutActivating, !activates);
    const bool isExcluded = m_form.Style().excludedFromCapture;
    MarkOwnWindow(*this, isExcluded);
    if (isExcluded && !m_covered) m_covered = std::make_unique<CoveredPictures>();
    show();
    raise();
    if (activates) activateWindow();
    if (m_form.Focus() != nullptr) return;
    for (ui::Control* control : m_form.TabOrder()) {
        if (!control->IsUsable()) continue;
        m_form.MoveFocus(*control);
        SyncFocus();
        return;
    }
}

void FormWindow::Sync() {
    if (!m_form.IsVisible()) {
        hide();
        m_covered.reset();
        return;
    }
    const bool hasWidth = m_form.Place().width > 0 && !m_form.Style().borderless;
    const int textWidth = hasWidth ? m_form.Place().width - 2 * kMargin : kTextWidth;
    SyncStyle();
    SyncAccessKeys();
    {
        // Qt moves the keyboard away from a widget that goes: where it belongs, the model knows.
        const QScopedValueRollback<bool> following(m_isFollowing, true);
        for (const auto& view : m_views) {
            if (m_pendingActs == 0 || !view->Control().IsFocusable()) view->Sync(textWidth);
        }
    }
    SyncMenu();
    SyncSize();
    SyncPlace();
    SyncFocus();
}

void FormWindow::SyncAccessKeys() {
    for (const auto& view : m_views) view->SetAccessKey(StringView::npos, FieldOf(view->Control()));
    for (const ui::AccessKey& key : ui::AccessKeysOf(m_form)) {
        ControlView* bearer = ViewOf(key.caption);
        ControlView* target = ViewOf(key.target);
        if (bearer && target) bearer->SetAccessKey(key.at, bearer == target ? nullptr : &target->Widget());
    }
}

/// What a label names: assistive programs tell the one with the other. Null for all else.
QWidget* FormWindow::FieldOf(const ui::Control& label) const {
    if (label.Kind() != ui::ControlKind::Label) return nullptr;
    for (const auto& view : m_views) {
        if (m_form.LabelOf(view->Control()) == &label) return &view->Widget();
    }
    return nullptr;
}

void FormWindow::SyncStyle() {
    const ui::WindowStyle& style = m_form.Style();
    setWindowTitle(ToQt(m_form.Caption()));
    setWindowOpacity(style.layered ? style.opacity / 255.0 : 1.0);
    const Qt::WindowFlags flags = FlagsOf(style);
    m_pinned = IsPinnedStyle(style);
    if (flags == windowFlags()) return;
    const bool wasVisible = isVisible();
    setWindowFlags(flags);  // takes the window off the screen
    if (wasVisible) Appear(windowModality() != Qt::NonModal);
}

/// As large as the place asks for, and never smaller than the content; a window without a frame is exactly as large as
/// asked, with what room is left around its content.
void FormWindow::SyncSize() {
    const QSize asked(m_form.Place().width, m_form.Place().height);
    const bool isExact = m_form.Style().borderless && !asked.isEmpty();
    const int margin = m_views.empty() ? 0 : isExact ? kMargin / 2 : kMargin;
    layout()->setContentsMargins(margin, isExact ? 0 : margin, margin, isExact ? 0 : margin);
    layout()->activate();
    const QSize content = isExact ? QSize(1, 1) : layout()->totalSizeHint();
    const QSize size = asked.expandedTo(content).expandedTo(QSize(1, 1));
    if (size != this->size() || size != minimumSize()) setFixedSize(size);
}

QPoint FormWindow::CornerOf(const ui::WindowPlace& place) const {
    const host::Rect& area = place.area;
    const QRect screen = place.start == ui::StartPosition::CentreArea
                             ? QRect(QPoint(area.left, area.top), QPoint(area.right - 1, area.bottom - 1))
                             : QGuiApplication::primaryScreen()->geometry();
    const int middle = screen.left() + (screen.width() - width()) / 2;
    switch (place.start) {
        case ui::StartPosition::Manual:
            return {place.left, place.top};
        case ui::StartPosition::CentreHorizontally:
            return {middle, place.top};
        default:
            return {middle, screen.top() + (screen.height() - height()) / 2};
    }
}

/// A place is taken when the window first appears and when the program sets another; meanwhile the user may move it.
void FormWindow::SyncPlace() {
    const ui::WindowPlace& place = m_form.Place();
    const bool same = m_placed && place == m_place;
    const bool staysCentred = m_pinned && place.start != ui::StartPosition::Manual;
    if (same && !staysCentred) return;
    m_placed = true;
    m_place = place;
    const QPoint corner = CornerOf(place);
    if (corner != pos() || !isVisible()) move(corner);
}

/// The model knows where the keyboard is; an open list is left alone.
void FormWindow::SyncFocus() {
    if (m_pendingActs > 0 || m_form.Focus() == nullptr || QApplication::activePopupWidget()) return;
    ControlView* view = ViewOf(m_form.Focus());
    if (!view) return;
    if (!m_form.Focus()->IsUsable()) {
        FocusMoved(focusWidget());  // its control is gone: the keyboard is where Qt took it
        return;
    }
    QWidget& widget = view->Widget();
    if (!widget.hasFocus() && !widget.isAncestorOf(focusWidget())) widget.setFocus();
}

void FormWindow::FocusMoved(QWidget* now) {
    if (m_isFollowing) return;
    for (QWidget* widget = now; widget && widget != this; widget = widget->parentWidget()) {
        ControlView* view = ViewOf(widget);
        if (!view) continue;
        ui::Control& control = view->Control();
        if (m_form.Focus() != &control) Post([&control](ui::Form& form) { form.MoveFocus(control); });
        return;
    }
}

void FormWindow::PaintNow() {
    Sync();
    QElapsedTimer waited;
    waited.start();
    while (windowHandle() && !windowHandle()->isExposed() && waited.elapsed() < kExposeWaitMs) {
        m_loop.PaintWindows(10);
    }
    QCoreApplication::sendPostedEvents(this, QEvent::LayoutRequest);
    repaint();
}

WId FormWindow::Surface(const ui::Picture& picture) {
    ControlView* view = ViewOf(&picture);
    return view ? view->Surface() : 0;
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Post([](ui::Form& form) { form.PressEnter(); });
    } else if (event->key() == Qt::Key_Escape) {
        Post([](ui::Form& form) { form.PressEscape(); });
    } else if (event->key() == Qt::Key_PageDown || event->key() == Qt::Key_PageUp) {
        ScrollText(event->key() == Qt::Key_PageDown);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FormWindow::ScrollText(bool down) {
    auto* text = findChild<QPlainTextEdit*>(QString::fromLatin1(kScrolledText));
    if (!text) return;
    text->verticalScrollBar()->triggerAction(down ? QAbstractSlider::SliderPageStepAdd
                                                  : QAbstractSlider::SliderPageStepSub);
}

/// The form decides whether it goes; if it does, it is closed by its unloading.
void FormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    Post([](ui::Form& form) { form.CloseByUser(); });
}

void FormWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (!m_form.Style().borderless || m_views.empty()) return;
    QPainter painter(this);
    painter.setPen(kPlateEdge);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

bool FormWindow::eventFilter(QObject* object, QEvent* event) {
    const ControlView* view = ViewOf(object);
    if (view && event->type() == QEvent::Enter) {
        Post([control = &view->Control()](ui::Form& form) { form.PointAt(control); });
    } else if (view && event->type() == QEvent::Leave) {
        Post([](ui::Form& form) { form.PointAt(nullptr); });
    }
    return QWidget::eventFilter(object, event);
}

void FormWindow::BuildMenu(QLayout& root) {
    for (ui::Control* control : m_form.Controls()) {
        if (control->Kind() != ui::ControlKind::Menu) continue;
        if (!m_menu) {
            auto* bar = new QMenuBar(this);
            m_menu = bar->addMenu(QStringLiteral("\u2630"));
            root.setMenuBar(bar);
        }
        connect(m_menu->addAction(QString()), &QAction::triggered, this,
                [this, control] { Post([control](ui::Form& form) { form.Click(*control); }); });
    }
}

void FormWindow::SyncMenu() {
    if (!m_menu) return;
    qsizetype next = 0;
    for (ui::Control* control : m_form.Controls()) {
        if (control->Kind() != ui::ControlKind::Menu) continue;
        const auto& entry = static_cast<const ui::Menu&>(*control);
        QAction* action = m_menu->actions()[next++];
        action->setSeparator(entry.IsSeparator());
        action->setText(ToCaption(entry.Caption()));
        action->setVisible(entry.Visible());
        action->setEnabled(entry.Enabled());
    }
}

ControlView* FormWindow::ViewOf(const QObject* widget) const {
    const auto found =
        std::find_if(m_views.begin(), m_views.end(), [widget](const auto& view) { return &view->Widget() == widget; });
    return found == m_views.end() ? nullptr : found->get();
}

ControlView* FormWindow::ViewOf(const ui::Control* control) const {
    const auto found = std::find_if(m_views.begin(), m_views.end(),
                                    [control](const auto& view) { return &view->Control() == control; });
    return found == m_views.end() ? nullptr : found->get();
}

}  // namespace kestrum::qt
