#include "api/NadrelPrinter.h"
#include "bench/CoreClock.h"
#include "bench/Pictures.h"
#include "bench/PseudoTerminalLink.h"
#include "image/BandDither.h"
#include "image/Compressor.h"
#include "image/Dither.h"
#include "image/LaneLevels.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

// What pictures cost: from a 576 x 4000 bitmap file in the page cache to commands in the spool, and the parts
// of it. An iteration is a pixel, or a byte where bands are compressed.
namespace {

using bench::kPictureHeight;
using bench::kPictureWidth;
using nadrel::BandRows;
using nadrel::kBandLines;

constexpr size_t kStride = size_t{3} * kPictureWidth;
constexpr size_t kLineBytes = kPictureWidth / 8;
constexpr auto kPixels = static_cast<int64_t>(bench::kPicturePixels);

struct Subject {
    const char *name;
    bench::Colour (*at)(int32_t x, int32_t y);
};

constexpr Subject kPhotograph = {"photograph", bench::Photograph};
constexpr Subject kGreyPhotograph = {"grey_photograph", bench::GreyPhotograph};
constexpr Subject kText = {"text", bench::Text};
constexpr Subject kWhite = {"white", bench::White};

void PrintPositioned(const char16_t *name) {
    BmpSaveSpool(name, 0, 0);
}

void FromFileToSpool(benchmark::State &state, const Subject &subject, void (*print)(const char16_t *name)) {
    const bench::PseudoTerminalLink link;
    const bench::PictureFile file(subject.at);
    const std::u16string name = file.Name();
    while (state.KeepRunningBatch(kPixels)) {
        ClearSpool();
        print(name.c_str());
    }
    bench::ReportAt4GHz(state);
}

// How much longer the compressed form takes; both in turn, each at its best.
void CompressedAgainstNormal(benchmark::State &state, const Subject &subject) {
    const bench::PseudoTerminalLink link;
    const bench::PictureFile file(subject.at);
    const std::u16string name = file.Name();
    const auto seconds = [&](auto print) {
        ClearSpool();
        const double start = bench::ThreadSeconds();
        print(name.c_str());
        return bench::ThreadSeconds() - start;
    };
    double normal = std::numeric_limits<double>::max();
    double compressed = normal;
    for (auto _ : state) {
        normal = std::min(normal, seconds(NormalBmpSaveSpool));
        compressed = std::min(compressed, seconds(CompressedBmpSaveSpool));
    }
    state.counters["times"] = compressed / normal;
}

// Pixels in memory, a band at a time.
void ConvertBands(nadrel::BandDither &dither, const std::vector<uint8_t> &bmp, std::vector<uint8_t> &lines) {
    const uint8_t *top = bmp.data() + bmp.size() - kStride;
    for (int32_t y = 0; y < kPictureHeight; y += kBandLines) {
        const BandRows rows{top - static_cast<size_t>(y) * kStride, kStride,
                            std::min(kBandLines, kPictureHeight - y)};
        dither.Convert(rows, &lines[static_cast<size_t>(y) * kLineBytes], kLineBytes);
    }
}

void DitherBands(benchmark::State &state, nadrel::MakeDither make) {
    const std::vector<uint8_t> bmp = bench::BmpOf(bench::Photograph);
    std::vector<uint8_t> lines(kLineBytes * kPictureHeight);
    const auto dither = make(kPictureWidth);
    while (state.KeepRunningBatch(kPixels))
        ConvertBands(*dither, bmp, lines);
    bench::ReportAt4GHz(state);
}

std::unique_ptr<nadrel::BandDither> MakeWithLookUps(int32_t width) {
    return nadrel::MakeBandDither(width, nadrel::LuminanceForms().front().spread);
}

std::unique_ptr<nadrel::BandDither> MakePortable(int32_t width) {
    return std::make_unique<nadrel::PortableDither>(width);
}

// Three channels, row by row, each put back before it is reduced again.
void DitherRows(benchmark::State &state) {
    const std::vector<uint8_t> bmp = bench::BmpOf(bench::Photograph);
    std::vector<uint8_t> row(kStride);
    nadrel::Dither dither;
    dither.Begin(kPictureWidth, nadrel::Dither::kDefaultKernel, nadrel::Dither::kDefaultGamma);
    while (state.KeepRunningBatch(kPixels))
        for (size_t y = 0; y < kPictureHeight; ++y) {
            std::copy_n(&bmp[bmp.size() - (y + 1) * kStride], kStride, row.begin());
            dither.DitherRow(row.data(), true);
        }
    bench::ReportAt4GHz(state);
}

// The lines of a picture, and behind them what the compressor may read.
std::vector<uint8_t> LinesOf(const Subject &subject) {
    std::vector<uint8_t> lines(kLineBytes * kPictureHeight + nadrel::kCompressorSlack);
    ConvertBands(*nadrel::MakeBandDither(kPictureWidth), bench::BmpOf(subject.at), lines);
    return lines;
}

constexpr size_t kBandBytes = kBandLines * kLineBytes;
constexpr size_t kBands = kPictureHeight / kBandLines;

void CompressBands(const std::vector<uint8_t> &lines, std::vector<uint8_t> &block) {
    for (size_t band = 0; band < kBands; ++band) {
        nadrel::RasterOutput output{std::span(block)};
        nadrel::Compressor compressor(output);
        compressor.CompressBand(&lines[band * kBandBytes], kLineBytes, kBandLines);
        benchmark::DoNotOptimize(output.Length());
    }
}

// The same tokens, found by looking at one byte after the other.
class BytewiseCompressor {
  public:
    explicit BytewiseCompressor(uint8_t *to) : out(to) {}

    void Compress(const uint8_t *band, size_t count) {
        value = band[0];
        for (size_t i = 0; i < count; ++i)
            Take(band[i]);
        End();
    }

    const uint8_t *Out() const { return out; }

  private:
    void Take(uint8_t byte) {
        if (byte != value) {
            End(false);
            value = byte;
            run = 1;
            return;
        }
        EmitList();
        if (run >= 58)
            EmitRun();
        ++run;
    }

    void End(bool last = true) {
        if (run > 3)
            EmitRun();
        for (; run >= 1; --run) {
            if (listed == 58)
                EmitList();
            list[listed++] = value;
        }
        if (last)
            EmitList();
    }

    void EmitRun() {
        *out++ = static_cast<uint8_t>(0xC0 + run);
        *out++ = value;
        run = 0;
    }

    void EmitList() {
        if (listed == 0)
            return;
        *out++ = static_cast<uint8_t>(0x80 + listed);
        out = std::copy_n(list, listed, out);
        listed = 0;
    }

    uint8_t *out;
    uint8_t list[58] = {};
    uint32_t listed = 0;
    uint32_t run = 0;
    uint8_t value = 0;
};

void CompressBandsBytewise(const std::vector<uint8_t> &lines, std::vector<uint8_t> &block) {
    for (size_t band = 0; band < kBands; ++band) {
        BytewiseCompressor compressor(block.data());
        compressor.Compress(&lines[band * kBandBytes], kBandBytes);
        benchmark::DoNotOptimize(compressor.Out());
    }
}

void Compress(benchmark::State &state, const Subject &subject) {
    const std::vector<uint8_t> lines = LinesOf(subject);
    std::vector<uint8_t> block(2 * kBandBytes);
    while (state.KeepRunningBatch(kBands * kBandBytes))
        CompressBands(lines, block);
    bench::ReportAt4GHz(state);
}

// The counter `times` says how many times as long the bytewise compressor takes; both in turn, each at its
// best.
void CompressAgainstBytewise(benchmark::State &state, const Subject &subject) {
    const std::vector<uint8_t> lines = LinesOf(subject);
    std::vector<uint8_t> block(2 * kBandBytes);
    const auto seconds = [&](auto compress) {
        const double start = bench::ThreadSeconds();
        compress(lines, block);
        return bench::ThreadSeconds() - start;
    };
    double fast = std::numeric_limits<double>::max();
    double bytewise = fast;
    for (auto _ : state) {
        fast = std::min(fast, seconds(CompressBands));
        bytewise = std::min(bytewise, seconds(CompressBandsBytewise));
    }
    state.counters["times"] = bytewise / fast;
}

} // namespace

BENCHMARK_CAPTURE(FromFileToSpool, normal_photograph, kPhotograph, NormalBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, normal_grey_photograph, kGreyPhotograph, NormalBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, normal_text, kText, NormalBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, normal_white, kWhite, NormalBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, positioned_photograph, kPhotograph, PrintPositioned);
BENCHMARK_CAPTURE(FromFileToSpool, compressed_photograph, kPhotograph, CompressedBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, compressed_text, kText, CompressedBmpSaveSpool);
BENCHMARK_CAPTURE(FromFileToSpool, compressed_white, kWhite, CompressedBmpSaveSpool);
BENCHMARK_CAPTURE(CompressedAgainstNormal, photograph, kPhotograph);
BENCHMARK_CAPTURE(CompressedAgainstNormal, text, kText);
BENCHMARK_CAPTURE(CompressedAgainstNormal, white, kWhite);
BENCHMARK_CAPTURE(DitherBands, fastest, nadrel::MakeBandDither);
BENCHMARK_CAPTURE(DitherBands, look_ups, MakeWithLookUps);
BENCHMARK_CAPTURE(DitherBands, portable, MakePortable);
BENCHMARK(DitherRows);
BENCHMARK_CAPTURE(Compress, photograph, kPhotograph);
BENCHMARK_CAPTURE(Compress, text, kText);
BENCHMARK_CAPTURE(Compress, white, kWhite);
BENCHMARK_CAPTURE(CompressAgainstBytewise, photograph, kPhotograph);
BENCHMARK_CAPTURE(CompressAgainstBytewise, text, kText);
BENCHMARK_CAPTURE(CompressAgainstBytewise, white, kWhite);
