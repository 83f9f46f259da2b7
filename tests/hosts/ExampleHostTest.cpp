// The host program among the examples, on either system.

#include "tests/hosts/CallingHost.h"

#include "tests/endtoend/EndToEnd.h"

#include <gmock/gmock.h>

namespace hosts {
namespace {

using namespace endtoend;

class ExampleHost : public testing::TestWithParam<Medium> {
  protected:
    ExampleHost() : printer(NADREL_PRINTER_PROGRAM, folder.Path() / "printer") {}

    // Its exit status.
    int Run(const std::vector<std::string> &words) {
        const std::filesystem::path program =
            IsOnWindows() ? WindowsFolder() / "example_host.exe" : std::filesystem::path(NADREL_EXAMPLE_HOST);
        Process host = Start(program, words, folder.Path() / "host");
        const int status = host.Wait();
        output = host.Output();
        return status;
    }

    TemporaryFolder folder;
    VirtualPrinter printer;
    std::string output;
};

TEST_P(ExampleHost, PrintsALineAndShowsTheStatus) {
    const bool isSerial = GetParam() == Medium::serial;
    const std::vector<std::string> serial{PortName(printer.SerialPath(), "COM12")};
    const std::vector<std::string> tcp{"127.0.0.1", std::to_string(printer.TcpPort())};
    EXPECT_EQ(Run(isSerial ? serial : tcp), 0);
    EXPECT_THAT(output, testing::MatchesRegex("reply S: [0-9A-F][0-9A-F]\r?\n"));
    EXPECT_TRUE(printer.AwaitListed(IsOnWindows() ? "Printed from Windows" : "Printed from Linux"));
}

INSTANTIATE_TEST_SUITE_P(, ExampleHost, testing::ValuesIn(kEveryMedium), ParameterName<Medium>);

} // namespace
} // namespace hosts
