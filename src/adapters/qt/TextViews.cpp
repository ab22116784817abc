#include "adapters/qt/TextViews.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "adapters/qt/QtText.h"
#include "adapters/qt/SurfaceWindow.h"

namespace kestrum::qt {
namespace {

Qt::Alignment ToQtAlignment(ui::Alignment alignment) {
    switch (alignment) {
        case ui::Alignment::Centre:
            return Qt::AlignHCenter | Qt::AlignVCenter;
        case ui::Alignment::Right:
            return Qt::AlignRight | Qt::AlignVCenter;
        case ui::Alignment::Left:
            break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

/// Paths and addresses have no blanks: they may be broken after their separators.
QString Breakable(QString text) {
    return text.replace(u'/', QStringLiteral("/\u200B"));
}

QString WithPlainLineEnds(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

/// Sets the size that `text` needs: its own width, or `textWidth` and as many lines as it takes.
void FitText(QLabel& label, const QString& text, int textWidth) {
    label.ensurePolished();  // a notice's font comes from its style sheet, which is not applied before
    const int own = label.fontMetrics().size(0, text).width();
    const bool wraps = own > textWidth;
    label.setWordWrap(wraps);
    label.setMinimumSize(0, 0);
    label.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    if (!wraps) return;
    label.setFixedWidth(textWidth);
    label.setFixedHeight(label.heightForWidth(textWidth));
}

/// A label that never makes its window taller than the screen: a text that would is scrolled inside. It does not take
/// the keyboard; the window scrolls it (FormWindow).
class TextLabel : public QLabel {
  public:
    using QLabel::QLabel;

    /// False, and nothing is shown, if `text` is short enough for a plain label.
    bool ScrollsIfTooTall(const QString& text, int textWidth) {
        const int most = QGuiApplication::primaryScreen()->availableGeometry().height() * 6 / 10;
        const QRect lines(0, 0, textWidth, QWIDGETSIZE_MAX);
        const bool isTall = fontMetrics().boundingRect(lines, Qt::TextWordWrap, text).height() > most;
        if (m_scrolled) m_scrolled->setVisible(isTall);
        if (!isTall) return false;
        if (!m_scrolled) MakeScrolled();
        if (m_scrolled->toPlainText() != text) m_scrolled->setPlainText(text);
        setText({});
        setFixedSize(textWidth, most);
        m_scrolled->setGeometry(rect());
        return true;
    }

  private:
    void MakeScrolled() {
        m_scrolled = new QPlainTextEdit(this);
        m_scrolled->setObjectName(kScrolledText);
        m_scrolled->setReadOnly(true);
        m_scrolled->setFocusPolicy(Qt::NoFocus);
        m_scrolled->show();
    }

    QPlainTextEdit* m_scrolled = nullptr;
};

class LabelView : public ControlView {
  public:
    LabelView(ui::Label& control, TextLabel* widget) : ControlView(control, widget), m_model(control), m_view(*widget) {
        m_view.setTextFormat(Qt::PlainText);
    }

  protected:
    void SyncValues(int textWidth) override {
        const QString text = WithPlainLineEnds(ToQt(m_model.Caption()));
        SyncColour();
        m_view.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        if (m_view.ScrollsIfTooTall(text, textWidth)) return;
        m_view.setAlignment(ToQtAlignment(m_model.TextAlignment()));
        m_view.setBuddy(AccessTarget());
        if (AccessTarget()) {
            m_view.setText(ToCaption(m_model.Caption(), AccessKey()));
        } else {
            m_view.setText(m_view.fontMetrics().size(0, text).width() > textWidth ? Breakable(text) : text);
        }
        FitText(m_view, text, textWidth);
    }

  private:
    void SyncColour() {
        const auto colour = static_cast<std::uint32_t>(m_model.ForeColour());
        const QString style =
            m_model.ForeColour() < 0
                ? QString()
                : QStringLiteral("color: rgb(%1, %2, %3)").arg(colour & 0xFF).arg(colour >> 8 & 0xFF).arg(colour >> 16);
        if (style != m_view.styleSheet()) m_view.setStyleSheet(style);
    }

    ui::Label& m_model;
    TextLabel& m_view;
};

/// A label that shows when it has the keyboard.
class FocusLabel : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        if (!hasFocus()) return;
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
};

/// Reached with the Tab key, followed with a click, or with Enter, which the form hands to the control in focus.
class LinkView : public ControlView {
  public:
    LinkView(ui::Link& control, QLabel* widget, const PostAct& post)
        : ControlView(control, widget), m_model(control), m_view(*widget) {
        m_view.setObjectName(kLinkText);
        m_view.setTextFormat(Qt::RichText);
        m_view.setTextInteractionFlags(Qt::LinksAccessibleByMouse);
        m_view.setFocusPolicy(Qt::StrongFocus);
        QObject::connect(&m_view, &QLabel::linkActivated, &m_view,
                         [&control, post] { post([&control](ui::Form& form) { form.Click(control); }); });
    }

  protected:
    void SyncValues(int textWidth) override {
        const QString text = ToQt(m_model.Caption());
        const QString look = m_model.Hot() ? QStringLiteral("underline") : QStringLiteral("none");
        m_view.setText(QStringLiteral("<a href=\"#\" style=\"text-decoration:%1\">%2</a>")
                           .arg(look, Breakable(text).toHtmlEscaped()));
        FitText(m_view, text, textWidth);
    }

  private:
    ui::Link& m_model;
    QLabel& m_view;
};

class PictureLabel : public QLabel {
  public:
    PictureLabel(ui::Picture& control, QWidget* parent, PostAct post)
        : QLabel(parent), m_control(control), m_post(std::move(post)) {
        setAlignment(Qt::AlignCenter);
    }

    /// Becomes a native window with a dark ground that Qt keeps its hands off.
    WId Surface() {
        if (std::exchange(m_isSurface, true)) return winId();
        setAttribute(Qt::WA_DontCreateNativeAncestors);
        setAttribute(Qt::WA_NativeWindow);
        setAttribute(Qt::WA_PaintOnScreen);
        setAttribute(Qt::WA_NoSystemBackground);
        DarkenGround(winId());
        return winId();
    }
    QPaintEngine* paintEngine() const override { return m_isSurface ? nullptr : QLabel::paintEngine(); }

  protected:
    void paintEvent(QPaintEvent* event) override {
        if (!m_isSurface) QLabel::paintEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) return;
        m_post([&control = m_control](ui::Form& form) { form.Click(control); });
    }

  private:
    ui::Picture& m_control;
    PostAct m_post;
    bool m_isSurface = false;
};

class PictureView : public ControlView {
  public:
    PictureView(ui::Picture& control, PictureLabel* widget)
        : ControlView(control, widget), m_model(control), m_view(*widget) {}
    WId Surface() override { return m_view.Surface(); }

  protected:
    void SyncValues(int) override {
        const QSize size(m_model.Width(), m_model.Height());
        if (m_model.File() != m_file) {
            m_file = m_model.File();
            m_picture = QPixmap(ToQt(m_file));
        }
        if (size.isEmpty()) {
            m_view.setPixmap(m_picture);
        } else {
            m_view.setFixedSize(size);
            if (!m_picture.isNull()) {
                m_view.setPixmap(m_picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
            }
        }
    }

  private:
    ui::Picture& m_model;
    PictureLabel& m_view;
    String m_file;
    QPixmap m_picture;
};

}  // namespace

std::unique_ptr<ControlView> MakeLabelView(ui::Label& control, QWidget* parent) {
    return std::make_unique<LabelView>(control, new TextLabel(parent));
}

std::unique_ptr<ControlView> MakeLinkView(ui::Link& control, QWidget* parent, const PostAct& post) {
    return std::make_unique<LinkView>(control, new FocusLabel(parent), post);
}

std::unique_ptr<ControlView> MakePictureView(ui::Picture& control, QWidget* parent, const PostAct& post) {
    return std::make_unique<PictureView>(control, new PictureLabel(control, parent, post));
}

}  // namespace kestrum::qt
