#include "printer/Options.h"

#include <gtest/gtest.h>
#include <initializer_list>

using namespace printer;

namespace {

std::optional<int> Read(std::initializer_list<const char *> words, Options &options) {
    std::vector<const char *> line = {"nadrel-printer"};
    line.insert(line.end(), words);
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const auto status = ReadOptions(static_cast<int>(line.size()), line.data(), options);
    ::testing::internal::GetCapturedStdout();
    ::testing::internal::GetCapturedStderr();
    return status;
}

std::optional<int> StatusOf(std::initializer_list<const char *> words) {
    Options options;
    return Read(words, options);
}

} // namespace

TEST(PrinterOptions, ReadsLinksAndPaper) {
    Options options;
    EXPECT_EQ(Read({"--serial", "--link", "port", "--tcp", "9100", "--bind", "0.0.0.0", "--paper", "576",
                    "--output", "x.png", "--margin", "24", "--exit-when-idle", "500"},
                   options),
              std::nullopt);
    EXPECT_TRUE(options.serial);
    EXPECT_EQ(options.link, "port");
    EXPECT_EQ(options.tcpPort, 9100);
    EXPECT_EQ(options.bindAddress, "0.0.0.0");
    EXPECT_EQ(options.paperWidth, 576);
    EXPECT_EQ(options.output, "x.png");
    EXPECT_EQ(options.margin, 24);
    EXPECT_EQ(options.exitWhenIdle, std::chrono::milliseconds(500));
    EXPECT_EQ(options.listing, std::nullopt);
}

TEST(PrinterOptions, ReadsFaults) {
    Options options;
    EXPECT_EQ(Read({"--tcp",
                    "0",
                    "--silent",
                    "--reply-delay",
                    "300",
                    "--split-replies",
                    "--hang-up-after",
                    "10",
                    "--read-rate",
                    "100",
                    "--paper-out",
                    "50",
                    "--flip-frames",
                    "3",
                    "--flood",
                    "--swipe-after",
                    "7",
                    "--model",
                    "M 1",
                    "--firmware",
                    "F"},
                   options),
              std::nullopt);
    EXPECT_TRUE(options.faults.silent);
    EXPECT_EQ(options.faults.replyDelay, std::chrono::milliseconds(300));
    EXPECT_TRUE(options.faults.splitReplies);
    EXPECT_EQ(options.faults.hangUpAfter, 10U);
    EXPECT_EQ(options.faults.readRate, 100U);
    EXPECT_EQ(options.faults.paperOut, 50);
    EXPECT_EQ(options.faults.flipFrames, 3U);
    EXPECT_TRUE(options.faults.flood);
    EXPECT_EQ(options.swipeAfter, std::chrono::milliseconds(7));
    EXPECT_EQ(options.identity.model, "M 1");
    EXPECT_EQ(options.identity.firmware, "F");
}

TEST(PrinterOptions, HasNoFaultsUnlessAsked) {
    Options options;
    EXPECT_EQ(Read({"--serial"}, options), std::nullopt);
    EXPECT_FALSE(options.faults.silent || options.faults.splitReplies || options.faults.flood);
    EXPECT_EQ(options.faults.hangUpAfter + options.faults.readRate + options.faults.flipFrames, 0U);
    EXPECT_EQ(options.faults.paperOut, std::nullopt);
    EXPECT_EQ(options.exitWhenIdle, std::nullopt);
    EXPECT_EQ(options.tcpPort, std::nullopt);
    EXPECT_EQ(options.paperWidth, 384);
}

TEST(PrinterOptions, LetsTheValuesOfListingAndPaperOutAway) {
    Options options;
    EXPECT_EQ(Read({"--serial", "--listing", "--paper-out", "--output", "x.png"}, options), std::nullopt);
    EXPECT_EQ(options.listing, "");
    EXPECT_EQ(options.faults.paperOut, 0);
    EXPECT_EQ(options.output, "x.png");
    Options named;
    EXPECT_EQ(Read({"--serial", "--listing", "list.txt"}, named), std::nullopt);
    EXPECT_EQ(named.listing, "list.txt");
}

TEST(PrinterOptions, EndsWithStatus2ForAMistake) {
    EXPECT_EQ(StatusOf({}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--paper", "400"}), 2);
    EXPECT_EQ(StatusOf({"--tcp", "65536"}), 2);
    EXPECT_EQ(StatusOf({"--link", "port"}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--input", "file"}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--model", ""}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--model", "\xC0"}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--hang-up-after", "0"}), 2);
    EXPECT_EQ(StatusOf({"--serial", "--unknown"}), 2);
}

TEST(PrinterOptions, EndsWithStatus0AfterHelp) {
    EXPECT_EQ(StatusOf({"--help"}), 0);
}
