#include "tests/windows/OnWindows.h"

namespace hosts {
namespace {

using namespace endtoend;

using Lines = std::vector<std::string>;

class WindowMessages : public OnWindows {
  protected:
    WindowMessages() : peer(Medium::tcp), host(StartHost()) { host.Ask("listen"); }

    void Connect(bool framed) { host.Connect(Wlan(peer.TcpPort(), framed)); }

    RawPeer peer;
    CallingHost host;
};

TEST_F(WindowMessages, TellOfEveryKindOfPlainReply) {
    Connect(false);
    host.Ask("GetPrinterModelName()");
    peer.Send({'M', 0, '1'});
    host.Told(1);
    host.Ask("GetFirmwareVersion()");
    peer.Send({'v', '2'});
    host.Told(2);
    host.Ask("Set_PrintOutStatus(1)");
    peer.Send({'p'});
    host.Told(3);
    peer.Send({0x02, 0x00, 0x31, 0x00, 0x32});
    host.Told(4);
    peer.Send({0x1B, 0x04, 0x00, 0x35});
    EXPECT_EQ(host.Told(5), (Lines{"44 2 4D31", "44 2 7632", "54 1 70", "4E 5 0200310032", "44 4 1B040035"}));
}

// The status query takes so long that the card data are being awaited when the link is closed.
TEST_F(WindowMessages, TellNothingOfCardDataThatACloseCutsOff) {
    Connect(false);
    peer.Send({'0'});
    EXPECT_EQ(host.Told(1), Lines{"54 1 30"});
    peer.Send({0x02, 0x00, 0x31});
    host.Call("GetPrinterStatus(400)");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    RawPeer other(Medium::tcp);
    host.Connect(Wlan(other.TcpPort()));
    other.Send({'0'});
    EXPECT_EQ(host.Told(2), (Lines{"54 1 30", "54 1 30"}));
}

TEST_F(WindowMessages, TellOfAPlainStatus) {
    Connect(false);
    host.Ask("GetPrinterStatus(0)");
    peer.Send({0x40});
    EXPECT_EQ(host.Told(1), Lines{"53 1 40"});
}

TEST_F(WindowMessages, TellOfEveryKindOfFramedReply) {
    Connect(true);
    ASSERT_EQ(host.Told(1), Lines{"53 0 64"});
    size_t count = 1;
    for (const uint8_t type : Bytes{0x06, 0x15, 0x18, 0x03, 0x04}) {
        peer.Send({0xC0, type});
        host.Told(++count);
    }
    peer.Send({0xC0, 'D', 'a', 0, 'b'});
    EXPECT_EQ(host.Told(7),
              (Lines{"53 0 64", "06 0 0", "15 0 0", "18 0 0", "03 0 0", "04 0 0", "44 4 44610062"}));
}

// Their addresses mean nothing there, but a framed status is the status itself.
TEST_F(WindowMessages, ReachTheWindowsOfOtherPrograms) {
    std::filesystem::create_directory(folder.Path() / "other");
    CallingHost other(folder.Path() / "other");
    other.Ask("listen");
    Connect(true);
    EXPECT_EQ(host.Told(1), Lines{"53 0 64"});
    EXPECT_EQ(other.Told(1), Lines{"53 0 64"});
}

} // namespace
} // namespace hosts
