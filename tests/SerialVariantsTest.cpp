#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr uint32_t kAccessDenied = 5;

// What the three functions do differently: names, attempts, line settings, when the framed mode is stored.
class SerialVariantsTest : public LibraryTest {};

int32_t Connect(int32_t framed) {
    return ConnectSerialPrinter(u"COM1", 115200, 200, framed);
}

int32_t ConnectEx(int32_t framed) {
    return ConnectSerialPrinterEx("COM1", 115200, 8, 0, 0, 200, framed);
}

TEST_F(SerialVariantsTest, InitPrinterStoresFramedEvenWhenItRefuses) {
    OpenSerialLink();
    EXPECT_EQ(-1, InitPrinter(u"COM1", 9600, 5));
    EXPECT_EQ(5, FramedMode);
    EXPECT_EQ(-1, InitPrinter(u"COM1", 9600, 0));
    EXPECT_EQ(0, FramedMode);
}

TEST_F(SerialVariantsTest, InitPrinterStoresFramedBeforeAnythingElse) {
    os.OnCall("OpenPort", [] { EXPECT_EQ(1, FramedMode); });
    os.Fail("OpenPort", kAccessDenied);
    EXPECT_EQ(-2, InitPrinter(u"COM1", 9600, 1));
    EXPECT_EQ(1, FramedMode);
}

TEST_F(SerialVariantsTest, InitPrinterGives0ForANullNameAndChangesNothing) {
    FillSpool(5);
    FramedMode = 1;
    EXPECT_EQ(0, InitPrinter(nullptr, 9600, 0));
    EXPECT_EQ(1, FramedMode);
    EXPECT_EQ(5, SpoolLength);
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(SerialVariantsTest, InitPrinterTriesOnceAndDoesNotWait) {
    os.FailAlways("OpenPort", kAccessDenied);
    EXPECT_EQ(-2, InitPrinter(u"COM7", 9600, 0));
    EXPECT_EQ((Calls{"OpenPort(\"COM7\", 0x80)"}), os.Calls());
    EXPECT_EQ(0u, os.Now());
}

TEST_F(SerialVariantsTest, InitPrinterAndConnectSerialPrinterTakeTheNameAsItIs) {
    const NadrelChar *const names[] = {u"COM10:", u"", u"/dev/ttyUSB0", u"\\\\.\\COM11"};
    os.FailAlways("OpenPort", 2);
    for (const NadrelChar *name : names) {
        InitPrinter(name, 9600, 0);
        ConnectSerialPrinter(name, 9600, 0, 0);
    }
    EXPECT_THAT(os.CallsOf({"OpenPort"}),
                ElementsAre("OpenPort(\"COM10:\", 0x80)", "OpenPort(\"COM10:\", 0x40000080)",
                            "OpenPort(\"\", 0x80)", "OpenPort(\"\", 0x40000080)",
                            "OpenPort(\"/dev/ttyUSB0\", 0x80)", "OpenPort(\"/dev/ttyUSB0\", 0x40000080)",
                            "OpenPort(\"\\\\.\\COM11\", 0x80)", "OpenPort(\"\\\\.\\COM11\", 0x40000080)"));
}

TEST_F(SerialVariantsTest, ANullNameIsANameThatCannotBeOpened) {
    EXPECT_EQ(-2, ConnectSerialPrinter(nullptr, 9600, 0, 0));
    EXPECT_EQ(-2, ConnectSerialPrinterEx(nullptr, 9600, 8, 0, 0, 0, 0));
    EXPECT_THAT(os.CallsOf({"OpenPort"}),
                ElementsAre("OpenPort(null, 0x40000080)", "OpenPort(null, 0x40000080)"));
}

TEST_F(SerialVariantsTest, TheNewerFunctionsStoreFramedWithTheOpenFlag) {
    for (int32_t (*connect)(int32_t) : {Connect, ConnectEx}) {
        FramedMode = 0;
        os.OnCall(
            "SignalPort", [] { EXPECT_EQ(0, FramedMode); }, 2);
        os.OnCall("RegisterNotification", [] {
            EXPECT_EQ(9, FramedMode);
            EXPECT_EQ(1, SerialLinkOpen);
        });
        os.OnCall("Sleep", [] { FramedStatusSeen = 1; });
        EXPECT_EQ(1, connect(9));
        EXPECT_EQ(1, ClosePrinter());
        os.ForgetScript();
    }
}

TEST_F(SerialVariantsTest, TheNewerFunctionsKeepFramedAsItWasWhenTheyFail) {
    FramedMode = 1;
    for (int32_t (*connect)(int32_t) : {Connect, ConnectEx})
        for (const char *operation : {"OpenPort", "SetLineSettings", "SetPortTimeouts"}) {
            os.Reset();
            os.Fail(operation, 5);
            EXPECT_LT(connect(0), -1);
            EXPECT_EQ(1, FramedMode);
        }
    OpenWirelessLink();
    FramedMode = 1;
    EXPECT_EQ(-1, Connect(0));
    EXPECT_EQ(-1, ConnectEx(0));
    EXPECT_EQ(1, FramedMode);
    keptPorts = 1;
}

struct Retries {
    int32_t timeout;
    int attempts;

    friend void PrintTo(const Retries &retries, std::ostream *out) { *out << retries.timeout << " ms"; }
};

class SerialRetriesTest : public LibraryTest, public testing::WithParamInterface<Retries> {
  protected:
    Calls Expected() const {
        Calls calls = {"CreateTimedEvent()"};
        for (int i = 0; i < GetParam().attempts; ++i)
            calls = calls + Calls{"Wait(200)", "OpenPort(\"COM1\", 0x40000080)"};
        return calls + Calls{"CloseTimedEvent()"};
    }
};

INSTANTIATE_TEST_SUITE_P(Within, SerialRetriesTest,
                         testing::Values(Retries{0, 1}, Retries{199, 1}, Retries{200, 1}, Retries{399, 1},
                                         Retries{400, 2}, Retries{999, 4}, Retries{1000, 5}, Retries{-1, 1},
                                         Retries{INT32_MIN, 1}));

TEST_P(SerialRetriesTest, ConnectSerialPrinterWaits200BeforeEachAttempt) {
    os.FailAlways("OpenPort", kAccessDenied);
    EXPECT_EQ(-2, ConnectSerialPrinter(u"COM1", 9600, GetParam().timeout, 0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(Expected()));
    EXPECT_EQ(200u * static_cast<unsigned>(GetParam().attempts), os.Now());
}

TEST_P(SerialRetriesTest, ConnectSerialPrinterExWaits200BeforeEachAttempt) {
    os.FailAlways("OpenPort", kAccessDenied);
    EXPECT_EQ(-2, ConnectSerialPrinterEx("COM1", 9600, 8, 0, 0, GetParam().timeout, 0));
    EXPECT_THAT(os.Calls(), ElementsAreArray(Expected()));
}

TEST_F(SerialVariantsTest, StopsTryingWhenThePortIsOpen) {
    os.Fail("OpenPort", kAccessDenied, 1);
    os.Fail("OpenPort", kAccessDenied, 2);
    EXPECT_EQ(1, ConnectSerialPrinter(u"COM1", 9600, 2000, 0));
    EXPECT_EQ(3u, os.CountOf("OpenPort"));
    EXPECT_EQ(3u, os.CountOf("Wait"));
    EXPECT_EQ(600u, os.Now());
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(SerialVariantsTest, OpensAtTheLastAttempt) {
    for (int nth = 1; nth <= 4; ++nth)
        os.Fail("OpenPort", kAccessDenied, nth);
    EXPECT_EQ(1, ConnectSerialPrinterEx("COM1", 9600, 8, 0, 0, 1000, 0));
    EXPECT_EQ(1000u, os.Now());
}

TEST_F(SerialVariantsTest, KeepsTheReasonOfTheLastAttempt) {
    os.Fail("OpenPort", 2, 1);
    os.Fail("OpenPort", 5, 2);
    EXPECT_EQ(-2, ConnectSerialPrinter(u"COM1", 9600, 400, 0));
    EXPECT_EQ(5u, LastLinkError);
}

TEST_F(SerialVariantsTest, ExTakesOffAColonAndPutsADevicePrefixBeforeLongNames) {
    const struct {
        const char *given;
        const char *opened;
    } names[] = {
        {"COM1:", R"("COM1")"},
        {"COM1", R"("COM1")"},
        {"COM3:", R"("COM3")"},
        {"COM10:", R"("\\.\COM10")"},
        {"COM12", R"("\\.\COM12")"},
        {"ABCD", R"("ABCD")"},
        {"ABCDE", R"("\\.\ABCDE")"},
        {"ABCD:", R"("ABCD")"},
        {"ABCDE:", R"("\\.\ABCDE")"},
        {"COM1::", R"("\\.\COM1:")"},
        {"C:M1", R"("C:M1")"},
        {":", R"("")"},
        {"", R"("")"},
        {"/dev/ttyUSB0", R"("\\.\/dev/ttyUSB0")"},
        {"\\\\.\\COM12", R"("\\.\\\.\COM12")"},
        {"\x80", R"("\u20AC")"},
    };
    os.FailAlways("OpenPort", 2);
    for (const auto &name : names) {
        os.ForgetCalls();
        EXPECT_EQ(-2, ConnectSerialPrinterEx(name.given, 9600, 8, 0, 0, 0, 0));
        EXPECT_THAT(os.CallsOf({"OpenPort"}),
                    ElementsAre("OpenPort(" + std::string(name.opened) + ", 0x40000080)"));
    }
}

TEST_F(SerialVariantsTest, ExPassesTheLineSettingsThroughUnchecked) {
    EXPECT_EQ(1, ConnectSerialPrinterEx("COM1", 4000000000u, 99, 2, 4, 0, 0));
    EXPECT_THAT(os.CallsOf({"SetLineSettings"}),
                ElementsAre("SetLineSettings(3, baud=4000000000 size=99 parity=4 stop=2)"));
    EXPECT_EQ(1, ClosePrinter());
    EXPECT_EQ(1, ConnectSerialPrinterEx("COM1", 0, 5, 255, 200, 0, 0));
    EXPECT_THAT(os.CallsOf({"SetLineSettings"}).back(),
                testing::StrEq("SetLineSettings(4, baud=0 size=5 parity=200 stop=255)"));
}

TEST_F(SerialVariantsTest, ExGives0WithoutMemoryForTheName) {
    if (!allocation::CanFail())
        GTEST_SKIP();
    const std::string name(1000, 'x');
    allocation::FailNext(2000, 4096);
    FillSpool(5);
    EXPECT_EQ(0, ConnectSerialPrinterEx(name.c_str(), 9600, 8, 0, 0, 0, 0));
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(5, SpoolLength);
}

} // namespace
} // namespace nadrel
