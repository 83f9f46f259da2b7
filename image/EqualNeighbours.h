#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Where runs are: a bit for each of 64 bytes, the lowest first, whether it equals the byte behind it. 65
// bytes are read.
namespace nadrel {

// Eight bytes of 0 and 1 as eight bits, the first one lowest: the product's highest byte gathers them.
inline uint64_t GatherBits(const uint8_t *bytes) {
    constexpr bool firstIsLowest = std::endian::native == std::endian::little;
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word * (firstIsLowest ? 0x0102040810204080 : 0x8040201008040201) >> 56;
}

// For every machine.
inline uint64_t EqualNeighboursAnywhere(const uint8_t *bytes) {
    if (std::memcmp(bytes, bytes + 1, 64) == 0) // long runs are frequent
        return ~uint64_t{0};
    uint8_t equal[64];
    for (size_t i = 0; i < 64; ++i)
        equal[i] = bytes[i] == bytes[i + 1];
    uint64_t bits = 0;
    for (size_t i = 0; i < 64; i += 8)
        bits |= GatherBits(equal + i) << i;
    return bits;
}

#if defined(__SSE2__)

inline __m128i EqualSixteen(const uint8_t *bytes) {
    return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes)),
                          _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + 1)));
}

inline uint64_t EqualNeighbours(const uint8_t *bytes) {
    const __m128i equal[] = {EqualSixteen(bytes), EqualSixteen(bytes + 16), EqualSixteen(bytes + 32),
                             EqualSixteen(bytes + 48)};
    const __m128i all = _mm_and_si128(_mm_and_si128(equal[0], equal[1]), _mm_and_si128(equal[2], equal[3]));
    if (_mm_movemask_epi8(all) == 0xFFFF)
        return ~uint64_t{0};
    uint64_t bits = 0;
    for (int i = 0; i < 4; ++i)
        bits |= static_cast<uint64_t>(_mm_movemask_epi8(equal[i])) << 16 * i;
    return bits;
}

#else

inline uint64_t EqualNeighbours(const uint8_t *bytes) {
    return EqualNeighboursAnywhere(bytes);
}

#endif

} // namespace nadrel
