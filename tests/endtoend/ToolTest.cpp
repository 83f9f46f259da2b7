#include "tests/endtoend/EndToEnd.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

using namespace endtoend;

namespace {

class Tool : public OnEveryMedium {
  protected:
    // The tool with these words and those that name the link to the test's printer.
    Process OnLink(std::vector<std::string> words) {
        const bool isSerial = GetParam() == Medium::serial;
        words.push_back(isSerial ? "--serial" : "--tcp");
        words.push_back(isSerial ? Printer().SerialPath()
                                 : "127.0.0.1:" + std::to_string(Printer().TcpPort()));
        return Process(NADREL_TOOL_PROGRAM, words, folder.Path() / "tool");
    }

    std::string JobFile(const std::string &text) {
        const std::filesystem::path path = folder.Path() / "a.job";
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }
};
NADREL_ON_EVERY_MEDIUM(Tool);

class FramedTool : public Tool {};
INSTANTIATE_TEST_SUITE_P(, FramedTool, testing::Values(Medium::tcp), ParameterName<Medium>);

// Some megabytes: more than the system keeps on the way to a printer.
std::string LargeJob() {
    std::string job;
    for (int i = 0; i < 100; ++i)
        job += "ControlCommand(\"" + std::string(4000, 'x') + "\", 4000)\n";
    for (int i = 0; i < 50; ++i)
        job += "PrintSpool(0)\n";
    return job;
}

} // namespace

TEST_P(Tool, RunsAJob) {
    StartPrinter();
    Process tool =
        OnLink({"run", JobFile("SetTextAlignment(1)\nTextSaveSpool(\"Café crème\")\nPrintData()\n")});
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_EQ(tool.Output() + tool.Errors(), "");
    EXPECT_TRUE(HasListed("\"Café crème\""));
    EXPECT_TRUE(HasListed("LF"));
}

TEST_P(FramedTool, RunsAJob) {
    StartPrinter();
    Process tool = OnLink({"run", "--framed", JobFile("TextSaveSpool(\"framed\")\nPrintData()\n")});
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_TRUE(HasListed("00 C0 44 31 30 30 30 37"));
    EXPECT_TRUE(HasListed("\"framed\""));
}

TEST_P(Tool, TellsTheStatusOfAPrinterThatAnswers) {
    StartPrinter();
    Process tool = OnLink({"status"});
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_EQ(tool.Output(), "answered  yes\n"
                             "status    40\n"
                             "model     NADREL-VP58\n"
                             "firmware  VP 1.0\n");
}

TEST_P(FramedTool, TellsTheStatus) {
    StartPrinter({"--paper-out"});
    Process tool = OnLink({"status", "--framed"});
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_EQ(tool.Output(), "answered  yes\n"
                             "status    41\n"
                             "model     NADREL-VP58\n"
                             "firmware  VP 1.0\n");
}

TEST_P(Tool, SaysThatASilentPrinterDoesNotAnswer) {
    StartPrinter({"--silent"});
    Process tool = OnLink({"status", "--timeout", "400"});
    EXPECT_EQ(tool.Wait(), 1);
    EXPECT_EQ(tool.Output(), "answered  no\n");
    EXPECT_TRUE(HasListed("ESC v", 2));
}

TEST_P(Tool, ListensForASwipeUntilItIsInterrupted) {
    StartPrinter();
    Process tool = OnLink({"listen", "--msr", "1"});
    ASSERT_TRUE(HasListed("enter card reader mode 'D'"));
    Printer().Say("swipe");
    ASSERT_TRUE(Eventually([&] { return tool.Output().ends_with("\n"); }));
    EXPECT_THAT(tool.Output(),
                testing::MatchesRegex(
                    "[0-9:]{8}\\.[0-9]{3}  N    98    \"\\.\\.\\.\\$\\.;5000000000000009=30121010000000000\\?"
                    "\\.5\\.;015000000000000009=7247240000000000000030300099010=\\?\\.\""
                    "  1B 02 02 24 00 3B [0-9A-F ]* 3F 00\n"));
    tool.Signal(SIGINT);
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_TRUE(HasListed("cancel card reading"));
}

TEST_P(Tool, SendsNothingOfAJobThatIsWrong) {
    StartPrinter();
    const std::string job = JobFile("PrintData()\nPrintSpool(1)\nTextSaveSpol(\"a\")\n");
    Process tool = OnLink({"run", job});
    EXPECT_EQ(tool.Wait(), 2);
    EXPECT_TRUE(tool.Errors().starts_with(job + ":3: unknown function TextSaveSpol")) << tool.Errors();
    EXPECT_EQ(Printer().Listing(), "");
}

TEST_P(Tool, SaysThatNotEveryByteOfAJobWasSent) {
    StartPrinter({"--hang-up-after", "5000"});
    const std::string job = JobFile(LargeJob());
    Process tool = OnLink({"run", job});
    EXPECT_EQ(tool.Wait(), 1);
    EXPECT_THAT(tool.Errors(),
                testing::MatchesRegex("[^ ]+: only [0-9]+ of 20000000 bytes were sent: [A-Z][a-z/ ]+\n"));
}

TEST_P(Tool, WritesWhatItWouldSendInHexadecimal) {
    StartPrinter();
    const std::string hex = (folder.Path() / "a.hex").string();
    Process tool =
        OnLink({"run", "--hex", hex, JobFile("SetTextAlignment(1)\nTextSaveSpool(\"é\")\nPrintData()\n")});
    EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
    EXPECT_EQ(ContentsOf(hex), "1B 61 01 E9 0A\n");
    EXPECT_EQ(Printer().Listing(), "");
}
