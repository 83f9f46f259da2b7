#include "tools/PortCapture.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

#include <vector>

using tool::Descriptor;
using Bytes = std::vector<uint8_t>;

namespace {

constexpr int kGenerousMs = 10000;

// The other side of the port, as a host opens it.
Descriptor OpenRaw(const std::string &path) {
    Descriptor port(open(path.c_str(), O_RDWR | O_NOCTTY));
    EXPECT_NE(port.Get(), -1) << path;
    termios settings{};
    EXPECT_EQ(tcgetattr(port.Get(), &settings), 0);
    cfmakeraw(&settings);
    EXPECT_EQ(tcsetattr(port.Get(), TCSANOW, &settings), 0);
    return port;
}

void Write(const Descriptor &port, const Bytes &bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t taken = write(port.Get(), bytes.data() + done, bytes.size() - done);
        ASSERT_GT(taken, 0);
        done += static_cast<size_t>(taken);
    }
}

Bytes ReadExactly(const Descriptor &port, size_t count) {
    Bytes bytes;
    while (bytes.size() < count) {
        pollfd wait{port.Get(), POLLIN, 0};
        uint8_t byte = 0;
        if (poll(&wait, 1, kGenerousMs) != 1 || read(port.Get(), &byte, 1) != 1)
            break;
        bytes.push_back(byte);
    }
    return bytes;
}

class PortCapture : public testing::Test {
  protected:
    Bytes taken;
    tool::PortCapture capture{
        [this](std::span<const uint8_t> bytes) { taken.insert(taken.end(), bytes.begin(), bytes.end()); }};
};

} // namespace

TEST_F(PortCapture, TakesEveryByteValueUnchanged) {
    Bytes all(256);
    for (size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<uint8_t>(i);
    { Write(OpenRaw(capture.Path()), all); }
    capture.Finish();
    EXPECT_EQ(taken, all);
}

TEST_F(PortCapture, TakesMoreThanTheSystemKeeps) {
    const Bytes many(1000000, 0x55);
    { Write(OpenRaw(capture.Path()), many); }
    capture.Finish();
    EXPECT_EQ(taken.size(), many.size());
}

TEST_F(PortCapture, EndsWhenNobodyOpenedIt) {
    capture.Finish();
    EXPECT_TRUE(taken.empty());
}

TEST_F(PortCapture, EndsWhenItsPortStaysOpen) {
    const Descriptor port = OpenRaw(capture.Path());
    Write(port, {1, 2, 3});
    capture.Finish();
    EXPECT_EQ(taken, (Bytes{1, 2, 3}));
}

TEST_F(PortCapture, AnswersTheQueryFrameWithAFramedStatus) {
    const Descriptor port = OpenRaw(capture.Path());
    Write(port, {0x00, 0xC0, 0x51, 0xC1});
    EXPECT_EQ(ReadExactly(port, 3), (Bytes{0xC0, 0x53, 0x00}));
}

TEST_F(PortCapture, AnswersTheQueryFrameThatComesInPieces) {
    const Descriptor port = OpenRaw(capture.Path());
    for (const uint8_t byte : Bytes{0x41, 0x00, 0xC0, 0x51, 0xC1})
        Write(port, {byte});
    EXPECT_EQ(ReadExactly(port, 3), (Bytes{0xC0, 0x53, 0x00}));
}

TEST_F(PortCapture, AnswersPlainStatusRequestsWithOneByte) {
    const Descriptor port = OpenRaw(capture.Path());
    Write(port, {0x1B, 0x76});
    EXPECT_EQ(ReadExactly(port, 1), Bytes{0x00});
    Write(port, {0x1B, 0x56});
    EXPECT_EQ(ReadExactly(port, 1), Bytes{0x00});
}
