#include "fuzz/Library.h"

#include <cstring>

// What a printer sends, in pieces and with pauses, against the library's receive and parser threads.

namespace {

using namespace fuzz;

constexpr uint8_t kKinds[] = {'D', 'S', 'T', 'N', 0x06, 0x15, 0x18, 0x03, 0x04};
constexpr size_t kMostSent = 3000;
constexpr uint64_t kSlice = 5000; // milliseconds, more than the slowest reply takes

constexpr uint64_t kBehindAll = 256; // milliseconds, more than a piece is sent later

class Replies {
  public:
    explicit Replies(Input &bytes) : input(bytes) {
        const uint8_t link = input.Byte();
        framed = (link & 2) != 0;
        library.AnswerProbes();
        if ((link & 1) != 0)
            Require(InitWlanPrinter(u"printer", 9100, 0, framed) == 1, "the link does not open");
        else
            Require(InitPrinter(u"COM1", 9600, framed) == 1, "the link does not open");
        library.System().ForgetScript();
    }

    void Run() {
        while (!input.IsUsedUp())
            Step();
        library.RunThreads(kSlice);
        for (size_t slice = 0; slice < sent && nadrel::ReceiveQueue->Count() != 0; ++slice)
            library.RunThreads(kSlice);
        Require(nadrel::Counters.bytesReceived == sent, "bytes were lost on the way in");
        Require(nadrel::ReceiveQueue->Count() == 0, "something stays in the queue");
        for (const scripted::Notification &notification : library.System().Notifications())
            Check(notification);
    }

  private:
    void Step() {
        switch (const uint8_t choice = input.Byte(); choice % 16) {
        case 0:
            Ask(choice / 16);
            break;
        case 1:
            library.RunThreads(input.Byte() * 20U);
            break;
        case 2:
            Send(Bytes(size_t{16} * input.Byte(), input.Byte()), 0);
            break;
        case 3:
            Send(input.ShortBytes(), input.Byte());
            break;
        default:
            Send(input.Take(choice / 16), 0);
            break;
        }
    }

    void Ask(int request) {
        switch (request) {
        case 0:
            return GetPrinterModelName();
        case 1:
            return GetFirmwareVersion();
        case 2:
            Set_PrintOutStatus(input.Byte() % 2);
            break;
        case 3:
            GetPrinterStatusEX(input.Byte() * 4);
            break;
        case 15:
            HangUp();
            break;
        default:
            GetPrinterStatus(input.Byte() * 4);
            break;
        }
    }

    void Send(const Bytes &bytes, uint64_t later) {
        if (hungUp || bytes.empty() || sent + bytes.size() > kMostSent)
            return;
        library.System().PrinterSends(bytes, later);
        sent += bytes.size();
    }

    // Behind what was sent. Nothing comes after it.
    void HangUp() {
        library.System().PrinterHangsUp(kBehindAll);
        hungUp = true;
    }

    static bool IsAddress(const scripted::Notification &notification) { return notification.lParam > 255; }

    void Check(const scripted::Notification &notification) const {
        const uint32_t kind = notification.Kind();
        Require(std::find(std::begin(kKinds), std::end(kKinds), kind) != std::end(kKinds),
                "a kind of no reply");
        Require(notification.Length() <= (kind == 'N' ? 2048U : 1024U), "a reply is too long");
        if (kind == 'D' || kind == 'T' || kind == 'N')
            Require(IsAddress(notification) && notification.Length() > 0, "a reply has no bytes");
        if (kind == 'S' && framed)
            Require(!IsAddress(notification), "a status has the wrong form");
        if (kind == 'N')
            Require(!framed && notification.bytes[0] != 0, "card data on a framed link");
        if (kind < 32)
            Require(notification.lParam == 0, "an acknowledgement has a value");
        if (kind == 'T')
            Require(std::find(notification.bytes.begin(), notification.bytes.end(), 0) ==
                        notification.bytes.end(),
                    "a text reply holds a zero");
    }

    Input &input;
    Library library;
    bool framed = false;
    bool hungUp = false;
    size_t sent = 0;
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    Input input({bytes, count});
    Replies(input).Run();
    return 0;
}
