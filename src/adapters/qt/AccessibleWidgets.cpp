#include "adapters/qt/AccessibleWidgets.h"

#include <QAccessibleWidget>
#include <QLabel>

#include "adapters/qt/FormWindow.h"
#include "adapters/qt/LevelBar.h"
#include "adapters/qt/TextViews.h"

namespace kestrum::qt {
namespace {

class MeterAccess : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit MeterAccess(LevelBar* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar), m_bar(*bar) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text what) const override {
        if (what == QAccessible::Value) return QStringLiteral("%1 / %2").arg(m_bar.Lit()).arg(m_bar.Bars());
        return QAccessibleWidget::text(what);
    }
    QVariant currentValue() const override { return m_bar.Lit(); }
    void setCurrentValue(const QVariant&) override {}  // it shows what is heard
    QVariant maximumValue() const override { return m_bar.Bars(); }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }

  private:
    LevelBar& m_bar;
};

class LinkAccess : public QAccessibleWidget {
  public:
    explicit LinkAccess(QLabel* link) : QAccessibleWidget(link, QAccessible::Link), m_link(*link) {}

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name != pressAction()) return QAccessibleWidget::doAction(name);
        emit m_link.linkActivated(QString());
    }

  private:
    QLabel& m_link;
};

QAccessibleInterface* Make(const QString&, QObject* object) {
    if (auto* bar = dynamic_cast<LevelBar*>(object)) return new MeterAccess(bar);
    if (auto* form = dynamic_cast<FormWindow*>(object)) {
        return new QAccessibleWidget(form, form->IsNotice() ? QAccessible::AlertMessage : QAccessible::Dialog);
    }
    auto* label = qobject_cast<QLabel*>(object);
    const bool isLink = label && label->objectName() == QLatin1String(kLinkText);
    return isLink ? new LinkAccess(label) : nullptr;
}

}  // namespace

void MakeWidgetsAccessible() {
    QAccessible::installFactory(Make);
}

}  // namespace kestrum::qt
