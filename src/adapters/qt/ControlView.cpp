#include "adapters/qt/ControlView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolBar>

#include "adapters/qt/LevelBar.h"
#include "adapters/qt/QtText.h"
#include "adapters/qt/TextViews.h"

namespace kestrum::qt {
namespace {

/// The parts of a view that every kind shares: the control's and the widget's own types.
template <class Model, class WidgetType>
class View : public ControlView {
  public:
    View(Model& control, WidgetType* widget) : ControlView(control, widget), m_model(control), m_view(*widget) {}

  protected:
    Model& m_model;
    WidgetType& m_view;
};

Act ClickOn(ui::Control& control) {
    return [&control](ui::Form& form) { form.Click(control); };
}

/// A push button, check box or option.
template <class Model, class WidgetType>
class ClickView : public View<Model, WidgetType> {
  public:
    ClickView(Model& control, QWidget* parent, const PostAct& post)
        : View<Model, WidgetType>(control, new WidgetType(parent)) {
        QObject::connect(&this->m_view, &QAbstractButton::clicked, &this->m_view,
                         [&control, post] { post(ClickOn(control)); });
    }

  protected:
    void SyncValues(int) override { this->m_view.setText(ToCaption(this->m_model.Caption(), this->AccessKey())); }
};

class ButtonView : public ClickView<ui::CommandButton, QPushButton> {
  public:
    ButtonView(ui::CommandButton& control, QWidget* parent, const PostAct& post) : ClickView(control, parent, post) {
        m_view.setAutoDefault(false);
    }

  protected:
    void SyncValues(int textWidth) override {
        ClickView::SyncValues(textWidth);
        m_view.setDefault(m_model.IsDefault());
    }
};

class CheckView : public ClickView<ui::CheckBox, QCheckBox> {
  public:
    using ClickView::ClickView;

  protected:
    void SyncValues(int textWidth) override {
        ClickView::SyncValues(textWidth);
        m_view.setChecked(m_model.Checked());
    }
};

class OptionView : public ClickView<ui::OptionButton, QRadioButton> {
  public:
    using ClickView::ClickView;

  protected:
    /// While a group must have one choice, its last one cannot be cleared.
    void SyncValues(int textWidth) override {
        ClickView::SyncValues(textWidth);
        m_view.setAutoExclusive(false);
        m_view.setChecked(m_model.Value());
        m_view.setAutoExclusive(true);
    }
};

class LineView : public View<ui::TextBox, QLineEdit> {
  public:
    LineView(ui::TextBox& control, QWidget* parent, const PostAct& post) : View(control, new QLineEdit(parent)) {
        QObject::connect(&m_view, &QLineEdit::textEdited, &m_view, [&control, post](const QString& text) {
            post([&control, typed = FromQt(text)](ui::Form& form) { form.Type(control, typed); });
        });
    }

  protected:
    void SyncValues(int) override {
        constexpr int kUnlimited = 32767;
        m_view.setMaxLength(m_model.MaxLength() > 0 ? m_model.MaxLength() : kUnlimited);
        m_view.setReadOnly(m_model.ReadOnly());
        m_view.setEchoMode(m_model.Password() ? QLineEdit::Password : QLineEdit::Normal);
        const QString text = ToQt(m_model.Text());
        if (m_view.text() != text) m_view.setText(text);
    }
};

/// Several lines. The core ends lines with CR LF.
class EditView : public View<ui::TextBox, QPlainTextEdit> {
  public:
    EditView(ui::TextBox& control, QWidget* parent, const PostAct& post) : View(control, new QPlainTextEdit(parent)) {
        constexpr int kLines = 5;
        m_view.setTabChangesFocus(true);
        m_view.setFixedHeight(m_view.fontMetrics().lineSpacing() * kLines + 2 * m_view.frameWidth() + 8);
        QObject::connect(&m_view, &QPlainTextEdit::textChanged, &m_view, [this, &control, post] {
            const QString text = m_view.toPlainText().replace(u'\n', QStringLiteral("\r\n"));
            post([&control, typed = FromQt(text)](ui::Form& form) { form.Type(control, typed); });
        });
    }

  protected:
    void SyncValues(int) override {
        m_view.setReadOnly(m_model.ReadOnly());
        const QString text = ToQt(m_model.Text()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        if (m_view.toPlainText() != text) m_view.setPlainText(text);
    }
};

class ComboView : public View<ui::ComboBox, QComboBox> {
  public:
    ComboView(ui::ComboBox& control, QWidget* parent, const PostAct& post) : View(control, new QComboBox(parent)) {
        m_view.setSizeAdjustPolicy(QComboBox::AdjustToContents);
        m_view.setMinimumContentsLength(12);
        QObject::connect(&m_view, &QComboBox::activated, &m_view, [&control, post](int index) {
            post([&control, index](ui::Form& form) { form.Select(control, index); });
        });
    }

  protected:
    void SyncValues(int) override {
        QStringList items;
        for (const String& item : m_model.Items()) items.append(ToQt(item));
        if (items != m_items) {
            m_view.clear();
            m_view.addItems(items);
            m_items = items;
        }
        m_view.setCurrentIndex(m_model.ListIndex());
    }

  private:
    QStringList m_items;
};

class ProgressView : public View<ui::ProgressBar, QProgressBar> {
  public:
    ProgressView(ui::ProgressBar& control, QWidget* parent) : View(control, new QProgressBar(parent)) {
        m_view.setTextVisible(false);
        m_view.setFixedHeight(16);
    }

  protected:
    /// A range of nothing would show a bar that runs by itself.
    void SyncValues(int) override {
        m_view.setRange(m_model.Minimum(), std::max(m_model.Maximum(), m_model.Minimum() + 1));
        m_view.setValue(m_model.Value());
    }
};

class SliderView : public View<ui::Slider, QSlider> {
  public:
    SliderView(ui::Slider& control, QWidget* parent, const PostAct& post)
        : View(control, new QSlider(Qt::Horizontal, parent)) {
        m_view.setMinimumWidth(160);
        QObject::connect(&m_view, &QSlider::valueChanged, &m_view, [&control, post](int value) {
            post([&control, value](ui::Form& form) { form.Slide(control, value); });
        });
    }

  protected:
    void SyncValues(int) override {
        m_view.setRange(m_model.Minimum(), m_model.Maximum());
        m_view.setPageStep(std::max(1, (m_model.Maximum() - m_model.Minimum()) / 10));
        m_view.setValue(m_model.Value());
    }
};

class FrameView : public View<ui::Frame, QGroupBox> {
  public:
    FrameView(ui::Frame& control, QWidget* parent) : View(control, new QGroupBox(parent)) {}
    QWidget* Inside() override { return &m_view; }

  protected:
    void SyncValues(int) override { m_view.setTitle(ToCaption(m_model.Caption())); }
};

class MeterView : public View<ui::LevelMeter, LevelBar> {
  public:
    MeterView(ui::LevelMeter& control, QWidget* parent) : View(control, new LevelBar(parent)) {}

  protected:
    void SyncValues(int) override { m_view.SetBars(m_model.Bars(), m_model.Lit()); }
};

class ToolbarView : public View<ui::Toolbar, QToolBar> {
  public:
    ToolbarView(ui::Toolbar& control, QWidget* parent, PostAct post)
        : View(control, new QToolBar(parent)), m_post(std::move(post)) {
        m_view.setFocusPolicy(Qt::TabFocus);
    }

  protected:
    void SyncValues(int) override {
        while (m_view.actions().size() < static_cast<qsizetype>(m_model.Buttons().size())) AddButton();
        for (qsizetype i = 0; i < m_view.actions().size(); ++i) {
            m_view.actions()[i]->setText(ToCaption(m_model.Buttons()[static_cast<std::size_t>(i)].caption));
        }
    }

  private:
    void AddButton() {
        const auto number = static_cast<std::int32_t>(m_view.actions().size()) + 1;
        QObject::connect(m_view.addAction(QString()), &QAction::triggered, &m_view, [this, number] {
            m_post([&bar = m_model, number](ui::Form& form) { form.ClickToolbar(bar, number); });
        });
    }

    PostAct m_post;
};

}  // namespace

void ControlView::SetAccessKey(std::size_t at, QWidget* target) {
    m_accessKey = at;
    m_accessTarget = target;
}

void ControlView::Sync(int textWidth) {
    const QSignalBlocker quiet(m_widget);
    SyncValues(textWidth);
    m_widget->setEnabled(m_control.Enabled());
    m_widget->setToolTip(ToQt(m_control.ToolTip()));
    m_widget->setAccessibleName(ToQt(m_control.Owner().AccessibleNameOf(m_control)));
    m_widget->setAccessibleDescription(ToQt(m_control.ToolTip()));
    if (m_widget->isHidden() == m_control.Visible()) m_widget->setVisible(m_control.Visible());
}

std::unique_ptr<ControlView> MakeView(ui::Control& control, QWidget* parent, const PostAct& post) {
    switch (control.Kind()) {
        case ui::ControlKind::Label:
            return MakeLabelView(static_cast<ui::Label&>(control), parent);
        case ui::ControlKind::Link:
            return MakeLinkView(static_cast<ui::Link&>(control), parent, post);
        case ui::ControlKind::Picture:
            return MakePictureView(static_cast<ui::Picture&>(control), parent, post);
        case ui::ControlKind::TextBox: {
            auto& box = static_cast<ui::TextBox&>(control);
            if (box.MultiLine()) return std::make_unique<EditView>(box, parent, post);
            return std::make_unique<LineView>(box, parent, post);
        }
        case ui::ControlKind::CheckBox:
            return std::make_unique<CheckView>(static_cast<ui::CheckBox&>(control), parent, post);
        case ui::ControlKind::OptionButton:
            return std::make_unique<OptionView>(static_cast<ui::OptionButton&>(control), parent, post);
        case ui::ControlKind::CommandButton:
            return std::make_unique<ButtonView>(static_cast<ui::CommandButton&>(control), parent, post);
        case ui::ControlKind::ComboBox:
            return std::make_unique<ComboView>(static_cast<ui::ComboBox&>(control), parent, post);
        case ui::ControlKind::ProgressBar:
            return std::make_unique<ProgressView>(static_cast<ui::ProgressBar&>(control), parent);
        case ui::ControlKind::Slider:
            return std::make_unique<SliderView>(static_cast<ui::Slider&>(control), parent, post);
        case ui::ControlKind::Frame:
            return std::make_unique<FrameView>(static_cast<ui::Frame&>(control), parent);
        case ui::ControlKind::LevelMeter:
            return std::make_unique<MeterView>(static_cast<ui::LevelMeter&>(control), parent);
        case ui::ControlKind::Toolbar:
            return std::make_unique<ToolbarView>(static_cast<ui::Toolbar&>(control), parent, post);
        case ui::ControlKind::Menu:
        case ui::ControlKind::Timer:
            return nullptr;
    }
    return nullptr;
}

}  // namespace kestrum::qt
