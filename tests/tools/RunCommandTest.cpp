#include "FakePrinter.h"
#include "Program.h"
#include "Support.h"

#include "tests/TemporaryFolder.h"
#include "tests/image/BmpBuilder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

constexpr char kSmallJob[] = "SetTextAlignment(1)\nTextSaveSpool(\"Café\")\nPrintData()\n";
const Bytes kSmallJobBytes{0x1B, 0x61, 0x01, 0x43, 0x61, 0x66, 0xE9, 0x0A};

const Bytes kFramedStatus{0xC0, 0x53, 0x40};
const Bytes kQueryFrame{0x00, 0xC0, 0x51, 0xC1};

std::string HexOf(const std::string &job, std::vector<std::string> options = {}) {
    const TemporaryFile file(job);
    options.insert(options.begin(), {"run", file.path, "--hex", "-"});
    const Outcome outcome = RunProgram(options);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    return outcome.out;
}

// One line without the query frames at its beginning: how many there are depends on how soon the answer
// comes.
std::string WithoutQueries(std::string hex) {
    constexpr std::string_view kQuery = "00 C0 51 C1 ";
    std::replace(hex.begin(), hex.end(), '\n', ' ');
    EXPECT_TRUE(hex.starts_with(kQuery)) << hex;
    while (hex.starts_with(kQuery))
        hex.erase(0, kQuery.size());
    return hex;
}

std::string ContentsOf(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

TEST(RunCommand, WritesWhatWouldBeSentInHexadecimal) {
    EXPECT_EQ(HexOf(kSmallJob), "1B 61 01 43 61 66 E9 0A\n");
}

TEST(RunCommand, WritesTheFramedFormInHexadecimal) {
    const std::string hex = WithoutQueries(HexOf(kSmallJob, {"--framed"}));
    EXPECT_EQ(hex, "00 C0 44 31 30 30 30 38 1B 61 01 43 61 66 E9 0A 92 4E C1 ");
}

TEST(RunCommand, WritesNothingForAJobThatSendsNothing) {
    EXPECT_EQ(HexOf("# nothing\n"), "");
}

TEST(RunCommand, WritesHexadecimalToAFile) {
    const TemporaryFile job(kSmallJob);
    const std::string hex = job.path + ".hex";
    const Outcome outcome = RunProgram({"run", job.path, "--hex", hex});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(ContentsOf(hex), "1B 61 01 43 61 66 E9 0A\n");
    std::remove(hex.c_str());
}

TEST(RunCommand, AnswersStatusRequestsWhileItWritesHexadecimal) {
    const std::string plain = HexOf("GetPrinterStatus(10000)\nPrintData()");
    EXPECT_TRUE(plain.starts_with("1B 76 ") && plain.ends_with(" 76 0A\n")) << plain;
    const std::string extended = HexOf("GetPrinterStatusEX(10000)\nPrintData()");
    EXPECT_TRUE(extended.starts_with("1B 56 ") && extended.ends_with(" 56 0A\n")) << extended;
}

TEST(RunCommand, KeepsEveryByteOfALongJob) {
    std::string job;
    for (int i = 0; i < 100; ++i)
        job += "ControlCommand(\"" + std::string(2000, 'A') + "\", 2000)\n";
    const std::string hex = HexOf(job);
    EXPECT_EQ(hex.size(), 600000u);
    EXPECT_EQ(hex.find_first_not_of("41 \n"), std::string::npos);
}

TEST(RunCommand, TouchesNoLinkForHexadecimal) {
    EXPECT_EQ(HexOf(kSmallJob, {"--serial", "/dev/nowhere"}), "1B 61 01 43 61 66 E9 0A\n");
}

TEST(RunCommand, SaysWhyItCannotWriteHexadecimal) {
    const TemporaryFile job(kSmallJob);
    const Outcome outcome = RunProgram({"run", job.path, "--hex", "/nowhere/a.hex"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "/nowhere/a.hex: cannot be written: No such file or directory\n");
}

TEST(RunCommand, SaysThatTheDiskIsFull) {
    const TemporaryFile job(kSmallJob);
    const Outcome outcome = RunProgram({"run", job.path, "--hex", "/dev/full"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "/dev/full: cannot be written: No space left on device\n");
}

TEST(RunCommand, SendsAJobOverASerialLink) {
    const TemporaryFile job(kSmallJob);
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path, "--baud", "9600"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out + outcome.errors, "");
    EXPECT_EQ(printer.Finish(), kSmallJobBytes);
}

TEST(RunCommand, SendsAJobInTheFramedFormToAPrinterThatAnswers) {
    const TemporaryFile job(kSmallJob);
    SerialPrinter printer({{kQueryFrame, kFramedStatus}});
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path, "--framed"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const Bytes sent = printer.Finish();
    const Bytes frame{0x00, 0xC0, 0x44, 0x31, 0x30, 0x30, 0x30, 0x38, 0x1B, 0x61,
                      0x01, 0x43, 0x61, 0x66, 0xE9, 0x0A, 0x92, 0x4E, 0xC1};
    ASSERT_GE(sent.size(), kQueryFrame.size() + frame.size());
    EXPECT_TRUE(std::equal(kQueryFrame.begin(), kQueryFrame.end(), sent.begin()));
    EXPECT_TRUE(std::equal(frame.rbegin(), frame.rend(), sent.rbegin()));
}

TEST(RunCommand, SendsAJobOverTcp) {
    const TemporaryFile job(kSmallJob);
    TcpPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--tcp", printer.address});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(printer.Finish(), kSmallJobBytes);
}

TEST(RunCommand, SendsAJobOverTcpWithAnIpv6Address) {
    const TemporaryFile job(kSmallJob);
    TcpPrinter printer({}, TcpPrinter::Ip::v6);
    const Outcome outcome = RunProgram({"run", job.path, "--tcp", printer.address});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(printer.Finish(), kSmallJobBytes);
}

TEST(RunCommand, PrintsOnceWhereTheJobPrintsItself) {
    EXPECT_EQ(HexOf("PrintData()\nPrintSpool(0)\nPrintSpool(1)"), "0A 0A\n");
    EXPECT_EQ(HexOf("PrintData()\nPrintSpool(0)\nPrintLineFeed(1)"), "0A 0A 1B 64 01\n");
}

TEST(RunCommand, LetsAJobChooseTheCodePage) {
    EXPECT_EQ(HexOf("SetAnsiCodePage(866)\nSetCharCodeTable(17, 2)\nTextSaveSpool(\"Да\")"),
              "1B 74 11 84 A0\n");
}

TEST(RunCommand, SendsNothingOfAJobThatIsWrong) {
    const TemporaryFile job("PrintData()\nPrintSpool(1)\nTextSaveSpol(\"a\")\nPrintDotFeed(x)\n");
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, job.path +
                                  ":3: unknown function TextSaveSpol, expected a name that \"nadrel "
                                  "functions\" lists; did you mean "
                                  "TextSaveSpool?\n" +
                                  job.path +
                                  ":4: \"x\" is not a number, expected a number, a character such as 'M' or "
                                  "a string in double quotes\n");
    EXPECT_EQ(printer.Finish(), Bytes{});
}

TEST(RunCommand, ChecksTheJobBeforeItOpensALink) {
    const TemporaryFile job("?");
    const Outcome outcome = RunProgram({"run", job.path, "--serial", "/dev/nowhere"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, job.path + ":1: unexpected \"?\", expected the name of a function\n");
}

TEST(RunCommand, EndsWithStatusTwoForAJobThatIsNotThere) {
    const Outcome outcome = RunProgram({"run", "/nowhere/a.job", "--hex", "-"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              "/nowhere/a.job: cannot be read (No such file or directory), expected a job file\n");
}

TEST(RunCommand, StopsAtACallThatFailsAndDoesNotSendTheSpool) {
    const TemporaryFile job("PrintData()\nSaveSpool(\"" + std::string(9993, 'A') +
                            "\", 0, 0)\nPrintData()\n");
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              job.path + ":2: SaveSpool(...) answered -12: the spool has no room for the text, which "
                         "would take it past 9999 bytes\n");
    EXPECT_EQ(printer.Finish(), Bytes{});
}

TEST(RunCommand, TellsResultsThatAreLengthsFromSuccess) {
    const TemporaryFile job("SetTermialID(\"1234567\")");
    const Outcome outcome = RunProgram({"run", job.path, "--hex", "-"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              job.path + ":1: SetTermialID(...) answered 7: the identifier has that many characters, "
                         "it must have 8, and nothing was sent\n");
}

TEST(RunCommand, PrintsPicturesFromTheFolderOfTheJob) {
    const TemporaryFolder folder;
    folder.Put("logo.bmp", nadrel::BmpBuilder::OneBit(8, 1, [](int, int) { return 0; }).Bytes());
    std::ofstream(folder.Path("a.job")) << "CompressedBmpSaveSpool(\"logo.bmp\")";
    const Outcome outcome = RunProgram({"run", folder.Path("a.job"), "--hex", "-"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.out, "1D 50 B4 B4 1B 58 33 04 18 81 FF 83 00 00 00 1B\n58 32 18\n");
}

TEST(RunCommand, SendsNothingOfAJobWhosePictureIsNotThere) {
    const TemporaryFile job("PrintData()\nPrintSpool(1)\nBmpSaveSpool(\"none.bmp\", 0, 0)\n");
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, job.path + ":3: " + testing::TempDir() +
                                  "none.bmp cannot be read (No such file or directory), expected a bitmap "
                                  "file (BMP) of 1 or 24 bits a pixel\n");
    EXPECT_EQ(printer.Finish(), Bytes{});
}

TEST(RunCommand, StopsAtAPictureThatTheSpoolHasNoRoomFor) {
    const TemporaryFolder folder;
    folder.Put("large.bmp", nadrel::BmpBuilder::OneBit(2016, 40 * 24, [](int x, int y) {
                                return (x * y >> 3) % 2; // cannot be compressed to half
                            }).Bytes());
    for (const std::string name : {"NormalBmpSaveSpool", "CompressedBmpSaveSpool"}) {
        const std::string line = name + "(\"large.bmp\")\n";
        std::ofstream(folder.Path("a.job")) << line << "NormalBmpSaveSpool(\"large.bmp\")\n" << line;
        const Outcome outcome = RunProgram({"run", folder.Path("a.job"), "--hex", "-"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.errors.find("BmpSaveSpool(...) appended nothing: the spool has no room for the "
                                      "picture\n"),
                  std::string::npos)
            << outcome.errors;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(RunCommand, SaysThatThePrinterDoesNotAnswer) {
    const TemporaryFile job("GetPrinterStatus(200)");
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              job.path + ":1: GetPrinterStatus(...) answered -7: the printer did not answer in time\n");
}

TEST(RunCommand, SaysWhyAPortDoesNotOpen) {
    const TemporaryFile job(kSmallJob);
    const Outcome nowhere = RunProgram({"run", job.path, "--serial", "/dev/nowhere"});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.errors,
              "/dev/nowhere: the serial port did not open in 5 attempts: No such file or directory\n");
    const Outcome file = RunProgram({"run", job.path, "--serial", job.path});
    EXPECT_EQ(file.status, 1);
    EXPECT_EQ(file.errors,
              job.path + ": the serial port did not open in 5 attempts: it is not a serial port\n");
}

TEST(RunCommand, SaysWhyThereIsNoConnection) {
    const TemporaryFile job(kSmallJob);
    std::string address;
    { address = TcpPrinter().address; }
    const Outcome outcome = RunProgram({"run", job.path, "--tcp", address});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, address + ": no connection to port " + address.substr(address.find(':') + 1) +
                                  " within 5 s: Connection refused\n");
}

TEST(RunCommand, SaysThatNothingAnswersInTheFramedForm) {
    const TemporaryFile job(kSmallJob);
    SerialPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--serial", printer.path, "--framed"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, printer.path +
                                  ": no answer to 4 query frames in 1.6 s; is a printer there that speaks "
                                  "the framed form?\n");
    EXPECT_EQ(printer.Finish().size(), 16u);
}

TEST(RunCommand, TakesEveryExample) {
    int examples = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NADREL_EXAMPLES_FOLDER)) {
        if (entry.path().extension() != ".job")
            continue;
        const Outcome outcome = RunProgram({"run", entry.path(), "--hex", "-"});
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_GT(outcome.out.size(), 100u) << entry.path();
        ++examples;
    }
    EXPECT_GT(examples, 0);
}
