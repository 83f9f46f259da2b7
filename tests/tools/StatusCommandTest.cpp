#include "FakePrinter.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const Bytes kStatusRequest{0x1B, 0x76};
const Bytes kModelRequest{0x1B, 0x59, 0xFF};
const Bytes kFirmwareRequest{0x1B, 0x00, 0x01};
const Bytes kQueryFrame{0x00, 0xC0, 0x51, 0xC1};

Bytes Letters(const std::string &text) {
    return {text.begin(), text.end()};
}

Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const FakePrinter::Script kPlain{
    {kStatusRequest, {0x40}}, {kModelRequest, Letters("VP58")}, {kFirmwareRequest, Letters("1.02")}};

const FakePrinter::Script kFramed{{kQueryFrame, {0xC0, 'S', 0x40}},
                                  {kQueryFrame, {0xC0, 'S', 0x41}},
                                  {kModelRequest, Bytes{0xC0, 0x06, 0xC0, 'D'} + Letters("VP58")},
                                  {kFirmwareRequest, Bytes{0xC0, 0x06, 0xC0, 'D'} + Letters("1.02")}};

} // namespace

TEST(StatusCommand, ShowsWhatASerialPrinterAnswers) {
    SerialPrinter printer(kPlain);
    const Outcome outcome = RunProgram({"status", "--serial", printer.path});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    40\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
    const Bytes asked = printer.Finish();
    const Bytes expected = kStatusRequest + kModelRequest + kFirmwareRequest;
    ASSERT_GE(asked.size(), expected.size());
    EXPECT_TRUE(std::equal(expected.rbegin(), expected.rend(), asked.rbegin()));
}

TEST(StatusCommand, ShowsWhatANetworkPrinterAnswers) {
    TcpPrinter printer(kPlain);
    const Outcome outcome = RunProgram({"status", "--tcp", printer.address});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    40\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, ShowsWhatAFramedPrinterAnswers) {
    SerialPrinter printer(kFramed);
    const Outcome outcome = RunProgram({"status", "--serial", printer.path, "--framed"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    41\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, EndsWithStatusOneWhenThePrinterDoesNotAnswer) {
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"status", "--serial", printer.path, "--timeout", "400"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "answered  no\n");
    EXPECT_EQ(printer.Finish(), kStatusRequest + kStatusRequest);
}

TEST(StatusCommand, SaysWhatIsMissingOfTheAnswers) {
    SerialPrinter printer({{kStatusRequest, {0x00}}, {kFirmwareRequest, Letters("1.02")}});
    const Outcome outcome = RunProgram({"status", "--serial", printer.path});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    not told, as with a byte 00\n"
                           "model     no answer\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, AsksOnWhenTheFirstRequestIsNotAnswered) {
    SerialPrinter printer({{kStatusRequest + kStatusRequest, {0x40}},
                           {kModelRequest, Letters("VP58")},
                           {kFirmwareRequest, Letters("1.02")}});
    const Outcome outcome = RunProgram({"status", "--serial", printer.path});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    40\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, ShowsAStatusByteThatComesAsAnotherKind) {
    SerialPrinter printer({{kStatusRequest, {0x1B, 0x55}},
                           {kModelRequest, Letters("VP58")},
                           {kFirmwareRequest, Letters("1.02")}});
    const Outcome outcome = RunProgram({"status", "--serial", printer.path});
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    1B 55\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, ShowsTheOtherAnswersAfterAStatusByteThatIsNotTold) {
    SerialPrinter printer(
        {{kStatusRequest, {0x00}}, {kModelRequest, Letters("VP58")}, {kFirmwareRequest, Letters("1.02")}});
    const Outcome outcome = RunProgram({"status", "--serial", printer.path});
    EXPECT_EQ(outcome.out, "answered  yes\n"
                           "status    not told, as with a byte 00\n"
                           "model     VP58\n"
                           "firmware  1.02\n");
}

TEST(StatusCommand, EndsWithStatusOneWithoutALink) {
    const Outcome outcome = RunProgram({"status", "--serial", "/dev/nowhere"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors,
              "/dev/nowhere: the serial port did not open in 5 attempts: No such file or directory\n");
}
