// Canvas and whiteboard as the media library's calls: which sheet each one means, and where it lies.
#include <gtest/gtest.h>

#include <optional>

#include "adapters/linux/EventLoop.h"
#include "adapters/linux/TraceLog.h"
#include "adapters/media/MediaKsLib.h"

namespace kestrum::adapters {
namespace {

struct PaperBoard : IDrawingBoard {
    void Open(Sheet sheet, const host::Rect& where) override {
        open = sheet;
        area = where;
    }
    void Close(Sheet sheet) override {
        if (open == sheet) open.reset();
    }
    bool IsOpen(Sheet sheet) const override { return open == sheet; }
    void SetPen(std::int32_t penWidth, std::int32_t penColour) override {
        width = penWidth;
        colour = penColour;
    }

    std::optional<Sheet> open;
    host::Rect area;
    std::int32_t width = 0, colour = 0;
};

class DrawingCalls : public testing::Test {
  protected:
    platform::TraceLog trace;
    platform::EventLoop loop{trace};
    WorkerLink nobody{"/no/such/program", loop};
    PaperBoard board;
    MediaKsLib library{nobody, &board};
};

TEST_F(DrawingCalls, CanvasAndWhiteboard_AreTheirSheets) {
    EXPECT_EQ(library.CanvasEnabled() + library.WhiteboardEnabled(), 0);
    library.CreateCanvas();
    EXPECT_EQ(library.CanvasEnabled(), 1);
    EXPECT_EQ(library.WhiteboardEnabled(), 0);
    library.DeleteWhiteboard();
    EXPECT_EQ(library.CanvasEnabled(), 1);
    library.DeleteCanvas();
    EXPECT_EQ(library.CanvasEnabled(), 0);
    library.CreateWhiteboard();
    EXPECT_EQ(library.CanvasEnabled(), 0);
    EXPECT_EQ(library.WhiteboardEnabled(), 1);
    library.DeleteWhiteboard();
    EXPECT_EQ(library.WhiteboardEnabled(), 0);
}

TEST_F(DrawingCalls, SheetTheUserHasClosed_IsToldAsClosed) {
    library.CreateCanvas();
    board.open.reset();
    EXPECT_EQ(library.CanvasEnabled(), 0);
}

TEST_F(DrawingCalls, Sheet_LiesWhereTheCaptureIs) {
    library.SetCaptureArea(1280, 24, 1280 + 1023, 24 + 767);
    library.CreateCanvas();
    EXPECT_EQ(board.area, (host::Rect{1280, 24, 1280 + 1024, 24 + 768}));
}

TEST_F(DrawingCalls, Pen_IsTheBoards) {
    library.SetPenAttr(2, 0x0000FF);
    EXPECT_EQ(board.width, 2);
    EXPECT_EQ(board.colour, 0x0000FF);
}

TEST_F(DrawingCalls, WithoutABoard_NothingOpens) {
    MediaKsLib headless(nobody);
    headless.SetPenAttr(2, 255);
    headless.CreateCanvas();
    headless.CreateWhiteboard();
    EXPECT_EQ(headless.CanvasEnabled() + headless.WhiteboardEnabled(), 0);
    headless.DeleteCanvas();
    headless.DeleteWhiteboard();
}

}  // namespace
}  // namespace kestrum::adapters
