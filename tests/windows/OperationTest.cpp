#include "tests/windows/OnWindows.h"

namespace hosts {
namespace {

class Operation : public OnWindows {};

TEST_F(Operation, ThatStillGoesOnKeepsWhatItHas) {
    endtoend::Process program = Start(WindowsFolder() / "operations.exe", {}, folder.Path() / "operations");
    EXPECT_EQ(program.Wait(), 0);
    std::string output = program.Output();
    std::erase(output, '\r');
    EXPECT_EQ(output, "pending: yes\napart: yes\nfirst ends: yes\nused again: yes\n");
}

} // namespace
} // namespace hosts
