// Strokes as pictures: where ink is, where none is, and what a caller is told of the change.
#include "adapters/qt/Ink.h"

#include <gtest/gtest.h>

namespace kestrum::qt {
namespace {

const Pen kRed{4, QColor(255, 0, 0)};

int AlphaAt(const Ink& ink, int x, int y) {
    return ink.Picture().pixelColor(x, y).alpha();
}

bool HasMixedPixels(const Ink& ink) {
    for (int y = 0; y < ink.Picture().height(); ++y) {
        for (int x = 0; x < ink.Picture().width(); ++x) {
            if (AlphaAt(ink, x, y) % 255 != 0) return true;
        }
    }
    return false;
}

void Zigzag(Ink& ink) {
    ink.Begin({10, 10}, kRed);
    for (const QPoint at : {QPoint(40, 60), QPoint(70, 10), QPoint(90, 80)}) ink.MoveTo(at);
    ink.End();
}

TEST(Ink, Click_LeavesADotOfThePensWidthAndColour) {
    Ink ink({100, 100}, Ink::Edges::Smooth);
    EXPECT_TRUE(ink.IsEmpty());
    const QRect changed = ink.Begin({50, 40}, kRed);
    ink.End();
    EXPECT_EQ(ink.Picture().pixelColor(50, 40), QColor(255, 0, 0));
    EXPECT_GT(AlphaAt(ink, 51, 41), 200);
    EXPECT_EQ(AlphaAt(ink, 55, 40), 0);
    EXPECT_TRUE(changed.contains(50, 40));
    EXPECT_LT(changed.width(), 20);
    EXPECT_FALSE(ink.IsEmpty());
}

TEST(Ink, Stroke_ReachesFromItsFirstToItsLastPoint) {
    for (const auto edges : {Ink::Edges::Smooth, Ink::Edges::Hard}) {
        Ink ink({100, 100}, edges);
        ink.Begin({10, 50}, kRed);
        ink.MoveTo({50, 50});
        ink.MoveTo({90, 50});
        ink.End();
        for (int x = 10; x <= 90; ++x) EXPECT_EQ(AlphaAt(ink, x, 50), 255) << x;
        EXPECT_EQ(AlphaAt(ink, 50, 60), 0);
    }
}

TEST(Ink, Corner_IsRounded) {
    Ink ink({100, 100}, Ink::Edges::Smooth);
    ink.Begin({10, 10}, kRed);
    ink.MoveTo({50, 90});
    ink.MoveTo({90, 10});
    ink.End();
    EXPECT_EQ(AlphaAt(ink, 50, 90), 0) << "the way bends before the corner";
    EXPECT_EQ(AlphaAt(ink, 50, 70), 255);
}

TEST(Ink, SmoothEdges_AreMixed_AndHardOnesAreNot) {
    Ink smooth({100, 100}, Ink::Edges::Smooth), hard({100, 100}, Ink::Edges::Hard);
    Zigzag(smooth);
    Zigzag(hard);
    EXPECT_TRUE(HasMixedPixels(smooth));
    EXPECT_FALSE(HasMixedPixels(hard));
}

TEST(Ink, Shape_IsExactlyTheInkWithHardEdges) {
    Ink ink({100, 100}, Ink::Edges::Hard);
    Zigzag(ink);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            ASSERT_EQ(ink.Shape().contains(QPoint(x, y)), AlphaAt(ink, x, y) == 255) << x << "," << y;
        }
    }
}

TEST(Ink, ThinnestPen_StillDraws) {
    for (const auto edges : {Ink::Edges::Smooth, Ink::Edges::Hard}) {
        Ink ink({20, 20}, edges);
        ink.Begin({5, 5}, {1, Qt::blue});
        ink.End();
        EXPECT_GT(AlphaAt(ink, 5, 5), 0);
    }
}

TEST(Ink, StrokeOutOfTheSheet_IsCutAtItsEdge) {
    for (const auto edges : {Ink::Edges::Smooth, Ink::Edges::Hard}) {
        Ink ink({100, 100}, edges);
        ink.Begin({50, 50}, kRed);
        QRect changed = ink.MoveTo({500, -300});
        changed |= ink.End();
        EXPECT_TRUE(QRect(0, 0, 100, 100).contains(changed));
        EXPECT_GT(AlphaAt(ink, 60, 42), 0);
    }
}

TEST(Ink, MoveWithoutAStroke_DrawsNothing) {
    Ink ink({100, 100}, Ink::Edges::Smooth);
    EXPECT_TRUE(ink.MoveTo({50, 50}).isEmpty());
    EXPECT_TRUE(ink.End().isEmpty());
    EXPECT_TRUE(ink.IsEmpty());
}

TEST(Ink, Clear_InMidStroke_EndsIt) {
    Ink ink({100, 100}, Ink::Edges::Hard);
    ink.Begin({10, 10}, kRed);
    ink.Clear();
    EXPECT_TRUE(ink.MoveTo({60, 60}).isEmpty());
    EXPECT_TRUE(ink.IsEmpty());
    EXPECT_TRUE(ink.Shape().isEmpty());
    EXPECT_EQ(AlphaAt(ink, 10, 10), 0);
}

TEST(Ink, OtherEdges_ShowTheSameStrokes) {
    Ink ink({100, 100}, Ink::Edges::Smooth), wanted({100, 100}, Ink::Edges::Hard);
    Zigzag(ink);
    Zigzag(wanted);
    const QImage smooth = ink.Picture();
    ink.SetEdges(Ink::Edges::Hard);
    EXPECT_EQ(ink.Picture(), wanted.Picture());
    ink.SetEdges(Ink::Edges::Smooth);
    EXPECT_EQ(ink.Picture(), smooth);
    EXPECT_TRUE(ink.Shape().isEmpty());
}

}  // namespace
}  // namespace kestrum::qt
