#include "tests/soak/Soak.h"

#include "tests/endtoend/Limits.h"
#include "tests/endtoend/Resources.h"
#include "tests/endtoend/Waiting.h"

#include <algorithm>

using namespace endtoend;

namespace soak {
namespace {

// Of a send over TCP that makes no progress, and how often the library then looks.
constexpr int32_t kSendTimeout = 500;
constexpr Milliseconds kSendLook{250};

// What a slow printer reads in a millisecond, at least.
constexpr double kSlowestReading = 1; // bytes

constexpr Milliseconds kAttemptPause{200};
constexpr Milliseconds kProbePause{400};
constexpr Milliseconds kNoPause{0};

// For what the machine does besides.
constexpr Milliseconds kSlack{1000 * kSlowdown};

constexpr int Attempts(int32_t timeout) {
    return std::max(timeout, 200) / 200;
}

} // namespace

Soak::Soak(uint64_t seed, std::string printerProgram, std::filesystem::path folder)
    : random(seed), program(std::move(printerProgram)), home(std::move(folder)) {
    SetNotificationHandler(&Handle, this);
    SetSendTimeout(kSendTimeout);
}

Soak::~Soak() {
    ClosePrinter();
    SetNotificationHandler(nullptr, nullptr);
}

void Soak::WarmUp() {
    printer.emplace(program, home / "first");
    for (const Medium each : kEveryMedium) {
        Connect(each, true);
        Compose();
        Print();
        Ask();
        Close();
    }
    StopPrinter();
}

void Soak::RunUntil(std::chrono::steady_clock::time_point end) {
    offersClosing = true;
    ReplacePrinter();
    while (std::chrono::steady_clock::now() < end)
        Step();
}

void Soak::Rest() {
    if (isOpen)
        Close();
    StopPrinter();
    ClearSpool();
}

void Soak::Step() {
    if (OneIn(25))
        ReplacePrinter();
    if (!isOpen)
        return ConnectAtRandom();
    switch (Number(0, 9)) {
    case 0:
        return Close();
    case 1:
    case 2:
        return Ask();
    case 3:
        return UseDevices();
    case 4:
        return Disturb();
    case 5:
        return BeRefused();
    default:
        Compose();
        return Print();
    }
}

void Soak::ReplacePrinter() {
    StopPrinter();
    printer.emplace(program, home / std::to_string(++printers % 10), RandomFaults());
}

// Its host sees it go, in order or not.
void Soak::StopPrinter() {
    if (!printer)
        return;
    if (!printer->IsRunning())
        ledger.Complain("the printer ended by itself: " + printer->Complaints());
    else if (OneIn(2) && printer->Stop() != 0)
        ledger.Complain("the printer failed: " + printer->Complaints());
    printer.reset();
}

std::vector<std::string> Soak::RandomFaults() {
    std::vector<std::string> faults;
    const auto add = [&](const char *option, int from, int to) {
        faults.insert(faults.end(), {option, std::to_string(Number(from, to))});
    };
    if (OneIn(6))
        faults.push_back("--silent");
    if (OneIn(4))
        faults.push_back("--split-replies");
    if (OneIn(5))
        faults.push_back("--flood");
    if (OneIn(4))
        add("--reply-delay", 1, 500);
    if (OneIn(3))
        add("--hang-up-after", 1, 20'000);
    if (OneIn(4))
        add("--flip-frames", 1, 4);
    if (OneIn(4))
        add("--swipe-after", 0, 300);
    stalls = OneIn(5);
    if (stalls && OneIn(2))
        add("--paper-out", 0, 2000);
    else if (stalls)
        add("--read-rate", static_cast<int>(1000 * kSlowestReading), 50'000);
    return faults;
}

void Soak::ConnectAtRandom() {
    if (OneIn(5))
        UseClosedLink();
    Connect(OneIn(2) ? Medium::serial : Medium::tcp, OneIn(3));
}

void Soak::Connect(Medium over, bool framed) {
    medium = over;
    isFramed = framed;
    const bool isSerial = over == Medium::serial;
    const int32_t result = isSerial ? ConnectSerial(Number(0, 2), framed) : ConnectTcp(Number(0, 1), framed);
    isOpen = result == NADREL_SUCCESS && !interrupted;
}

int32_t Soak::ConnectSerial(int way, bool framed) {
    const int32_t timeout = Number(0, 500);
    const std::string name = printer->SerialPath();
    const std::u16string port = ToUtf16(name);
    const std::ptrdiff_t before = UsedNow().descriptors;
    const Milliseconds probes = framed ? 4 * (kProbePause + SendingTime(4)) : kNoPause;
    const int32_t result =
        way == 0   ? Timed("InitPrinter", probes, [&] { return InitPrinter(port.c_str(), 115200, framed); })
        : way == 1 ? Timed("ConnectSerialPrinter", Attempts(timeout) * kAttemptPause + probes,
                           [&] { return ConnectSerialPrinter(port.c_str(), 9600, timeout, framed); })
                   : Timed("ConnectSerialPrinterEx", Attempts(timeout) * kAttemptPause + probes, [&] {
                         return ConnectSerialPrinterEx(name.c_str(), 115200, 8, 0, 0, timeout, framed);
                     });
    Allow("a serial connect", result, {NADREL_SUCCESS, ERR_OPEN_PORT, ERR_SET_COMM_STATE, ERR_NO_ANSWER});
    if (result == ERR_SET_COMM_STATE)
        keptOpen += UsedNow().descriptors - before;
    return result;
}

int32_t Soak::ConnectTcp(int way, bool framed) {
    const int32_t timeout = Number(0, 3000);
    const uint32_t port = printer->TcpPort();
    const Milliseconds probes = framed ? 4 * (kProbePause + SendingTime(4)) : kNoPause;
    const int32_t result =
        way == 0 ? Timed("InitWlanPrinter", Milliseconds(timeout) + probes,
                         [&] { return InitWlanPrinter(u"127.0.0.1", port, timeout, framed); })
                 : Timed("ConnectWirelessPrinter", Attempts(timeout) * kAttemptPause + probes,
                         [&] { return ConnectWirelessPrinter(u"localhost", port, timeout, framed); });
    Allow("a wireless connect", result, {NADREL_SUCCESS, -2, -3, -7, ERR_NO_ANSWER});
    return result;
}

void Soak::Close() {
    watchdog.Enter("ClosePrinter");
    const Closing closing = TimedClose();
    watchdog.Leave();
    ledger.Note("ClosePrinter", Milliseconds(closing.time), Milliseconds(kLongestClose));
    if (closing.result != 1)
        ledger.Complain("ClosePrinter gave " + std::to_string(closing.result));
    isOpen = false;
}

void Soak::UseClosedLink() {
    Allow("ClosePrinter", ClosePrinter(), {0});
    Allow("PrintSpool", PrintSpool(1), {ERR_NOT_CONNECTED});
    Allow("GetPrinterStatus", GetPrinterStatus(1000), {-1});
    Allow("EnterMSRMode", EnterMSRMode(0), {ERR_NOT_CONNECTED});
    GetPrinterModelName();
    AppendAtRandom();
}

void Soak::BeRefused() {
    Allow("InitPrinter", InitPrinter(u"/dev/null", 9600, isFramed), {ERR_ALREADY_CONNECTED});
    Allow("InitWlanPrinter", InitWlanPrinter(u"127.0.0.1", 1, 0, 0), {-3});
    Allow("ConnectWirelessPrinter", ConnectWirelessPrinter(u"127.0.0.1", 1, 0, 0), {-1});
}

// A serial port may take 100 ms for each byte that its printer does not take.
void Soak::Compose() {
    if (stalls && medium == Medium::serial)
        return PrintDotFeed(Number(0, 20));
    for (int i = Number(1, 30); i > 0; --i)
        AppendAtRandom();
}

void Soak::AppendAtRandom() {
    switch (Number(0, 9)) {
    case 0:
        return SetTextStyle(static_cast<uint32_t>(Number(0, 3)), OneIn(2), Number(-1, 8), Number(-1, 8),
                            OneIn(2));
    case 1:
        return SetTextAlignment(Number(-1, 4));
    case 2:
        return InitPageMode(Number(0, 100), Number(0, 100), Number(0, 400), Number(0, 400));
    case 3:
        return Page_Print_StandardMode();
    case 4:
        return QRCodeSaveSpool(Number(0, 41), 'M', Number(0, 9), Text(300).c_str());
    case 5:
        OneDimensionBarcodeSaveSpool(static_cast<uint32_t>(Number(60, 75)), 2, 50, OneIn(2),
                                     Text(20).c_str());
        return;
    case 6: {
        const Bytes bytes = RandomBytes(100);
        ControlCommand(bytes.data(), static_cast<int32_t>(bytes.size()));
        return;
    }
    case 7:
        return PrintData();
    default:
        return TextSaveSpool(Text(60).c_str());
    }
}

void Soak::Print() {
    const int32_t result = Timed("PrintSpool", kNoPause, [this] { return PrintSpool(!OneIn(20)); });
    Allow("PrintSpool", result, {NADREL_SUCCESS});
}

void Soak::Ask() {
    const int32_t timeout = Number(-1, 700);
    const auto query = OneIn(2) ? &GetPrinterStatus : &GetPrinterStatusEX;
    const int32_t result =
        Timed("a status query", Attempts(timeout) * kAttemptPause, [&] { return query(timeout); });
    Allow("a status query", result, {NADREL_SUCCESS, -7});
    if (OneIn(2))
        Timed("GetPrinterModelName", kNoPause, [] { return GetPrinterModelName(), 0; });
    if (OneIn(2))
        Timed("GetFirmwareVersion", kNoPause, [] { return GetFirmwareVersion(), 0; });
    if (OneIn(2))
        Timed("Set_PrintOutStatus", kNoPause,
              [this] { return Set_PrintOutStatus(static_cast<uint32_t>(Number(0, 2))); });
}

void Soak::UseDevices() {
    Timed("EnterMSRMode", kNoPause, [this] { return EnterMSRMode(Number(-1, 5)); });
    Timed("CardRead", kNoPause, [this] { return OneIn(2) ? CardRead(OneIn(2)) : CardRead_M(OneIn(2)); });
    Timed("SetPaymentReq", kNoPause, [] { return SetPaymentReq(1, u"1000", u"20260101", u"123000"); });
    if (OneIn(2))
        Timed("CardCancel", kNoPause, [] { return CardCancel(); });
}

// What comes from the printer without being asked.
void Soak::Disturb() {
    std::string line = OneIn(4) ? "swipe" : OneIn(4) ? "paper-in" : "send";
    if (line == "send")
        for (const uint8_t byte : RandomBytes(50)) {
            char hex[8];
            std::snprintf(hex, sizeof hex, " %02X", byte);
            line += hex;
        }
    printer->Say(line);
}

template <typename Call>
int32_t Soak::Timed(const char *name, Milliseconds pauses, Call call) {
    interrupted = false;
    if (offersClosing && OneIn(40))
        offer = Offer::made;
    const uint64_t before = Report().bytesAsked;
    watchdog.Enter(name);
    const Stopwatch watch;
    const int32_t result = call();
    const Milliseconds time(watch.Elapsed());
    watchdog.Leave();
    const uint64_t after = Report().bytesAsked;
    const uint64_t sent = after >= before ? after - before : after;
    ledger.Note(name, time, pauses + SendingTime(sent) + kSlack);
    SettleOffer();
    return result;
}

void Soak::Allow(const char *call, int32_t result, std::initializer_list<int32_t> allowed) {
    if (!interrupted && std::find(allowed.begin(), allowed.end(), result) == allowed.end())
        ledger.Complain(std::string(call) + " gave " + std::to_string(result));
}

// On a stalled TCP link each send may wait for the time-out.
Milliseconds Soak::SendingTime(uint64_t bytes) const {
    const auto count = static_cast<double>(bytes);
    if (medium == Medium::serial)
        return Milliseconds(100 * count);
    return bytes == 0 ? kNoPause
                      : Milliseconds(kSendTimeout) + kSendLook + Milliseconds(count / kSlowestReading);
}

void Soak::SettleOffer() {
    Offer expected = Offer::made;
    if (offer.compare_exchange_strong(expected, Offer::none) || expected == Offer::none)
        return;
    if (!Eventually([this] { return offer == Offer::done; }))
        ledger.Complain("a notification did not come back from closing the link");
    offer = Offer::none;
    interrupted = true;
    isOpen = false;
    if (ClosePrinter() != 0)
        ledger.Complain("the link was still open after a notification had closed it");
}

void Soak::Handle(uint32_t, uint32_t wParam, intptr_t, void *context) {
    auto &self = *static_cast<Soak *>(context);
    ++self.told;
    constexpr uint32_t kLongestReply = 2048;
    if ((wParam & 0xFFFF) > kLongestReply)
        self.ledger.Complain("a reply of " + std::to_string(wParam & 0xFFFF) + " bytes was told");
    Offer expected = Offer::made;
    if (self.offer.compare_exchange_strong(expected, Offer::taken))
        self.CloseFromHandler();
}

void Soak::CloseFromHandler() {
    const Closing closing = TimedClose();
    ledger.Note("ClosePrinter, from a handler", Milliseconds(closing.time), Milliseconds(kLongestClose));
    offer = Offer::done;
}

std::u16string Soak::Text(int longest) {
    std::u16string text;
    for (int i = Number(0, longest); i > 0; --i)
        text += static_cast<char16_t>(OneIn(10) ? Number(1, 0xFFFF) : Number(' ', '~'));
    return text;
}

Bytes Soak::RandomBytes(int longest) {
    Bytes bytes(static_cast<size_t>(Number(1, longest)));
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>(Number(0, 255));
    return bytes;
}

} // namespace soak
