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

// Whole text, of whose length the low byte is told: the printer takes the rest for text.
void SecuredCard(Roundtrip &trip) {
    const Bytes text = trip.LongText(kLongText);
    SecuredCardCommend(std::string(text.begin(), text.end()).c_str());
    const Bytes told = CountedInAByte(text);
    const int count = static_cast<int>(told.size());
    trip.Expect(Kind::SecuredCard, Operands().B(count / 255).B(count % 255).Data(told));
    trip.ExpectText({text.begin() + count, text.end()});
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
    const int32_t mode = trip.Near(0, 2);
    trip.Print();
    Set_PrintOutStatus(static_cast<uint32_t>(mode));
    trip.Expect(Kind::PrintOutReports, Operands().B(mode == 1));
    trip.Sent(true);
}

void EnterReader(Roundtrip &trip) {
    const int32_t track = trip.Near(0, 5);
    trip.Print();
    EnterMSRMode(track);
    trip.Expect(Kind::EnterReader, Operands().B(track >= 0 && track <= 4 ? 'C' + track : 0));
    trip.Sent(true);
}

void ReadCard(Roundtrip &trip) {
    const int32_t flag = trip.Near(0, 1);
    trip.Print();
    CardRead(flag);
    trip.Expect(Kind::CancelReading);
    trip.Expect(Kind::EnterReader, Operands().B(flag != 0 ? 'D' : 'C'));
    trip.Sent(true);
}

void ReadCardOtherwise(Roundtrip &trip) {
    trip.Print();
    CardRead_M(trip.Near(0, 1));
    trip.Expect(Kind::CardRead);
    trip.Sent(true);
}

void CancelSecuredCard(Roundtrip &trip) {
    trip.Print();
    SecuredCardCancel();
    trip.Expect(Kind::CancelSecuredCard);
    trip.Sent(false);
}

// Nothing is sent of an identifier of another length.
void Terminal(Roundtrip &trip) {
    Bytes id = trip.Data(kShortText);
    if (trip.Flag())
        id.resize(8, 'x');
    trip.Print();
    const int32_t result = SetTermialID(Wide(id).c_str());
    Require(result == (id.size() == 8 ? 1 : static_cast<int32_t>(id.size())), "a length is not told");
    if (id.size() != 8)
        return;
    trip.Expect(Kind::TerminalIdentifier, Operands().Data(id));
    trip.Sent(false);
}

// Digits, two a byte, and what counts as digits; where the first are left out they are zeros.
std::u16string Digits(Roundtrip &trip, int count, int leftOut, Operands &operands) {
    std::u16string digits;
    std::vector<int> values(static_cast<size_t>(leftOut), 0);
    for (int i = leftOut; i < count; ++i) {
        digits +=
            static_cast<char16_t>(trip.Number(0, 3) != 0 ? '0' + trip.Number(0, 9) : 1 + trip.Number(0, 254));
        values.push_back((digits.back() - '0') & 0x0F);
    }
    for (size_t i = 0; i < values.size(); i += 2)
        operands.B(values[i] * 16 + values[i + 1]);
    return digits;
}

void Payment(Roundtrip &trip) {
    static constexpr uint32_t kTypes[] = {0, 1, 2, 0x100, 0x180, 0xFFFFFFFF};
    const uint32_t type = kTypes[trip.Number(0, 5)];
    Operands operands;
    operands.B(type % 0x100 != 0);
    const auto first = Digits(trip, 12, trip.Number(0, 12), operands);
    const auto second = Digits(trip, 8, 0, operands), third = Digits(trip, 6, 0, operands);
    trip.Print();
    Require(SetPaymentReq(type, first.c_str(), second.c_str(), third.c_str()) == 1, "a payment is refused");
    trip.Expect(Kind::PaymentRequest, operands);
    trip.Sent(false);
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
};

} // namespace

std::span<const RoundtripCall> DeviceCalls() {
    return kCalls;
}

} // namespace fuzz
