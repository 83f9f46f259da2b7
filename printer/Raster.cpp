#include "printer/Raster.h"

#include "printer/Commands.h"

#include <algorithm>

namespace printer {
namespace {

constexpr uint8_t Escape = 0x1B;

struct Token {
    size_t length = 0; // bytes, 0 when the control byte begins none
    size_t count = 0;  // bytes of the band
};

Token TokenOf(uint8_t control) {
    if (control >= 0x81 && control <= 0xBA)
        return {size_t{1} + control - 0x80, size_t{control} - 0x80};
    if (control >= 0xC4 && control <= 0xFA)
        return {2, size_t{control} - 0xC0};
    return {};
}

} // namespace

BandTokens ScanBand(ByteView bytes, uint8_t lineBytes) {
    BandTokens tokens;
    size_t expanded = 0;
    while (tokens.length < bytes.size()) {
        const uint8_t control = bytes[tokens.length];
        const Token token = TokenOf(control);
        if (control == Escape)
            return {tokens.length, true, ""};
        if (token.length == 0)
            return {tokens.length, true, "no run-length token follows"};
        if (expanded >= size_t{lineBytes} * BandLines)
            return {tokens.length, true, "more than 24 lines"};
        if (tokens.length + token.length > bytes.size())
            break;
        tokens.length += token.length;
        expanded += token.count;
    }
    return tokens;
}

Bytes ExpandBand(ByteView tokens, uint8_t lineBytes) {
    Bytes band;
    for (size_t at = 0; at < tokens.size();) {
        const Token token = TokenOf(tokens[at]);
        if (token.length == 0 || at + token.length > tokens.size())
            break;
        if (token.length == token.count + 1)
            band.insert(band.end(), &tokens[at + 1], &tokens[at] + token.length);
        else
            band.insert(band.end(), token.count, tokens[at + 1]);
        at += token.length;
    }
    band.resize(std::min(band.size(), size_t{lineBytes} * BandLines));
    return band;
}

} // namespace printer
