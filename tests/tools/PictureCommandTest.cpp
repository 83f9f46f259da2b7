#include "FakePrinter.h"
#include "PictureFiles.h"
#include "Program.h"

#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

const Bytes kBandsBegin{0x1D, 0x50, 0xB4, 0xB4, 0x1B, 0x33, 0x18};
const Bytes kBandsEnd{0x1B, 0x32};

// A line of one band of a picture 8 to 32 dots wide, all its other lines white.
Bytes FirstLineOnly(std::initializer_list<uint8_t> line) {
    Bytes band(96);
    std::copy(line.begin(), line.end(), band.begin());
    return band;
}

Bytes operator+(Bytes left, const Bytes &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class PictureCommand : public testing::Test {
  protected:
    std::string Write(const std::string &type, int width, int height, const ColourAt &colour) {
        const std::string file = folder.Path("a." + type);
        WritePicture(file, type, width, height, colour);
        return file;
    }

    // What would be sent.
    static Bytes Sent(const std::string &file, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"picture", file, "--hex", "-"});
        const Outcome outcome = RunProgram(options);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        std::istringstream hex(outcome.out);
        Bytes bytes;
        for (unsigned byte = 0; hex >> std::hex >> byte;)
            bytes.push_back(static_cast<uint8_t>(byte));
        return bytes;
    }

    TemporaryFolder folder;
};

// How often a sequence of bytes occurs.
int Count(const Bytes &bytes, const Bytes &sequence) {
    int count = 0;
    for (auto at = bytes.begin(); at != bytes.end(); ++at, ++count) {
        at = std::search(at, bytes.end(), sequence.begin(), sequence.end());
        if (at == bytes.end())
            break;
    }
    return count;
}

Colour FirstAndLastBlack(int x, int) {
    return x == 0 || x == 19 ? kBlackDot : kWhiteDot;
}

Colour Grey(int, int) {
    return {60, 60, 60};
}

// As good as random, so that its dots cannot be compressed.
Colour Noise(int x, int y) {
    const uint32_t number = (static_cast<uint32_t>(x) * 2654435761u ^ static_cast<uint32_t>(y)) * 2246822519u;
    return number >> 31 != 0 ? kBlackDot : kWhiteDot;
}

} // namespace

TEST_F(PictureCommand, SendsBandsOfDots) {
    const Bytes expected = kBandsBegin + Bytes{0x1B, 0x58, 0x34, 0x04, 0x01} +
                           FirstLineOnly({0x80, 0x00, 0x10, 0x00}) + Bytes{0x1B, 0x33, 0x01, 0x0A} +
                           kBandsEnd;
    EXPECT_EQ(Sent(Write("png", 20, 1, &FirstAndLastBlack)), expected);
    EXPECT_EQ(Sent(Write("bmp", 20, 1, &FirstAndLastBlack)), expected);
}

TEST_F(PictureCommand, SendsCompressedBands) {
    const Bytes expected{0x1D, 0x50, 0xB4, 0xB4, 0x1B, 0x58, 0x33, 0x04, 0x18,
                         0x84, 0x80, 0x00, 0x10, 0x00, 0x1B, 0x58, 0x32, 0x18};
    EXPECT_EQ(Sent(Write("png", 20, 1, &FirstAndLastBlack), {"--compressed"}), expected);
}

TEST_F(PictureCommand, ScalesToTheWidth) {
    const std::string file = Write("png", 20, 1, [](int, int) { return kBlackDot; });
    const Bytes sent = Sent(file, {"--width", "2016"});
    ASSERT_GT(sent.size(), 12u);
    EXPECT_EQ(Bytes(sent.begin() + 7, sent.begin() + 12), (Bytes{0x1B, 0x58, 0x34, 252, 24}));
    EXPECT_EQ(sent.size(), 7u + 4 * (5 + 252 * 24 + 1) + (5 + 252 * 24 + 4) + 2);
}

TEST_F(PictureCommand, SendsOverASerialLinkAndOverTcp) {
    const std::string file = Write("png", 20, 1, &FirstAndLastBlack);
    const Bytes expected = Sent(file);
    SerialPrinter serial;
    EXPECT_EQ(RunProgram({"picture", file, "--serial", serial.path}).status, 0);
    EXPECT_EQ(serial.Finish(), expected);
    TcpPrinter tcp;
    EXPECT_EQ(RunProgram({"picture", file, "--tcp", tcp.address}).status, 0);
    EXPECT_EQ(tcp.Finish(), expected);
}

TEST_F(PictureCommand, SendsNothingOfAFileThatIsNoPicture) {
    folder.Put("a.png", {'t', 'e', 'x', 't'});
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"picture", folder.Path("a.png"), "--serial", printer.path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              folder.Path("a.png") + ": is no picture that can be read, expected a PNG, JPEG or BMP file\n");
    EXPECT_EQ(printer.Finish(), Bytes{});
}

TEST_F(PictureCommand, SaysWhyAPortDoesNotOpen) {
    const std::string file = Write("png", 20, 1, &FirstAndLastBlack);
    const Outcome outcome = RunProgram({"picture", file, "--serial", "/dev/nowhere"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "/dev/nowhere: the serial port did not open in 5 attempts: No such file or directory\n");
}

// 252 bytes a line: the spool holds 67 bands of 6054 bytes and what stands around them.
TEST_F(PictureCommand, SendsInPiecesWhatIsLongerThanTheSpool) {
    const Bytes whole = Sent(Write("png", 2016, 67 * 24, &Grey), {"--width", "2016"});
    EXPECT_EQ(Count(whole, kBandsBegin), 1);
    const Bytes pieces = Sent(Write("png", 2016, 68 * 24, &Grey), {"--width", "2016"});
    EXPECT_EQ(Count(pieces, kBandsBegin), 2);
    EXPECT_EQ(pieces.size(), 68 * (5 + 252 * 24 + 1) + 2u * 9);
}

TEST_F(PictureCommand, EndsAPieceBehindALineOfBlackAndWhiteSoThatNoSeamShows) {
    const auto withBlankLine = [](int x, int y) { return y == 28 * 24 - 1 ? kWhiteDot : Grey(x, y); };
    const Bytes whole = Sent(Write("png", 2016, 60 * 24, withBlankLine), {"--width", "2016"});
    const Bytes pieces = Sent(Write("png", 2016, 70 * 24, withBlankLine), {"--width", "2016"});
    constexpr size_t kFirst = 28 * (5 + 252 * 24 + 1);
    ASSERT_EQ(Count(pieces, kBandsBegin), 3);
    const auto seam = pieces.begin() + 7 + kFirst;
    EXPECT_EQ(Bytes(seam, seam + 9), kBandsEnd + kBandsBegin);
    constexpr size_t kSecond = 20 * (5 + 252 * 24 + 1);
    EXPECT_TRUE(std::equal(pieces.begin(), seam, whole.begin()));
    EXPECT_TRUE(std::equal(seam + 9, seam + 9 + kSecond, whole.begin() + 7 + kFirst));
}

TEST_F(PictureCommand, PrintsPlainWhatIsTooLongEvenWhenCompressed) {
    const std::string file = Write("png", 2016, 70 * 24, &Noise);
    EXPECT_EQ(Sent(file, {"--width", "2016", "--compressed"}), Sent(file, {"--width", "2016"}));
}
