#include "adapters/qt/LevelBarAccess.h"

#include <QAccessibleWidget>

#include "adapters/qt/LevelBar.h"

namespace kestrum::qt {
namespace {

class LevelBarAccess : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit LevelBarAccess(LevelBar* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar), m_bar(*bar) {}

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

QAccessibleInterface* Make(const QString&, QObject* object) {
    auto* bar = dynamic_cast<LevelBar*>(object);
    return bar ? new LevelBarAccess(bar) : nullptr;
}

}  // namespace

void MakeLevelBarsAccessible() {
    QAccessible::installFactory(Make);
}

}  // namespace kestrum::qt
