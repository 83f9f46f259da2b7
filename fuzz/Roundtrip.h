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
    // 16 bits, low byte first: rest and quotient of a signed division, each cut to a byte.
    Operands &W(int64_t value) { return B(value % 256).B(value / 256); }
    Operands &Data(const Bytes &data) {
        for (const uint8_t byte : data)
            B(byte);
        return *this;
    }

    Bytes bytes;
};

struct Expected {
    Kind kind;
    Bytes operands; // of a compressed band: bytes a line, lines, and then the dots
    // Of a macro made of what stood in the spool: what its operands are to be understood as.
    struct Body {
        bool pageMode = false; // of the printer where it begins
        std::vector<Expected> commands = {};
    };
    std::optional<Body> body = {};
};

class Roundtrip {
  public:
    Roundtrip(Input &bytes, uint8_t link);

    // Prints what is in the spool, reads what went over the link, and compares.
    void Finish();

    void Expect(Kind kind, const Operands &operands = {}) { pending.push_back({kind, operands.bytes}); }
    void ExpectText(const Bytes &text) {
        if (!text.empty())
            Expect(Kind::Text, Operands().Data(text));
    }

    // The mode that the library keeps, and the one that the printer is in behind what is in the spool.
    void SetPageMode(bool on) { pageMode = printerPageMode = on; }
    void PrinterLeavesPageMode() { printerPageMode = false; }
    bool InPageMode() const { return pageMode; }
    bool ModesDiffer() const { return pageMode != printerPageMode; }

    // Sends the spool, so that what is sent past it comes behind what is in it.
    void Print();
    // Sends it where nothing is in it as well, and empties it or not.
    void PrintAnyhow(bool clear);
    void Clear();
    // What was expected last has gone straight to the link, in a frame of its own where the link is framed
    // and the request ever is.
    void Sent(bool everFramed);
    void Reconnect(uint8_t link);

    void BeginMacro();
    void EndMacro();

    // What functions that append through the link give.
    void Stored(int32_t result) const {
        Require(result == nadrel::SpoolLength, "a result is not the spool's length");
    }

    int Number(int lowest, int highest) {
        return lowest + static_cast<int>(input.Below(static_cast<uint32_t>(highest - lowest + 1)));
    }
    int Byte() { return input.Byte(); }
    bool Flag() { return input.Flag(); }
    // Mostly one that the command has no room for or that is out of its range.
    int32_t Any() { return input.Number<int32_t>(); }
    // One of the range, at its ends or just behind them, or any.
    int32_t Near(int lowest, int highest);

    // Text of which no byte can begin a command, and which is the same in UTF-16 and in code page 1252.
    Bytes Text(size_t atMost);
    // A short text over and over.
    Bytes LongText(size_t atMost);
    // What a command carries: any such bytes but 00.
    Bytes Data(size_t atMost);

    bool framed = false;
    Library library;

  private:
    void Connect(uint8_t link);
    void MoveExpected();

    // Where the library's macro mark lies: at so many bytes, and before that pending command if that is known.
    struct Mark {
        int32_t place = 0;
        std::optional<size_t> index = 0;
        bool pageMode = false; // of the printer there
    };

    Input &input;
    bool pageMode = false;
    bool printerPageMode = false;
    bool sentPageMode = false; // of the printer before what is in the spool
    Mark mark;
    std::vector<Expected> pending; // in the spool
    std::vector<Expected> expected;
};

inline std::u16string Wide(const Bytes &text) {
    return {text.begin(), text.end()};
}

// Most of a printer's data fields.
inline constexpr size_t kShortText = 60;
// More than the 255 that most commands count to.
inline constexpr size_t kLongText = 600;

// As many bytes as the low 8 bits of the length tell, as most functions take them.
inline Bytes CountedInAByte(const Bytes &text) {
    return {text.begin(), text.begin() + static_cast<ptrdiff_t>(text.size() % 256)};
}

// The number, or 0 where it is out of range.
inline int OrZero(int lowest, int32_t number, int highest) {
    return number >= lowest && number <= highest ? number : 0;
}

// Each makes a call and says what to expect of it.
using RoundtripCall = void (*)(Roundtrip &);
std::span<const RoundtripCall> TextCalls();
std::span<const RoundtripCall> SymbolCalls();
std::span<const RoundtripCall> PictureCalls();
std::span<const RoundtripCall> DeviceCalls();
std::span<const RoundtripCall> LinkCalls();

} // namespace fuzz
