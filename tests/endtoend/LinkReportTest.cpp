#include "tests/endtoend/EndToEnd.h"

using namespace endtoend;

namespace {

class LinkReports : public OnEveryLink {};
NADREL_IN_BOTH_FORMS(LinkReports);

} // namespace

TEST_P(LinkReports, CountWhatGoesOutAndWhatComesBack) {
    ASSERT_TRUE(Open(GetParam()));
    const NadrelLinkReport start = Report();
    EXPECT_EQ(start.bytesTaken, start.bytesAsked);
    EXPECT_EQ(PrintLine("12345"), 1);
    EXPECT_EQ(Report().bytesAsked, start.bytesAsked + (IsFramed() ? 6 + 11 : 6));
    if (IsFramed()) {
        EXPECT_EQ(heard.Next(), Code(0x06));
    }
    const uint32_t told = Report().notificationsPosted;
    EXPECT_EQ(EnterMSRMode(0), 0);
    EXPECT_TRUE(HasListed("enter card reader mode 'C'"));
    Printer().Say("send 30");
    EXPECT_TRUE(Eventually([&] { return Report().notificationsPosted == told + (IsFramed() ? 2 : 1); }));
    const NadrelLinkReport end = Report();
    EXPECT_EQ(end.bytesAsked, start.bytesAsked + (IsFramed() ? 17 + 14 : 6 + 3));
    EXPECT_EQ(end.bytesTaken, end.bytesAsked);
    EXPECT_EQ(end.bytesReceived, start.bytesReceived + (IsFramed() ? 2 + 2 + 1 : 1));
    EXPECT_EQ(end.bytesDropped, 0u);
    EXPECT_EQ(end.errorCount, 0u);
    EXPECT_EQ(end.lastError, 0u);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(Report().bytesAsked, end.bytesAsked);
    ASSERT_EQ(Connect(Printer(), {GetParam().medium, Form::plain}), 1);
    EXPECT_EQ(Report().bytesAsked + Report().bytesReceived + Report().notificationsPosted, 0u);
}

TEST(LinkReport, IsRefusedForAnUnknownSize) {
    NadrelLinkReport report = {};
    EXPECT_EQ(GetLinkReport(&report), 0);
    report.size = sizeof report - 1;
    EXPECT_EQ(GetLinkReport(&report), 0);
    EXPECT_EQ(GetLinkReport(nullptr), 0);
    report.size = sizeof report;
    EXPECT_EQ(GetLinkReport(&report), 1);
}
