#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"
#include "tests/endtoend/RawPeer.h"

using namespace endtoend;

namespace {

void ConnectAndClose(RawPeer &peer, int times) {
    for (int i = 0; i < times; ++i) {
        ASSERT_EQ(peer.Connect(Form::plain), 1) << "after " << i;
        PrintData();
        EXPECT_EQ(PrintSpool(1), 1);
        ASSERT_EQ(ClosePrinter(), 1) << "after " << i;
    }
}

class Leaks : public EndToEnd {};

} // namespace

TEST_F(Leaks, AreNoneOverAThousandSerialConnections) {
    RawPeer peer(Medium::serial);
    ConnectAndClose(peer, 20);
    const Resources used = UsedNow();
    const size_t allocated = AllocatedBytes();
    const size_t resident = ResidentBytes();
    ConnectAndClose(peer, 1000);
    EXPECT_EQ(UsedNow(), used);
    EXPECT_LE(AllocatedBytes(), allocated + 4096);
    if (!kSanitized) {
        EXPECT_LE(ResidentBytes(), resident + 1'000'000);
    }
}
