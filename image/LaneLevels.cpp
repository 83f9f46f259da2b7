// The luminances of a band, in two forms: by three look-ups of doubles for each pixel, and, on machines with
// the AVX-512 instructions for it, in integers for 16 pixels at a time.
//
// The wide form gives exactly what Luminance::Of gives. With N = 299 red + 587 green + 114 blue of the
// corrected levels, exact shares would add up to N / 1000. The doubles come so near to it that their
// truncated sum is the quotient wherever N is no multiple of 1000. Where it is one, their rounding decides
// between the quotient and one less: the greys, all of which are such colours, have a table for it, and for
// the others, about one colour in a thousand, the sum is taken in doubles here as well.
//
//     corrected levels   256 bytes are four registers: two look-ups among 128 bytes each, by seven bits of
//                        the level, and a choice by the eighth
//     rest             = 3 red + 3 green + 2 blue
//     eighths          = 37 red + 73 green + 14 blue + floor(rest / 8)     = floor(N / 8)
//     quotient         = floor(eighths / 125)                              = floor(N / 1000)
//
// A pixel's luminance lies in a lane of 32 bits, so four rows fit there together; what is then left to turn
// rows into steps is done with those four bytes at a time, at the place where the steps stand in the end.

#include "image/LaneLevels.h"

#include "image/Luminance.h"

#include <algorithm>
#include <bit>
#include <cstring>

// The MinGW compilers do not align what they keep on the stack as these registers need it.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__MINGW32__)
#define NADREL_HAS_WIDE_FORM
#pragma GCC diagnostic push
#if !defined(__clang__) // g++ 12 warns of values that this header leaves undefined on purpose
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop
#endif

namespace nadrel {
namespace {

constexpr int32_t kGroup = 16; // columns, and steps, that the wide form takes at a time

int32_t StepsOf(int32_t width) {
    return width + kSkew * (kLanes - 1);
}

uint32_t FourBytes(const uint8_t *bytes) {
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Four pixels at a time, by single bytes and by shifts of a word in turn: that keeps the machine's load and
// arithmetic units equally busy.
void LookUpRow(const uint8_t *row, int32_t width, uint8_t *to) {
    constexpr bool firstIsLowest = std::endian::native == std::endian::little;
    const Luminance &luminance = PrintedLuminance();
    int32_t x = 0;
    for (; firstIsLowest && x + 4 <= width; x += 4, row += 12, to += 4 * kLanes) {
        const uint32_t first = FourBytes(row);
        const uint32_t last = FourBytes(row + 8);
        to[0 * kLanes] = luminance.Of(first & 255, first >> 8 & 255, first >> 16 & 255);
        to[1 * kLanes] = luminance.Of(first >> 24, row[4], row[5]);
        to[2 * kLanes] = luminance.Of(row[6], row[7], last & 255);
        to[3 * kLanes] = luminance.Of(last >> 8 & 255, last >> 16 & 255, last >> 24);
    }
    for (; x < width; ++x, row += 3, to += kLanes)
        *to = luminance.Of(row[0], row[1], row[2]);
}

void SpreadByLookUp(const BandRows &rows, int32_t width, uint8_t *levels) {
    for (int32_t k = 0; k < rows.count; ++k)
        LookUpRow(rows.Row(k), width, levels + k * kSkew * kLanes + k);
}

#if defined(NADREL_HAS_WIDE_FORM)

#define NADREL_WIDE __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vnni")))

constexpr int32_t kTogether = 4; // rows in a lane of 32 bits
constexpr int32_t kTeams = kLanes / kTogether;
constexpr size_t kTeamBytes = kTogether * kGroup;

// What the wide form looks up.
struct WideTables {
    WideTables();

    alignas(64) uint8_t corrected[256]; // of each level
    alignas(64) uint8_t grey[256];      // luminance of each corrected level
    alignas(64) uint8_t order[64];      // blue, green, red and, so that greys are found easily, blue again
};

WideTables::WideTables() {
    const GammaTable gamma = MakeGammaTable(kPrintedGamma);
    const Luminance uncorrected(MakeGammaTable(1.0));
    for (uint32_t level = 0; level < 256; ++level) {
        corrected[level] = static_cast<uint8_t>(gamma[level]);
        grey[level] = uncorrected.Of(level, level, level);
    }
    for (size_t i = 0; i < 64; ++i)
        order[i] = static_cast<uint8_t>(i / 4 * 3 + i % 4 % 3);
}

// 256 bytes in registers.
struct Table {
    NADREL_WIDE explicit Table(const uint8_t *bytes)
        : quarters{_mm512_load_si512(bytes), _mm512_load_si512(bytes + 64), _mm512_load_si512(bytes + 128),
                   _mm512_load_si512(bytes + 192)} {}

    NADREL_WIDE __m512i Of(__m512i bytes) const {
        const __m512i lower = _mm512_permutex2var_epi8(quarters[0], bytes, quarters[1]);
        const __m512i upper = _mm512_permutex2var_epi8(quarters[2], bytes, quarters[3]);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), lower, upper);
    }

    __m512i quarters[4];
};

// The pixels of 16 columns, and anything behind them; 0 where they lie outside the row.
NADREL_WIDE inline __m512i Pixels(const uint8_t *row, int32_t column, int32_t width) {
    constexpr int32_t columnsOfALoad = 22;
    if (column >= 0 && column + columnsOfALoad <= width)
        return _mm512_loadu_si512(row + 3 * size_t(column));
    const int32_t first = std::max(column, 0), end = std::min(column + kGroup, width);
    if (first >= end)
        return _mm512_setzero_si512();
    const uint64_t inside = ~uint64_t{0} >> (64 - 3 * (end - first)) << 3 * (first - column);
    return _mm512_maskz_loadu_epi8(inside, row + 3 * ptrdiff_t{column});
}

NADREL_WIDE inline __m512d Share(__m256i colours, int shift, double share) {
    const __m256i level = _mm256_and_si256(_mm256_srli_epi32(colours, shift), _mm256_set1_epi32(255));
    return _mm512_mul_pd(_mm512_cvtepi32_pd(level), _mm512_set1_pd(share));
}

NADREL_WIDE inline __m256i SumsOfEight(__m256i colours) {
    const __m512d redAndGreen = _mm512_add_pd(Share(colours, 16, kRedShare), Share(colours, 8, kGreenShare));
    return _mm512_cvttpd_epi32(_mm512_add_pd(redAndGreen, Share(colours, 0, kBlueShare)));
}

// In doubles, as the luminance is defined.
NADREL_WIDE inline __m512i Sums(__m512i colours) {
    const __m256i low = SumsOfEight(_mm512_castsi512_si256(colours));
    const __m256i high = SumsOfEight(_mm512_extracti64x4_epi64(colours, 1));
    return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}

NADREL_WIDE inline __m512i Weighted(__m512i sum, __m512i colours, int red, int green, int blue) {
    return _mm512_dpbusd_epi32(sum, colours, _mm512_set1_epi32(red << 16 | green << 8 | blue));
}

// 16 pixels of corrected levels, a lane of 32 bits each: blue in the lowest byte, and in the highest.
struct Sixteen {
    __m512i colours;
    __m512i luminances; // to be settled where N is a multiple of 1000
    __m512i remainder;  // 0 there

    NADREL_WIDE void Divide() {
        const __m512i rest = Weighted(_mm512_setzero_si512(), colours, 3, 3, 2);
        const __m512i eighths = Weighted(_mm512_srli_epi32(rest, 3), colours, 37, 73, 14);
        constexpr int inverse = ((1 << 22) + 124) / 125;
        luminances = _mm512_srli_epi32(_mm512_mulhi_epu16(eighths, _mm512_set1_epi32(inverse)), 22 - 16);
        const __m512i left = _mm512_dpwssd_epi32(eighths, luminances, _mm512_set1_epi32(-125 & 0xFFFF));
        constexpr int firstOrBothOthers = 0xF8;
        remainder = _mm512_ternarylogic_epi32(left, rest, _mm512_set1_epi32(7), firstOrBothOthers);
    }

    NADREL_WIDE void Settle(const uint8_t *greys) {
        const __mmask16 open = _mm512_testn_epi32_mask(remainder, remainder);
        const __mmask16 noGreys = _mm512_mask_cmpneq_epi32_mask(open, colours, _mm512_rol_epi32(colours, 8));
        if (noGreys != 0) [[unlikely]]
            luminances = Sums(colours);
        else
            luminances = _mm512_mask_mov_epi32(luminances, open, Table(greys).Of(luminances));
    }
};

NADREL_WIDE inline bool AnyIsOpen(const Sixteen (&rows)[kTogether]) {
    const __m512i least = _mm512_min_epu32(_mm512_min_epu32(rows[0].remainder, rows[1].remainder),
                                           _mm512_min_epu32(rows[2].remainder, rows[3].remainder));
    return _mm512_testn_epi32_mask(least, least) != 0;
}

NADREL_WIDE inline __m512i Together(const Sixteen (&rows)[kTogether]) {
    const __m512i second = _mm512_slli_epi32(rows[1].luminances, 8);
    const __m512i third = _mm512_slli_epi32(rows[2].luminances, 16);
    const __m512i fourth = _mm512_slli_epi32(rows[3].luminances, 24);
    constexpr int anyOfThree = 0xFE;
    return _mm512_or_si512(rows[0].luminances, _mm512_ternarylogic_epi32(second, third, fourth, anyOfThree));
}

// Rows `lane`..`lane` + 3: at every 16 steps of the levels, their bytes of these steps as one register.
NADREL_WIDE void SpreadTeam(const BandRows &rows, int32_t lane, int32_t width, const WideTables &tables,
                            uint8_t *levels) {
    const Table corrected(tables.corrected);
    const __m512i order = _mm512_load_si512(tables.order);
    for (int32_t step = 0; step < StepsOf(width); step += kGroup, levels += kGroup * kLanes) {
        Sixteen team[kTogether];
        for (int32_t k = lane; k < lane + kTogether; ++k) {
            Sixteen &sixteen = team[k - lane];
            const int32_t present = k < rows.count ? width : 0;
            const __m512i pixels = Pixels(rows.Row(std::min(k, rows.count - 1)), step - kSkew * k, present);
            sixteen.colours = corrected.Of(_mm512_permutexvar_epi8(order, pixels));
            sixteen.Divide();
        }
        if (AnyIsOpen(team))
            for (Sixteen &sixteen : team)
                sixteen.Settle(tables.grey);
        _mm512_storeu_si512(levels, Together(team));
    }
}

// Steps 4 q..4 q + 3 of 16: those of lanes 0..15, and of lanes 16..23, two in a register.
template <int q>
NADREL_WIDE inline void StoreSteps(const __m512i (&upper)[4], const __m512i (&lower)[2], uint8_t *levels) {
    for (int i = 0; i < 4; ++i) {
        uint8_t *const to = levels + (4 * q + i) * kLanes;
        const __m128i two = _mm512_extracti32x4_epi32(lower[i / 2], q);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm512_extracti32x4_epi32(upper[i], q));
        _mm_storeu_si64(to + 16, i % 2 == 0 ? two : _mm_unpackhi_epi64(two, two));
    }
}

// 16 steps: from four rows after four rows to lane after lane.
NADREL_WIDE inline void Transpose(uint8_t *levels) {
    __m512i teams[kTeams];
    for (size_t i = 0; i < kTeams; ++i)
        teams[i] = _mm512_loadu_si512(levels + i * kTeamBytes);
    const __m512i low01 = _mm512_unpacklo_epi32(teams[0], teams[1]);
    const __m512i low23 = _mm512_unpacklo_epi32(teams[2], teams[3]);
    const __m512i high01 = _mm512_unpackhi_epi32(teams[0], teams[1]);
    const __m512i high23 = _mm512_unpackhi_epi32(teams[2], teams[3]);
    const __m512i upper[] = {_mm512_unpacklo_epi64(low01, low23), _mm512_unpackhi_epi64(low01, low23),
                             _mm512_unpacklo_epi64(high01, high23), _mm512_unpackhi_epi64(high01, high23)};
    const __m512i lower[] = {_mm512_unpacklo_epi32(teams[4], teams[5]),
                             _mm512_unpackhi_epi32(teams[4], teams[5])};
    StoreSteps<0>(upper, lower, levels);
    StoreSteps<1>(upper, lower, levels);
    StoreSteps<2>(upper, lower, levels);
    StoreSteps<3>(upper, lower, levels);
}

NADREL_WIDE void SpreadWide(const BandRows &rows, int32_t width, uint8_t *levels) {
    static const WideTables tables;
    for (int32_t lane = 0; lane < rows.count; lane += kTogether)
        SpreadTeam(rows, lane, width, tables, levels + lane / kTogether * ptrdiff_t{kTeamBytes});
    for (int32_t step = 0; step < StepsOf(width); step += kGroup, levels += kGroup * kLanes)
        Transpose(levels);
}

bool HasWideInstructions() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
           __builtin_cpu_supports("avx512vnni");
}

#endif

} // namespace

size_t LaneLevelBytes(int32_t width) {
    return (static_cast<size_t>(StepsOf(width)) + kGroup) * kLanes;
}

std::span<const LuminanceForm> LuminanceForms() {
#if defined(NADREL_HAS_WIDE_FORM)
    static const LuminanceForm forms[] = {{"LookUp", SpreadByLookUp}, {"Wide", SpreadWide}};
    static const size_t count = HasWideInstructions() ? 2 : 1;
    return std::span(forms).first(count);
#else
    static const LuminanceForm forms[] = {{"LookUp", SpreadByLookUp}};
    return forms;
#endif
}

} // namespace nadrel
