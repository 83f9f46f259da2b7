#include "fuzz/Roundtrip.h"

// Pictures of the round trip: the dots that the printer is to see follow from the pixels alone.

namespace fuzz {

namespace {

constexpr char16_t kPicture[] = u"picture";
constexpr int kBand = 24;

struct Picture {
    int width, height;
    Bytes pixels; // a pixel a byte, from the top

    bool At(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)] != 0; }
    int LineBytes() const { return (width + 31) / 32 * 4; }
};

Picture Take(Roundtrip &trip) {
    Picture picture{trip.Number(1, 100), trip.Number(0, 60), {}};
    const int pattern = trip.Byte();
    const int period = trip.Number(1, 40);
    for (int i = 0; i < picture.width * picture.height; ++i)
        picture.pixels.push_back(static_cast<uint8_t>((i / period * pattern + i * (pattern / 16)) >> 2 & 1));
    trip.library.Files().Put(
        kPicture, nadrel::BmpBuilder::OneBit(picture.width, picture.height, [&](int32_t x, int32_t y) {
                      return picture.At(x, y);
                  }).Bytes());
    return picture;
}

// Lines of dots; pixels from `columns` on do not print.
Bytes Dots(const Picture &picture, int top, int lines, bool printing, int columns) {
    const int lineBytes = picture.LineBytes();
    Bytes dots(static_cast<size_t>(lineBytes * lines));
    for (int y = 0; y < std::min(lines, picture.height - top); ++y)
        for (int x = 0; x < columns; ++x)
            if (picture.At(x, top + y) == printing)
                dots[static_cast<size_t>(y * lineBytes + x / 8)] |= static_cast<uint8_t>(0x80 >> x % 8);
    return dots;
}

void ExpectBand(Roundtrip &trip, int lineBytes, int lines, const Bytes &dots) {
    trip.Expect(Kind::Raster, Operands().B(lineBytes).B(lines).Data(dots));
    if (lines < kBand)
        trip.Expect(Kind::LineSpacing, Operands().B(lines));
    trip.Expect(Kind::LineFeed);
}

void ExpectBegin(Roundtrip &trip) {
    trip.Expect(Kind::MotionUnits, Operands().B(180).B(180));
    trip.Expect(Kind::LineSpacing, Operands().B(kBand));
}

void PositionedPicture(Roundtrip &trip) {
    const Picture picture = Take(trip);
    const int x = trip.Word(), y = trip.Number(0, 60000);
    BmpSaveSpool(kPicture, x, y);
    ExpectBegin(trip);
    for (int top = 0; top < picture.height; top += kBand) {
        trip.Expect(Kind::Position, Operands().W(x).W(y + top));
        ExpectBand(trip, picture.LineBytes(), std::min(kBand, picture.height - top),
                   Dots(picture, top, kBand, true, picture.width / 8 * 8));
    }
    trip.Expect(Kind::DefaultLineSpacing);
}

void NormalPicture(Roundtrip &trip) {
    const Picture picture = Take(trip);
    NormalBmpSaveSpool(kPicture);
    ExpectBegin(trip);
    for (int top = 0; top < picture.height; top += kBand)
        ExpectBand(trip, picture.LineBytes(), std::min(kBand, picture.height - top),
                   Dots(picture, top, kBand, false, picture.width));
    trip.Expect(Kind::DefaultLineSpacing);
}

void CompressedPicture(Roundtrip &trip) {
    const Picture picture = Take(trip);
    CompressedBmpSaveSpool(kPicture);
    trip.Expect(Kind::MotionUnits, Operands().B(180).B(180));
    for (int top = 0; top <= picture.height; top += kBand) {
        const int lines = std::min(kBand, picture.height - top);
        trip.Expect(
            Kind::CompressedRaster,
            Operands().B(picture.LineBytes()).B(kBand).Data(Dots(picture, top, lines, false, picture.width)));
        trip.Expect(Kind::EndOfCompressedRaster, Operands().B(kBand));
    }
}

constexpr RoundtripCall kCalls[] = {
    PositionedPicture,
    NormalPicture,
    CompressedPicture,
};

} // namespace

std::span<const RoundtripCall> PictureCalls() {
    return kCalls;
}

} // namespace fuzz
