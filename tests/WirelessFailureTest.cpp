#include "tests/WirelessConnectionTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// What each of the two functions makes of each thing that goes wrong.
class WirelessFailureTest : public WirelessConnectionTest {};

int32_t Init(int32_t framed) {
    return InitWlanPrinter(u"printer", 9100, 1000, framed);
}

int32_t Connect(int32_t framed) {
    return ConnectWirelessPrinter(u"printer", 9100, 200, framed);
}

TEST_F(WirelessFailureTest, InitGivesMinus1WhenTheSocketCannotBeSwitchedToNotWaiting) {
    os.Answer("IOCtl", {.error = kInvalid, .result = -1});
    EXPECT_EQ(-1, Init(0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(kSocket + kDisposal));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, InitTakesAZeroOfTheSwitchForSuccess) {
    os.Answer("IOCtl", {.result = 0}, 1);
    os.Answer("IOCtl", {.result = 0}, 2);
    EXPECT_EQ(1, Init(0));
}

TEST_F(WirelessFailureTest, InitDoesNotTestTheResultOfConnect) {
    for (const int32_t result : {-1, 0, 1}) {
        os.Answer("Connect", {.error = kRefused, .result = result});
        EXPECT_EQ(1, Init(0));
        EXPECT_EQ(0u, LastLinkError);
        ClosePrinter();
    }
}

TEST_F(WirelessFailureTest, InitGivesMinus2WhenThePrinterRefusesTheConnection) {
    os.Fail("Connect", kRefused);
    EXPECT_EQ(-2, Init(0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(kInitToSelect + kDisposal));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, ConnectGivesMinus7WhenThePrinterRefusesTheLastAttempt) {
    os.Fail("Connect", kRefused, 1);
    os.Fail("Connect", kRefused, 2);
    EXPECT_EQ(-7, ConnectWirelessPrinter(u"printer", 9100, 400, 0));
    ExpectClosed();
    EXPECT_EQ(kRefused, LastLinkError);
}

TEST_F(WirelessFailureTest, ConnectForgetsARefusalWhenALaterAttemptIsTaken) {
    os.Fail("Connect", kRefused);
    EXPECT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 400, 0));
    EXPECT_EQ(2u, os.CountOf("SelectWritable"));
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, InitGivesMinus1WhenSelectFails) {
    os.Fail("SelectWritable", kInvalid);
    EXPECT_EQ(-1, Init(0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(kInitToSelect + kDisposal));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, InitGivesMinus2WhenTheTimeIsOver) {
    os.Answer("SelectWritable", {.result = 0});
    EXPECT_EQ(-2, Init(0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(kInitToSelect + kDisposal));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, InitGivesMinus2WhenTheSocketIsNotInTheWriteSet) {
    os.Answer("SelectWritable", {.result = 1, .writable = false});
    EXPECT_EQ(-2, Init(0));
    ExpectClosed();
}

TEST_F(WirelessFailureTest, InitGivesMinus1WhenTheSocketCannotBeSwitchedToWaiting) {
    os.Answer("IOCtl", {.error = kInvalid, .result = -1}, 2);
    EXPECT_EQ(-1, Init(0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(kInitToSelect + Calls{"IOCtl(3, nonBlocking, 0)"} + kDisposal));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, ConnectGivesMinus2WhenTheSocketCannotBeSwitchedToNotWaiting) {
    os.Answer("IOCtl", {.error = kInvalid, .result = 0});
    EXPECT_EQ(-2, Connect(0));
    EXPECT_THAT(Steps(), ElementsAreArray(Calls{"CreateTimedEvent()"} + kSocket + kDisposal));
    ExpectClosed();
    EXPECT_EQ(kInvalid, LastLinkError);
}

TEST_F(WirelessFailureTest, ConnectTakesOnlyAZeroOfTheFirstSwitchForAFailure) {
    os.Answer("IOCtl", {.result = -1});
    EXPECT_EQ(1, Connect(0));
}

TEST_F(WirelessFailureTest, ConnectGivesMinus2AndKeepsNoReasonWhenTheSocketCannotBeSwitchedToWaiting) {
    os.Answer("IOCtl", {.error = kInvalid, .result = -1}, 2);
    EXPECT_EQ(-2, Connect(0));
    ExpectClosed();
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, ConnectTakesOnlyMinus1OfTheSecondSwitchForAFailure) {
    os.Answer("IOCtl", {.result = 0}, 2);
    EXPECT_EQ(1, Connect(0));
}

struct Retries {
    int32_t timeout;
    int attempts;

    friend void PrintTo(const Retries &retries, std::ostream *out) { *out << retries.timeout << " ms"; }
};

class WirelessRetriesTest : public WirelessConnectionTest, public testing::WithParamInterface<Retries> {
  protected:
    Calls Attempts(const Calls &attempt) const {
        Calls calls = Calls{"CreateTimedEvent()"} + kSocket;
        for (int i = 0; i < GetParam().attempts; ++i)
            calls = calls + attempt;
        return calls + kDisposal;
    }

    void ExpectGivesUp(int32_t result, const Calls &attempt) {
        EXPECT_EQ(result, ConnectWirelessPrinter(u"printer", 9100, GetParam().timeout, 0));
        EXPECT_THAT(Steps(), ElementsAreArray(Attempts(attempt)));
        EXPECT_EQ(200u * static_cast<unsigned>(GetParam().attempts), os.Now());
        ExpectClosed();
    }

    void Always(const std::string &operation, const scripted::Outcome &outcome) {
        for (int nth = 1; nth <= GetParam().attempts; ++nth)
            os.Answer(operation, outcome, nth);
    }
};

INSTANTIATE_TEST_SUITE_P(Within, WirelessRetriesTest,
                         testing::Values(Retries{0, 1}, Retries{199, 1}, Retries{200, 1}, Retries{399, 1},
                                         Retries{400, 2}, Retries{999, 4}, Retries{1000, 5}, Retries{-1, 1},
                                         Retries{INT32_MIN, 1}));

TEST_P(WirelessRetriesTest, GivesMinus7WhenTheLastAttemptTimesOut) {
    Always("SelectWritable", {.error = 10060, .result = 0});
    ExpectGivesUp(-7, kAttempt);
    EXPECT_EQ(10060u, LastLinkError);
}

TEST_P(WirelessRetriesTest, GivesMinus2WhenTheLastSelectFails) {
    Always("SelectWritable", {.failed = true, .error = kInvalid});
    ExpectGivesUp(-2, kAttempt);
    EXPECT_EQ(kInvalid, LastLinkError);
}

TEST_P(WirelessRetriesTest, GivesMinus3WhenTheSocketNeverIsInTheWriteSet) {
    Always("SelectWritable", {.error = 10056, .result = 1, .writable = false});
    ExpectGivesUp(-3, kAttempt);
    EXPECT_EQ(10056u, LastLinkError);
}

TEST_P(WirelessRetriesTest, GivesMinus3WhenEveryConnectIsCompleteAtOnce) {
    Always("Connect", {.error = kRefused, .result = 1});
    ExpectGivesUp(-3, {"Wait(200)", "Connect(3, \"printer\", 9100)"});
    EXPECT_EQ(kRefused, LastLinkError);
}

TEST_F(WirelessFailureTest, TheResultIsThatOfTheLastAttempt) {
    const scripted::Outcome outcomes[] = {{.error = 1, .result = 0},
                                          {.failed = true, .error = 2},
                                          {.error = 3, .result = 1, .writable = false}};
    const int32_t results[] = {-7, -2, -3};
    for (size_t last = 0; last < 3; ++last) {
        os.ForgetScript();
        for (int nth = 1; nth <= 3; ++nth)
            os.Answer("SelectWritable", outcomes[(last + static_cast<size_t>(nth)) % 3], nth);
        EXPECT_EQ(results[last], ConnectWirelessPrinter(u"printer", 9100, 600, 0));
        EXPECT_EQ(last + 1, LastLinkError);
    }
}

TEST_F(WirelessFailureTest, AnImmediateConnectIsFollowedByAnotherAttempt) {
    os.Answer("Connect", {.result = 1});
    EXPECT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 1000, 0));
    EXPECT_THAT(os.CallsOf({"Wait", "Connect", "SelectWritable"}),
                ElementsAreArray(Calls{"Wait(200)", "Connect(3, \"printer\", 9100)"} + kAttempt));
}

TEST_F(WirelessFailureTest, AConnectionMayStandAtTheLastAttempt) {
    os.Answer("SelectWritable", {.result = 0}, 1);
    os.Fail("SelectWritable", kInvalid, 2);
    os.Answer("SelectWritable", {.result = 1, .writable = false}, 3);
    os.Answer("Connect", {.result = -1}, 4);
    EXPECT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 1000, 0));
    EXPECT_EQ(5u, os.CountOf("Connect"));
    EXPECT_EQ(4u, os.CountOf("SelectWritable"));
    EXPECT_EQ(1000u, os.Now());
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(WirelessFailureTest, AttemptsEndAsSoonAsTheConnectionStands) {
    EXPECT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 10000, 0));
    EXPECT_EQ(1u, os.CountOf("Connect"));
    EXPECT_EQ(200u, os.Now());
}

TEST_F(WirelessFailureTest, TheSocketHandleStandsUntilTheClose) {
    EXPECT_EQ(0, LinkSocket);
    OpenWirelessLink();
    EXPECT_EQ(3, LinkSocket);
    ClosePrinter();
    EXPECT_EQ(0, LinkSocket);
}

} // namespace
} // namespace nadrel
