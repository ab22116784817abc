// The window of one form on screen. It follows the model's values when told to, and posts the user's acts to the form
// as tasks of the loop; while acts are under way the controls that the user works on are not overwritten.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "adapters/qt/CoveredPictures.h"
#include "adapters/qt/LayoutBuilder.h"
#include "adapters/qt/QtEventLoop.h"

class QMenu;

namespace kestrum::qt {

class FormWindow : public QWidget {
  public:
    FormWindow(ui::Form& form, QtEventLoop& loop);
    ~FormWindow() override;

    /// Puts the window on screen, or to the front if it is there. A modal one blocks all other windows of ours.
    void Appear(bool modal);
    /// Follows the model soon.
    void SyncLater();
    /// Follows the model now.
    void Sync();
    /// Follows the model and paints before it returns, without handling an act of the user or a task of the core.
    void PaintNow();
    /// The native window of a picture; 0 if it is not of this form.
    WId Surface(const ui::Picture& picture);
    /// A window without a frame that only tells something.
    bool IsNotice() const { return m_form.Style().borderless; }
    /// Stays above whatever other programs open; see QtPresenter.
    bool IsPinned() const { return m_pinned; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void Post(Act act);
    void BuildMenu(QLayout& root);
    void SyncMenu();
    void SyncStyle();
    void SyncAccessKeys();
    QWidget* FieldOf(const ui::Control& label) const;
    void SyncSize();
    void SyncPlace();
    QPoint CornerOf(const ui::WindowPlace& place) const;
    void SyncFocus();
    /// By a page, where a text is too long for the screen.
    void ScrollText(bool down);
    void FocusMoved(QWidget* now);
    ControlView* ViewOf(const QObject* widget) const;
    ControlView* ViewOf(const ui::Control* control) const;

    ui::Form& m_form;
    QtEventLoop& m_loop;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    LayoutBuilder::Views m_views;
    std::unique_ptr<CoveredPictures> m_covered;  ///< while a window is on screen that is never recorded
    QMenu* m_menu = nullptr;
    ui::WindowPlace m_place;
    bool m_placed = false;
    bool m_pinned = false;
    bool m_syncPosted = false;
    bool m_isFollowing = false;
    int m_pendingActs = 0;
};

}  // namespace kestrum::qt
