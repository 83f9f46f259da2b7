#include "tests/CodePageOracle.h"

#include <bit>
#include <fstream>
#include <sstream>
#include <string_view>

namespace code_pages {

namespace {

constexpr size_t kFailed = static_cast<size_t>(-1);

// Bytes that a page leaves undefined are refused by the C library. On the system that the pages come from
// they stand for the C1 controls of their own numbers, and above those for private use characters in a row.
struct StrayBytes {
    uint32_t codePage;
    std::string_view controls;
    char16_t firstPrivate;
    std::string_view privateBytes;
};

constexpr StrayBytes kStrayBytes[] = {
    {857, "", 0xF8BB, "\xD5\xE7\xF2"},
    {864, "\x9B\x9C\x9F", 0xF8BE, "\xA6\xA7\xFF"},
    {874, "\x81\x82\x83\x84\x86\x87\x88\x89\x8A\x8B\x8C\x8D\x8E\x8F\x90\x98\x99\x9A\x9B\x9C\x9D\x9E\x9F",
     0xF8C1, "\xDB\xDC\xDD\xDE\xFC\xFD\xFE\xFF"},
    {932, "\x80", 0xF8F0, "\xA0\xFD\xFE\xFF"},
    {936, "", 0xF8F5, "\xFF"},
    {949, "\x80", 0xF8F7, "\xFF"},
    {950, "", 0xF8F8, "\xFF"},
    {1250, "\x81\x83\x88\x90\x98", 0, ""},
    {1251, "\x98", 0, ""},
    {1252, "\x81\x8D\x8F\x90\x9D", 0, ""},
    {1253, "\x81\x88\x8A\x8C\x8D\x8E\x8F\x90\x98\x9A\x9C\x9D\x9E\x9F", 0xF8F9, "\xAA\xD2\xFF"},
    {1254, "\x81\x8D\x8E\x8F\x90\x9D\x9E", 0, ""},
    {1255, "\x81\x8A\x8C\x8D\x8E\x8F\x90\x9A\x9C\x9D\x9E\x9F", 0xF88D,
     "\xD9\xDA\xDB\xDC\xDD\xDE\xDF\xFB\xFC\xFF"},
    {1257, "\x81\x83\x88\x8A\x8C\x90\x98\x9A\x9C\x9F", 0xF8FC, "\xA1\xA5"},
    {1258, "\x81\x8A\x8D\x8E\x8F\x90\x9A\x9D\x9E", 0, ""},
};

// The characters first..last stand at the bytes given here and the places that follow.
struct Run {
    uint32_t codePage;
    char16_t first;
    char16_t last;
    uint32_t bytes;
};

// The C library leaves out the user-defined areas (but for that of 932 and the last of 950) and the gaps
// between the defined pairs of 936; it takes the other one of two places in 950; it lacks a later letter of
// 1255, holam haser for vav; and it has an Arabic per cent sign in the place of the ASCII one in 864.
constexpr Run kRuns[] = {
    {936, 0xE000, 0xE233, 0xAAA1}, {936, 0xE234, 0xE4C5, 0xF8A1}, {936, 0xE4C6, 0xE765, 0xA140},
    {949, 0xE000, 0xE05D, 0xC9A1}, {949, 0xE05E, 0xE0BB, 0xFEA1}, {950, 0xE000, 0xE310, 0xFA40},
    {950, 0xE311, 0xEEB7, 0x8E40}, {950, 0xEEB8, 0xF6B0, 0x8140}, {936, 0xE766, 0xE76B, 0xA2AB},
    {936, 0xE76C, 0xE76D, 0xA2E3}, {936, 0xE76E, 0xE76F, 0xA2EF}, {936, 0xE770, 0xE771, 0xA2FD},
    {936, 0xE772, 0xE77C, 0xA4F4}, {936, 0xE77D, 0xE784, 0xA5F7}, {936, 0xE785, 0xE78C, 0xA6B9},
    {936, 0xE78D, 0xE793, 0xA6D9}, {936, 0xE794, 0xE795, 0xA6EC}, {936, 0xE796, 0xE796, 0xA6F3},
    {936, 0xE797, 0xE79F, 0xA6F6}, {936, 0xE7A0, 0xE7AE, 0xA7C2}, {936, 0xE7AF, 0xE7BB, 0xA7F2},
    {936, 0xE7BC, 0xE7C6, 0xA896}, {936, 0xE7C7, 0xE7C7, 0xA8BC}, {936, 0xE7C8, 0xE7C8, 0xA8BF},
    {936, 0xE7C9, 0xE7CC, 0xA8C1}, {936, 0xE7CD, 0xE7E1, 0xA8EA}, {936, 0xE7E2, 0xE7E2, 0xA958},
    {936, 0xE7E3, 0xE7E3, 0xA95B}, {936, 0xE7E4, 0xE7E6, 0xA95D}, {936, 0xE7E7, 0xE7F3, 0xA989},
    {936, 0xE7F4, 0xE7FD, 0xA997}, {936, 0xE7FE, 0xE800, 0xA9A1}, {936, 0xE801, 0xE80F, 0xA9F0},
    {936, 0xE810, 0xE814, 0xD7FA}, {936, 0xE815, 0xE843, 0xFE50}, {936, 0xE844, 0xE864, 0xFE80},
    {950, 0x2550, 0x2550, 0xF9F9}, {950, 0x255E, 0x255E, 0xF9E9}, {950, 0x2561, 0x2561, 0xF9EB},
    {950, 0x256A, 0x256A, 0xF9EA}, {1255, 0x05BA, 0x05BA, 0xCA},  {864, 0x25, 0x25, 0x25},
};

// The C library takes these for near characters of the page: the dash, double bar, overline, minus and wave;
// a second form of two Vietnamese tone marks. 864 as above.
struct Lacking {
    uint32_t codePage;
    std::u16string_view characters;
};

constexpr Lacking kLacking[] = {
    {864, u"\u066A"},
    {932, u"\u2014\u2016\u203E\u2212\u301C"},
    {1258, u"\u0340\u0341"},
};

// The byte pair behind another in a user-defined area, or the byte behind a byte.
uint32_t NextPlace(uint32_t codePage, uint32_t bytes) {
    const uint32_t trail = bytes & 0xFF;
    const bool inLowHalf = codePage == 936 && trail <= 0xA0;
    const bool startsAt40 = inLowHalf || codePage == 932 || codePage == 950;
    const uint32_t lastTrail = inLowHalf ? 0xA0 : codePage == 932 ? 0xFC : 0xFE;
    if (bytes > 0xFF && trail == lastTrail)
        return (bytes & 0xFF00) + 0x100 + (startsAt40 ? 0x40 : 0xA1);
    if (bytes > 0xFF && trail == 0x7E)
        return (bytes & 0xFF00) + (codePage == 950 ? 0xA1 : 0x80);
    return bytes + 1;
}

void Add(Differences &differences, const StrayBytes &stray) {
    for (const char byte : stray.controls)
        differences[static_cast<uint8_t>(byte)] = byte;
    char16_t character = stray.firstPrivate;
    for (const char byte : stray.privateBytes)
        differences[character++] = byte;
}

void Add(Differences &differences, const Run &run) {
    uint32_t bytes = run.bytes;
    for (char16_t character = run.first; character <= run.last; ++character) {
        differences[character] = BytesOf(bytes);
        bytes = NextPlace(run.codePage, bytes);
    }
}

void Add(Differences &differences, const Lacking &lacking) {
    for (const char16_t character : lacking.characters)
        differences[character] = '?';
}

} // namespace

bool IsSingleByte(uint32_t codePage) {
    return codePage < 932 || (codePage > 950 && codePage != kUtf8);
}

std::u16string Utf16(char32_t character) {
    if (character < 0x10000)
        return {static_cast<char16_t>(character)};
    return {static_cast<char16_t>(0xD7C0 + (character >> 10)),
            static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
}

std::string BytesOf(uint32_t number) {
    const char low = static_cast<char>(number & 0xFF);
    return number < 0x100 ? std::string{low} : std::string{static_cast<char>(number >> 8), low};
}

IndependentConverter::IndependentConverter(uint32_t codePage)
    : converter_(iconv_open(codePage == kUtf8 ? "UTF-8" : ("CP" + std::to_string(codePage)).c_str(),
                            std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE")),
      isSingleByte_(IsSingleByte(codePage)) {}

IndependentConverter::~IndependentConverter() {
    if (IsOpen())
        iconv_close(converter_);
}

std::string IndependentConverter::Convert(char32_t character) {
    std::u16string text = Utf16(character);
    char *from = reinterpret_cast<char *>(text.data());
    size_t fromLeft = 2 * text.size();
    char bytes[8];
    char *to = bytes;
    size_t toLeft = sizeof bytes;
    iconv(converter_, nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(converter_, &from, &fromLeft, &to, &toLeft) != kFailed &&
                           iconv(converter_, nullptr, nullptr, &to, &toLeft) != kFailed;
    const bool isOneCharacter = to != bytes && (!isSingleByte_ || to - bytes == 1);
    return converted && isOneCharacter ? std::string(bytes, to) : "?";
}

Differences NearCharactersOf(uint32_t codePage) {
    Differences near;
    std::ifstream file(NADREL_NEAR_CHARACTERS);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string page, word;
        uint32_t unit = 0;
        words >> page >> std::hex >> unit;
        while (page == std::to_string(codePage) && words >> word)
            near[static_cast<char16_t>(unit++)] =
                BytesOf(static_cast<uint32_t>(std::stoul(word, nullptr, 16)));
    }
    return near;
}

Differences DifferencesOf(uint32_t codePage) {
    Differences differences;
    const auto addThoseOfThePage = [&](const auto &table) {
        for (const auto &entry : table) {
            if (entry.codePage == codePage)
                Add(differences, entry);
        }
    };
    addThoseOfThePage(kStrayBytes);
    addThoseOfThePage(kRuns);
    addThoseOfThePage(kLacking);
    differences.merge(NearCharactersOf(codePage));
    if (codePage == kUtf8) {
        for (uint32_t lone = 0xD800; lone < 0xE000; ++lone)
            differences[static_cast<char16_t>(lone)] = kReplacement;
    }
    return differences;
}

} // namespace code_pages
