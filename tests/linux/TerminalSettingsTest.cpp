#include "platform/linux/TerminalSettings.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using platform::FromTerminal;
using platform::IsTaken;
using platform::LineSettings;
using platform::ToTerminal;

constexpr uint8_t kOne = 0;
constexpr uint8_t kOneAndAHalf = 1;
constexpr uint8_t kTwo = 2;

LineSettings Plain(uint32_t baud = 115200, uint8_t bits = 8, uint8_t parity = 0, uint8_t stop = kOne) {
    LineSettings settings;
    settings.length = 28;
    settings.baudRate = baud;
    settings.binary = true;
    settings.parityCheck = true;
    settings.byteSize = bits;
    settings.parity = parity;
    settings.stopBits = stop;
    return settings;
}

// Every flag and character on, to see what is put off.
termios2 EverythingOn() {
    termios2 terminal;
    std::memset(&terminal, 0xFF, sizeof terminal);
    return terminal;
}

tcflag_t CharacterFlags(const LineSettings &settings) {
    termios2 terminal = EverythingOn();
    EXPECT_TRUE(ToTerminal(settings, terminal));
    return terminal.c_cflag & (CSIZE | PARENB | PARODD | CMSPAR | CSTOPB);
}

TEST(TerminalSettings, SizesHaveTheirFlags) {
    EXPECT_EQ(CharacterFlags(Plain(9600, 5)), CS5);
    EXPECT_EQ(CharacterFlags(Plain(9600, 6)), CS6);
    EXPECT_EQ(CharacterFlags(Plain(9600, 7)), CS7);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8)), CS8);
}

TEST(TerminalSettings, ParitiesHaveTheirFlags) {
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 0)), CS8);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 1)), CS8 | PARENB | PARODD);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 2)), CS8 | PARENB);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 3)), CS8 | PARENB | CMSPAR | PARODD);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 4)), CS8 | PARENB | CMSPAR);
}

TEST(TerminalSettings, MoreThanOneStopBitIsOneFlag) {
    EXPECT_EQ(CharacterFlags(Plain(9600, 5, 0, kOneAndAHalf)), CS5 | CSTOPB);
    EXPECT_EQ(CharacterFlags(Plain(9600, 6, 0, kTwo)), CS6 | CSTOPB);
    EXPECT_EQ(CharacterFlags(Plain(9600, 7, 0, kTwo)), CS7 | CSTOPB);
    EXPECT_EQ(CharacterFlags(Plain(9600, 8, 0, kTwo)), CS8 | CSTOPB);
}

TEST(TerminalSettings, EveryCombinationOfCharactersIsEitherTakenAndReadBackOrRefusedWithoutAChange) {
    for (int bits = 0; bits < 256; ++bits)
        for (int parity = 0; parity < 256; ++parity)
            for (int stop = 0; stop < 256; ++stop) {
                const LineSettings asked = Plain(9600, static_cast<uint8_t>(bits),
                                                 static_cast<uint8_t>(parity), static_cast<uint8_t>(stop));
                const bool stopFits = stop == kOne || stop == (bits == 5 ? kOneAndAHalf : kTwo);
                const bool possible = bits >= 5 && bits <= 8 && parity <= 4 && stopFits;
                termios2 terminal = EverythingOn();
                ASSERT_EQ(ToTerminal(asked, terminal), possible) << bits << ' ' << parity << ' ' << stop;
                if (possible) {
                    LineSettings expected = asked;
                    expected.parityCheck = false;
                    ASSERT_EQ(FromTerminal(terminal), expected) << bits << ' ' << parity << ' ' << stop;
                } else {
                    const termios2 untouched = EverythingOn();
                    ASSERT_EQ(std::memcmp(&terminal, &untouched, sizeof terminal), 0);
                }
            }
}

TEST(TerminalSettings, AnyRateIsAskedForByItsNumber) {
    for (const uint32_t rate : {1U, 50U, 9600U, 12345U, 115200U, 250000U, 4000000U, 4294967295U}) {
        termios2 terminal = EverythingOn();
        ASSERT_TRUE(ToTerminal(Plain(rate), terminal));
        EXPECT_EQ(terminal.c_ospeed, rate);
        EXPECT_EQ(terminal.c_ispeed, rate);
        EXPECT_EQ(terminal.c_cflag & CBAUD, static_cast<tcflag_t>(BOTHER));
        EXPECT_EQ((terminal.c_cflag >> IBSHIFT) & CBAUD, 0U) << "input has the rate of output";
    }
}

TEST(TerminalSettings, NoRateIsRefused) {
    termios2 terminal = EverythingOn();
    EXPECT_FALSE(ToTerminal(Plain(0), terminal));
}

TEST(TerminalSettings, TheLineIsRawWithoutFlowControlOrSpecialCharacters) {
    termios2 terminal = EverythingOn();
    ASSERT_TRUE(ToTerminal(Plain(), terminal));
    EXPECT_EQ(terminal.c_iflag, static_cast<tcflag_t>(IGNBRK));
    EXPECT_EQ(terminal.c_oflag, 0U);
    EXPECT_EQ(terminal.c_lflag, 0U);
    EXPECT_EQ(terminal.c_cflag & CRTSCTS, 0U);
    EXPECT_EQ(terminal.c_cflag & (CLOCAL | CREAD), static_cast<tcflag_t>(CLOCAL | CREAD));
    for (const cc_t character : terminal.c_cc)
        EXPECT_EQ(character, 0);
}

TEST(TerminalSettings, WhatTheySayNothingOfStays) {
    termios2 off = {};
    termios2 on = EverythingOn();
    ASSERT_TRUE(ToTerminal(Plain(), off));
    ASSERT_TRUE(ToTerminal(Plain(), on));
    EXPECT_EQ(off.c_cflag & HUPCL, 0U);
    EXPECT_EQ(on.c_cflag & HUPCL, static_cast<tcflag_t>(HUPCL));
    EXPECT_EQ(off.c_line, 0);
    EXPECT_EQ(on.c_line, 0xFF);
}

TEST(TerminalSettings, AnyFlowControlOrReplacementOfCharactersIsRefused) {
    const auto refused = [](auto change) {
        LineSettings settings = Plain();
        change(settings);
        termios2 terminal = EverythingOn();
        return !ToTerminal(settings, terminal);
    };
    EXPECT_FALSE(refused([](LineSettings &) {}));
    EXPECT_FALSE(refused([](LineSettings &settings) { settings.parityCheck = false; }));
    EXPECT_FALSE(refused([](LineSettings &settings) { settings.length = 0; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.binary = false; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.ctsFlow = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.dsrFlow = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.dtrControl = 2; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.rtsControl = 2; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.dsrSensitivity = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.xonXoffOut = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.xonXoffIn = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.errorCharacter = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.dropNull = true; }));
    EXPECT_TRUE(refused([](LineSettings &settings) { settings.abortOnError = true; }));
}

TEST(TerminalSettings, WhatAPortHasIsReadAsItIs) {
    termios2 terminal = {};
    terminal.c_cflag = CS7 | PARENB | CSTOPB | CRTSCTS;
    terminal.c_iflag = IXON | IXOFF | INPCK;
    terminal.c_ospeed = 19200;
    LineSettings expected = Plain(19200, 7, 2, kTwo);
    expected.ctsFlow = true;
    expected.xonXoffOut = true;
    expected.xonXoffIn = true;
    EXPECT_EQ(FromTerminal(terminal), expected);
}

TEST(TerminalSettings, ParityFlagsMeanNothingWhileParityIsOff) {
    termios2 terminal = {};
    terminal.c_cflag = CS8 | PARODD | CMSPAR;
    EXPECT_EQ(FromTerminal(terminal).parity, 0);
}

// What the driver makes of a request: everything, but for what `change` does.
template <typename Change>
bool TakenAfter(uint32_t rate, Change change) {
    termios2 asked = EverythingOn();
    EXPECT_TRUE(ToTerminal(Plain(rate, 8, 3, kTwo), asked));
    termios2 got = asked;
    change(got);
    return IsTaken(asked, got);
}

TEST(TerminalSettings, ADriverThatPutsSomethingElseInPlaceHasNotTakenThem) {
    EXPECT_TRUE(TakenAfter(9600, [](termios2 &) {}));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag &= ~static_cast<tcflag_t>(PARENB); }));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag &= ~static_cast<tcflag_t>(CMSPAR); }));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag &= ~static_cast<tcflag_t>(PARODD); }));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag &= ~static_cast<tcflag_t>(CSTOPB); }));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag ^= CS8 ^ CS7; }));
    EXPECT_FALSE(TakenAfter(9600, [](termios2 &got) { got.c_cflag |= CRTSCTS; }));
}

TEST(TerminalSettings, ARateIsTakenWithinThreePercent) {
    const auto taken = [](uint32_t asked, uint32_t got) {
        return TakenAfter(asked, [=](termios2 &terminal) { terminal.c_ospeed = got; });
    };
    EXPECT_TRUE(taken(10000, 10300));
    EXPECT_TRUE(taken(10000, 9700));
    EXPECT_FALSE(taken(10000, 10301));
    EXPECT_FALSE(taken(10000, 9699));
    EXPECT_FALSE(taken(10000, 0));
    EXPECT_FALSE(taken(4294967295, 115200));
    EXPECT_FALSE(taken(1, 4294967295));
}

} // namespace
