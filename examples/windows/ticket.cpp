// Prints a ticket with a QR code on Windows and shows which model printed it.
//
//     ticket COM3              at 115200 baud
//     ticket 192.0.2.7 9100
#define WIN32_LEAN_AND_MEAN 1 // windows.h without its own ClosePrinter

#include <NadrelPrinter.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <windows.h>

namespace {

constexpr UINT kPatience = 10000; // milliseconds

std::wstring Wide(const std::string &ascii) {
    return {ascii.begin(), ascii.end()};
}

// The one link that the library has, closed with its owner.
class Link {
  public:
    explicit Link(const std::string &port) {
        Require(ConnectSerialPrinterEx(port.c_str(), 115200, 8, 0, 0, 2000, 0), port);
    }
    Link(const std::string &address, const std::string &port) {
        const auto number = static_cast<uint32_t>(std::strtoul(port.c_str(), nullptr, 10));
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

// The printer's answer comes as a message to every top-level window; this one is not shown.
class Answer {
  public:
    Answer() {
        if (window_ == nullptr)
            throw std::runtime_error("the window for the printer's answer could not be made");
    }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    ~Answer() { DestroyWindow(window_); }

    std::string Wait() {
        SetTimer(window_, 1, kPatience, nullptr);
        for (MSG message = {}; GetMessageW(&message, window_, 0, 0) > 0; DispatchMessageW(&message)) {
            if (message.message == WM_TIMER)
                break;
            if (message.message == number_ && message.wParam >> 16 == 'D')
                return TextOf(message);
        }
        throw std::runtime_error("the printer does not answer");
    }

  private:
    // lParam is the address of length bytes, which are overwritten by the next reply.
    static std::string TextOf(const MSG &message) {
        return {reinterpret_cast<const char *>(message.lParam), message.wParam & 0xFFFF};
    }

    const UINT number_ = RegisterWindowMessageW(L"NADREL_PRT_OK");
    const HWND window_ =
        CreateWindowExW(0, L"STATIC", L"Ticket", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
};

void ComposeTicket() {
    InitPrinterStatus();
    SetTextAlignment(1);
    SetTextStyle(0, 1, 1, 1, 0);
    TextSaveSpool(L"Caf\u00E9 Z\u00FCrich");
    PrintData();
    SetTextStyle(0, 0, 0, 0, 0);
    QRCodeSaveSpool(0, 'M', 5, L"https://cafe.example/t/0007");
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
    if (count != 2 && count != 3) {
        std::cerr << "usage: " << words[0] << " PORT | ADDRESS PORT\n";
        return 2;
    }
    Answer answer;
    if (count == 2) {
        const Link link(words[1]);
        PrintTicket(answer);
    } else {
        const Link link(words[1], words[2]);
        PrintTicket(answer);
    }
    return 0;
} catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
}
