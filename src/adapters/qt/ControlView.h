// How one control of a form is drawn: a widget that follows the control's values and hands the user's acts on. An act
// is not carried out from inside the widget but as a task of the loop: its handler may take the whole form down.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "ui/Form.h"

namespace kestrum::qt {

using Act = std::function<void(ui::Form&)>;
using PostAct = std::function<void(Act)>;

class ControlView {
  public:
    ControlView(ui::Control& control, QWidget* widget) : m_control(control), m_widget(widget) {}
    virtual ~ControlView() = default;
    ControlView(const ControlView&) = delete;
    ControlView& operator=(const ControlView&) = delete;

    ui::Control& Control() const { return m_control; }
    /// Owned by its parent widget.
    QWidget& Widget() const { return *m_widget; }
    /// Where the children of a frame go; null for other controls.
    virtual QWidget* Inside() { return nullptr; }
    /// A native window that another program draws into; 0 for controls other than pictures.
    virtual WId Surface() { return 0; }

    /// The letter of the caption that is the control's access key (ui/AccessKeys.h), npos for none, and the widget that
    /// it takes the keyboard to.
    void SetAccessKey(std::size_t at, QWidget* target);

    /// Makes the widget show the control's present values, without an act coming back. Texts without a width of their
    /// own wrap at `textWidth` pixels.
    void Sync(int textWidth);

  protected:
    virtual void SyncValues(int textWidth) = 0;
    std::size_t AccessKey() const { return m_accessKey; }
    QWidget* AccessTarget() const { return m_accessTarget; }

  private:
    ui::Control& m_control;
    QWidget* m_widget;
    std::size_t m_accessKey = StringView::npos;
    QWidget* m_accessTarget = nullptr;
};

/// The view of `control` as a child of `parent`; null for a control that is not drawn in the layout (timer, menu).
std::unique_ptr<ControlView> MakeView(ui::Control& control, QWidget* parent, const PostAct& post);

}  // namespace kestrum::qt
