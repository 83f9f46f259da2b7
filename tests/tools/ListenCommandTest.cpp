#include "FakePrinter.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <algorithm>
#include <sstream>

namespace {

const Bytes kEnterTrackOne{0x1B, 0x4D, 0x44};

// The output with every line's time, its first 12 characters, left out.
std::string WithoutTimes(const std::string &output) {
    std::istringstream in(output);
    std::string rest;
    for (std::string line; std::getline(in, line);)
        rest += line.substr(std::min(line.size(), size_t{12})) + '\n';
    return rest;
}

} // namespace

TEST(ListenCommand, PrintsWhatThePrinterSaysUntilItIsTerminated) {
    SerialPrinter printer({{kEnterTrackOne, {'0', 'k'}}});
    Program program({"listen", "--serial", printer.path, "--msr", "1"});
    program.AwaitOutput("\n");
    program.Signal(SIGTERM);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(WithoutTimes(outcome.out), "  T    2     \"0k\"  30 6B\n");
    EXPECT_EQ(outcome.errors, "listening on " + printer.path + "\n");
}

TEST(ListenCommand, SwitchesTheStripeReaderOnAndOff) {
    TcpPrinter printer({{kEnterTrackOne, {0x1B, 0x01, ';', '5', '?', 0x00}}});
    Program program({"listen", "--tcp", printer.address, "--msr", "1"});
    program.AwaitOutput("\n");
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(WithoutTimes(outcome.out), "  N    6     \"..;5?.\"  1B 01 3B 35 3F 00\n");
    EXPECT_EQ(printer.Finish(), (Bytes{0x1B, 0x4D, 0x44, 0x04}));
}

TEST(ListenCommand, SendsNothingUnlessAskedTo) {
    SerialPrinter printer;
    Program program({"listen", "--serial", printer.path});
    program.AwaitErrors("listening");
    program.Signal(SIGHUP);
    EXPECT_EQ(program.Finish().status, 0);
    EXPECT_EQ(printer.Finish(), Bytes{});
}

TEST(ListenCommand, NamesFramedRepliesAndShowsAFramedStatus) {
    SerialPrinter printer(
        {{kEnterTrackOne, {0xC0, 0x06, 0xC0, 0x15, 0xC0, 0x18, 0xC0, 'S', 0x40, 0xC0, 'D', 'a', 'b'}}});
    Program program({"listen", "--serial", printer.path, "--msr", "1"});
    program.AwaitOutput("ab");
    program.Signal(SIGTERM);
    EXPECT_EQ(WithoutTimes(program.Finish().out), "  ACK  0   \n"
                                                  "  NAK  0   \n"
                                                  "  CAN  0   \n"
                                                  "  S    0     status 40\n"
                                                  "  D    3     \"Dab\"  44 61 62\n");
}

TEST(ListenCommand, EndsCleanlyWhenNobodyReadsItsOutput) {
    SerialPrinter printer({{kEnterTrackOne, {'0'}}});
    Program program({"listen", "--serial", printer.path, "--msr", "1"});
    program.CloseOutput();
    EXPECT_EQ(program.Finish().status, 0);
    EXPECT_EQ(printer.Finish(), (Bytes{0x1B, 0x4D, 0x44, 0x04}));
}
