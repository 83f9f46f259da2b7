#include "tests/endtoend/EndToEnd.h"

using namespace endtoend;
using namespace std::string_literals;

namespace {

class Devices : public OnEveryLink {};
NADREL_IN_BOTH_FORMS(Devices);

} // namespace

TEST_P(Devices, SwipeACardThroughAReaderThatEachFunctionEnters) {
    ASSERT_TRUE(Open(GetParam()));
    EXPECT_EQ(CardRead(1), 0);
    EXPECT_TRUE(HasListed("enter card reader mode 'D'"));
    EXPECT_EQ(CardRead(0), 0);
    EXPECT_TRUE(HasListed("enter card reader mode 'C'"));
    EXPECT_EQ(CardRead_M(0), 0);
    EXPECT_TRUE(HasListed("STX D"));
    EXPECT_EQ(CardRead_M(1), 0);
    EXPECT_TRUE(HasListed("STX C"));
    Settle();
    Printer().Say("swipe");
    const std::string data = "\x02\x02"s
                             "\x01\x35\x00%B5000000000000009^CARDHOLDER/TEST^30121010000000000?"s
                             "\x02\x24\x00;5000000000000009=30121010000000000?"s
                             "\x00"s;
    EXPECT_EQ(heard.Next(), Reply(IsFramed() ? 'D' : 'N', data));
    EXPECT_EQ(CardCancel(), 0);
    EXPECT_TRUE(HasListed("cancel card reading", 3)); // CardRead begins with one, too
}

TEST_P(Devices, PassACommandToTheSecuredCardAndItsAnswerBack) {
    ASSERT_TRUE(Open(GetParam()));
    EXPECT_EQ(EnterSCRMode(), 1);
    EXPECT_EQ(SecuredCardCommend("00A4040007"), 7);
    EXPECT_EQ(CancelSCRMode(), 19);
    EXPECT_EQ(PrintSpool(1), 1);
    EXPECT_TRUE(HasListed("ESC N      enter smart-card mode"));
    EXPECT_TRUE(HasListed("ESC M S    secured card \"00A4040007\""));
    EXPECT_TRUE(HasListed("~ EOT ~    leave smart-card mode"));
    Settle();
    Printer().Say("send 02 39 30 00");
    EXPECT_EQ(heard.Next(), Reply('D', "\x02"
                                       "90\0"s));
    EXPECT_EQ(SecuredCardCancel(), 0);
    EXPECT_TRUE(HasListed("ESC M X    cancel secured card"));
}

TEST_P(Devices, PassTerminalIdentifierAndPaymentRequest) {
    ASSERT_TRUE(Open(GetParam()));
    EXPECT_EQ(SetTermialID(u"TERM0001"), 1);
    EXPECT_TRUE(HasListed("ESC m      terminal identifier \"TERM0001\""));
    EXPECT_EQ(SetPaymentReq(1, u"1000", u"20160101", u"123000"), 1);
    EXPECT_TRUE(HasListed("ESC n      payment request 1: 000000001000 20160101 123000"));
    EXPECT_EQ(SetTermialID(u"TERM001"), 7);
    EXPECT_EQ(SetPaymentReq(1, u"1000", u"2016010", u"123000"), 7);
    EXPECT_EQ(PrintLine("the end"), 1);
    EXPECT_TRUE(HasListed("\"the end\""));
    EXPECT_EQ(Printer().Listed("ESC m") + Printer().Listed("ESC n"), 2u);
}
