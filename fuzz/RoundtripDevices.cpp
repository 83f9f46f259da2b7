#include "fuzz/Roundtrip.h"

// Card readers, requests and payment.

namespace fuzz {

namespace {

void EnterSmartCard(Roundtrip &trip) {
    EnterSCRMode();
    trip.Expect(Kind::EnterSmartCard);
}

void LeaveSmartCard(Roundtrip &trip) {
    CancelSCRMode();
    trip.Expect(Kind::LeaveSmartCard);
}

void SecuredCard(Roundtrip &trip) {
    const Bytes text = trip.Text(kShortText);
    SecuredCardCommend(std::string(text.begin(), text.end()).c_str());
    trip.Expect(Kind::SecuredCard, Operands().B(0).B(static_cast<int>(text.size())).Data(text));
}

// What goes straight to the link.

template <auto Function, Kind kKind, int... kOperands>
void Ask(Roundtrip &trip) {
    trip.Print();
    Function();
    Operands operands;
    (operands.B(kOperands), ...);
    trip.Expect(kKind, operands);
    trip.Sent(true);
}

template <int32_t (*Function)(int32_t)>
void AskStatus(Roundtrip &trip) {
    trip.Print();
    for (int left = trip.Number(1, 3), asked = left; left > 0; --left) {
        if (left == asked)
            Function(asked * 200);
        trip.Expect(trip.framed ? Kind::Query : Kind::Status);
    }
    trip.Sent(false);
}

void PrintOutReports(Roundtrip &trip) {
    const bool on = trip.Flag();
    trip.Print();
    Set_PrintOutStatus(on);
    trip.Expect(Kind::PrintOutReports, Operands().B(on));
    trip.Sent(true);
}

void EnterReader(Roundtrip &trip) {
    const int track = trip.Number(0, 4);
    trip.Print();
    EnterMSRMode(track);
    trip.Expect(Kind::EnterReader, Operands().B('C' + track));
    trip.Sent(true);
}

void ReadCard(Roundtrip &trip) {
    const bool flag = trip.Flag();
    trip.Print();
    CardRead(flag);
    trip.Expect(Kind::CancelReading);
    trip.Expect(Kind::EnterReader, Operands().B(flag ? 'D' : 'C'));
    trip.Sent(true);
}

void ReadCardOtherwise(Roundtrip &trip) {
    trip.Print();
    CardRead_M(trip.Flag());
    trip.Expect(Kind::CardRead);
    trip.Sent(true);
}

void CancelSecuredCard(Roundtrip &trip) {
    trip.Print();
    SecuredCardCancel();
    trip.Expect(Kind::CancelSecuredCard);
    trip.Sent(false);
}

void Terminal(Roundtrip &trip) {
    Bytes id = trip.Text(8);
    id.resize(8, 'x');
    trip.Print();
    SetTermialID(Wide(id).c_str());
    trip.Expect(Kind::TerminalIdentifier, Operands().Data(id));
    trip.Sent(false);
}

// Digits, two a byte.
std::u16string Digits(Roundtrip &trip, int count, Operands &operands) {
    std::u16string digits;
    for (int i = 0; i < count; i += 2) {
        const int high = trip.Number(0, 9), low = trip.Number(0, 9);
        digits += static_cast<char16_t>('0' + high);
        digits += static_cast<char16_t>('0' + low);
        operands.B(high * 16 + low);
    }
    return digits;
}

void Payment(Roundtrip &trip) {
    const bool type = trip.Flag();
    Operands operands;
    operands.B(type);
    const auto first = Digits(trip, 12, operands), second = Digits(trip, 8, operands);
    const auto third = Digits(trip, 6, operands);
    trip.Print();
    SetPaymentReq(type, first.c_str(), second.c_str(), third.c_str());
    trip.Expect(Kind::PaymentRequest, operands);
    trip.Sent(false);
}

void PrintNow(Roundtrip &trip) {
    trip.Print();
}

constexpr RoundtripCall kCalls[] = {
    EnterSmartCard,
    LeaveSmartCard,
    SecuredCard,
    Ask<GetPrinterModelName, Kind::ModelName, 0xFF>,
    Ask<GetFirmwareVersion, Kind::FirmwareVersion>,
    Ask<CancelMSRMode, Kind::CancelReading>,
    Ask<CardCancel, Kind::CancelReading>,
    AskStatus<GetPrinterStatus>,
    AskStatus<GetPrinterStatusEX>,
    PrintOutReports,
    EnterReader,
    ReadCard,
    ReadCardOtherwise,
    CancelSecuredCard,
    Terminal,
    Payment,
    PrintNow,
};

} // namespace

std::span<const RoundtripCall> DeviceCalls() {
    return kCalls;
}

} // namespace fuzz
