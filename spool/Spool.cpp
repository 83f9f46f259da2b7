#include "spool/Spool.h"

#include "platform/Memory.h"
#include "platform/TextConversion.h"

#include <algorithm>

namespace nadrel {
namespace {

// The longest length that the four digits of a framed command carry.
constexpr int32_t SpoolTextLimit = 9999;

// GS '!' takes a size byte for each of the four fonts and none for any other number, which leaves the command
// incomplete: the next bytes follow directly.
Bytes SizeCommand(int32_t font) {
    static constexpr uint8_t commands[4][3] = {
        {kGs, '!', 0x00}, {kGs, '!', 0x10}, {kGs, '!', 0x01}, {kGs, '!', 0x11}};
    if (!InRange(font, 0, 3))
        return Bytes(commands[0], 2);
    return commands[font];
}

int32_t AppendTextRun(Bytes text, int32_t font, int32_t bold) {
    if (!AppendPieces({SizeCommand(font), Command(kEsc, 'E', bold != 0)}))
        return ERR_SPOOL_LIMIT;
    if (static_cast<int64_t>(text.size()) + SpoolLength > SpoolTextLimit) {
        // Six, also where the font gave only five bytes: hosts rely on the spool length that this leaves.
        // What was written stays behind it and enters the check value of a frame.
        SpoolLength -= 6;
        return ERR_SPOOL_LIMIT;
    }
    AppendPieces({text});
    return SpoolLength;
}

// Units before the terminator. Four a step: every text passes here, and a branch taken for each unit would
// cost as much as the conversion.
size_t LengthOf(const char16_t *text) {
    for (size_t length = 0;; length += 4) {
        if (text[length] == 0)
            return length;
        if (text[length + 1] == 0)
            return length + 1;
        if (text[length + 2] == 0)
            return length + 2;
        if (text[length + 3] == 0)
            return length + 3;
    }
}

} // namespace

int32_t AppendThroughLink(std::initializer_list<Bytes> pieces) {
    if (!LinkIsOpen())
        return ERR_NOT_CONNECTED;
    return AppendPieces(pieces, kSpoolCapacity) ? SpoolLength : static_cast<int32_t>(ERR_SPOOL_LIMIT);
}

int32_t AppendAndStoreResult(std::initializer_list<Bytes> pieces) {
    const int32_t result = AppendThroughLink(pieces);
    if (result != ERR_SPOOL_LIMIT)
        SpoolLength = result;
    return result;
}

Bytes Convert(const char16_t *text) {
    ConversionStorage *const buffer = ConversionBuffer;
    if (buffer == nullptr)
        return {};
    const size_t length = text == nullptr ? 0 : LengthOf(text);
    const size_t capacity = std::min<size_t>(length, kSpoolCapacity / 2) * 2;
    // The conversion writes what it returns and no more. Telling the buffer of that alone, and zeroing only
    // what the text before left behind it, keeps the buffer zero behind the text at little cost.
    const size_t written = platform::ToAnsi(text, length, buffer->Write(0, 0), capacity);
    buffer->Write(0, static_cast<int32_t>(written));
    buffer->ClearFrom(static_cast<int32_t>(written));
    return Bytes(buffer->At(0), written);
}

} // namespace nadrel

using namespace nadrel;

int32_t ControlCommand(const uint8_t *bytes, int32_t count) {
    if (!LinkIsOpen())
        return ERR_NOT_CONNECTED;
    if (bytes == nullptr || count < 0)
        return 0;
    if (static_cast<int64_t>(SpoolLength) + count > kSpoolCapacity)
        return ERR_SPOOL_LIMIT;
    const Bytes command(bytes, static_cast<size_t>(count));
    if (!platform::MemoryIsReadable(command.data(), command.size()))
        return 0;
    return AppendThroughLink({command});
}

int32_t SaveSpool(const NadrelChar *text, int32_t font, int32_t bold) {
    if (!LinkIsOpen())
        return ERR_NOT_CONNECTED;
    if (text == nullptr)
        return 0;
    return AppendTextRun(Convert(text), font, bold);
}

const char *U2A(const NadrelChar *text) {
    const ConversionStorage *const buffer = ConversionBuffer;
    Convert(text);
    return buffer == nullptr ? nullptr : reinterpret_cast<const char *>(buffer->At(0));
}

void ClearSpool() {
    SpoolLength = 0;
    SpoolBuffer.Clear();
}

NadrelHandle GetPortHandle() {
    return SerialPortHandle;
}
