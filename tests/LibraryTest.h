#pragma once

#include "api/NadrelPrinter.h"
#include "link/MySocket.h"
#include "link/ReceiveRing.h"
#include "spool/State.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedPlatform.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// What the tests of the library have in common: every test begins with a library just loaded, on a system in
// which nothing has happened, and must give back what it took.
namespace nadrel {

using Calls = std::vector<std::string>;

inline Calls operator+(Calls calls, const Calls &more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

inline std::string HexOf(const std::vector<uint8_t> &bytes) {
    return scripted::ToHex(bytes.data(), bytes.size());
}

inline std::vector<uint8_t> BytesOf(const std::string &text) {
    return {text.begin(), text.end()};
}

// The spool's bytes up to its length; none when that is negative.
inline std::vector<uint8_t> SpoolBytes() {
    return {SpoolBuffer.At(0), SpoolBuffer.At(std::max(SpoolLength, 0))};
}

inline std::string SpoolHex() {
    return HexOf(SpoolBytes());
}

// The place of the first byte of the buffer, margins included, that is not zero; the end of the storage if
// all are.
inline int32_t FirstDirty(const SpoolStorage &buffer) {
    const uint8_t *const begin = buffer.At(SpoolStorage::kLowest);
    const uint8_t *const end = buffer.At(SpoolStorage::kEnd);
    const uint8_t *const dirty = std::find_if(begin, end, [](uint8_t byte) { return byte != 0; });
    return SpoolStorage::kLowest + static_cast<int32_t>(dirty - begin);
}

inline bool IsAllZero(const SpoolStorage &buffer) {
    return FirstDirty(buffer) == SpoolStorage::kEnd;
}

class LibraryTest : public testing::Test {
  protected:
    LibraryTest() { PutBack(); }

    ~LibraryTest() override {
        EXPECT_THAT(os.UnusedScript(), testing::IsEmpty()) << "scripted, and never happened";
        os.ForgetScript();
        allocation::Allow();
        ClosePrinter();
        EXPECT_EQ(0, os.LiveThreads()) << "threads not given back";
        EXPECT_EQ(0, os.OpenSockets()) << "sockets not closed";
        EXPECT_EQ(0, os.SocketSupport()) << "starts and stops of socket support differ";
        EXPECT_EQ(keptPorts, os.OpenPorts()) << "ports not closed";
        EXPECT_EQ(nullptr, WirelessSocket);
        PutBack();
    }

    // Opens a link and forgets the calls that it took. A framed one is answered at once.
    void OpenSerialLink(int32_t framed = 0) {
        AnswerProbe("WritePort", framed);
        ASSERT_EQ(1, InitPrinter(u"COM1", 9600, framed));
        os.ForgetCalls();
    }

    void OpenWirelessLink(int32_t framed = 0) {
        AnswerProbe("Send", framed);
        ASSERT_EQ(1, ConnectWirelessPrinter(u"printer", 9100, 200, framed));
        os.ForgetCalls();
    }

    // What was called but for the end of the timer event, which is no step of its own.
    Calls Steps() const {
        Calls steps = os.Calls();
        std::erase(steps, "CloseTimedEvent()");
        return steps;
    }

    // What went over the link, one line a write.
    std::vector<std::string> WrittenHex() const {
        std::vector<std::string> lines;
        for (const scripted::Bytes &bytes : os.Written())
            lines.push_back(HexOf(bytes));
        return lines;
    }

    // What the receive thread would put there.
    static void Queue(const std::vector<uint8_t> &bytes) {
        for (const uint8_t byte : bytes)
            ASSERT_EQ(1, ReceiveQueue->Put(byte));
    }

    static void FillSpool(int32_t length, uint8_t byte = 'x') {
        std::fill_n(SpoolBuffer.Write(0, length), length, byte);
        SpoolLength = length;
    }

    scripted::Platform &os = scripted::TheSystem();
    int keptPorts = 0; // open at the end because the library leaves them so

  private:
    void AnswerProbe(const char *operation, int32_t framed) {
        if (framed != 0)
            os.OnCall(operation, [] { FramedStatusSeen = 1; });
    }

    void PutBack() {
        ConversionBuffer = nullptr;
        delete ReceiveQueue;
        ReceiveQueue = nullptr;
        delete WirelessSocket.Exchange(nullptr);
        ResetLinkState();
        ResetCounters();
        FramedMode = 0;
        LastLinkError = 0;
        SendingCalls = 0;
        LinkClosing = 0;
        NotifyMessageId = 0;
        StatusCaptureByte = 0;
        ReceiveThreadObject = nullptr;
        ParserThreadObject = nullptr;
        std::fill(std::begin(ResponseBuffer), std::end(ResponseBuffer), uint8_t{0});
        std::fill(std::begin(CardDataBuffer), std::end(CardDataBuffer), uint8_t{0});
        os.Reset();
    }
};

} // namespace nadrel
