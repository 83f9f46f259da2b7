#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"

using namespace endtoend;

namespace {

// The program's arguments, and those that name a link to the printer.
std::vector<std::string> Arguments(std::vector<std::string> words, Medium medium, const VirtualPrinter &at) {
    const bool isSerial = medium == Medium::serial;
    words.push_back(isSerial ? "serial" : "tcp");
    words.push_back(isSerial ? at.SerialPath() : std::to_string(at.TcpPort()));
    return words;
}

class HostProcess : public OnEveryMedium {
  protected:
    int RunHost(const std::string &action, std::vector<std::string> options = {}) {
        return Run(NADREL_HOST_PROGRAM, {action}, std::move(options));
    }
    int RunLoader(const std::string &action, std::vector<std::string> options = {}) {
        return Run(NADREL_LOADER_PROGRAM, {NADREL_LIBRARY, action}, std::move(options));
    }

  private:
    int Run(const std::string &program, std::vector<std::string> words, std::vector<std::string> options) {
        const VirtualPrinter &at = StartPrinter(std::move(options));
        Process host(program, Arguments(std::move(words), GetParam(), at), folder.Path() / "host");
        const int status = host.Wait();
        if (status != 0)
            std::cerr << host.Errors();
        return status;
    }
};
NADREL_ON_EVERY_MEDIUM(HostProcess);

} // namespace

TEST_P(HostProcess, EndsInOrderWithTheLinkOpen) {
    EXPECT_EQ(RunHost("leave", {"--flood"}), 0);
    EXPECT_TRUE(HasListed("\"leaving\""));
}

TEST_P(HostProcess, OutlivesAPrinterThatHangsUp) {
    EXPECT_EQ(RunHost("outlive", {"--hang-up-after", "1000"}), 0);
}

TEST_P(HostProcess, PrintsWithoutStandardStreams) {
    EXPECT_EQ(RunHost("print-without-streams"), 0);
    EXPECT_TRUE(HasListed("\"printed\""));
}

TEST_P(HostProcess, PrintsWithMoreThanAThousandFilesOpen) {
    EXPECT_EQ(RunHost("print-with-many-files"), 0);
    EXPECT_TRUE(HasListed("\"printed\""));
}

TEST_P(HostProcess, UnloadsTheLibraryWithTheLinkOpen) {
    EXPECT_EQ(RunLoader("open", {"--flood"}), 0);
}

TEST_P(HostProcess, LoadsAndUnloadsTheLibraryTenTimes) {
    EXPECT_EQ(RunLoader("closed"), 0);
}

namespace {

// A host that holds a link to a printer of its own.
class Holder {
  public:
    Holder(const std::filesystem::path &folder, Medium medium)
        : printer(NADREL_PRINTER_PROGRAM, folder),
          host(NADREL_HOST_PROGRAM, Arguments({"measure"}, medium, printer), folder / "host") {}

    bool AwaitConnection() {
        return Eventually([this] { return !host.Output().empty(); });
    }

    // Microseconds that the host used in two seconds.
    long Used() {
        EXPECT_EQ(host.Wait(), 0);
        return std::stol(host.Output().substr(host.Output().find('\n')));
    }

    VirtualPrinter printer;
    Process host;
};

class ProcessorTime : public EndToEnd {};

} // namespace

TEST_F(ProcessorTime, OfAnIdleAndOfADeadLinkIsUnderTwoPercentOfACore) {
    Holder idle[] = {{folder.Path() / "serial-idle", Medium::serial},
                     {folder.Path() / "tcp-idle", Medium::tcp}};
    Holder dead[] = {{folder.Path() / "serial-dead", Medium::serial},
                     {folder.Path() / "tcp-dead", Medium::tcp}};
    for (Holder *const group : {idle, dead})
        for (size_t i = 0; i < 2; ++i)
            ASSERT_TRUE(group[i].AwaitConnection());
    for (Holder &holder : dead)
        holder.printer.Kill();
    for (Holder *const group : {idle, dead})
        for (size_t i = 0; i < 2; ++i)
            group[i].host.Say("measure");
    constexpr long kLimit = 40'000 * kSlowdown;
    EXPECT_LT(idle[0].Used(), kLimit) << "serial, idle";
    EXPECT_LT(idle[1].Used(), kLimit) << "TCP, idle";
    EXPECT_LT(dead[0].Used(), kLimit) << "serial, dead";
    EXPECT_LT(dead[1].Used(), kLimit) << "TCP, dead";
}
