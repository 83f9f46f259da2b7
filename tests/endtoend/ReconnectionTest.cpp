#include "tests/endtoend/EndToEnd.h"

using namespace endtoend;

namespace {

class Reconnection : public EndToEnd {};

} // namespace

TEST_F(Reconnection, WorksFiftyTimesOnBothLinksInOneProcess) {
    StartPrinter();
    for (int round = 1; round <= 50; ++round) {
        for (const Medium medium : kEveryMedium) {
            ASSERT_EQ(Connect(Printer(), {medium, Form::plain}), 1) << "round " << round;
            EXPECT_EQ(PrintLine(NameOf(medium) + std::to_string(round) + "."), 1);
            EXPECT_EQ(ClosePrinter(), 1);
        }
    }
    EXPECT_TRUE(HasListed("LF         print the line", 100));
    for (const Medium medium : kEveryMedium)
        for (int round = 1; round <= 50; ++round)
            EXPECT_EQ(Printer().Listed("\"" + NameOf(medium) + std::to_string(round) + ".\""), 1u);
}
