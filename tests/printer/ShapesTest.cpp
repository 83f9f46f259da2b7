#include "printer/Shapes.h"

#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;

namespace {

std::vector<std::string> Lined(Point from, Point to, int thickness) {
    Bitmap picture(8, 6);
    DrawLine(AreaView(picture), from, to, thickness);
    return RowsOf(picture);
}

} // namespace

TEST(PrinterShapes, DrawsALevelLineFromEndToEnd) {
    const auto expected = ElementsAre("........", ".#####..", ".#####..", "........", "........", "........");
    EXPECT_THAT(Lined({1, 1}, {5, 1}, 2), expected);
    EXPECT_THAT(Lined({5, 1}, {1, 1}, 2), expected);
}

TEST(PrinterShapes, DrawsAnUprightLineFromEndToEnd) {
    EXPECT_THAT(Lined({3, 4}, {3, 1}, 2),
                ElementsAre("........", "...##...", "...##...", "...##...", "...##...", "........"));
}

TEST(PrinterShapes, DrawsADiagonalWithoutGaps) {
    EXPECT_THAT(Lined({0, 0}, {5, 5}, 1),
                ElementsAre("#.......", ".#......", "..#.....", "...#....", "....#...", ".....#.."));
    EXPECT_THAT(Lined({0, 5}, {7, 2}, 1),
                ElementsAre("........", "........", "......##", "....##..", "..##....", "##......"));
}

TEST(PrinterShapes, DrawsThicknessZeroAsOneDot) {
    EXPECT_THAT(Lined({2, 2}, {2, 2}, 0),
                ElementsAre("........", "........", "..#.....", "........", "........", "........"));
}

TEST(PrinterShapes, LeavesOutWhatLiesOutside) {
    EXPECT_THAT(Lined({6, 4}, {65535, 4}, 255),
                ElementsAre("........", "........", "........", "........", "......##", "......##"));
}

TEST(PrinterShapes, DrawsABoxThickerThanItselfAsABlock) {
    Bitmap picture(6, 5);
    DrawBox(AreaView(picture), {1, 1, 4, 3}, 255);
    EXPECT_THAT(RowsOf(picture), ElementsAre("......", ".####.", ".####.", ".####.", "......"));
}

TEST(PrinterShapes, DrawsAnEllipseThatTouchesTheSidesOfItsRectangle) {
    Bitmap picture(60, 40);
    DrawEllipse(AreaView(picture), {5, 3}, {54, 34}, 2);
    const Area black = BlackArea(picture);
    EXPECT_EQ(black.x, 5);
    EXPECT_EQ(black.y, 3);
    EXPECT_EQ(black.width, 50);
    EXPECT_EQ(black.height, 32);
    EXPECT_FALSE(picture.Get(30, 19));
    const Bitmap ellipse = picture.Rows(3, 32);
    EXPECT_TRUE(ellipse.Turned() == ellipse);
}

TEST(PrinterShapes, DrawsTheSameEllipseFromAnyCorner) {
    Bitmap one(30, 30), other(30, 30);
    DrawEllipse(AreaView(one), {2, 25}, {20, 4}, 3);
    DrawEllipse(AreaView(other), {2, 4}, {20, 25}, 3);
    EXPECT_TRUE(one == other);
}

TEST(PrinterShapes, DrawsACircleAsLargeAsACircle) {
    Bitmap disc(201, 201), ring(201, 201);
    DrawEllipse(AreaView(disc), {0, 0}, {200, 200}, 255);
    DrawEllipse(AreaView(ring), {0, 0}, {200, 200}, 1);
    EXPECT_NEAR(BlackDots(disc, {0, 0, 201, 201}), 3.14159 * 100.5 * 100.5, 100);
    for (int y = 0; y < 201; ++y)
        EXPECT_GT(BlackDots(ring, {0, y, 201, 1}), 1) << "row " << y;
}
