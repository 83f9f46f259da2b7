#include "tests/image/Oracle.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace oracle {

namespace {

constexpr int32_t kPalette[8][3] = {{255, 255, 255}, {0, 0, 0},     {255, 0, 0},   {0, 255, 0},
                                    {0, 0, 255},     {255, 255, 0}, {255, 0, 255}, {0, 255, 255}};

struct DistanceTable {
    int32_t of[8][256][3];

    DistanceTable() {
        for (int k = 0; k < 8; ++k)
            for (int value = 0; value < 256; ++value)
                for (int channel = 0; channel < 3; ++channel)
                    of[k][value][channel] = (value - kPalette[k][channel]) * (value - kPalette[k][channel]);
    }
};

int32_t Clamp(int32_t value) {
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

size_t Index(int64_t index) {
    return static_cast<size_t>(index);
}

} // namespace

Dither::Dither(int32_t pixels, double gamma)
    : width(pixels), errorRowA(Index(pixels) * 3), errorRowB(Index(pixels) * 3), current(errorRowA.data()),
      next(errorRowB.data()) {
    gammaTable[0] = 0;
    for (int x = 1; x <= 254; ++x) {
        const int value = static_cast<int>(255.0 * std::pow(x / 255.0, gamma) + 0.5);
        gammaTable[Index(x)] = value > 255 ? 255 : value;
    }
    gammaTable[255] = 255;
}

void Dither::Reset() {
    errorRowA.assign(errorRowA.size(), 0);
    errorRowB.assign(errorRowB.size(), 0);
    current = errorRowA.data();
    next = errorRowB.data();
}

bool Dither::IsPure(const uint8_t *pixel, bool grey) const {
    for (int channel = 0; channel < 3; ++channel)
        if (pixel[channel] != 0 && pixel[channel] != 255)
            return false;
    return !grey || (pixel[0] == pixel[1] && pixel[1] == pixel[2]);
}

void Dither::DitherRow(uint8_t *row, bool grey) {
    static const DistanceTable distance;
    bool allPure = true;
    for (int32_t x = 0; x < width; ++x)
        allPure = allPure && IsPure(row + 3 * x, grey);
    if (allPure) {
        Reset();
        return;
    }
    std::swap(current, next);
    int32_t carry[3] = {0, 0, 0}; // red, green, blue
    for (int32_t x = 0; x < width; ++x) {
        uint8_t *const pixel = row + 3 * x;
        int32_t *const entering = current + 3 * x;
        int32_t *const leaving = next + 3 * x;
        bool untouched = true;
        for (int channel = 0; channel < 3; ++channel)
            untouched = untouched && entering[channel] == 0 && carry[channel] == 0;
        if (IsPure(pixel, grey) && untouched) {
            leaving[0] = leaving[1] = leaving[2] = 0;
            continue;
        }
        int32_t value[3] = {gammaTable[pixel[2]], gammaTable[pixel[1]], gammaTable[pixel[0]]};
        if (grey) {
            const int32_t luminance =
                static_cast<int32_t>(0.299 * value[0] + 0.587 * value[1] + 0.114 * value[2]);
            value[0] = value[1] = value[2] = luminance;
        }
        for (int channel = 0; channel < 3; ++channel)
            value[channel] = Clamp(value[channel] + carry[channel] + entering[channel]);
        int best = 0;
        int32_t bestDistance = 16581376;
        for (int k = 0; k < (grey ? 2 : 8); ++k) {
            const int32_t sum =
                distance.of[k][value[0]][0] + distance.of[k][value[1]][1] + distance.of[k][value[2]][2];
            if (sum < bestDistance) {
                bestDistance = sum;
                best = k;
            }
        }
        pixel[0] = static_cast<uint8_t>(kPalette[best][2]);
        pixel[1] = static_cast<uint8_t>(kPalette[best][1]);
        pixel[2] = static_cast<uint8_t>(kPalette[best][0]);
        for (int channel = 0; channel < 3; ++channel) {
            const int32_t e = value[channel] - kPalette[best][channel];
            const int32_t f = e - (e >> 2);
            carry[channel] = f >> 1;
            if (x > 0)
                leaving[channel - 3] += f >> 2;
            leaving[channel] = f >> 2;
        }
    }
}

namespace {

void EmitRun(Bytes &out, uint8_t value, int32_t count) {
    while (count > 58) {
        out.push_back(0xFA);
        out.push_back(value);
        count -= 58;
    }
    if (count > 0) {
        out.push_back(static_cast<uint8_t>(0xC0 + count));
        out.push_back(value);
    }
}

void EmitLiteral(Bytes &out, Bytes &list) {
    if (list.empty())
        return;
    out.push_back(static_cast<uint8_t>(0x80 + list.size()));
    out.insert(out.end(), list.begin(), list.end());
    list.clear();
}

} // namespace

Bytes CompressBand(const Bytes &band, int32_t lineBytes, int32_t lines) {
    Bytes out;
    if (lines >= 25) {
        const auto first = static_cast<ptrdiff_t>(lineBytes) * 24;
        out = CompressBand(Bytes(band.begin(), band.begin() + first), lineBytes, 24);
        const Bytes rest = CompressBand(Bytes(band.begin() + first, band.end()), lineBytes, lines - 24);
        out.insert(out.end(), rest.begin(), rest.end());
        return out;
    }
    const int64_t count = lines > 0 ? int64_t{lineBytes} * lines : 0;
    if (count == 0)
        return out;
    uint8_t value = band[0];
    int32_t run = 0;
    Bytes list;
    const auto moveToList = [&] {
        for (; run >= 1; --run) {
            if (list.size() == 58)
                EmitLiteral(out, list);
            list.push_back(value);
        }
    };
    for (int64_t i = 0; i < count; ++i) {
        const uint8_t byte = band[Index(i)];
        if (byte != value) {
            if (run > 3) {
                EmitRun(out, value, run);
                run = 0;
            }
            moveToList();
            value = byte;
            run = 1;
        } else {
            EmitLiteral(out, list);
            if (run >= 58) {
                EmitRun(out, value, run);
                run = 0;
            }
            ++run;
        }
    }
    if (run > 3) {
        EmitRun(out, value, run);
        run = 0;
    }
    moveToList();
    EmitLiteral(out, list);
    return out;
}

namespace {

// A loaded file: what lies behind the file header.
struct Loaded {
    Bytes buffer;

    int64_t Number(size_t at, int bytes) const {
        int64_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value |= static_cast<int64_t>(buffer[at + Index(i)]) << 8 * i;
        return value;
    }
    int32_t Width() const { return static_cast<int32_t>(Number(4, 4)); }
    int32_t Height() const { return static_cast<int32_t>(Number(8, 4)); }
    int BitCount() const { return static_cast<int>(Number(14, 2)); }

    // A byte of the pixel rows; 0 where the header's count or the file ends.
    uint8_t PixelByte(int64_t index) const {
        const int colours = BitCount() == 1 ? 2 : BitCount() == 4 ? 16 : BitCount() == 8 ? 256 : 0;
        const int64_t at = Number(0, 4) + colours * 4 + index;
        return index < Number(20, 4) && at < static_cast<int64_t>(buffer.size()) ? buffer[Index(at)]
                                                                                 : uint8_t{0};
    }
};

std::optional<Loaded> Load(const Bytes &file) {
    if (file.size() < 14 || file[0] != 'B' || file[1] != 'M')
        return std::nullopt;
    int64_t size = 0;
    for (size_t i = 0; i < 4; ++i)
        size |= static_cast<int64_t>(file[2 + i]) << 8 * i;
    if (size < 14 + 40 || size > static_cast<int64_t>(file.size()))
        return std::nullopt;
    return Loaded{Bytes(file.begin() + 14, file.begin() + static_cast<ptrdiff_t>(size))};
}

enum class Form { positioned, normal, compressed };

class Generator {
  public:
    Generator(const Loaded &loadedFile, Form outputForm, int32_t left, int32_t top)
        : loaded(loadedFile), form(outputForm), x(left), y(top) {}

    Bytes Generate() {
        const int depth = loaded.BitCount();
        if (depth != 1 && depth != 24)
            return {};
        const int32_t width = loaded.Width();
        const int32_t height = loaded.Height();
        lineBytes = static_cast<int32_t>(4 * ((int64_t{width} + 31) / 32));
        const int64_t stride = depth == 1 ? lineBytes : 3 * int64_t{width} + width % 4;
        band.assign(height > 0 ? Index(lineBytes) * 24 : 0, 0);
        Append({0x1D, 0x50, 0xB4, 0xB4});
        if (form != Form::compressed)
            Append({0x1B, 0x33, 0x18});
        Dither dither(height > 0 ? width : 0);
        for (int32_t i = 0; i < height; ++i) {
            Bytes row(Index(stride));
            for (int64_t j = 0; j < stride; ++j)
                row[Index(j)] = loaded.PixelByte((height - 1 - i) * stride + j);
            if (depth == 24)
                dither.DitherRow(row.data(), true);
            const Bytes line = depth == 24 ? PackDithered(row, width) : PackOneBit(row, width);
            std::copy(line.begin(), line.end(), band.begin() + int64_t{linesInBand} * lineBytes);
            ++linesInBand;
            if (linesInBand == 24)
                Emit(24);
        }
        if (linesInBand < 24)
            Emit(height > 0 ? height % 24 : 0);
        if (form != Form::compressed)
            Append({0x1B, 0x32});
        return output;
    }

  private:
    void Append(const Bytes &bytes) { output.insert(output.end(), bytes.begin(), bytes.end()); }

    Bytes PackDithered(const Bytes &row, int32_t width) const {
        Bytes line(Index(lineBytes));
        for (int32_t column = 0; column < width; ++column)
            if (row[Index(3 * column)] == 0 && row[Index(3 * column + 1)] == 0 &&
                row[Index(3 * column + 2)] == 0)
                line[Index(column / 8)] = static_cast<uint8_t>(line[Index(column / 8)] | 0x80 >> column % 8);
        return line;
    }

    Bytes PackOneBit(const Bytes &row, int32_t width) const {
        Bytes line(Index(lineBytes));
        for (int32_t i = 0; i < width / 8; ++i)
            line[Index(i)] =
                form == Form::positioned ? row[Index(i)] : static_cast<uint8_t>(255 - row[Index(i)]);
        if (form != Form::positioned)
            for (int32_t column = width / 8 * 8; column < width; ++column)
                if ((row[Index(column / 8)] & 0x80 >> column % 8) == 0)
                    line[Index(column / 8)] =
                        static_cast<uint8_t>(line[Index(column / 8)] | 0x80 >> column % 8);
        return line;
    }

    void Emit(int32_t n) {
        if (form == Form::compressed)
            EmitCompressedBand(n);
        else if (n != 0)
            EmitBand(n);
        band.assign(band.size(), 0);
        linesInBand = 0;
    }

    void EmitBand(int32_t n) {
        if (form == Form::positioned)
            Append({0x1B, 0x4F, Low(x), High(x), Low(y), High(y)});
        Append({0x1B, 0x58, 0x34, static_cast<uint8_t>(lineBytes), static_cast<uint8_t>(n)});
        Append(band);
        if (n != 24)
            Append({0x1B, 0x33, static_cast<uint8_t>(n)});
        Append({0x0A});
        y = static_cast<int32_t>(static_cast<uint32_t>(y) + static_cast<uint32_t>(n));
    }

    void EmitCompressedBand(int32_t n) {
        Append({0x1B, 0x58, 0x33, static_cast<uint8_t>(lineBytes), 0x18});
        Append(CompressBand(Bytes(band.begin(), band.begin() + int64_t{lineBytes} * n), lineBytes, n));
        Append({0x1B, 0x58, 0x32, 0x18});
    }

    static uint8_t Low(int32_t value) { return static_cast<uint8_t>(value % 256); }
    static uint8_t High(int32_t value) { return static_cast<uint8_t>(value / 256); }

    const Loaded &loaded;
    Form form;
    int32_t x;
    int32_t y;
    int32_t lineBytes = 0;
    int32_t linesInBand = 0;
    Bytes band;
    Bytes output;
};

std::optional<Bytes> Commands(const Bytes &file, Form form, int32_t x, int32_t y) {
    const std::optional<Loaded> loaded = Load(file);
    if (!loaded)
        return std::nullopt;
    return Generator(*loaded, form, x, y).Generate();
}

} // namespace

std::optional<Bytes> PositionedRaster(const Bytes &file, int32_t x, int32_t y) {
    return Commands(file, Form::positioned, x, y);
}

std::optional<Bytes> NormalRaster(const Bytes &file) {
    return Commands(file, Form::normal, 0, 0);
}

std::optional<Bytes> CompressedRaster(const Bytes &file) {
    return Commands(file, Form::compressed, 0, 0);
}

} // namespace oracle
