#include "printer/Session.h"

#include "tests/printer/Decoding.h"

#include <gmock/gmock.h>
#include <sstream>

using namespace printer;
using namespace printer::testing;
using ::testing::HasSubstr;

namespace {

class PrinterSession : public ::testing::Test {
  protected:
    std::string Send(const std::string &bytes) {
        session.Receive(BytesOf(bytes));
        return HexOf(session.TakeReplies());
    }

    std::ostringstream listed, told;
    Listing listing{listed};
    Printer printer{384, "", &listing, told};
    Session session{printer, {"AB", "V1"}};
};

const std::string ReportsOn = "\x1D\x76\x01";

} // namespace

TEST_F(PrinterSession, PrintsListsAndAnswers) {
    EXPECT_EQ(Send("Hi\x0A\x1B\x76"), "40");
    EXPECT_EQ(printer.GetPaper().Rows(), 30);
    EXPECT_THAT(listed.str(), HasSubstr("\"Hi\""));
    EXPECT_EQ(told.str(), "");
}

TEST_F(PrinterSession, HandsEachReplyOutOnce) {
    EXPECT_EQ(Send("\x1B\x76"), "40");
    EXPECT_EQ(HexOf(session.TakeReplies()), "");
}

TEST_F(PrinterSession, TellsOfABadFrameAndDoesNotPrintIt) {
    EXPECT_EQ(Send("\x00\xC0\x44\x31\x30\x30\x30\x32\x41\x0A\x41\x0B\xC1"s), "C0 15");
    EXPECT_EQ(printer.GetPaper().Rows(), 0);
    EXPECT_EQ(told.str(),
              "nadrel-printer: a bad frame at 0 is skipped: its check value is 41 0B, that of its bytes is "
              "41 0A.\n");
}

TEST_F(PrinterSession, TellsOfWhatCouldNotBeDrawn) {
    Send("\x1D\x6B\x43\x01x");
    EXPECT_THAT(told.str(), HasSubstr("nadrel-printer: GS k at 0: EAN-13"));
    EXPECT_THAT(listed.str(), HasSubstr("\n          ! EAN-13"));
}

TEST_F(PrinterSession, WaitsWithPrintingWhileThereIsNoPaper) {
    printer.EndPaperAfter(0);
    EXPECT_EQ(Send("\x1B\x76"), "41");
    EXPECT_EQ(Send("Hi\x0A\x1B\x76"), "");
    EXPECT_TRUE(session.IsWaitingForPaper());
    EXPECT_EQ(printer.GetPaper().Rows(), 0);
    printer.LoadPaper();
    session.Continue();
    EXPECT_FALSE(session.IsWaitingForPaper());
    EXPECT_EQ(HexOf(session.TakeReplies()), "40");
    EXPECT_EQ(printer.GetPaper().Rows(), 30);
}

TEST_F(PrinterSession, PrintsUntilThePaperEnds) {
    printer.EndPaperAfter(60);
    Send(ReportsOn);
    EXPECT_EQ(Send("1\x0A"
                   "2\x0A"
                   "3\x0A"),
              "30 31");
    EXPECT_EQ(printer.GetPaper().Rows(), 60);
    EXPECT_TRUE(session.IsWaitingForPaper());
}

TEST_F(PrinterSession, ReportsPrintOutsWhenSwitchedOn) {
    Send("Hi\x0A");
    session.ReportPrintOut();
    EXPECT_EQ(HexOf(session.TakeReplies()), "");
    Send(ReportsOn);
    session.ReportPrintOut();
    EXPECT_EQ(HexOf(session.TakeReplies()), "30 30");
}

TEST_F(PrinterSession, CountsHowOftenAReaderWasEntered) {
    Send("\x1B\x4D\x43");
    EXPECT_EQ(session.ReadersEntered(), 1U);
    Send("\x1B\x4D\x00\x04"s);
    EXPECT_EQ(session.ReadersEntered(), 1U);
    EXPECT_FALSE(session.Swipe());
    Send("\x02\x43\x31\x31\x00\x00\x03"s);
    EXPECT_EQ(session.ReadersEntered(), 2U);
    EXPECT_TRUE(session.Swipe());
    EXPECT_THAT(HexOf(session.TakeReplies()), HasSubstr("02 02 01"));
}

TEST_F(PrinterSession, KeepsTheMacro) {
    Send(
        "\x1B\x1C\x2B\x01\x00\x03\x00\x1B\x21\x01\x1B\x1C\x2B\x01\x00\x02\x00\x1B\x40\x1B\x1C\x2B\x01\x00\x00\x00"s);
    EXPECT_THAT(listed.str(), HasSubstr("! The macro holds 3 bytes.\n"));
    EXPECT_THAT(listed.str(), HasSubstr("! The macro holds 2 bytes in the place of 3.\n"));
    EXPECT_THAT(listed.str(), HasSubstr("! The macro is cleared.\n"));
    EXPECT_EQ(printer.GetPaper().Rows(), 0);
}

TEST_F(PrinterSession, TellsOfALineThatNothingHasPrinted) {
    Send("no line feed");
    session.Finish();
    printer.Finish();
    EXPECT_EQ(told.str(), "nadrel-printer: The last line was not printed: no line feed came after it.\n");
    EXPECT_EQ(printer.GetPaper().Rows(), 0);
}

TEST_F(PrinterSession, TellsOfAPageThatNothingHasPrinted) {
    Send("\x1B\x4Ctext\x0A");
    session.Finish();
    printer.Finish();
    EXPECT_EQ(told.str(),
              "nadrel-printer: The stream ended in page mode. A page that was not printed is lost.\n");
}

TEST_F(PrinterSession, RefusesABadFrameItGivesUp) {
    Send("\x00\xC0\x44\x31\x30"s);
    EXPECT_TRUE(session.IsInFrame());
    session.GiveUpFrame();
    EXPECT_FALSE(session.IsInFrame());
    EXPECT_EQ(HexOf(session.TakeReplies()), "C0 15");
}
