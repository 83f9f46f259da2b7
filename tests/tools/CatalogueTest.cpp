#include "tools/Catalogue.h"

#include "FakeLibrary.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(Catalogue, FindsFunctionsByTheirExactName) {
    const auto entry = fake::catalogue.Find("Feed");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->function->name, "Feed");
    EXPECT_EQ(entry->group->title, "Text");
    EXPECT_FALSE(fake::catalogue.Find("feed"));
    EXPECT_FALSE(fake::catalogue.Find("Close"));
    EXPECT_FALSE(fake::catalogue.Find(""));
}

TEST(Catalogue, KnowsWhatIsNotForJobs) {
    ASSERT_NE(fake::catalogue.FindNotForJobs("Close"), nullptr);
    EXPECT_EQ(fake::catalogue.FindNotForJobs("Close")->reason, "the tool closes");
    EXPECT_EQ(fake::catalogue.FindNotForJobs("Feed"), nullptr);
}

TEST(Catalogue, KnowsTheFunctionThatPrints) {
    EXPECT_EQ(fake::catalogue.Printing().function->name, "Print");
}

TEST(Catalogue, SuggestsANameWithFewLettersChanged) {
    EXPECT_EQ(fake::catalogue.Nearest("Barcod"), "Barcode");
    EXPECT_EQ(fake::catalogue.Nearest("BARCODE"), "Barcode");
    EXPECT_EQ(fake::catalogue.Nearest("Barcodes"), "Barcode");
    EXPECT_EQ(fake::catalogue.Nearest("Bracode"), "Barcode");
    EXPECT_EQ(fake::catalogue.Nearest("Idntfi"), "Identify");
}

TEST(Catalogue, SuggestsNothingThatIsFarOff) {
    EXPECT_EQ(fake::catalogue.Nearest("Xyzzyplugh"), "");
    EXPECT_EQ(fake::catalogue.Nearest("X"), "");
    EXPECT_EQ(fake::catalogue.Nearest(""), "");
    EXPECT_EQ(fake::catalogue.Nearest(std::string(1000000, 'B')), "");
}

TEST(Catalogue, ListsItsFunctionsWithTheirArgumentsUnderTheirTitles) {
    std::ostringstream out;
    tool::ListFunctions(fake::catalogue, out);
    EXPECT_EQ(out.str(), "Text\n"
                         "  Text(text text)\n"
                         "  Feed(int32 lines)\n"
                         "  Table(uint32 number)\n"
                         "  Cut()\n"
                         "\n"
                         "Others\n"
                         "  Barcode(uint8 symbology, text data)\n"
                         "  Raw(bytes bytes, int32 count)\n"
                         "  Card(bytes command)\n"
                         "  Clear()\n"
                         "  Identify(text name)\n"
                         "\n"
                         "Pictures\n"
                         "  Picture(picture path)\n"
                         "\n"
                         "Printing\n"
                         "  Print(int32 clear)\n"
                         "\n"
                         "int32, uint32, uint8: a number, 10, -1 or 0x1B, or a character, 'M'\n"
                         "text, bytes: a string, \"Caf\\u00E9 cr\xC3\xA8me\\n\", \"\\x1B@\"\n"
                         "picture: a bitmap file (BMP) of 1 or 24 bits a pixel, \"logo.bmp\", as seen from "
                         "the job file\n");
}

TEST(ResultRule, TakesNumbersBelowZeroForFailures) {
    const tool::ResultRule rule{.failures = fake::kTextCodes};
    EXPECT_FALSE(rule.Failure(0));
    EXPECT_FALSE(rule.Failure(2147483647));
    EXPECT_EQ(rule.Failure(-12), "the spool is full");
    EXPECT_EQ(rule.Failure(-1), "the library gives this number no meaning");
}

TEST(ResultRule, TakesAnythingButOneForAFailureIfAsked) {
    const tool::ResultRule rule{.failures = fake::kTextCodes, .onlyOneIsFine = true};
    EXPECT_FALSE(rule.Failure(1));
    EXPECT_EQ(rule.Failure(0), "the library gives this number no meaning");
    EXPECT_EQ(rule.Failure(2), "the library gives this number no meaning");
}
