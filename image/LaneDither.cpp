// The fast dither: 24 rows at once, one in each byte of two SSE2 registers.
//
// The error that enters pixel x of a row comes from pixels x and x + 1 of the row above (see BandDither). So
// a row may follow three pixels behind the one above it, and all rows of a band run at the same time, each in
// a lane: at step i, lane k is at column i - 3k. What a row hands down moves one lane up and waits a step;
// what the last lane hands down is kept for the first lane of the next band.
//
//     step i:      lane 0   column i
//                  lane 1      column i - 3
//                  lane 2         column i - 6 ...
//
// Everything a lane computes fits a byte when it is kept negated and with a bias: then the saturating
// addition clamps where the value must be clamped (0 and 255), and the average with 0, which rounds up,
// halves as a shift of the number itself does, which rounds down.
//
//     n     = 127 - value                       -128..127, white below 0
//     u     = n as unsigned, less 1 if white    = 127 - e            0..254
//     kept  = u - (u >> 2)                      =  96 - f            f = e - (e >> 2)
//     carry = average(kept, 0)                  =  48 - (f >> 1)
//     share = average(carry, 0)                 =  24 - q            q = f >> 2
//     n of the next pixel = saturate((127 - luminance) + (carry + share + share' - 96))
//
// Pixels before the first column are black and hand nothing on, and what is computed behind the last is not
// looked at; only where a row begins and ends must the share that would cross its border be left out. A row
// of nothing but black and white takes in no errors.
//
// The signs of n are gathered as one byte for each eight rows and step, and turned into lines of dots at the
// end. A band of nothing but black and white, as logos and text are, needs none of this: its pixels are its
// dots.

#include "image/BandDither.h"
#include "image/LaneLevels.h"

#if defined(__SSE2__) || defined(_M_X64)

#include <algorithm>
#include <array>
#include <cstring>
#include <emmintrin.h>

namespace nadrel {
namespace {

constexpr int32_t kLag = kSkew * kLanes; // columns that the next band's first row would be behind
// What the last lane hands down at step i, its column i - 69, enters the next row one column further left.
constexpr int32_t kHandedLag = kLag - 2;
constexpr size_t kOctets = kLanes / 8; // groups of eight lanes

// What a pixel without an error leaves, and the bias of the sum, as they are kept.
constexpr char kNoCarry = 48;
constexpr char kNoShare = 24;
constexpr char kNothingEnters = 2 * kNoShare;
constexpr char kBias = -(kNoCarry + kNothingEnters);

const __m128i *Vector(const void *bytes) {
    return static_cast<const __m128i *>(bytes);
}

__m128i Load(const void *bytes) {
    return _mm_loadu_si128(Vector(bytes));
}

template <typename Word>
Word LoadWord(const uint8_t *bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The highest bits of 16 bytes, where each byte is 0 or 255; `extreme` becomes 0 where one is not.
uint64_t SignsOf(const uint8_t *bytes, __m128i &extreme) {
    const __m128i sixteen = Load(bytes);
    const __m128i signs = _mm_cmpgt_epi8(_mm_setzero_si128(), sixteen);
    extreme = _mm_and_si128(extreme, _mm_cmpeq_epi8(signs, sixteen));
    return static_cast<uint64_t>(_mm_movemask_epi8(signs));
}

// 16 pixels: bytes of 0 and 255 whose neighbours within a pixel are equal.
bool AreBlackAndWhite(const uint8_t *pixels) {
    __m128i extreme = _mm_set1_epi8(-1);
    const uint64_t signs =
        SignsOf(pixels, extreme) | SignsOf(pixels + 16, extreme) << 16 | SignsOf(pixels + 32, extreme) << 32;
    constexpr uint64_t firstAndSecond = 0x6DB6DB6DB6DB; // of each three bits
    return _mm_movemask_epi8(extreme) == 0xFFFF && ((signs ^ signs >> 1) & firstAndSecond) == 0;
}

bool IsBlackAndWhiteRow(const uint8_t *row, int32_t width) {
    int32_t x = 0;
    for (; x + 16 <= width; x += 16, row += 48)
        if (!AreBlackAndWhite(row))
            return false;
    return IsBlackAndWhite(row, width - x);
}

// The highest bits of the first, fourth and seventh byte, as the highest three bits of a byte.
unsigned EveryThirdSign(uint64_t bytes) {
    return static_cast<unsigned>((bytes & 0x0080000080000080) * (1ULL << 56 | 1ULL << 31 | 1ULL << 6) >> 56);
}

// The dots of a row of black and white.
void PackBlackAndWhite(const uint8_t *row, int32_t width, uint8_t *line, size_t lineBytes) {
    std::fill_n(line, lineBytes, uint8_t{0});
    int32_t x = 0;
    for (; x + 8 <= width; x += 8, row += 24) {
        const uint64_t first = LoadWord<uint64_t>(row), second = LoadWord<uint64_t>(row + 8),
                       third = LoadWord<uint64_t>(row + 16);
        const unsigned white =
            EveryThirdSign(first) | EveryThirdSign(second >> 8) >> 3 | EveryThirdSign(third >> 16) >> 6;
        *line++ = static_cast<uint8_t>(~white);
    }
    for (unsigned dot = 0x80; x < width; ++x, row += 3, dot >>= 1)
        *line = static_cast<uint8_t>(*line | (*row == 0 ? dot : 0));
}

// Lanes that take in what the row above hands down, with the bias that makes the sum right for them and the
// others.
struct Intake {
    __m128i lanes;
    __m128i bias;

    // All ones in lanes whose row is nothing but black and white.
    static Intake Of(__m128i closed) {
        const __m128i nothing = _mm_and_si128(closed, _mm_set1_epi8(kNothingEnters));
        return {_mm_xor_si128(closed, _mm_set1_epi8(-1)), _mm_add_epi8(nothing, _mm_set1_epi8(kBias))};
    }

    __m128i Enter(__m128i below) const { return _mm_add_epi8(_mm_and_si128(below, lanes), bias); }
};

// 16 rows.
struct Lanes {
    Intake intake;
    __m128i carry;
    __m128i share;        // of the step before
    __m128i entering;     // what enters at the step to come, with the bias
    __m128i enteringNext; // and at the one behind it

    // One step. Gives which lanes are white.
    __m128i Advance(__m128i luminance) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i level = _mm_xor_si128(luminance, _mm_set1_epi8(127));
        const __m128i n = _mm_adds_epi8(level, _mm_add_epi8(carry, entering));
        const __m128i white = _mm_cmpgt_epi8(zero, n);
        const __m128i u = _mm_add_epi8(n, white);
        const __m128i quarter = _mm_and_si128(_mm_srli_epi16(u, 2), _mm_set1_epi8(63));
        const __m128i kept = _mm_sub_epi8(u, quarter);
        carry = _mm_avg_epu8(kept, zero);
        return white;
    }

    // What enters below the column before, where the new share crosses no border of its row.
    __m128i HandDown(__m128i inside) {
        const __m128i noShare = _mm_set1_epi8(kNoShare);
        const __m128i before = share;
        share = _mm_avg_epu8(carry, _mm_setzero_si128());
        const __m128i crossing = _mm_and_si128(_mm_xor_si128(share, noShare), inside);
        return _mm_add_epi8(before, _mm_xor_si128(crossing, noShare));
    }

    __m128i HandDown() {
        const __m128i before = share;
        share = _mm_avg_epu8(carry, _mm_setzero_si128());
        return _mm_add_epi8(before, share);
    }

    void TakeIn(__m128i below) {
        entering = enteringNext;
        enteringNext = intake.Enter(below);
    }
};

// All ones but for the lane whose row is at its border: that begins, or has just ended, at that step.
class BorderMasks {
  public:
    BorderMasks() {
        for (size_t lag = 0; lag <= kLag; ++lag)
            masks[lag].fill(0xFF);
        for (size_t lane = 0; lane < kLanes; ++lane)
            masks[kSkew * lane][lane] = 0;
    }

    // For the 16 lanes from `first` on, `lag` steps after the first lane was there.
    __m128i After(int32_t lag, size_t first) const {
        const auto known = static_cast<size_t>(lag >= 0 && lag < kLag ? lag : kLag);
        return _mm_load_si128(Vector(&masks[known][first]));
    }

  private:
    alignas(16) std::array<std::array<uint8_t, 32>, kLag + 1> masks; // the last one is of no lane
};

// Rows 0..15 and, in the low half, rows 16..23.
struct Band {
    Lanes upper;
    Lanes lower;
};

// Moves every lane's byte to the next lane; the first lane's becomes that of `into`, whose other bytes are 0.
__m128i LaneUp(__m128i lanes, __m128i into) {
    return _mm_or_si128(_mm_slli_si128(lanes, 1), into);
}

// Where the signs of a step are kept, for eight lanes each; moves backwards.
struct WhiteCursor {
    uint8_t *octets[kOctets];

    void Put(__m128i upper, __m128i lower) {
        const int bits = _mm_movemask_epi8(upper);
        *octets[0]-- = static_cast<uint8_t>(bits);
        *octets[1]-- = static_cast<uint8_t>(bits >> 8);
        *octets[2]-- = static_cast<uint8_t>(_mm_movemask_epi8(lower));
    }
};

// Bytes where the machine takes many at once best.
struct alignas(64) CacheLine {
    uint8_t bytes[64];
};

class LaneDither : public BandDither {
  public:
    LaneDither(int32_t width, SpreadLuminances form);
    void Convert(const BandRows &rows, uint8_t *lines, size_t lineBytes) override;

  private:
    bool FindClosedRows(const BandRows &rows);
    uint8_t *Levels() { return reinterpret_cast<uint8_t *>(levels.data()); }
    void Dither(const BandRows &rows);
    Band Begin() const;
    template <bool kAtBorder>
    Band Run(Band band, int32_t from, int32_t to);
    WhiteCursor DotsAt(int32_t step);
    void PackLine(int32_t lane, uint8_t *line, size_t lineBytes) const;

    int32_t width;
    int32_t steps;
    SpreadLuminances spread;
    std::vector<CacheLine> levels;                   // luminances: a byte for each lane, step after step
    std::vector<uint32_t> handed;                    // what the last lane handed down at each step
    std::array<std::vector<uint8_t>, kOctets> white; // eight lanes a byte, the last step first
    ptrdiff_t lastStep;                              // where in `white` step 0 stands
    std::array<char, 32> closed;                     // -1 for rows of the band that take in no errors
};

LaneDither::LaneDither(int32_t pixels, SpreadLuminances form)
    : width(pixels), steps(pixels + kHandedLag), spread(form) {
    levels.resize(LaneLevelBytes(pixels) / sizeof(CacheLine) + 1);
    handed.assign(static_cast<size_t>(steps) + kLag, kNothingEnters);
    constexpr size_t mostReadBehind = 16;
    for (std::vector<uint8_t> &octet : white)
        octet.resize(static_cast<size_t>(steps) + mostReadBehind);
    lastStep = static_cast<ptrdiff_t>(white[0].size()) - 1;
}

void LaneDither::Convert(const BandRows &rows, uint8_t *lines, size_t lineBytes) {
    const bool blackAndWhite = FindClosedRows(rows);
    if (blackAndWhite)
        std::fill(handed.begin(), handed.end(), kNothingEnters);
    else
        Dither(rows);
    for (int32_t k = 0; k < rows.count; ++k, lines += lineBytes) {
        if (blackAndWhite)
            PackBlackAndWhite(rows.Row(k), width, lines, lineBytes);
        else
            PackLine(k, lines, lineBytes);
    }
}

// Whether all rows are.
bool LaneDither::FindClosedRows(const BandRows &rows) {
    closed.fill(0);
    bool all = true;
    for (int32_t k = 0; k < rows.count; ++k) {
        const bool isClosed = IsBlackAndWhiteRow(rows.Row(k), width);
        closed[static_cast<size_t>(k)] = isClosed ? -1 : 0;
        all = all && isClosed;
    }
    return all;
}

void LaneDither::Dither(const BandRows &rows) {
    spread(rows, width, Levels());
    const int32_t head = std::min(kLag, steps);
    const int32_t tail = std::max(head, width);
    Band band = Begin();
    band = Run<true>(band, 0, head);
    band = Run<false>(band, head, tail);
    Run<true>(band, tail, steps);
}

Band LaneDither::Begin() const {
    std::array<char, 32> first, second;
    first.fill(kNothingEnters);
    second.fill(kNothingEnters);
    first[0] = static_cast<char>(handed[kHandedLag]);
    second[0] = static_cast<char>(handed[kHandedLag + 1]);
    const auto half = [&](size_t at) {
        const Intake intake = Intake::Of(Load(&closed[at]));
        return Lanes{intake, _mm_set1_epi8(kNoCarry), _mm_set1_epi8(kNoShare), intake.Enter(Load(&first[at])),
                     intake.Enter(Load(&second[at]))};
    };
    return {half(0), half(16)};
}

template <bool kAtBorder>
Band LaneDither::Run(Band band, int32_t from, int32_t to) {
    static const BorderMasks borders;
    const auto inside = [&](int32_t step, size_t first) {
        return _mm_and_si128(borders.After(step, first), borders.After(step - width, first));
    };
    const uint8_t *level = Levels() + static_cast<size_t>(from) * kLanes;
    uint32_t *down = &handed[static_cast<size_t>(from)];
    WhiteCursor dots = DotsAt(from);
    for (int32_t step = from; step < to; ++step, level += kLanes, ++down) {
        dots.Put(band.upper.Advance(Load(level)), band.lower.Advance(_mm_loadl_epi64(Vector(level + 16))));
        const __m128i upper = kAtBorder ? band.upper.HandDown(inside(step, 0)) : band.upper.HandDown();
        const __m128i lower = kAtBorder ? band.lower.HandDown(inside(step, 16)) : band.lower.HandDown();
        band.upper.TakeIn(LaneUp(upper, _mm_cvtsi32_si128(static_cast<int>(down[kLag]))));
        band.lower.TakeIn(LaneUp(lower, _mm_srli_si128(upper, 15)));
        const __m128i last = _mm_srli_si128(_mm_slli_si128(lower, 8), 15);
        *down = static_cast<uint32_t>(_mm_cvtsi128_si32(last));
    }
    return band;
}

WhiteCursor LaneDither::DotsAt(int32_t step) {
    const auto at = static_cast<size_t>(lastStep - step);
    return {{&white[0][at], &white[1][at], &white[2][at]}};
}

// 16 columns at a time: the lane's bit is brought to the top of each byte, and the tops are gathered. As the
// last step is stored first, the leftmost column comes out highest.
void LaneDither::PackLine(int32_t lane, uint8_t *line, size_t lineBytes) const {
    const uint8_t *firstColumn =
        &white[static_cast<size_t>(lane / 8)][static_cast<size_t>(lastStep - lane * kSkew)];
    const __m128i toTop = _mm_cvtsi32_si128(7 - lane % 8);
    uint8_t *const end = line + lineBytes;
    for (int32_t x = 0; x < width; x += 16) {
        const __m128i columns = Load(firstColumn - x - 15);
        unsigned black = ~static_cast<unsigned>(_mm_movemask_epi8(_mm_sll_epi16(columns, toTop)));
        if (x + 16 > width)
            black &= ~0U << (x + 16 - width);
        *line++ = static_cast<uint8_t>(black >> 8);
        *line++ = static_cast<uint8_t>(black);
    }
    std::fill(line, end, uint8_t{0});
}

} // namespace

std::unique_ptr<BandDither> MakeBandDither(int32_t width, SpreadLuminances form) {
    // The lanes take 24 bytes a column, eight times what a row has: a picture of no printer's width takes
    // less.
    constexpr int32_t widest = 1 << 14;
    if (width > widest)
        return std::make_unique<PortableDither>(width);
    return std::make_unique<LaneDither>(width, form);
}

} // namespace nadrel

#else

namespace nadrel {

std::unique_ptr<BandDither> MakeBandDither(int32_t width, SpreadLuminances) {
    return std::make_unique<PortableDither>(width);
}

} // namespace nadrel

#endif

namespace nadrel {

std::unique_ptr<BandDither> MakeBandDither(int32_t width) {
    return MakeBandDither(width, LuminanceForms().back().spread);
}

} // namespace nadrel
