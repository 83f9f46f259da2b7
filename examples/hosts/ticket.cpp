// Prints a ticket with a QR code and shows which model printed it.
//
//     ticket /dev/ttyUSB0        at 115200 baud
//     ticket 192.0.2.7 9100
#include <NadrelHost.h>
#include <NadrelPrinter.h>

#include <chrono>
#include <future>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

std::u16string Wide(const std::string &ascii) {
    return {ascii.begin(), ascii.end()};
}

// The one link that the library has, closed with its owner.
class Link {
  public:
    explicit Link(const std::string &port) {
        Require(ConnectSerialPrinter(Wide(port).c_str(), 115200, 2000, 0), port);
    }
    Link(const std::string &address, const std::string &port) {
        const auto number = static_cast<uint32_t>(std::stoul(port));
        Require(ConnectWirelessPrinter(Wide(address).c_str(), number, 5000, 0), address);
    }
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;
    ~Link() { ClosePrinter(); }

  private:
    static void Require(int32_t result, const std::string &where) {
        if (result != NADREL_SUCCESS)
            throw std::runtime_error(where + ": no connection: result " + std::to_string(result));
    }
};

// The printer's answer, which comes on a thread of the library's own.
class Answer {
  public:
    Answer() { SetNotificationHandler(Take, this); }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    ~Answer() { SetNotificationHandler(nullptr, nullptr); }

    std::string Wait() {
        if (arrival_.wait_for(std::chrono::seconds(5)) != std::future_status::ready)
            throw std::runtime_error("the printer does not answer");
        return arrival_.get();
    }

  private:
    // lParam is the address of length bytes, which are overwritten by the next reply.
    static void Take(uint32_t, uint32_t wParam, intptr_t lParam, void *answer) {
        const uint32_t kind = wParam >> 16;
        const uint32_t length = wParam & 0xFFFF;
        auto *self = static_cast<Answer *>(answer);
        if (kind == 'D' && !std::exchange(self->taken_, true))
            self->text_.set_value({reinterpret_cast<const char *>(lParam), length});
    }

    bool taken_ = false;
    std::promise<std::string> text_;
    std::future<std::string> arrival_ = text_.get_future();
};

void ComposeTicket() {
    InitPrinterStatus();
    SetTextAlignment(1);
    SetTextStyle(0, 1, 1, 1, 0);
    TextSaveSpool(u"Café Zürich");
    PrintData();
    SetTextStyle(0, 0, 0, 0, 0);
    QRCodeSaveSpool(0, 'M', 5, u"https://cafe.example/t/0007");
    PrintData();
    PrintLineFeed(3);
    CutPaper(0);
}

void PrintTicket(Answer &answer) {
    ComposeTicket();
    PrintSpool(1);
    GetPrinterModelName();
    std::cout << "printed by " << answer.Wait() << '\n';
}

} // namespace

int main(int count, char **words) try {
    if (count != 2 && count != 3)
        throw std::runtime_error("usage: " + std::string(words[0]) + " PORT | ADDRESS PORT");
    Answer answer;
    if (count == 2) {
        const Link link(words[1]);
        PrintTicket(answer);
    } else {
        const Link link(words[1], words[2]);
        PrintTicket(answer);
    }
} catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
}
