#include "fuzz/Roundtrip.h"

// Printing, links and macros: what has a say in where commands go.

namespace fuzz {

namespace {

void PrintNow(Roundtrip &trip) {
    trip.PrintAnyhow(true);
}

void PrintAndKeep(Roundtrip &trip) {
    trip.PrintAnyhow(false);
}

void EmptySpool(Roundtrip &trip) {
    ClearSpool();
    trip.Clear();
}

void Reconnect(Roundtrip &trip) {
    trip.Reconnect(static_cast<uint8_t>(trip.Byte()));
}

void BeginMacro(Roundtrip &trip) {
    trip.BeginMacro();
}

void EndMacro(Roundtrip &trip) {
    trip.EndMacro();
}

void FontMacro(Roundtrip &trip) {
    const int32_t size = trip.Near(0, 3), table = trip.Near(0, 50);
    SetMacro_FontSize_FontTable(size, table);
    const bool inRange = size >= 0 && size <= 3 && ((table >= 0 && table <= 50) || table == 255);
    if (inRange)
        trip.Expect(Kind::Macro, Operands().W(6).B(0x1B).B('!').B(size).B(0x1B).B('t').B(table));
}

void NoMacro(Roundtrip &trip) {
    Initialize_Macro();
    trip.Expect(Kind::Macro, Operands().W(0));
}

constexpr RoundtripCall kCalls[] = {
    PrintNow, PrintAndKeep, EmptySpool, Reconnect, BeginMacro, EndMacro, FontMacro, NoMacro,
};

} // namespace

std::span<const RoundtripCall> LinkCalls() {
    return kCalls;
}

} // namespace fuzz
