#pragma once

#include "fuzz/Library.h"

#include "printer/StreamDecoder.h"

// What is called, and what the printer is to understand of it, told without the library and without the
// printer's decoder.
namespace fuzz {

using printer::Kind;

// The bytes behind a command's prefix.
class Operands {
  public:
    Operands &B(int64_t value) {
        bytes.push_back(static_cast<uint8_t>(value));
        return *this;
    }
    // 16 bits, low byte first.
    Operands &W(int value) { return B(value).B(value >> 8); }
    Operands &Data(const Bytes &data) {
        bytes.insert(bytes.end(), data.begin(), data.end());
        return *this;
    }

    Bytes bytes;
};

struct Expected {
    Kind kind;
    Bytes operands; // of a compressed band: bytes a line, lines, and then the dots
};

class Roundtrip {
  public:
    Roundtrip(Input &bytes, bool framedLink);

    // Prints what is in the spool, reads what went over the link, and compares.
    void Finish();

    void Expect(Kind kind, const Operands &operands = {}) { pending.push_back({kind, operands.bytes}); }
    void ExpectText(const Bytes &text) {
        if (!text.empty())
            Expect(Kind::Text, Operands().Data(text));
    }

    // Sends the spool, so that what is sent past it comes behind what is in it.
    void Print();
    // What was expected last has gone straight to the link, in a frame of its own where the link is framed
    // and the request ever is.
    void Sent(bool everFramed);

    int Number(int lowest, int highest) {
        return lowest + static_cast<int>(input.Below(static_cast<uint32_t>(highest - lowest + 1)));
    }
    int Word() { return Number(0, 65535); }
    int Byte() { return input.Byte(); }
    bool Flag() { return input.Flag(); }
    // Printable ASCII without '~', which can begin a command.
    Bytes Text(size_t atMost);

    bool framed;
    bool pageMode = false;
    Library library;

  private:
    void Compare(const std::vector<printer::Command> &commands) const;
    void MoveExpected();

    Input &input;
    std::vector<Expected> pending; // in the spool
    std::vector<Expected> expected;
};

inline std::u16string Wide(const Bytes &text) {
    return {text.begin(), text.end()};
}

// Most of a printer's data fields.
inline constexpr size_t kShortText = 60;

// Each makes a call, with operands within the range of its command, and says what to expect.
using RoundtripCall = void (*)(Roundtrip &);
std::span<const RoundtripCall> TextCalls();
std::span<const RoundtripCall> SymbolCalls();
std::span<const RoundtripCall> PictureCalls();
std::span<const RoundtripCall> DeviceCalls();

} // namespace fuzz
