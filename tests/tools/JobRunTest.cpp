#include "tools/JobRun.h"

#include "FakeLibrary.h"

#include "tests/TemporaryFolder.h"
#include "tests/image/BmpBuilder.h"

#include <gtest/gtest.h>

using Calls = std::vector<std::string>;

namespace {

class JobRun : public testing::Test {
  protected:
    JobRun() {
        fake::calls.clear();
        fake::nextResult = 1;
        fake::spoolLength = 5;
        fake::nextPictureLength = 114;
        folder.Put("a.bmp", nadrel::BmpBuilder::OneBit(8, 1, [](int, int) { return 0; }).Bytes());
    }

    static void Run(std::string_view text) { tool::RunJob(tool::CheckJob("a.job", text, fake::catalogue)); }

    std::string Picture() const { return "Picture(\"" + folder.Path("a.bmp") + "\")"; }

    TemporaryFolder folder;

    static std::string FailureOf(std::string_view text) {
        try {
            Run(text);
            return "no failure";
        } catch (const tool::CallFailure &failure) {
            return failure.what();
        }
    }
};

} // namespace

TEST_F(JobRun, HandsOverNumbersOfEveryType) {
    Run("Feed(-2147483648)\nFeed(2147483647)\nTable(4294967295)\nTable('M')\nCut()");
    EXPECT_EQ(fake::calls, (Calls{"Feed -2147483648", "Feed 2147483647", "Table 4294967295", "Table 77",
                                  "Cut", "Print 1"}));
}

TEST_F(JobRun, HandsOverTextAndBytes) {
    Run("Barcode(255, \"1\xE2\x82\xAC\")\nText(\"\xF0\x9F\x98\x80\")\nRaw(\"\\x1B\\0\\xFF@\", "
        "3)\nCard(\"\\x01-2\")");
    EXPECT_EQ(fake::calls, (Calls{"Barcode 255 49 8364 ", "Text 55357 56832 ", "Raw 27 0 255 ", "Card \x01-2",
                                  "Print 1"}));
}

TEST_F(JobRun, GoesOnAfterResultsThatAreNoFailure) {
    fake::nextResult = 0;
    Run("Text(\"a\")\nText(\"b\")");
    EXPECT_EQ(fake::calls, (Calls{"Text 97 ", "Text 98 ", "Print 1"}));
}

TEST_F(JobRun, StopsAtAFailureAndTellsItsMeaning) {
    fake::nextResult = -12;
    EXPECT_EQ(FailureOf("Feed(1)\n\nText(\"a\")\nFeed(2)"),
              "a.job:3: Text(...) answered -12: the spool is full");
    EXPECT_EQ(fake::calls, (Calls{"Feed 1", "Text 97 "}));
}

TEST_F(JobRun, TellsANumberThatHasNoMeaning) {
    fake::nextResult = -77;
    EXPECT_EQ(FailureOf("Clear()"),
              "a.job:1: Clear() answered -77: the library gives this number no meaning");
}

TEST_F(JobRun, TakesAnythingButOneForAFailureWhereOnlyOneIsFine) {
    EXPECT_EQ(FailureOf("Identify(\"12345678\")"), "no failure");
    fake::nextResult = 7;
    EXPECT_EQ(FailureOf("Identify(\"1234567\")"), "a.job:1: Identify(...) answered 7: the name is too short");
}

TEST_F(JobRun, TellsAFailureOfThePrintingThatItAdds) {
    fake::nextResult = -13;
    EXPECT_EQ(
        FailureOf("Feed(1)"),
        "a.job: at the end of the job: Print(...) answered -13: the library gives this number no meaning");
}

TEST_F(JobRun, GoesOnAfterAPictureThatMadeTheSpoolLonger) {
    Run(Picture() + "\nCut()");
    ASSERT_EQ(fake::calls.size(), 3u);
    EXPECT_EQ(fake::calls[1], "Cut");
    EXPECT_EQ(fake::spoolLength, 119);
}

TEST_F(JobRun, StopsAtAPictureThatLeftTheSpoolAsItWas) {
    fake::nextPictureLength = 0;
    EXPECT_EQ(FailureOf(Picture() + "\nCut()"), "a.job:1: Picture(...) appended nothing: it has no room");
    EXPECT_EQ(fake::calls.size(), 1u);
}
