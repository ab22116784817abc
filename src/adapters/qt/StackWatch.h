// Who came above whom on the desktop, told by the display.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QTimer>
#include <functional>

namespace kestrum::qt {

/// Tells, from the toolkit's loop, when the order of the desktop's windows, or which of them are to be seen, may have
/// changed: 20 ms after the first of a burst of changes. Tells nothing where the toolkit does not draw on X11.
class StackWatch : private QAbstractNativeEventFilter {
  public:
    explicit StackWatch(std::function<void()> changed);
    StackWatch(const StackWatch&) = delete;
    StackWatch& operator=(const StackWatch&) = delete;
    ~StackWatch() override;

  private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

    QTimer m_burst;
};

}  // namespace kestrum::qt
