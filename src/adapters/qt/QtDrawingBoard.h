// Canvas and whiteboard on screen. One draws with the left button; the keyboard stays with the show, so that its keys
// turn slides while a sheet is open, but for Escape, which closes the sheet instead of the show. What is drawn on the
// canvas belongs to the slide below and goes with it; the whiteboard is the lecturer's own and stays.
//
// The canvas is see-through with a compositor and without: see InkWindow. Sheets lie above all windows of other
// programs and below our own notices, and are put back there when another program raises a window.
#pragma once

#include <memory>

#include "adapters/media/IDrawingBoard.h"
#include "adapters/qt/QtEventLoop.h"
#include "host/IApplication.h"

namespace kestrum::qt {

class QtDrawingBoard : public adapters::IDrawingBoard, public host::IApplicationEvents {
  public:
    /// Needs a QtApplication; `loop` pumps its events.
    explicit QtDrawingBoard(QtEventLoop& loop);
    ~QtDrawingBoard() override;

    void Open(Sheet sheet, const host::Rect& area) override;
    void Close(Sheet sheet) override;
    bool IsOpen(Sheet sheet) const override;
    void SetPen(std::int32_t width, std::int32_t colour) override;

    // Subscribed to the office, the board hears that another slide is on screen. It must be so before the recorder is,
    // which lets the slide settle before it goes on: old ink would lie above the new slide meanwhile.
    void SlideShowBegin(host::ISlideShowWindow&) override {}
    void SlideShowNextSlide(host::ISlideShowWindow& window) override;
    void SlideShowEnd(host::IPresentation&) override {}
    void PresentationClose(host::IPresentation&) override {}

  private:
    class OpenSheet;

    void CloseSoon();

    QtEventLoop& m_loop;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    std::int32_t m_width = 2, m_colour = 0x0000FF;
    std::unique_ptr<OpenSheet> m_open;
};

}  // namespace kestrum::qt
