#include "link/MySocket.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;

class MySocketTest : public LibraryTest {};

TEST_F(MySocketTest, ForwardsReceive) {
    MySocket socket;
    socket.Create(0, 1, 63, nullptr);
    os.PrinterSends({0x41, 0x00, 0x42});
    uint8_t bytes[8] = {};
    EXPECT_EQ(3, socket.Receive(bytes, 8, 0));
    EXPECT_THAT(os.CallsOf({"Receive"}), ElementsAre("Receive(3, 8)"));
    EXPECT_EQ(0x41, bytes[0]);
    EXPECT_EQ(0x42, bytes[2]);
}

TEST_F(MySocketTest, ForwardsOnConnect) {
    MySocket socket;
    socket.OnConnect(7);
    EXPECT_THAT(os.Calls(), ElementsAre("OnConnect(7)"));
}

TEST_F(MySocketTest, ClosesItsHandleWhenItIsDestroyed) {
    {
        MySocket socket;
        socket.Create(0, 1, 63, nullptr);
        EXPECT_EQ(1, os.OpenSockets());
    }
    EXPECT_EQ(0, os.OpenSockets());
}

} // namespace
} // namespace nadrel
