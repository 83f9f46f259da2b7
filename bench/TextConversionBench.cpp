#include "platform/TextConversion.h"
#include "platform/linux/AnsiCodePage.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string_view>

namespace {

// Converts the text again and again, as one line of a receipt.
void Convert(benchmark::State &state, uint32_t codePage, std::u16string_view text) {
    if (!platform::SetAnsiCodePage(codePage))
        state.SkipWithError("unknown code page");
    uint8_t bytes[128];
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(platform::ToAnsi(text.data(), text.size(), bytes, sizeof bytes));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void ThirtyTwoAsciiCharacters(benchmark::State &state) {
    Convert(state, 1252, u"2 x Coffee, 1 x Tea        12.50");
}

void ThirtyTwoAccentedCharacters(benchmark::State &state) {
    Convert(
        state, 1252,
        u"\u00E0\u00E9\u00E8\u00EA\u00EB\u00EE\u00EF\u00F4\u00F9\u00FB\u00FC\u00E7\u00F1\u00E4\u00F6\u00DF"
        u"\u00C0\u00C9\u00C8\u00CA\u00CB\u00CE\u00CF\u00D4\u00D9\u00DB\u00DC\u00C7\u00D1\u00C4\u00D6\u20AC");
}

// Three quarters of them common ones, one quarter from the extension of the page.
void ThirtyTwoHanCharacters(benchmark::State &state) {
    Convert(
        state, 936,
        u"\u4E2D\u6587\u6536\u636E\u5546\u54C1\u6570\u91CF\u5355\u4EF7\u91D1\u989D\u5408\u8BA1\u8C22\u8C22"
        u"\u4E02\u4E04\u4E05\u4E06\u6A11\u6A12\u6A13\u6A14\u7842\u7844\u7846\u9A40\u9A41\u9A42\u9A43\u9A44");
}

BENCHMARK(ThirtyTwoAsciiCharacters);
BENCHMARK(ThirtyTwoAccentedCharacters);
BENCHMARK(ThirtyTwoHanCharacters);

} // namespace
