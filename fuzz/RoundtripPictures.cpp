#include "fuzz/Roundtrip.h"

#include "tests/image/Oracle.h"

// Pictures of the round trip: the dots that the printer is to see follow from the pixels alone.

namespace fuzz {

namespace {

constexpr char16_t kPicture[] = u"picture";
constexpr int kBand = 24;

struct Picture {
    int depth = 1; // bits a pixel
    int width = 0;
    int height = 0;    // what the file says: below zero where it is stored from the top down
    Bytes pixels = {}; // from the top, of one bit a pixel a byte, of 24 blue, green and red

    bool Prints() const { return depth == 1 || depth == 24; }
    int Lines() const { return std::max(height, 0); }
    int LineBytes() const { return (width + 31) / 32 * 4; }
    size_t RowBytes() const { return static_cast<size_t>(depth == 24 ? 3 * width : width); }
};

Bytes Pattern(Roundtrip &trip, size_t count) {
    const int step = trip.Byte(), slope = trip.Byte(), period = trip.Number(1, 300);
    const Bytes part = trip.Data(40);
    Bytes pattern(count);
    for (size_t i = 0; i < count; ++i) {
        const auto place = static_cast<int>(i);
        pattern[i] = static_cast<uint8_t>(place / period * step + (place * slope >> 4));
        if (!part.empty())
            pattern[i] = static_cast<uint8_t>(pattern[i] + part[i % part.size()]);
    }
    return pattern;
}

// White and black in between, which is not dithered.
void MakePure(Bytes &pixels) {
    for (size_t i = 0; i + 3 <= pixels.size(); i += 3)
        if (pixels[i] % 4 < 2)
            pixels[i] = pixels[i + 1] = pixels[i + 2] = pixels[i] % 2 != 0 ? 255 : 0;
}

nadrel::BmpBuilder FileOf(const Picture &picture) {
    const auto at = [&](int32_t x, int32_t y) {
        return picture.pixels.data() + picture.RowBytes() * static_cast<size_t>(y) +
               static_cast<size_t>(picture.depth == 24 ? 3 * x : x);
    };
    if (picture.depth == 24)
        return nadrel::BmpBuilder::Colour(picture.width, picture.Lines(), [&](int32_t x, int32_t y) {
            return nadrel::Pixel{at(x, y)[2], at(x, y)[1], at(x, y)[0]};
        });
    return nadrel::BmpBuilder::OneBit(picture.width, picture.Lines(),
                                      [&](int32_t x, int32_t y) { return *at(x, y); });
}

Picture Take(Roundtrip &trip) {
    static constexpr int kDepths[] = {1, 1, 1, 24, 24, 24, 4, 8};
    Picture picture{.depth = kDepths[trip.Number(0, 7)]};
    picture.width = trip.Byte() < 250 ? trip.Number(0, 100) : trip.Number(100, 2016);
    picture.height = trip.Byte() < 250 ? trip.Number(0, 60) : -trip.Number(1, 60);
    picture.pixels = Pattern(trip, picture.RowBytes() * static_cast<size_t>(picture.Lines()));
    if (picture.depth == 24 && trip.Flag())
        MakePure(picture.pixels);
    for (uint8_t &pixel : picture.pixels)
        pixel = static_cast<uint8_t>(picture.depth == 24 ? pixel : pixel >> 2 & 1);
    nadrel::BmpBuilder file = FileOf(picture);
    file.bitCount = static_cast<uint16_t>(picture.depth);
    file.height = picture.height;
    trip.library.Files().Put(kPicture, file.Bytes());
    return picture;
}

// One byte for each pixel: whether it prints. Pixels from `columns` on do not.
Bytes Printed(const Picture &picture, bool set, int columns) {
    Bytes printed(static_cast<size_t>(picture.width * picture.Lines()));
    oracle::Dither dither(picture.width);
    for (int y = 0; y < picture.Lines(); ++y) {
        const auto begin = picture.pixels.begin() + static_cast<ptrdiff_t>(picture.RowBytes()) * y;
        Bytes row(begin, begin + static_cast<ptrdiff_t>(picture.RowBytes()));
        if (picture.depth == 24)
            dither.DitherRow(row.data(), true);
        for (int x = 0; x < columns; ++x)
            printed[static_cast<size_t>(y * picture.width + x)] =
                picture.depth == 24 ? row[static_cast<size_t>(3 * x)] == 0
                                    : (row[static_cast<size_t>(x)] != 0) == set;
    }
    return printed;
}

Bytes Dots(const Picture &picture, const Bytes &printed, int top, int lines) {
    const int lineBytes = picture.LineBytes();
    Bytes dots(static_cast<size_t>(lineBytes * lines));
    for (int y = 0; y < std::min(lines, picture.Lines() - top); ++y)
        for (int x = 0; x < picture.width; ++x)
            if (printed[static_cast<size_t>((top + y) * picture.width + x)] != 0)
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
    const int32_t x = trip.Any(), y = std::min(trip.Any(), 1 << 30);
    trip.Stored(BmpSaveSpool(kPicture, x, y));
    if (!picture.Prints())
        return;
    const Bytes printed = Printed(picture, true, picture.depth == 1 ? picture.width / 8 * 8 : picture.width);
    ExpectBegin(trip);
    for (int top = 0; top < picture.Lines(); top += kBand) {
        trip.Expect(Kind::Position, Operands().W(x).W(y + top));
        ExpectBand(trip, picture.LineBytes(), std::min(kBand, picture.Lines() - top),
                   Dots(picture, printed, top, kBand));
    }
    trip.Expect(Kind::DefaultLineSpacing);
}

void NormalPicture(Roundtrip &trip) {
    const Picture picture = Take(trip);
    NormalBmpSaveSpool(kPicture);
    if (!picture.Prints())
        return;
    const Bytes printed = Printed(picture, false, picture.width);
    ExpectBegin(trip);
    for (int top = 0; top < picture.Lines(); top += kBand)
        ExpectBand(trip, picture.LineBytes(), std::min(kBand, picture.Lines() - top),
                   Dots(picture, printed, top, kBand));
    trip.Expect(Kind::DefaultLineSpacing);
}

void CompressedPicture(Roundtrip &trip) {
    const Picture picture = Take(trip);
    CompressedBmpSaveSpool(kPicture);
    if (!picture.Prints())
        return;
    const Bytes printed = Printed(picture, false, picture.width);
    trip.Expect(Kind::MotionUnits, Operands().B(180).B(180));
    for (int top = 0; top <= picture.Lines(); top += kBand) {
        const Bytes dots = Dots(picture, printed, top, std::min(kBand, picture.Lines() - top));
        trip.Expect(Kind::CompressedRaster, Operands().B(picture.LineBytes()).B(kBand).Data(dots));
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
