#include "tests/printer/Decoding.h"
#include "tests/printer/RunningPrinter.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

using namespace printer;
using namespace printer::testing;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

namespace {

const std::string ReportsOn = "\x1D\x76\x01", Status = "\x1B\x76", Query = "\x00\xC0\x51\xC1"s;

std::string InFrame(const std::string &payload) {
    const Bytes frame = Framed(BytesOf(payload));
    return {frame.begin(), frame.end()};
}

// A folder of the test's own, removed with it.
class Folder {
  public:
    Folder() : path_(::testing::TempDir() + "nadrel_printer_" + std::to_string(getpid())) {
        std::filesystem::create_directory(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string operator/(const std::string &name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

// The same for both kinds of link.
class PrinterLink : public ::testing::TestWithParam<const char *> {
  protected:
    static std::vector<std::string> LinkWith(std::vector<std::string> arguments) {
        if (GetParam() == "serial"s)
            arguments.push_back("--serial");
        else
            arguments.insert(arguments.end(), {"--tcp", "0"});
        return arguments;
    }
};

int MillisecondsSince(std::chrono::steady_clock::time_point start) {
    using std::chrono::milliseconds;
    return static_cast<int>(
        std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start).count());
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, PrinterLink, ::testing::Values("serial", "tcp"),
                         [](const auto &kind) { return std::string(kind.param); });

TEST(PrinterProgram, AnnouncesItsLinks) {
    RunningPrinter printer({"--serial", "--tcp", "0"});
    EXPECT_THAT(printer.NextLine(), MatchesRegex("serial /dev/pts/[0-9]+"));
    EXPECT_THAT(printer.NextLine(), MatchesRegex("tcp 127\\.0\\.0\\.1:[0-9]+"));
}

TEST_P(PrinterLink, AnswersInPlainAndInFramedForm) {
    RunningPrinter printer(LinkWith({}));
    const HostLink host(printer.NextLine());
    host.Send(Status);
    EXPECT_EQ(host.Receive(1), "\x40");
    host.Send(Query);
    EXPECT_EQ(host.Receive(3), "\xC0\x53\x40");
    host.Send("\x1B\x59\xFF");
    EXPECT_EQ(host.Receive(11), "NADREL-VP58");
    host.Send(InFrame("\x1B\x00\x01"s));
    EXPECT_EQ(host.Receive(10), "\xC0\x06\xC0\x44VP 1.0");
}

TEST_P(PrinterLink, LetsHostsComeAndGo) {
    RunningPrinter printer(LinkWith({}));
    const std::string name = printer.NextLine();
    for (int i = 0; i < 20; ++i) {
        const HostLink host(name);
        host.Send(Status);
        EXPECT_EQ(host.Receive(1), "\x40");
    }
}

TEST_P(PrinterLink, PassesEveryByteUnchanged) {
    RunningPrinter printer(LinkWith({"--listing"}));
    const HostLink host(printer.NextLine());
    for (int byte = 0; byte < 256; ++byte) {
        host.Send("\x1B\x33" + std::string(1, static_cast<char>(byte)));
        EXPECT_THAT(printer.NextLine(), HasSubstr("line spacing " + std::to_string(byte) + " dots"));
    }
    printer.Type("send 00 03 04 0A 0D 11 13 1A 7F FF");
    EXPECT_EQ(host.Receive(10), "\x00\x03\x04\x0A\x0D\x11\x13\x1A\x7F\xFF"s);
}

TEST_P(PrinterLink, WritesThePictureBeforeItReportsThePrintOut) {
    const Folder folder;
    RunningPrinter printer(LinkWith({"--output", folder / "receipt.png"}));
    const HostLink host(printer.NextLine());
    host.Send(ReportsOn);
    EXPECT_FALSE(std::filesystem::exists(folder / "receipt.png"));
    host.Send("Hello\x0A");
    EXPECT_EQ(host.Receive(2), "00");
    EXPECT_TRUE(std::filesystem::exists(folder / "receipt.png"));
    const auto first = std::filesystem::file_size(folder / "receipt.png");
    host.Send("And more\x0A");
    EXPECT_EQ(host.Receive(2), "00");
    EXPECT_NE(std::filesystem::file_size(folder / "receipt.png"), first);
}

TEST_P(PrinterLink, StaysSilentWhenAsked) {
    RunningPrinter printer(LinkWith({"--silent", "--listing"}));
    const HostLink host(printer.NextLine());
    host.Send(Status);
    EXPECT_THAT(printer.NextLine(), HasSubstr("printer status"));
    EXPECT_FALSE(host.HasBytes());
}

TEST_P(PrinterLink, DelaysReplies) {
    RunningPrinter printer(LinkWith({"--reply-delay", "300"}));
    const HostLink host(printer.NextLine());
    const auto start = std::chrono::steady_clock::now();
    host.Send(Status);
    EXPECT_EQ(host.Receive(1), "\x40");
    EXPECT_GE(MillisecondsSince(start), 300);
}

TEST_P(PrinterLink, SplitsReplies) {
    RunningPrinter printer(LinkWith({"--split-replies", "--model", "MODEL"}));
    const HostLink host(printer.NextLine());
    const auto start = std::chrono::steady_clock::now();
    host.Send("\x1B\x59\xFF");
    EXPECT_EQ(host.Receive(5), "MODEL");
    EXPECT_GE(MillisecondsSince(start), 4 * 20);
}

TEST_P(PrinterLink, HangsUpAfterSoManyBytesAndIsThereAgain) {
    RunningPrinter printer(LinkWith({"--hang-up-after", "6"}));
    const std::string name = printer.NextLine();
    const HostLink host(name);
    host.Send("Hello\x0ALost");
    EXPECT_TRUE(host.IsHungUp());
    const HostLink next(GetParam() == "serial"s ? printer.NextLine() : name);
    next.Send(Status);
    EXPECT_EQ(next.Receive(1), "\x40");
}

TEST_P(PrinterLink, ReadsSlowly) {
    RunningPrinter printer(LinkWith({"--read-rate", "500"}));
    const HostLink host(printer.NextLine());
    const auto start = std::chrono::steady_clock::now();
    host.Send(std::string(100, 'x') + Status);
    EXPECT_EQ(host.Receive(1), "\x40");
    EXPECT_GE(MillisecondsSince(start), 200);
}

TEST_P(PrinterLink, StopsReadingWithoutPaperAndGoesOnWithIt) {
    RunningPrinter printer(LinkWith({"--paper-out"}));
    const HostLink host(printer.NextLine());
    host.Send(ReportsOn + Status);
    EXPECT_EQ(host.Receive(1), "\x41");
    host.Send("Hello\x0A" + Status);
    EXPECT_EQ(host.Receive(2), "01");
    host.Send(Status);
    printer.Type("paper-in");
    EXPECT_EQ(host.Receive(2), "\x40\x40");
    EXPECT_EQ(host.Receive(2), "00");
}

TEST_P(PrinterLink, RunsOutOfPaperInTheMiddleOfAJob) {
    RunningPrinter printer(LinkWith({"--paper-out", "60"}));
    const HostLink host(printer.NextLine());
    host.Send(ReportsOn + Status +
              "1\x0A"
              "2\x0A" +
              Status + "3\x0A");
    EXPECT_EQ(host.Receive(4), "\x40\x41"
                               "01");
}

TEST_P(PrinterLink, RefusesEveryNthFrame) {
    RunningPrinter printer(LinkWith({"--flip-frames", "2"}));
    const HostLink host(printer.NextLine());
    for (const std::string expected : {"\xC0\x06", "\xC0\x15", "\xC0\x06", "\xC0\x15"}) {
        host.Send(InFrame("Hello\x0A"));
        EXPECT_EQ(host.Receive(2), expected);
    }
}

TEST_P(PrinterLink, FloodsTheHost) {
    RunningPrinter printer(LinkWith({"--flood"}));
    const HostLink host(printer.NextLine());
    EXPECT_EQ(host.Receive(200000), std::string(200000, '0'));
}

TEST_P(PrinterLink, SwipesACardOnDemand) {
    RunningPrinter printer(LinkWith({}));
    const HostLink host(printer.NextLine());
    host.Send("\x1B\x4D\x46" + Status);
    EXPECT_EQ(host.Receive(1), "\x40");
    printer.Type("swipe");
    EXPECT_EQ(host.Receive(42), "\x1B\x01\x02\x24\x00;5000000000000009=30121010000000000?\x00"s);
}

TEST_P(PrinterLink, SwipesACardAfterATime) {
    RunningPrinter printer(LinkWith({"--swipe-after", "100"}));
    const HostLink host(printer.NextLine());
    const auto start = std::chrono::steady_clock::now();
    host.Send("\x1B\x4D\x46");
    EXPECT_EQ(host.Receive(42).substr(0, 2), "\x1B\x01");
    EXPECT_GE(MillisecondsSince(start), 100);
}

TEST_P(PrinterLink, EndsWhenBytesHaveComeAndThenNone) {
    RunningPrinter printer(LinkWith({"--exit-when-idle", "50"}));
    const HostLink host(printer.NextLine());
    host.Send("Hello\x0A");
    EXPECT_EQ(printer.Wait(), 0);
}

TEST_P(PrinterLink, PrintsWhatWasSentBeforeTheSignalThatEndsIt) {
    const Folder folder;
    RunningPrinter printer(LinkWith({"--listing", folder / "list.txt"}));
    const HostLink host(printer.NextLine());
    for (int line = 0; line < 2000; ++line)
        host.Send("line " + std::to_string(line) + " of many\x0A");
    printer.Signal(SIGTERM);
    EXPECT_EQ(printer.Wait(), 0);
    std::ifstream listing(folder / "list.txt");
    const std::string text{std::istreambuf_iterator<char>(listing), {}};
    EXPECT_THAT(text, HasSubstr("line 1999 of many"));
}

TEST(PrinterProgram, SaysThatNoReaderWaitsForTheCard) {
    RunningPrinter printer({"--tcp", "0"});
    printer.NextLine();
    printer.Type("swipe");
    printer.Type("dance");
    printer.Type("send 123");
    printer.Type("quit");
    EXPECT_EQ(printer.Wait(), 0);
    EXPECT_EQ(printer.Errors(),
              "nadrel-printer: No reader waits for a card.\n"
              "nadrel-printer: The line \"dance\" means nothing; swipe, paper-out, paper-in, send "
              "and quit do.\n"
              "nadrel-printer: \"123\" is not a byte; two hexadecimal digits are expected.\n");
}

TEST(PrinterProgram, ServesTheNextTcpHostWhenTheOldOneIsGone) {
    RunningPrinter printer({"--tcp", "0"});
    const std::string name = printer.NextLine();
    HostLink first(name);
    first.Send(Status);
    EXPECT_EQ(first.Receive(1), "\x40");
    const HostLink second(name);
    second.Send(Status);
    first.Send(Status);
    EXPECT_EQ(first.Receive(1), "\x40");
    EXPECT_FALSE(second.HasBytes());
    first.Close();
    EXPECT_EQ(second.Receive(1), "\x40");
}

TEST(PrinterProgram, ListensOnAnAddressOfItsOwn) {
    RunningPrinter printer({"--tcp", "0", "--bind", "127.0.0.2"});
    const std::string name = printer.NextLine();
    EXPECT_THAT(name, StartsWith("tcp 127.0.0.2:"));
    const HostLink host(name);
    host.Send(Status);
    EXPECT_EQ(host.Receive(1), "\x40");
}

TEST(PrinterProgram, MakesALinkAndRemovesItAtItsEnd) {
    const Folder folder;
    const std::string link = folder / "printer";
    std::filesystem::create_symlink("/dev/null", link);
    RunningPrinter printer({"--serial", "--link", link, "--output", folder / "receipt.png"});
    const std::string name = printer.NextLine();
    EXPECT_EQ("serial " + std::filesystem::read_symlink(link).string(), name);
    const HostLink host("serial " + link);
    host.Send("Hello\x0A" + Status);
    EXPECT_EQ(host.Receive(1), "\x40");
    printer.Signal(SIGTERM);
    EXPECT_EQ(printer.Wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    EXPECT_TRUE(std::filesystem::exists(folder / "receipt.png"));
    EXPECT_EQ(printer.Errors(), "");
}

TEST(PrinterProgram, LeavesAFileAloneThatHasTheNameOfTheLink) {
    const Folder folder;
    std::ofstream(folder / "file") << "text";
    RunningPrinter printer({"--serial", "--link", folder / "file"});
    EXPECT_EQ(printer.Wait(), 1);
    EXPECT_THAT(printer.Errors(), HasSubstr("cannot be made: something that is no link has this name."));
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "file"));
}

TEST(PrinterProgram, EndsOnInterrupt) {
    RunningPrinter printer({"--serial"});
    printer.NextLine();
    printer.Signal(SIGINT);
    EXPECT_EQ(printer.Wait(), 0);
}

TEST(PrinterProgram, RemovesThePictureOfAnEarlierRun) {
    const Folder folder;
    std::ofstream(folder / "receipt.png") << "old";
    RunningPrinter printer({"--serial", "--output", folder / "receipt.png"});
    printer.NextLine();
    EXPECT_FALSE(std::filesystem::exists(folder / "receipt.png"));
}

TEST(PrinterProgram, SaysAtOnceThatThePictureCannotBeWritten) {
    RunningPrinter printer({"--serial", "--output", "/nonexistent/receipt.png"});
    EXPECT_EQ(printer.Wait(), 1);
    EXPECT_EQ(printer.Errors(),
              "nadrel-printer: The picture /nonexistent/receipt.png cannot be written: its folder does not "
              "exist or is closed to you.\n");
}

TEST(PrinterProgram, DecodesAFileOfCapturedBytes) {
    const Folder folder;
    std::ofstream(folder / "job.bin", std::ios::binary) << "Hello\x0A" + InFrame("\x1D\x56\x01");
    RunningPrinter printer(
        {"--input", folder / "job.bin", "--output", folder / "job.png", "--listing", folder / "job.txt"});
    EXPECT_EQ(printer.Wait(), 0);
    std::ifstream listing(folder / "job.txt");
    const std::string text{std::istreambuf_iterator<char>(listing), {}};
    EXPECT_EQ(
        text,
        "00000000  48 65 6C 6C 6F                                   text       \"Hello\"\n"
        "00000005  0A                                               LF         print the line\n"
        "00000006  00 C0 44 31 30 30 30 33                          frame      3 bytes, check value 1C 56\n"
        "0000000E  1D 56 01                                         GS V       cut the paper, partial\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "job.png"));
}

TEST(PrinterProgram, SaysThatTheFileCannotBeOpened) {
    RunningPrinter printer({"--input", "/nonexistent.bin"});
    EXPECT_EQ(printer.Wait(), 1);
    EXPECT_EQ(printer.Errors(), "nadrel-printer: The file /nonexistent.bin cannot be opened for reading.\n");
}

TEST(PrinterProgram, SaysThatThePortIsTaken) {
    RunningPrinter first({"--tcp", "0"});
    const std::string name = first.NextLine();
    RunningPrinter second({"--tcp", name.substr(name.rfind(':') + 1)});
    EXPECT_EQ(second.Wait(), 1);
    EXPECT_THAT(second.Errors(), HasSubstr("Nobody can listen on 127.0.0.1, port"));
}
