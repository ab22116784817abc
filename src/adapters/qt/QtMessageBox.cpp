#include "adapters/qt/QtMessageBox.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScreen>

#include "adapters/qt/Look.h"
#include "adapters/qt/QtText.h"

namespace kestrum::qt {
namespace {

using host::BoxAnswer;
using host::BoxButtons;

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case BoxButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case BoxButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case BoxButtons::RetryCancel:
            return QMessageBox::Retry | QMessageBox::Cancel;
        case BoxButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

BoxAnswer AnswerOf(QMessageBox::StandardButton button) {
    switch (button) {
        case QMessageBox::Cancel:
            return BoxAnswer::Cancel;
        case QMessageBox::Retry:
            return BoxAnswer::Retry;
        case QMessageBox::Yes:
            return BoxAnswer::Yes;
        case QMessageBox::No:
            return BoxAnswer::No;
        default:
            return BoxAnswer::Ok;
    }
}

/// Yes or No has no third way out: neither Escape nor the frame ends it.
class Box : public QMessageBox {
  public:
    explicit Box(bool mustChoose) : m_mustChoose(mustChoose) {
        Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint;
        if (!mustChoose) flags |= Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
        setWindowFlags(flags);
        setWindowModality(Qt::ApplicationModal);
        setTextFormat(Qt::PlainText);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (m_mustChoose && event->key() == Qt::Key_Escape) return;
        QMessageBox::keyPressEvent(event);
    }
    void closeEvent(QCloseEvent* event) override {
        if (m_mustChoose) {
            event->ignore();
        } else {
            QMessageBox::closeEvent(event);
        }
    }

  private:
    bool m_mustChoose;
};

/// A text that would make the box taller than the screen is scrolled inside it.
void SetTextOf(QMessageBox& box, const QString& text) {
    constexpr int kWidth = 520;
    box.setText(text);
    box.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    const int most = QGuiApplication::primaryScreen()->availableGeometry().height() * 6 / 10;
    const QRect lines(0, 0, kWidth, QWIDGETSIZE_MAX);
    if (!label || box.fontMetrics().boundingRect(lines, Qt::TextWordWrap, text).height() <= most) return;
    auto* scrolled = new QPlainTextEdit(text, &box);
    scrolled->setReadOnly(true);
    scrolled->setTabChangesFocus(true);
    scrolled->setFixedSize(kWidth, most);
    delete box.layout()->replaceWidget(label, scrolled);
    label->hide();
    box.setText({});
}

}  // namespace

BoxAnswer QtMessageBox::Show(const String& text, BoxButtons buttons, const String& title) {
    Box box(buttons == BoxButtons::YesNo);
    box.setWindowTitle(ToQt(title.empty() ? m_title : title));
    SetTextOf(box, ToQt(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    box.setIconPixmap(Badge(buttons == BoxButtons::Ok ? u'i' : u'?'));
    box.setStandardButtons(ButtonsOf(buttons));
    for (QAbstractButton* button : box.buttons()) button->setIcon(QIcon());
    bool finished = false;
    QObject::connect(&box, &QDialog::finished, &box, [&finished] { finished = true; });
    box.show();
    box.raise();
    box.activateWindow();
    m_open.push_back(&box);
    m_loop.RunUntil([&finished] { return finished; });
    std::erase(m_open, &box);
    return AnswerOf(box.standardButton(box.clickedButton()));
}

void QtMessageBox::Leave() {
    const std::vector<QMessageBox*> open = m_open;
    for (auto box = open.rbegin(); box != open.rend(); ++box) {
        for (const auto way : {QMessageBox::Cancel, QMessageBox::No, QMessageBox::Ok}) {
            QAbstractButton* button = (*box)->button(way);
            if (!button) continue;
            button->click();
            break;
        }
    }
}

}  // namespace kestrum::qt
