#include "spool/Spool.h"

using namespace nadrel;

namespace {

constexpr uint8_t kDataMatrix = 1;
constexpr uint8_t kQrCode = 2;
constexpr uint8_t kMaxicode = 5;

// The data's bytes that a barcode counts and carries: one 8-bit length serves both, in 16-bit fields too.
Bytes ConvertData(const char16_t *data) {
    return FirstCounted(Convert(data));
}

uint8_t CountOf(Bytes data) {
    return static_cast<uint8_t>(data.size());
}

// GS 'Z' symbology, ESC 'Z' a b c nL nH, data: QR Code, DataMatrix and MaxiCode differ in their three
// parameters.
void AppendMatrix(uint8_t symbology, uint8_t a, uint8_t b, uint8_t c, Bytes data) {
    AppendDirect({Command(kGs, 'Z', symbology, kEsc, 'Z', a, b, c, CountOf(data), 0), data});
}

struct Pdf417Parameters {
    uint8_t selector = 0;
    uint8_t a1 = 0;
    uint8_t a2 = 0;
};

// Standard: parameters out of range leave both at the printer's default.
constexpr Pdf417Parameters StandardPdf417(int32_t p1, int32_t p2) {
    if (!InRange(p1, 1, 30) || !InRange(p2, 0, 8))
        return {};
    return {0, static_cast<uint8_t>(p1), static_cast<uint8_t>(p2)};
}

// Truncated: with p1 out of range the symbol goes out as a standard one.
constexpr Pdf417Parameters TruncatedPdf417(int32_t p1, int32_t p2) {
    if (!InRange(p1, 1, 4))
        return {};
    return {3, static_cast<uint8_t>(p1), InRangeOrZero(p2, 4, 44)};
}

// Micro: with either out of range the symbol goes out as a standard one.
constexpr Pdf417Parameters MicroPdf417(int32_t p1, int32_t p2) {
    if (!InRange(p1, 1, 4) || !InRange(p2, 0, 8))
        return {};
    return {4, static_cast<uint8_t>(p1), static_cast<uint8_t>(p2)};
}

// The text position follows the data, unlike in the one-dimensional commands, and only hri 1 asks for it.
void AppendPdf417(const Pdf417Parameters &form, int32_t moduleWidth, int32_t p3, const char16_t *text,
                  int32_t hri) {
    const Bytes data = ConvertData(text);
    AppendDirect({Command(kGs, 'Z', form.selector, kGs, 'w', InRangeOrZero(moduleWidth, 1, 8), kEsc, 'Z',
                          form.a1, form.a2, InRangeOrZero(p3, 2, 5), CountOf(data), 0),
                  data, Command(kGs, 'H', hri == 1)});
}

// The level travels as its letter; anything else leaves it to the printer.
constexpr uint8_t EccLetter(uint32_t level) {
    const uint32_t letter = level & 0xFFFF;
    return letter == 'L' || letter == 'M' || letter == 'Q' || letter == 'H' ? static_cast<uint8_t>(letter)
                                                                            : uint8_t{0};
}

// GS1 DataBar Expanded Stacked alone has segments; the test is on the number modulo 21, the byte sent is the
// number's own.
constexpr uint8_t DatabarSegments(int32_t type, int32_t segments) {
    const int32_t rest = segments % 21;
    const bool given = type == 6 && InRange(rest, 2, 20) && segments % 2 == 0;
    return given ? static_cast<uint8_t>(segments) : uint8_t{0};
}

} // namespace

int32_t OneDimensionBarcodeSaveSpool(uint32_t symbology, int32_t width, int32_t height, int32_t hri,
                                     const NadrelChar *data) {
    const Bytes bars = ConvertData(data);
    if (SpoolIsPastCapacity())
        return ERR_SPOOL_LIMIT;
    return AppendThroughLink({Command(kGs, 'w', InRangeOrZero(width, 1, 8)),
                              Command(kGs, 'h', InRangeOrZero(height, 1, 255)), Command(kGs, 'H', hri != 0),
                              Command(kGs, 'k', symbology, CountOf(bars)), bars});
}

int32_t BarcodeSaveSpool(uint8_t symbology, uint8_t width, uint8_t height, int32_t hri,
                         const NadrelChar *data, int32_t areaWidth, int32_t areaHeight, int32_t x) {
    if (data == nullptr)
        return 0;
    const Bytes bars = ConvertData(data);
    const uint8_t moduleWidth = width >= 2 && width <= 6 ? width : uint8_t{2};
    AppendThroughLink({Command(kEsc, 'L'),
                       Command(kEsc, 'W', 0, 0, 0, 0, LowByte(areaWidth), HighByte(areaWidth),
                               LowByte(areaHeight), HighByte(areaHeight)),
                       Command(kCan), PositionCommand(x, 0), Command(kGs, 'w', moduleWidth),
                       Command(kGs, 'h', height), Command(kGs, 'H', hri != 0),
                       Command(kGs, 'k', symbology, CountOf(bars)), bars, Command(kFf)});
    return 1; // whatever came of it
}

void PDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3, const NadrelChar *data,
                     int32_t hri) {
    AppendPdf417(StandardPdf417(p1, p2), moduleWidth, p3, data, hri);
}

void TruncatedPDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3, const NadrelChar *data,
                              int32_t hri) {
    AppendPdf417(TruncatedPdf417(p1, p2), moduleWidth, p3, data, hri);
}

void MicroPDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3, const NadrelChar *data,
                          int32_t hri) {
    AppendPdf417(MicroPdf417(p1, p2), moduleWidth, p3, data, hri);
}

void QRCodeSaveSpool(int32_t version, uint32_t eccLevel, int32_t moduleSize, const NadrelChar *data) {
    AppendMatrix(kQrCode, InRangeOrZero(version, 1, 40), EccLetter(eccLevel), InRangeOrZero(moduleSize, 1, 8),
                 ConvertData(data));
}

void DataMatrixSaveSpool(uint32_t p1, uint32_t p2, int32_t moduleSize, const NadrelChar *data) {
    AppendMatrix(kDataMatrix, static_cast<uint8_t>(p1), static_cast<uint8_t>(p2),
                 InRangeOrZero(moduleSize, 1, 8), ConvertData(data));
}

void MaxicodeSaveSpool(int32_t mode, const NadrelChar *data) {
    AppendMatrix(kMaxicode, InRangeOrZero(mode, 2, 6), 0, 0, ConvertData(data));
}

void GS1DatabarSaveSpool(int32_t type, int32_t segments, const NadrelChar *data) {
    const Bytes bars = ConvertData(data);
    AppendDirect(
        {Command(kGs, '1', InRangeOrZero(type, 0, 6), DatabarSegments(type, segments)), bars, Command(0)});
}
