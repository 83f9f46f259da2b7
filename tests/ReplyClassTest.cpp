#include "link/ReplyClass.h"
#include "tests/LibraryTest.h"

#include <array>

namespace nadrel {
namespace {

// How the parser is to take a reply, written as rows that are read from the top: the first that fits decides.
// A request of a row must be outstanding (1), must not (0), or does not matter (-1).
struct Row {
    int firstFrom;
    int firstTo;
    int secondTo; // the second byte is this or less; 255 for any
    int modelName;
    int status;
    int firmware;
    int printOut;
    int framed;
    ReplyClass reply;
};

constexpr Row kRows[] = {
    {0x00, 0x00, 255, -1, -1, -1, -1, -1, ReplyClass::padding},
    {0xC0, 0xC0, 255, -1, -1, -1, -1, -1, ReplyClass::frame},
    {0x1B, 0x1B, 3, -1, -1, -1, -1, 0, ReplyClass::cardData},
    {0x1B, 0x1B, 255, -1, -1, -1, -1, -1, ReplyClass::pair},
    {0x02, 0x02, 3, -1, -1, -1, -1, 0, ReplyClass::cardData},
    {0x02, 0x02, 255, -1, -1, -1, -1, -1, ReplyClass::pair},
    {0x01, 0xFF, 255, 1, -1, -1, -1, -1, ReplyClass::modelName},
    {0x01, 0xFF, 255, -1, 1, -1, -1, 0, ReplyClass::status},
    {0x01, 0xFF, 255, -1, -1, 1, -1, -1, ReplyClass::firmware},
    {0x01, 0xFF, 255, -1, -1, -1, 1, -1, ReplyClass::printOut},
    {0x30, 0x30, 255, -1, 0, -1, -1, -1, ReplyClass::printOut},
    {0x01, 0xFF, 255, -1, -1, -1, -1, -1, ReplyClass::unsolicited},
};

constexpr bool Fits(int wanted, bool is) {
    return wanted < 0 || (wanted == 1) == is;
}

constexpr bool Fits(const Row &row, int first, int second, const OutstandingRequests &requests) {
    return first >= row.firstFrom && first <= row.firstTo && second <= row.secondTo &&
           Fits(row.modelName, requests.modelName) && Fits(row.status, requests.status) &&
           Fits(row.firmware, requests.firmware) && Fits(row.printOut, requests.printOut) &&
           Fits(row.framed, requests.framed);
}

ReplyClass Expected(int first, int second, const OutstandingRequests &requests) {
    for (const Row &row : kRows)
        if (Fits(row, first, second, requests))
            return row.reply;
    ADD_FAILURE() << "no row for " << first;
    return ReplyClass::padding;
}

OutstandingRequests RequestsOf(int bits) {
    return {(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0, (bits & 16) != 0};
}

TEST(ReplyClassTest, AgreesWithTheTableForEveryByteAndEveryRequest) {
    for (int bits = 0; bits < 32; ++bits)
        for (int first = 0; first < 256; ++first)
            for (int second = 0; second < 256; ++second)
                ASSERT_EQ(Expected(first, second, RequestsOf(bits)),
                          ClassifyReply(static_cast<uint8_t>(first), static_cast<uint8_t>(second),
                                        RequestsOf(bits)))
                    << "bytes " << first << " " << second << ", requests " << bits;
}

TEST(ReplyClassTest, OnlyEscAndStxBeginAPair) {
    for (int first = 0; first < 256; ++first)
        EXPECT_EQ(first == 0x1B || first == 0x02, BeginsPair(static_cast<uint8_t>(first))) << first;
}

TEST(ReplyClassTest, AZeroIsPaddingWhateverIsOutstanding) {
    EXPECT_EQ(ReplyClass::padding, ClassifyReply(0x00, 0, RequestsOf(0)));
    EXPECT_EQ(ReplyClass::padding, ClassifyReply(0x00, 0, RequestsOf(31)));
}

TEST(ReplyClassTest, CardDataEndsWithASecondByteOf3) {
    EXPECT_EQ(ReplyClass::cardData, ClassifyReply(0x1B, 3, {}));
    EXPECT_EQ(ReplyClass::pair, ClassifyReply(0x1B, 4, {}));
    EXPECT_EQ(ReplyClass::cardData, ClassifyReply(0x02, 0, {}));
    EXPECT_EQ(ReplyClass::pair, ClassifyReply(0x02, 0xFF, {}));
}

TEST(ReplyClassTest, OnAFramedLinkThereIsNoCardData) {
    EXPECT_EQ(ReplyClass::pair, ClassifyReply(0x1B, 0, {.framed = true}));
    EXPECT_EQ(ReplyClass::pair, ClassifyReply(0x02, 3, {.framed = true}));
}

TEST(ReplyClassTest, RequestsDoNotClaimAPair) {
    EXPECT_EQ(ReplyClass::cardData, ClassifyReply(0x1B, 1, RequestsOf(15)));
    EXPECT_EQ(ReplyClass::pair, ClassifyReply(0x02, 9, RequestsOf(15)));
}

TEST(ReplyClassTest, TheFirstOutstandingRequestClaimsTheReply) {
    EXPECT_EQ(ReplyClass::modelName, ClassifyReply('A', 0, {true, true, true, true, false}));
    EXPECT_EQ(ReplyClass::status, ClassifyReply('A', 0, {false, true, true, true, false}));
    EXPECT_EQ(ReplyClass::firmware, ClassifyReply('A', 0, {false, false, true, true, false}));
    EXPECT_EQ(ReplyClass::printOut, ClassifyReply('A', 0, {false, false, false, true, false}));
    EXPECT_EQ(ReplyClass::unsolicited, ClassifyReply('A', 0, {}));
}

TEST(ReplyClassTest, OnAFramedLinkAStatusRequestClaimsNoPlainReply) {
    EXPECT_EQ(ReplyClass::unsolicited, ClassifyReply('A', 0, {.status = true, .framed = true}));
    EXPECT_EQ(ReplyClass::firmware,
              ClassifyReply('A', 0, {.status = true, .firmware = true, .framed = true}));
}

TEST(ReplyClassTest, ADigitZeroIsAPrintOutReportWhileNoStatusIsOutstanding) {
    EXPECT_EQ(ReplyClass::printOut, ClassifyReply('0', 0, {}));
    EXPECT_EQ(ReplyClass::printOut, ClassifyReply('0', 0, {.framed = true}));
    EXPECT_EQ(ReplyClass::unsolicited, ClassifyReply('0', 0, {.status = true, .framed = true}));
    EXPECT_EQ(ReplyClass::printOut,
              ClassifyReply('0', 0, {.status = true, .printOut = true, .framed = true}));
    EXPECT_EQ(ReplyClass::unsolicited, ClassifyReply('1', 0, {}));
}

} // namespace
} // namespace nadrel
