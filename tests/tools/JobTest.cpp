#include "tools/Job.h"

#include "FakeLibrary.h"
#include "Support.h"

#include "tests/TemporaryFolder.h"
#include "tests/image/BmpBuilder.h"

#include <gtest/gtest.h>

using tool::CheckJob;
using tool::Job;
using tool::JobFault;
using tool::ReadJobFile;

namespace {

// What is wrong with a job, which is called `job`.
std::string FaultsOf(std::string_view text) {
    try {
        CheckJob("job", text, fake::catalogue);
        return "no fault";
    } catch (const JobFault &fault) {
        return fault.what();
    }
}

std::string FileFaultOf(const std::string &file) {
    try {
        ReadJobFile(file);
        return "no fault";
    } catch (const JobFault &fault) {
        return fault.what();
    }
}

// The names of a job's calls with their lines.
std::string CallsOf(std::string_view text) {
    std::string calls;
    for (const tool::Call &call : CheckJob("job", text, fake::catalogue).calls)
        calls += std::to_string(call.line) + ' ' + std::string(call.entry.function->name) + ' ';
    return calls;
}

} // namespace

TEST(Job, HasTheCallsOfItsLinesInTheirOrder) {
    EXPECT_EQ(CallsOf("Feed(1)\n\n# comment\nCut()\nPrint(1)"), "1 Feed 4 Cut 5 Print ");
}

TEST(Job, EndsWithTheLastLineWhetherOrNotItIsEnded) {
    EXPECT_EQ(CallsOf("Print(1)"), "1 Print ");
    EXPECT_EQ(CallsOf("Print(1)\n"), "1 Print ");
    EXPECT_EQ(CallsOf("Print(1)\r\n"), "1 Print ");
}

TEST(Job, SkipsAByteOrderMarkAtTheBeginningOnly) {
    EXPECT_EQ(CallsOf("\xEF\xBB\xBFPrint(1)"), "1 Print ");
    EXPECT_EQ(FaultsOf("Print(1)\n\xEF\xBB\xBFPrint(1)"),
              "job:2: unexpected \"\xEF\xBB\xBF\", expected the name of a function");
}

TEST(Job, IsPrintedAtItsEndUnlessItDoesSoItself) {
    EXPECT_EQ(CallsOf(""), "0 Print ");
    EXPECT_EQ(CallsOf("Clear()"), "1 Clear 0 Print ");
    EXPECT_EQ(CallsOf("Cut()"), "1 Cut 0 Print ");
    EXPECT_EQ(CallsOf("Cut()\nPrint(0)"), "1 Cut 2 Print ");
    EXPECT_EQ(CallsOf("Print(1)\nCut()"), "1 Print 2 Cut 0 Print ");
    EXPECT_EQ(CallsOf("Cut()\nPrint(0)\nClear()"), "1 Cut 2 Print 3 Clear ");
}

TEST(Job, IsPrintedAtItsEndWithTheSpoolCleared) {
    const Job job = CheckJob("job", "Cut()", fake::catalogue);
    EXPECT_EQ(job.calls.back().arguments, std::vector<tool::Value>{tool::Value(int64_t{1})});
}

TEST(Job, NamesAnUnknownFunctionAndTheNearestThereIs) {
    EXPECT_EQ(
        FaultsOf("Fed(1)"),
        "job:1: unknown function Fed, expected a name that \"nadrel functions\" lists; did you mean Feed?");
    EXPECT_EQ(
        FaultsOf("feed(1)"),
        "job:1: unknown function feed, expected a name that \"nadrel functions\" lists; did you mean Feed?");
    EXPECT_EQ(FaultsOf("Xyzzyplugh(1)"),
              "job:1: unknown function Xyzzyplugh, expected a name that \"nadrel functions\" lists");
}

TEST(Job, ShortensAnUnknownName) {
    EXPECT_EQ(FaultsOf(std::string(100000, 'F') + "(1)"),
              "job:1: unknown function " + std::string(40, 'F') +
                  "..., expected a name that \"nadrel functions\" lists");
}

TEST(Job, SaysWhyAFunctionCannotBeCalled) {
    EXPECT_EQ(FaultsOf("Close()"),
              "job:1: Close cannot be called in a job, because the tool closes, expected a name "
              "that \"nadrel functions\" lists");
}

TEST(Job, SaysHowManyArgumentsAFunctionHasAndWhich) {
    EXPECT_EQ(FaultsOf("Feed()"), "job:1: Feed has 0 arguments, expected 1: Feed(int32 lines)");
    EXPECT_EQ(FaultsOf("Cut(1)"), "job:1: Cut has 1 argument, expected none: Cut()");
    EXPECT_EQ(FaultsOf("Barcode(1, \"a\", 3)"),
              "job:1: Barcode has 3 arguments, expected 2: Barcode(uint8 symbology, text data)");
    EXPECT_EQ(FaultsOf("Raw(\"a\")"), "job:1: Raw has 1 argument, expected 2: Raw(bytes bytes, int32 count)");
}

TEST(Job, TakesNumbersToTheEdgesOfTheirTypes) {
    EXPECT_EQ(CallsOf("Feed(2147483647)\nFeed(-2147483648)\nPrint(1)"), "1 Feed 2 Feed 3 Print ");
    EXPECT_EQ(CallsOf("Table(0)\nTable(4294967295)\nTable(0xFFFFFFFF)\nPrint(1)"),
              "1 Table 2 Table 3 Table 4 Print ");
    EXPECT_EQ(CallsOf("Barcode(0, \"a\")\nBarcode(255, \"a\")\nPrint(1)"), "1 Barcode 2 Barcode 3 Print ");
}

TEST(Job, RefusesNumbersBeyondTheEdgesOfTheirTypes) {
    EXPECT_EQ(FaultsOf("Feed(2147483648)"),
              "job:1: argument 1 of Feed (lines) is 2147483648, expected a number from "
              "-2147483648 to 2147483647");
    EXPECT_EQ(FaultsOf("Feed(0xFFFFFFFF)"),
              "job:1: argument 1 of Feed (lines) is 0xFFFFFFFF, expected a number from "
              "-2147483648 to 2147483647");
    EXPECT_EQ(FaultsOf("Feed(-2147483649)"),
              "job:1: argument 1 of Feed (lines) is -2147483649, expected a number "
              "from -2147483648 to 2147483647");
    EXPECT_EQ(FaultsOf("Table(-1)"),
              "job:1: argument 1 of Table (number) is -1, expected a number from 0 to 4294967295");
    EXPECT_EQ(FaultsOf("Table(4294967296)"),
              "job:1: argument 1 of Table (number) is 4294967296, expected a number from 0 to 4294967295");
    EXPECT_EQ(FaultsOf("Barcode(256, \"a\")"),
              "job:1: argument 1 of Barcode (symbology) is 256, expected a number from 0 to 255");
    EXPECT_EQ(FaultsOf("Barcode(-1, \"a\")"),
              "job:1: argument 1 of Barcode (symbology) is -1, expected a number from 0 to 255");
}

TEST(Job, RefusesArgumentsOfTheWrongKind) {
    EXPECT_EQ(FaultsOf("Feed(\"1\")"),
              "job:1: argument 1 of Feed (lines) is a string, expected a number from "
              "-2147483648 to 2147483647");
    EXPECT_EQ(FaultsOf("Text(5)"), "job:1: argument 1 of Text (text) is 5, expected text in double quotes");
    EXPECT_EQ(FaultsOf("Text('M')"),
              "job:1: argument 1 of Text (text) is the character 'M', expected text in double quotes");
    EXPECT_EQ(FaultsOf("Card(-5)"),
              "job:1: argument 1 of Card (command) is -5, expected bytes in double quotes");
    EXPECT_EQ(FaultsOf("Raw(5, 1)"),
              "job:1: argument 1 of Raw (bytes) is 5, expected bytes in double quotes");
}

TEST(Job, RefusesZerosWhereTheyWouldEndTheString) {
    EXPECT_EQ(FaultsOf(R"(Text("a\0"))"),
              R"(job:1: argument 1 of Text (text) has a zero character, expected text without \0 and \x00)");
    EXPECT_EQ(FaultsOf(R"(Text("\u0000"))"),
              R"(job:1: argument 1 of Text (text) has a zero character, expected text without \0 and \x00)");
    EXPECT_EQ(FaultsOf(R"(Card("a\x00"))"),
              R"(job:1: argument 1 of Card (command) has a zero byte, expected bytes without \0 and \x00)");
    EXPECT_EQ(CallsOf("Raw(\"a\\0\", 2)\nPrint(1)"), "1 Raw 2 Print ");
}

TEST(Job, RefusesUnicodeEscapesAmongBytes) {
    EXPECT_EQ(FaultsOf(R"(Raw("\u00E9", 1))"),
              R"(job:1: argument 1 of Raw (bytes) has a \u escape, expected bytes written as \xHH)");
    EXPECT_EQ(FaultsOf(R"(Card("\u00E9"))"),
              R"(job:1: argument 1 of Card (command) has a \u escape, expected bytes written as \xHH)");
}

TEST(Job, LetsACountReachTheEndOfItsBytesAndNoFurther) {
    EXPECT_EQ(CallsOf("Raw(\"abc\", 3)\nRaw(\"abc\", 0)\nRaw(\"\", 0)\nPrint(1)"),
              "1 Raw 2 Raw 3 Raw 4 Print ");
    EXPECT_EQ(FaultsOf("Raw(\"abc\", 4)"),
              "job:1: argument 2 of Raw (count) is 4, expected 0 to 3, the number of "
              "bytes in the argument before it");
    EXPECT_EQ(FaultsOf("Raw(\"abc\", -1)"),
              "job:1: argument 2 of Raw (count) is -1, expected 0 to 3, the number of "
              "bytes in the argument before it");
    EXPECT_EQ(FaultsOf("Raw(\"é\", 3)"),
              "job:1: argument 2 of Raw (count) is 3, expected 0 to 2, the number of "
              "bytes in the argument before it");
}

TEST(Job, SaysEverythingThatIsWrongInItsFile) {
    EXPECT_EQ(
        FaultsOf("Fed(1)\nFeed(1)\nBarcode(256, 7)\n\nFeed(\"\nRaw(1, 9)"),
        "job:1: unknown function Fed, expected a name that \"nadrel functions\" lists; did you mean Feed?\n"
        "job:3: argument 1 of Barcode (symbology) is 256, expected a number from 0 to 255\n"
        "job:3: argument 2 of Barcode (data) is 7, expected text in double quotes\n"
        "job:5: a string is not closed, expected \" before the end of the line\n"
        "job:6: argument 1 of Raw (bytes) is 1, expected bytes in double quotes");
}

TEST(Job, ShowsTwentyFaultsAndSaysWhetherThereAreMore) {
    std::string expected;
    std::string text;
    for (int line = 1; line <= 20; ++line) {
        expected += "job:" + std::to_string(line) + ": unexpected \"?\", expected the name of a function\n";
        text += "?\n";
    }
    EXPECT_EQ(FaultsOf(text) + '\n', expected);
    EXPECT_EQ(FaultsOf(text + "Cut()\n") + '\n', expected);
    EXPECT_EQ(FaultsOf(text + "?\n"), expected + "job: there are more errors");
}

TEST(Job, IsReadFromItsFileByteForByte) {
    const std::string text("Text(\"caf\xC3\xA9\")\r\n\0\n", 18);
    const TemporaryFile file(text);
    EXPECT_EQ(ReadJobFile(file.path), text);
}

TEST(Job, MayBeAnEmptyFile) {
    const TemporaryFile file("");
    EXPECT_EQ(ReadJobFile(file.path), "");
}

TEST(Job, SaysWhyItsFileCannotBeRead) {
    EXPECT_EQ(FileFaultOf("/nowhere/at.job"),
              "/nowhere/at.job: cannot be read (No such file or directory), expected a job file");
    EXPECT_EQ(FileFaultOf("/"), "/: cannot be read (Is a directory), expected a job file");
}

TEST(Job, IsAtMostFourMebibytesLong) {
    const TemporaryFile file(std::string(4194305, ' '));
    EXPECT_EQ(FileFaultOf(file.path),
              file.path + ": is longer than a job may be, expected 4194304 bytes at most");
}

TEST(Job, MayBeFourMebibytesLong) {
    const TemporaryFile file(std::string(4194304, ' '));
    EXPECT_EQ(ReadJobFile(file.path).size(), 4194304u);
}

TEST(Job, SeeksPicturesInTheFolderOfItsFile) {
    const TemporaryFolder folder;
    folder.Put("logo.bmp", nadrel::BmpBuilder::OneBit(8, 1, [](int, int) { return 0; }).Bytes());
    const Job job = CheckJob(folder.Path("a.job"), "Picture(\"logo.bmp\")", fake::catalogue);
    EXPECT_EQ(std::get<tool::Text>(job.calls.front().arguments.front()), folder.Name("logo.bmp"));
}

TEST(Job, TakesTheFullNameOfAPictureAsItIs) {
    const TemporaryFolder folder;
    folder.Put("logo.bmp", nadrel::BmpBuilder::OneBit(8, 1, [](int, int) { return 0; }).Bytes());
    const Job job =
        CheckJob("elsewhere/a.job", "Picture(\"" + folder.Path("logo.bmp") + "\")", fake::catalogue);
    EXPECT_EQ(std::get<tool::Text>(job.calls.front().arguments.front()), folder.Name("logo.bmp"));
}

TEST(Job, SaysInWhichLineAPictureIsNotThere) {
    EXPECT_EQ(FaultsOf("Cut()\nPicture(\"none.bmp\")"),
              "job:2: none.bmp cannot be read (No such file or directory), expected a bitmap file (BMP) of 1 "
              "or 24 bits a pixel");
    EXPECT_EQ(FaultsOf("Picture(5)"),
              "job:1: argument 1 of Picture (path) is 5, expected text in double quotes");
}

TEST(Job, SeeksPicturesWhereTheProgramWorksWhenItComesThroughAPipe) {
    for (const std::string pipe : {"-", "/dev/stdin", "/dev/fd/63"}) {
        try {
            CheckJob(pipe, "Picture(\"none.bmp\")", fake::catalogue);
            ADD_FAILURE() << pipe;
        } catch (const JobFault &fault) {
            EXPECT_TRUE(std::string(fault.what()).starts_with(pipe + ":1: none.bmp cannot")) << fault.what();
        }
    }
}

TEST(Job, RefusesAPictureInAFolderWhoseNameIsNotUtf8) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path("\xFF"));
    folder.Put("\xFF/logo.bmp", nadrel::BmpBuilder::OneBit(8, 1, [](int, int) { return 0; }).Bytes());
    EXPECT_THROW(CheckJob(folder.Path("\xFF/a.job"), "Picture(\"logo.bmp\")", fake::catalogue), JobFault);
}
