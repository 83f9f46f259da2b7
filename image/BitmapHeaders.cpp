#include "image/BitmapHeaders.h"

#include <type_traits>

namespace nadrel {
namespace {

template <typename Field>
void Take(const uint8_t *&from, Field &field) {
    std::make_unsigned_t<Field> value = 0;
    for (size_t i = 0; i < sizeof field; ++i)
        value = static_cast<decltype(value)>(value | static_cast<decltype(value)>(*from++) << 8 * i);
    field = static_cast<Field>(value);
}

template <typename Field>
void Put(uint8_t *&to, Field field) {
    const auto value = static_cast<std::make_unsigned_t<Field>>(field);
    for (size_t i = 0; i < sizeof field; ++i)
        *to++ = static_cast<uint8_t>(value >> 8 * i);
}

// The fields in the order they are stored in.
template <typename Header, typename Visit>
void VisitFileHeader(Header &header, Visit visit) {
    visit(header.type);
    visit(header.size);
    visit(header.reserved1);
    visit(header.reserved2);
    visit(header.bitsOffset);
}

template <typename Header, typename Visit>
void VisitInfoHeader(Header &header, Visit visit) {
    visit(header.biSize);
    visit(header.biWidth);
    visit(header.biHeight);
    visit(header.biPlanes);
    visit(header.biBitCount);
    visit(header.biCompression);
    visit(header.biSizeImage);
    visit(header.biXPelsPerMeter);
    visit(header.biYPelsPerMeter);
    visit(header.biClrUsed);
    visit(header.biClrImportant);
}

} // namespace

BitmapFileHeader DecodeFileHeader(std::span<const uint8_t, kFileHeaderBytes> bytes) {
    BitmapFileHeader header;
    VisitFileHeader(header, [from = bytes.data()](auto &field) mutable { Take(from, field); });
    return header;
}

BITMAPINFOHEADER DecodeInfoHeader(std::span<const uint8_t, kInfoHeaderBytes> bytes) {
    BITMAPINFOHEADER header;
    VisitInfoHeader(header, [from = bytes.data()](auto &field) mutable { Take(from, field); });
    return header;
}

void Encode(const BitmapFileHeader &header, std::span<uint8_t, kFileHeaderBytes> bytes) {
    VisitFileHeader(header, [to = bytes.data()](auto field) mutable { Put(to, field); });
}

void Encode(const BITMAPINFOHEADER &header, std::span<uint8_t, kInfoHeaderBytes> bytes) {
    VisitInfoHeader(header, [to = bytes.data()](auto field) mutable { Put(to, field); });
}

} // namespace nadrel
