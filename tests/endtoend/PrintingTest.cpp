#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/PngPicture.h"
#include "tests/endtoend/RawPeer.h"

#include <algorithm>
#include <numeric>

using namespace endtoend;

namespace {

Bytes EveryByte() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

// Every byte in turn but those that a frame escapes.
Bytes PlainPattern(size_t count) {
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(i % 96 + ' ' - (i % 96 == 0x7D - ' '));
    return bytes;
}

int32_t Append(const Bytes &bytes) {
    return ControlCommand(bytes.data(), static_cast<int32_t>(bytes.size()));
}

Bytes operator+(Bytes left, const Bytes &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

uint8_t XorFrom(const Bytes &bytes, size_t first) {
    uint8_t check = 0;
    for (size_t i = first; i < bytes.size(); i += 2)
        check ^= bytes[i];
    return check;
}

class Printing : public OnEveryLink {};
NADREL_ON_EVERY_LINK(Printing);

// What comes to the other end, byte by byte.
class RawPrinting : public OnEveryLink {
  protected:
    Bytes Sent(size_t count) { return peer.Await(count); }

    RawPeer peer{GetParam().medium};
};
NADREL_ON_EVERY_LINK(RawPrinting);

class RawSpool : public RawPrinting {};
NADREL_IN_BOTH_FORMS(RawSpool);

class FramedPrinting : public OnEveryMedium {};
NADREL_ON_EVERY_MEDIUM(FramedPrinting);

} // namespace

TEST_P(Printing, PutsTextOnPaper) {
    ASSERT_TRUE(Open(GetParam()));
    SetTextAlignment(1);
    EXPECT_EQ(PrintLine("Thank you"), 1);
    EXPECT_TRUE(HasListed("1B 61 01"));
    EXPECT_TRUE(HasListed("text       \"Thank you\""));
    EXPECT_TRUE(HasListed("LF         print the line"));
    ASSERT_TRUE(Eventually([&] { return std::filesystem::exists(Printer().Picture()); }));
    const Picture paper = ReadPng(Printer().Picture());
    EXPECT_EQ(paper.width, 384);
    EXPECT_GT(BlackDots(paper), 200);
    EXPECT_EQ(TimedClose().result, 1);
}

TEST_P(Printing, KeepsWhatIsPrintedOneAfterTheOther) {
    ASSERT_TRUE(Open(GetParam()));
    for (int line = 1; line <= 20; ++line)
        EXPECT_EQ(PrintLine("line " + std::to_string(line) + "."), 1);
    EXPECT_TRUE(HasListed("LF         print the line", 20));
    for (int line = 1; line <= 20; ++line)
        EXPECT_EQ(Printer().Listed("\"line " + std::to_string(line) + ".\""), 1u) << line;
    EXPECT_EQ(Printer().Listed("unknown") + Printer().Listed("bad frame"), 0u);
}

TEST_P(RawPrinting, LeavesEveryByteAsItIs) {
    ASSERT_EQ(peer.Connect(GetParam().form), 1);
    ASSERT_EQ(Append(EveryByte()), 256);
    EXPECT_EQ(PrintSpool(1), 1);
    if (!IsFramed()) {
        EXPECT_EQ(Sent(256), EveryByte());
        return;
    }
    const Bytes all = EveryByte();
    const Bytes escaped = Bytes(all.begin(), all.begin() + 0x7D) + Bytes{0x7D, 0x5D} +
                          Bytes(all.begin() + 0x7E, all.begin() + 0xC0) + Bytes{0x7D, 0xE0, 0x7D, 0xE1} +
                          Bytes(all.begin() + 0xC2, all.end());
    EXPECT_EQ(Sent(270),
              (Bytes{0x00, 0xC0, 'D', '1', '0', '2', '5', '6'} + escaped + Bytes{0x00, 0x00, 0xC1}));
}

TEST_P(RawPrinting, SendsAFullSpool) {
    ASSERT_EQ(peer.Connect(GetParam().form), 1);
    if (!IsFramed()) {
        ASSERT_EQ(Append(PlainPattern(409600)), 409600);
        EXPECT_EQ(PrintSpool(1), 1);
        EXPECT_TRUE(Sent(409600) == PlainPattern(409600));
        return;
    }
    const Bytes payload = PlainPattern(409600 - 11);
    ASSERT_EQ(Append(payload), 409589);
    EXPECT_EQ(PrintSpool(1), 1);
    EXPECT_TRUE(Sent(409600) == (Bytes{0x00, 0xC0, 'D', '1', '4', '0', '9', '5'} + payload +
                                 Bytes{XorFrom(payload, 0), XorFrom(payload, 1), 0xC1}));
}

TEST_P(FramedPrinting, SendsNothingOfASpoolWhoseFrameWouldBeTooLong) {
    RawPeer peer(GetParam());
    ASSERT_EQ(peer.Connect(Form::framed), 1);
    ASSERT_EQ(Append(PlainPattern(409590)), 409590);
    EXPECT_EQ(PrintSpool(1), ERR_FRAME_LIMIT);
    EXPECT_EQ(ControlCommand(nullptr, 0), 0);
    const uint8_t more = 'x';
    EXPECT_EQ(ControlCommand(&more, 1), 409591);
    ClearSpool();
    EXPECT_EQ(PrintSpool(0), 1);
    EXPECT_EQ(peer.Await(11), (Bytes{0x00, 0xC0, 'D', '1', '0', '0', '0', '0', 0x00, 0x00, 0xC1}));
}

TEST_P(RawSpool, SendsTheSameTwiceWhereTheSpoolIsKept) {
    ASSERT_EQ(peer.Connect(GetParam().form), 1);
    InitPrinterStatus();
    EXPECT_EQ(PrintSpool(0), 1);
    EXPECT_EQ(PrintSpool(0), 1);
    const Bytes once = IsFramed()
                           ? Bytes{0x00, 0xC0, 'D', '1', '0', '0', '0', '2', 0x1B, 0x40, 0x1B, 0x40, 0xC1}
                           : Bytes{0x1B, 0x40};
    EXPECT_EQ(Sent(2 * once.size()), once + once);
}

TEST_P(RawSpool, SendsWhatWasAppendedSinceASpoolThatWasCleared) {
    ASSERT_EQ(peer.Connect(GetParam().form), 1);
    PrintLineFeed(3);
    EXPECT_EQ(PrintSpool(1), 1);
    PrintData();
    EXPECT_EQ(PrintSpool(1), 1);
    const Bytes plain{0x1B, 0x64, 0x03, 0x0A};
    const Bytes framed{0x00, 0xC0, 'D',  '1', '0', '0', '0', '3', 0x1B, 0x64, 0x03, 0x18, 0x64,
                       0xC1, 0x00, 0xC0, 'D', '1', '0', '0', '0', '1',  0x0A, 0x0A, 0x00, 0xC1};
    const Bytes &expected = IsFramed() ? framed : plain;
    EXPECT_EQ(Sent(expected.size()), expected);
}

TEST_P(RawSpool, ConvertsTextToTheCodePageThatIsSet) {
    ASSERT_EQ(peer.Connect(GetParam().form), 1);
    TextSaveSpool(u"\u20AC");
    ASSERT_EQ(SetAnsiCodePage(866), 1);
    TextSaveSpool(u"\u0416");
    EXPECT_EQ(PrintSpool(1), 1);
    const Bytes expected = IsFramed()
                               ? Bytes{0x00, 0xC0, 'D', '1', '0', '0', '0', '2', 0x80, 0x86, 0x80, 0x86, 0xC1}
                               : Bytes{0x80, 0x86};
    EXPECT_EQ(Sent(expected.size()), expected);
}
