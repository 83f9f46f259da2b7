// The calls of rows.txt, made by a host that has loaded the library's file: what reaches the printer, byte by
// byte.

#include "tests/hosts/Rows.h"
#include "tests/hosts/CallingHost.h"

#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/RawPeer.h"

#include <regex>

namespace hosts {
namespace {

using namespace endtoend;

class EveryRow : public testing::TestWithParam<Link> {
  protected:
    EveryRow() : peer(GetParam().medium), host(folder.Path()) {}

    void Connect() {
        const std::string framed = GetParam().form == Form::framed ? "1" : "0";
        if (GetParam().medium == Medium::serial)
            host.Connect("InitPrinter(\"" + PortName(peer.SerialPath()) + "\", 115200, " + framed + ")");
        else
            host.Connect("InitWlanPrinter(\"127.0.0.1\", " + std::to_string(peer.TcpPort()) + ", 10000, " +
                         framed + ")");
        peer.Forget();
    }

    // Every row starts with an empty spool, in standard mode.
    void Run(const Row &row) {
        host.Ask("InitPrinterStatus()");
        host.Ask("ClearSpool()");
        for (const RowCall &call : row.calls) {
            const int32_t result = host.Call(InFolder(call.call));
            EXPECT_EQ(result, call.result.value_or(result)) << call.call;
        }
        if (row.isPrinted) {
            EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
        }
    }

    // Names of files are those in the test's folder; a Windows host sees it on its drive Z:.
    std::string InFolder(const std::string &call) const {
        static const std::regex mark(R"(\{folder\})");
        return std::regex_replace(call, mark, (IsOnWindows() ? "Z:" : "") + folder.Path().string());
    }

    TemporaryFolder folder;
    RawPeer peer;
    CallingHost host;
};

TEST_P(EveryRow, ReachesThePrinterAsWritten) {
    const std::vector<Row> rows = ReadRows(NADREL_ROWS_FILE, folder.Path());
    Connect();
    size_t count = 0;
    for (const Row &row : rows) {
        if (row.form != GetParam().form)
            continue;
        SCOPED_TRACE(NADREL_ROWS_FILE ":" + std::to_string(row.line));
        Run(row);
        ASSERT_EQ(peer.Await(row.bytes.size()), row.bytes);
        peer.Forget();
        ++count;
    }
    EXPECT_GT(count, 10U);
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

INSTANTIATE_TEST_SUITE_P(, EveryRow, testing::ValuesIn(kEveryLink), ParameterName<Link>);

} // namespace
} // namespace hosts
