#include "Program.h"

#include <gtest/gtest.h>

namespace {

// What the program says of a command line that it does not take.
std::string Complaint(const std::vector<std::string> &arguments) {
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    constexpr char kHint[] = "\nRun with --help for more information.\n";
    EXPECT_TRUE(outcome.errors.ends_with(kHint)) << outcome.errors;
    return outcome.errors.substr(0, outcome.errors.find(kHint));
}

} // namespace

TEST(CommandLine, ShowsHelp) {
    for (const std::vector<std::string> &arguments : {std::vector<std::string>{"--help"},
                                                      {"run", "--help"},
                                                      {"picture", "--help"},
                                                      {"status", "--help"},
                                                      {"listen", "--help"}}) {
        const Outcome outcome = RunProgram(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.out.find("Usage: nadrel"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.errors, "");
    }
}

TEST(CommandLine, ShowsItsVersion) {
    const Outcome outcome = RunProgram({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "nadrel " NADREL_VERSION "\n");
}

TEST(CommandLine, ListsTheFunctions) {
    const Outcome outcome = RunProgram({"functions"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(
        outcome.out.find("\n  SetTextStyle(uint32 underline, uint32 bold, int32 width, int32 height, uint32 "
                         "reverse)\n"),
        std::string::npos);
    EXPECT_NE(outcome.out.find("\n  PrintSpool(int32 clear)\n"), std::string::npos);
    EXPECT_EQ(outcome.out.find("ClosePrinter"), std::string::npos);
}

TEST(CommandLine, NeedsASubcommandAndWhatThatNeeds) {
    EXPECT_EQ(Complaint({}), "A subcommand is required");
    EXPECT_EQ(Complaint({"run"}), "JOB is required");
    EXPECT_EQ(Complaint({"run", "a.job"}), "--serial or --tcp is required");
    EXPECT_EQ(Complaint({"picture"}), "FILE is required");
    EXPECT_EQ(Complaint({"picture", "a.png"}), "--serial or --tcp is required");
    EXPECT_EQ(Complaint({"status"}), "--serial or --tcp is required");
    EXPECT_EQ(Complaint({"listen"}), "--serial or --tcp is required");
}

TEST(CommandLine, TakesOneLinkOnly) {
    EXPECT_EQ(Complaint({"status", "--serial", "a", "--tcp", "b"}), "--serial excludes --tcp");
}

TEST(CommandLine, RefusesValuesOutOfRange) {
    EXPECT_EQ(Complaint({"status", "--serial", "a", "--baud", "0"}),
              "--baud: Value 0 not in range 1 to 4294967295");
    EXPECT_EQ(Complaint({"status", "--tcp", "a", "--timeout", "-1"}),
              "--timeout: Value -1 not in range 0 to 3600000");
    EXPECT_EQ(Complaint({"listen", "--tcp", "a", "--msr", "5"}), "--msr: Value 5 not in range 0 to 4");
    EXPECT_EQ(Complaint({"picture", "a.png", "--hex", "-", "--width", "0"}),
              "--width: Value 0 not in range 1 to 2016");
    EXPECT_EQ(Complaint({"picture", "a.png", "--hex", "-", "--width", "2017"}),
              "--width: Value 2017 not in range 1 to 2016");
    EXPECT_EQ(Complaint({"status", "--tcp", "a:70000"}),
              "--tcp: a:70000 is no address, expected HOST, HOST:PORT or [IPV6]:PORT");
    EXPECT_EQ(Complaint({"status", "--serial", "a\xFF"}), "--serial: is not UTF-8");
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(Complaint({"print"}), "A subcommand is required");
    EXPECT_EQ(Complaint({"functions", "--all"}), "The following argument was not expected: --all");
}
