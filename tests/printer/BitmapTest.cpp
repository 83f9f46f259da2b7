#include "printer/Bitmap.h"

#include "tests/printer/Printing.h"

#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;

TEST(PrinterBitmap, FillsAndErasesRectangles) {
    Bitmap picture(19, 3);
    picture.Fill(3, 0, 14, 2);
    picture.Erase(8, 1, 2, 1);
    EXPECT_THAT(RowsOf(picture),
                ElementsAre("...##############..", "...#####..#######..", "..................."));
}

TEST(PrinterBitmap, ClipsWhatLiesOutside) {
    Bitmap picture(5, 3);
    picture.Fill(-2, -2, 4, 4);
    picture.Fill(4, 2, 100000, 100000);
    picture.Fill(2, 2, 0, 5);
    picture.Set(-1, 0);
    picture.Set(5, 0);
    EXPECT_THAT(RowsOf(picture), ElementsAre("##...", "##...", "....#"));
    EXPECT_FALSE(picture.Get(-1, 0));
    EXPECT_FALSE(picture.Get(0, 3));
}

TEST(PrinterBitmap, DrawsOnlyTheBlackDotsOfAnotherPicture) {
    Bitmap picture(6, 3), stamp(3, 2);
    picture.Fill(0, 0, 6, 1);
    stamp.Set(0, 0);
    stamp.Set(2, 1);
    picture.Draw(stamp, 1, 0);
    picture.Draw(stamp, 5, 1);
    picture.Draw(stamp, -2, 1);
    EXPECT_THAT(RowsOf(picture), ElementsAre("######", "...#.#", "#....."));
}

TEST(PrinterBitmap, InvertsNoDotsBeyondItsWidth) {
    Bitmap picture(3, 1);
    picture.Set(1, 0);
    picture.Invert();
    EXPECT_THAT(RowsOf(picture), ElementsAre("#.#"));
    EXPECT_EQ(picture.Row(0)[0], 0xA0);
}

TEST(PrinterBitmap, TurnsByHalfATurn) {
    Bitmap picture(9, 2);
    picture.Set(0, 0);
    picture.Set(1, 0);
    EXPECT_THAT(RowsOf(picture.Turned()), ElementsAre(".........", ".......##"));
}

TEST(PrinterBitmap, KnowsItsUsedHeight) {
    Bitmap picture(9, 5);
    EXPECT_EQ(picture.UsedHeight(), 0);
    picture.Set(8, 2);
    EXPECT_EQ(picture.UsedHeight(), 3);
}

TEST(PrinterBitmap, GrowsWhiteAndShrinks) {
    Bitmap picture(2, 1);
    picture.Fill(0, 0, 2, 1);
    picture.Resize(3);
    EXPECT_THAT(RowsOf(picture), ElementsAre("##", "..", ".."));
    picture.Resize(1);
    EXPECT_THAT(RowsOf(picture), ElementsAre("##"));
}

TEST(PrinterBitmap, HasNoDotsWithoutSize) {
    Bitmap picture(0, 5), none;
    picture.Fill(0, 0, 10, 10);
    picture.Invert();
    EXPECT_EQ(picture.UsedHeight(), 0);
    EXPECT_FALSE(none.Get(0, 0));
}
