#include "link/Frame.h"
#include "tests/LibraryTest.h"

#include <random>

namespace nadrel {
namespace {

using Payload = std::vector<uint8_t>;

// The frame of a payload with a check value of its own bytes, as the functions under test make it.
std::string Framed(const Payload &payload) {
    Payload padded = payload;
    padded.resize(payload.size() + 2);
    const CheckValue check = CheckPairs(padded.data(), static_cast<int32_t>(payload.size()) / 2 + 1);
    Payload frame(static_cast<size_t>(FramedLength(payload, check)) + 1, 0xEE);
    EncodeFrame(payload, check, frame.data());
    EXPECT_EQ(0xEE, frame.back()) << "written behind the frame";
    frame.pop_back();
    return HexOf(frame);
}

TEST(FrameTest, AnEmptyPayloadHasLengthAndCheckValueZero) {
    EXPECT_EQ("00 C0 44 31 30 30 30 30 00 00 C1", Framed({}));
}

TEST(FrameTest, OneByteEntersTheEvenCheckByte) {
    EXPECT_EQ("00 C0 44 31 30 30 30 31 41 41 00 C1", Framed({0x41}));
}

TEST(FrameTest, TwoBytesEnterOneCheckByteEach) {
    EXPECT_EQ("00 C0 44 31 30 30 30 32 1B 40 1B 40 C1", Framed({0x1B, 0x40}));
}

TEST(FrameTest, CheckBytesAreTheXorOfEvenAndOddPlaces) {
    EXPECT_EQ("00 C0 44 31 30 30 30 35 01 02 04 08 10 15 0A C1", Framed({0x01, 0x02, 0x04, 0x08, 0x10}));
}

TEST(FrameTest, ThreeBytesAreEscapedInPayloadAndCheckValue) {
    EXPECT_EQ("00 C0 44 31 30 30 30 32 7D E0 7D 5D 7D E0 7D 5D C1", Framed({0xC0, 0x7D}));
    EXPECT_EQ("00 C0 44 31 30 30 30 31 7D E1 7D E1 00 C1", Framed({0xC1}));
}

TEST(FrameTest, ACheckByteIsEscapedWhenThePayloadNeedsNone) {
    EXPECT_EQ("00 C0 44 31 30 30 30 33 80 00 40 7D E0 00 C1", Framed({0x80, 0x00, 0x40}));
    EXPECT_EQ("00 C0 44 31 30 30 30 34 00 7C 00 01 00 7D 5D C1", Framed({0x00, 0x7C, 0x00, 0x01}));
    EXPECT_EQ("00 C0 44 31 30 30 30 34 00 81 00 40 00 7D E1 C1", Framed({0x00, 0x81, 0x00, 0x40}));
}

TEST(FrameTest, EveryOtherByteGoesOutAsItIs) {
    for (int value = 0; value < 256; ++value) {
        if (value == 0xC0 || value == 0xC1 || value == 0x7D)
            continue;
        const std::string byte = HexOf({static_cast<uint8_t>(value)});
        EXPECT_EQ("00 C0 44 31 30 30 30 31 " + byte + " " + byte + " 00 C1",
                  Framed({static_cast<uint8_t>(value)}));
    }
}

TEST(FrameTest, TheLengthCountsTheBytesBeforeEscaping) {
    EXPECT_EQ("00 C0 44 31 30 30 30 34 7D E0 7D E0 7D E0 7D E0 00 00 C1", Framed({0xC0, 0xC0, 0xC0, 0xC0}));
}

TEST(FrameTest, TheLengthHasFourDigitsWithLeadingZeros) {
    const struct {
        size_t length;
        const char *digits;
    } lengths[] = {{9, "0009"},     {10, "0010"},    {99, "0099"},    {100, "0100"},
                   {999, "0999"},   {1000, "1000"},  {9999, "9999"},  {10000, "1000"},
                   {12345, "1234"}, {99999, "9999"}, {409589, "4095"}};
    for (const auto &one : lengths) {
        const Payload payload(one.length, 0x20);
        Payload frame(one.length + 11);
        EncodeFrame(payload, {}, frame.data());
        EXPECT_EQ(std::string("D1") + one.digits, std::string(frame.begin() + 2, frame.begin() + 8));
        EXPECT_EQ(0x20, frame[8]);
        EXPECT_EQ(0xC1, frame.back());
    }
}

TEST(FrameTest, TheLongestFrameHasTwiceThePayloadAndThirteenBytes) {
    EXPECT_EQ(2 * 100 + 13, FramedLength(Payload(100, 0xC0), {0xC1, 0x7D}));
    EXPECT_EQ(100 + 11, FramedLength(Payload(100, 0x20), {0x00, 0x00}));
    EXPECT_EQ(100 + 12, FramedLength(Payload(100, 0x20), {0x00, 0xC0}));
    EXPECT_EQ(100 + 12, FramedLength(Payload(100, 0x20), {0xC0, 0x00}));
}

TEST(FrameTest, OfNoPairsTheCheckValueIsZero) {
    EXPECT_EQ(0, CheckPairs(nullptr, 0).even);
    EXPECT_EQ(0, CheckPairs(nullptr, 0).odd);
}

TEST(FrameTest, TheQueryFrameIsFourBytes) {
    EXPECT_EQ("00 C0 51 C1", scripted::ToHex(kQueryFrame, sizeof kQueryFrame));
}

template <typename... Values>
std::string Request(Values... values) {
    const std::array<uint8_t, sizeof...(Values)> request = {static_cast<uint8_t>(values)...};
    const auto frame = FrameRequest(request);
    return scripted::ToHex(frame.data(), frame.size());
}

TEST(FrameTest, AFixedRequestIsFramedWithElevenBytesMore) {
    EXPECT_EQ("00 C0 44 31 30 30 30 31 04 04 00 C1", Request(0x04));
    EXPECT_EQ("00 C0 44 31 30 30 30 33 1B 59 FF E4 59 C1", Request(0x1B, 0x59, 0xFF));
    EXPECT_EQ("00 C0 44 31 30 30 30 34 04 1B 4D 44 49 5F C1", Request(0x04, 0x1B, 0x4D, 0x44));
}

// What the printer does, written from its side.
Payload Unframed(const Payload &frame, CheckValue &sent) {
    Payload bytes;
    for (size_t i = 8; i + 1 < frame.size(); ++i)
        bytes.push_back(frame[i] == 0x7D ? static_cast<uint8_t>(frame[++i] ^ 0x20) : frame[i]);
    sent = {bytes[bytes.size() - 2], bytes[bytes.size() - 1]};
    bytes.resize(bytes.size() - 2);
    return bytes;
}

TEST(FrameTest, WhatIsFramedCanBeReadBack) {
    std::mt19937 random(20240601);
    const uint8_t awkward[] = {0xC0, 0xC1, 0x7D, 0x5D, 0xE0, 0xE1, 0x00, 0x20};
    for (int round = 0; round < 500; ++round) {
        Payload payload(random() % 200);
        for (uint8_t &byte : payload)
            byte = random() % 2 == 0 ? awkward[random() % 8] : static_cast<uint8_t>(random() & 0xFF);
        CheckValue expected;
        for (size_t i = 0; i < payload.size(); ++i)
            (i % 2 == 0 ? expected.even : expected.odd) ^= payload[i];
        Payload frame(static_cast<size_t>(FramedLength(payload, expected)));
        EncodeFrame(payload, expected, frame.data());
        CheckValue sent;
        ASSERT_EQ(payload, Unframed(frame, sent)) << "round " << round;
        ASSERT_EQ(expected.even, sent.even) << "round " << round;
        ASSERT_EQ(expected.odd, sent.odd) << "round " << round;
        ASSERT_EQ(0, std::count(frame.begin() + 2, frame.end() - 1, uint8_t{0xC0})) << "round " << round;
        ASSERT_EQ(1, std::count(frame.begin(), frame.end(), uint8_t{0xC1})) << "round " << round;
    }
}

} // namespace
} // namespace nadrel
