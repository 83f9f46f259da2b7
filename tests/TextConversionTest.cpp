#include "platform/TextConversion.h"
#include "platform/linux/AnsiCodePage.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using platform::AnsiCodePage;
using platform::FromAnsi;
using platform::SetAnsiCodePage;

const uint32_t kCodePageAtStart = AnsiCodePage();

constexpr uint32_t kUtf8 = 65001;
constexpr char kReplacement[] = "\xEF\xBF\xBD"; // U+FFFD
constexpr uint32_t kCodePages[] = {437,  737,  775,  850,  852,  855, 857,  858,  860,  861,
                                   862,  863,  864,  865,  866,  874, 1250, 1251, 1252, 1253,
                                   1254, 1255, 1256, 1257, 1258, 932, 936,  949,  950,  kUtf8};

bool IsSingleByte(uint32_t codePage) {
    return codePage < 932 || (codePage > 950 && codePage != kUtf8);
}

std::string ToAnsi(std::u16string_view text, size_t capacity) {
    const std::unique_ptr<uint8_t[]> bytes(new uint8_t[capacity]);
    const size_t written = platform::ToAnsi(text.data(), text.size(), bytes.get(), capacity);
    EXPECT_LE(written, capacity);
    return std::string(bytes.get(), bytes.get() + std::min(written, capacity));
}

// With room for all of it: no page takes more than three bytes for a code unit.
std::string ToAnsi(std::u16string_view text) {
    return ToAnsi(text, 3 * text.size());
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

std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        text += {"0123456789ABCDEF"[byte >> 4 & 15], "0123456789ABCDEF"[byte & 15]};
    return text;
}

// The C library's converter, which shares nothing with the tables under test.
class IndependentConverter {
  public:
    explicit IndependentConverter(uint32_t codePage)
        : converter_(iconv_open(codePage == kUtf8 ? "UTF-8" : ("CP" + std::to_string(codePage)).c_str(),
                                std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE")),
          isSingleByte_(IsSingleByte(codePage)) {}
    ~IndependentConverter() {
        if (IsOpen())
            iconv_close(converter_);
    }
    IndependentConverter(const IndependentConverter &) = delete;
    IndependentConverter &operator=(const IndependentConverter &) = delete;

    bool IsOpen() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    // '?' for what the page lacks. That includes a letter that a single-byte page can only put together from
    // a base and a mark, and the tag characters, which the library drops.
    std::string Convert(char32_t character) {
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

  private:
    static constexpr size_t kFailed = static_cast<size_t>(-1);

    iconv_t converter_;
    bool isSingleByte_;
};

// Where the C library differs, and why the tables are right.

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

using Differences = std::map<char16_t, std::string>;

// The near characters that the system which the pages come from puts in the place of those they lack: data of
// the project, compared with that system's answers by the tests that run there.
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

// All code units that the page has, in one text. U+0000 is none of them, since text ends there.
std::u16string AllCharactersOf(uint32_t codePage) {
    const Differences near = NearCharactersOf(codePage);
    std::u16string text;
    for (char32_t unit = 1; unit < 0x10000; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        const bool isLone = 0xD800 <= unit && unit < 0xE000;
        if (unit == u'?' || (!isLone && !near.contains(character) && ToAnsi(Utf16(unit)) != "?"))
            text += character;
    }
    EXPECT_GE(text.size(), IsSingleByte(codePage) ? 254u : 9000u);
    return text;
}

class TextConversion : public testing::Test {
  protected:
    ~TextConversion() override { SetAnsiCodePage(kCodePageAtStart); }
};

class EveryCodePage : public TextConversion, public testing::WithParamInterface<uint32_t> {
  protected:
    EveryCodePage() { EXPECT_TRUE(SetAnsiCodePage(GetParam())); }
};

INSTANTIATE_TEST_SUITE_P(TextConversion, EveryCodePage, testing::ValuesIn(kCodePages),
                         testing::PrintToStringParamName());

TEST_P(EveryCodePage, AgreesWithTheCLibraryInAllCodeUnitsButTheListedOnes) {
    IndependentConverter converter(GetParam());
    ASSERT_TRUE(converter.IsOpen());
    Differences expected = DifferencesOf(GetParam());
    const Differences near = NearCharactersOf(GetParam()); // some of which it takes for near itself
    for (char32_t unit = 0; unit < 0x10000; ++unit) {
        const std::string theirs = converter.Convert(unit);
        const auto [entry, isSame] = expected.try_emplace(static_cast<char16_t>(unit), theirs);
        EXPECT_TRUE(isSame || near.contains(entry->first) || entry->second != theirs)
            << Hex(BytesOf(unit)) << " is no difference";
        EXPECT_EQ(Hex(ToAnsi(Utf16(unit))), Hex(entry->second)) << "for " << Hex(BytesOf(unit));
    }
}

// In UTF-8 all of them; elsewhere, where no page has any, every 251st.
TEST_P(EveryCodePage, AgreesWithTheCLibraryInSurrogatePairs) {
    IndependentConverter converter(GetParam());
    ASSERT_TRUE(converter.IsOpen());
    const char32_t step = GetParam() == kUtf8 ? 1 : 251;
    for (char32_t character = 0x10000; character < 0x110000; character += step)
        ASSERT_EQ(Hex(ToAnsi(Utf16(character))), Hex(converter.Convert(character)));
}

TEST_P(EveryCodePage, GivesItsCharactersBackFromTheirBytes) {
    const std::u16string text = AllCharactersOf(GetParam());
    EXPECT_TRUE(FromAnsi(ToAnsi(text).c_str()) == text);
}

// Each pair of bytes stands on a line of its own, which tells whether it swallowed the line feed behind it.
TEST_P(EveryCodePage, ReadsAnyTwoBytesAsTheirCharactersOrAsReplacements) {
    std::vector<std::string> pairs;
    std::string lines;
    for (uint32_t pair = 0x0101; pair < 0x10000; ++pair) {
        const std::string bytes{static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF)};
        if (bytes.find_first_of(std::string_view("\0\n", 2)) == std::string::npos)
            pairs.push_back(bytes);
    }
    for (const std::string &pair : pairs)
        lines += pair + '\n';
    const std::u16string text = FromAnsi(lines.c_str());
    std::u16string_view rest = text;
    for (const std::string &pair : pairs) {
        const std::u16string_view line = rest.substr(0, rest.find(u'\n'));
        ASSERT_TRUE(line.size() == 1 || line.size() == 2) << Hex(pair);
        ASSERT_TRUE(line.find(u'\uFFFD') != line.npos || ToAnsi(line) == pair) << Hex(pair);
        rest.remove_prefix(line.size() + 1);
    }
    EXPECT_TRUE(rest.empty());
}

TEST_P(EveryCodePage, MarksLoneSurrogates) {
    const std::string mark = GetParam() == kUtf8 ? kReplacement : "?";
    EXPECT_EQ(ToAnsi(u"\xD800"), mark);
    EXPECT_EQ(ToAnsi(u"\xDBFFxyz"), mark + "xyz");
    EXPECT_EQ(ToAnsi(u"\xDC00xyz"), mark + "xyz");
    EXPECT_EQ(ToAnsi(u"abcdef\xDFFFxyz"), "abcdef" + mark + "xyz");
    EXPECT_EQ(ToAnsi(u"abcdef\xD834"), "abcdef" + mark);
    EXPECT_EQ(ToAnsi(u"abcdef\xDC00\xD800"), "abcdef" + mark + mark);
    EXPECT_EQ(ToAnsi(u"\xD834\xD834xyz"), mark + mark + "xyz");
}

TEST_P(EveryCodePage, CopiesAsciiUpToAnyOtherCharacterAtAnyPlace) {
    const std::u16string ascii = u"\x01\x7F !~0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefg";
    for (size_t length = 0; length <= ascii.size(); ++length) {
        const std::string head(ascii.begin(), ascii.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(ToAnsi(ascii.substr(0, length)), head);
        for (const char16_t other : {u'\u0080', u'\u00FF', u'\u0100', u'\u4E2D', u'\uFF41'})
            EXPECT_EQ(ToAnsi(ascii.substr(0, length) + other + u"abcdefg"),
                      head + ToAnsi({&other, 1}) + "abcdefg");
    }
}

TEST_P(EveryCodePage, ConvertsALongText) {
    std::u16string text;
    std::string bytes;
    for (int i = 0; i < 10000; ++i) {
        text += u"caf\u00E9 \u4E2D\U0001F600!\n";
        bytes += "caf" + ToAnsi(u"\u00E9") + " " + ToAnsi(u"\u4E2D") + ToAnsi(u"\U0001F600") + "!\n";
    }
    ASSERT_EQ(text.size(), 100000u);
    EXPECT_TRUE(ToAnsi(text) == bytes);
}

TEST_P(EveryCodePage, StopsBeforeTheFirstCharacterThatDoesNotFitWhole) {
    const std::u16string characters[] = {u"a",      u"\u00E9", u"\u4E2D", u"\U0001F600",
                                         u"\uAC00", u"b",      u"\u0430"};
    std::u16string text;
    size_t size = 0;
    for (const std::u16string &character : characters) {
        const size_t next = size + ToAnsi(character).size();
        const std::string whole = ToAnsi(text);
        for (size_t capacity = size; capacity < next; ++capacity)
            EXPECT_EQ(ToAnsi(text + character + u"z", capacity), whole) << "capacity " << capacity;
        text += character;
        size = next;
    }
    EXPECT_EQ(ToAnsi(text, size), ToAnsi(text));
}

TEST_P(EveryCodePage, ConvertsEmptyTextToNothing) {
    EXPECT_EQ(platform::ToAnsi(nullptr, 0, nullptr, 0), 0u);
    EXPECT_EQ(platform::ToAnsi(u"abc", 3, nullptr, 0), 0u);
    EXPECT_EQ(ToAnsi(u"", 10), "");
    EXPECT_TRUE(FromAnsi("").empty());
    EXPECT_TRUE(FromAnsi(nullptr).empty());
}

TEST_P(EveryCodePage, ConvertsAZeroCharacterAsAnyOther) {
    EXPECT_EQ(ToAnsi(std::u16string_view(u"a\0b", 3)), std::string("a\0b", 3));
}

// A pair of bytes that is cut off by the end must not draw in what lies behind it.
TEST_P(EveryCodePage, ReadsNothingBehindTheTerminator) {
    for (uint32_t last = 1; last < 0x100; ++last) {
        const std::unique_ptr<char[]> bytes(new char[3]{'a', static_cast<char>(last), 0});
        const std::u16string text = FromAnsi(bytes.get());
        ASSERT_EQ(text.size(), 2u);
        EXPECT_TRUE(text[1] == u'\uFFFD' || ToAnsi(text) == bytes.get()) << last;
    }
}

TEST_F(TextConversion, StartsWithCodePage1252) {
    EXPECT_EQ(kCodePageAtStart, 1252u);
}

TEST_F(TextConversion, UsesTheCodePageThatWasSetLast) {
    for (const uint32_t codePage : kCodePages) {
        EXPECT_TRUE(SetAnsiCodePage(codePage));
        EXPECT_EQ(AnsiCodePage(), codePage);
    }
    SetAnsiCodePage(866);
    EXPECT_EQ(ToAnsi(u"\u042F\u00E9"), "\x9F?");
    SetAnsiCodePage(1251);
    EXPECT_EQ(ToAnsi(u"\u042F\u00E9"), "\xDF"
                                       "e");
    SetAnsiCodePage(1252);
    EXPECT_EQ(ToAnsi(u"\u042F\u00E9"), "?\xE9");
}

TEST_F(TextConversion, RefusesAnUnknownCodePageAndKeepsTheOneItHas) {
    SetAnsiCodePage(949);
    for (const uint32_t codePage :
         {0u, 1u, 29u, 30u, 720u, 874u + 65536u, 1200u, 20127u, 65000u, 65002u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(SetAnsiCodePage(codePage)) << codePage;
        EXPECT_EQ(AnsiCodePage(), 949u);
    }
    EXPECT_EQ(ToAnsi(u"\uAC00"), "\xB0\xA1");
}

TEST_F(TextConversion, WritesTheWesternPage) {
    EXPECT_EQ(ToAnsi(u"Cr\u00E8me br\u00FBl\u00E9e 3,20 \u20AC \u2013 \u0178\u0081"),
              "Cr\xE8me br\xFBl\xE9"
              "e 3,20 \x80 \x96 \x9F\x81");
    EXPECT_EQ(ToAnsi(u"\u0100\u4E2D\uFF21"), "A?A");
}

TEST_F(TextConversion, WritesTheJapanesePage) {
    SetAnsiCodePage(932);
    EXPECT_EQ(ToAnsi(u"\u65E5\u672C\u3042\u30A2\uFF71"), "\x93\xFA\x96\x7B\x82\xA0\x83\x41\xB1");
    EXPECT_EQ(ToAnsi(u"\uFF5E\u2225\uFF0D\uFFE0\uFFE1\uFFE2\u2015"),
              "\x81\x60\x81\x61\x81\x7C\x81\x91\x81\x92\x81\xCA\x81\x5C");
    // In several rows of the page: NEC's row 13, IBM's rows, JIS X 0208.
    EXPECT_EQ(ToAnsi(u"\u2160\u3231\u2170\u9AD9\u2252\u2235"),
              "\x87\x54\x87\x8A\xFA\x40\xFB\xFC\x81\xE0\x81\xE6");
}

TEST_F(TextConversion, WritesTheChineseAndKoreanPages) {
    SetAnsiCodePage(936);
    EXPECT_EQ(ToAnsi(u"\u4E2D\u6587\u4E02\u72DC\u9FA5\u20AC"),
              "\xD6\xD0\xCE\xC4\x81\x40\xAA\x40\xFD\x9B\x80");
    SetAnsiCodePage(949);
    EXPECT_EQ(ToAnsi(u"\uAC00\uD79D\uAC02\uC8A4\uC8A5\uD7A3"),
              "\xB0\xA1\xC8\xFE\x81\x41\xA0\xFE\xA1\x41\xC6\x52");
    SetAnsiCodePage(950);
    EXPECT_EQ(ToAnsi(u"\u4E2D\u6587\u2550\u3042\u0430"), "\xA4\xA4\xA4\xE5\xF9\xF9??");
}

TEST_F(TextConversion, WritesTheEndsOfTheUserDefinedAreas) {
    SetAnsiCodePage(932);
    EXPECT_EQ(ToAnsi(u"\uE000\uE757\uE758"), "\xF0\x40\xF9\xFC?");
    SetAnsiCodePage(936);
    EXPECT_EQ(ToAnsi(u"\uE000\uE233\uE234\uE4C5\uE4C6\uE765"),
              "\xAA\xA1\xAF\xFE\xF8\xA1\xFE\xFE\xA1\x40\xA7\xA0");
    SetAnsiCodePage(949);
    EXPECT_EQ(ToAnsi(u"\uE000\uE05D\uE05E\uE0BB\uE0BC"), "\xC9\xA1\xC9\xFE\xFE\xA1\xFE\xFE?");
    SetAnsiCodePage(950);
    EXPECT_EQ(ToAnsi(u"\uE000\uE310\uE311\uEEB7\uEEB8\uF6B0\uF6B1\uF848\uF849"),
              "\xFA\x40\xFE\xFE\x8E\x40\xA0\xFE\x81\x40\x8D\xFE\xC6\xA1\xC8\xFE?");
}

TEST_F(TextConversion, TurnsASurrogatePairIntoOneQuestionMarkInAPageThatLacksIt) {
    EXPECT_EQ(ToAnsi(u"\U0001F600"), "?");
    EXPECT_EQ(ToAnsi(u"a\U0001F600\U0010FFFFz"), "a??z");
    SetAnsiCodePage(kUtf8);
    EXPECT_EQ(ToAnsi(u"a\U0001F600z"), "a\xF0\x9F\x98\x80z");
}

TEST_F(TextConversion, LeavesTheAsciiByteOfAMeaninglessPair) {
    SetAnsiCodePage(932);
    EXPECT_EQ(FromAnsi("\x81/dev\x81\x7F"), u"\uFFFD/dev\uFFFD\x7F");
    EXPECT_EQ(FromAnsi("\x81\xFFz\x85\x40z\x82"), u"\uFFFDz\uFFFD@z\uFFFD");
}

TEST_F(TextConversion, ReadsOfSeveralPairsWithOneMeaningTheOneThatItWrites) {
    SetAnsiCodePage(932);
    EXPECT_EQ(FromAnsi("\xFB\xFC\xEE\xE0\x81\xE0\x87\x90"), u"\u9AD9\uFFFD\u2252\uFFFD");
    SetAnsiCodePage(950);
    EXPECT_EQ(FromAnsi("\xF9\xF9\xA2\xA4"), u"\u2550\uFFFD");
}

TEST_F(TextConversion, ReplacesWhatIsNotUtf8) {
    SetAnsiCodePage(kUtf8);
    EXPECT_EQ(FromAnsi("\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), u"\u00E9\u4E2D\U0001F600");
    EXPECT_EQ(FromAnsi("\x80z\xBFz\xFEz"), u"\uFFFDz\uFFFDz\uFFFDz");
    EXPECT_EQ(FromAnsi("\xC0\x80z"), u"\uFFFD\uFFFDz");
    EXPECT_EQ(FromAnsi("\xE0\x9F\xBFz"), u"\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(FromAnsi("\xED\xA0\x80z"), u"\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(FromAnsi("\xF4\x90\x80\x80z"), u"\uFFFD\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(FromAnsi("\xE4\xB8z\xF0\x9F\x98z\xC3"), u"\uFFFDz\uFFFDz\uFFFD");
}

TEST_F(TextConversion, KeepsOnePageThroughAConversionWhileAnotherThreadSetsIt) {
    const std::u16string text(1000, u'\u00E9');
    const std::string western(1000, '\xE9');
    const std::string dos(1000, '\x82');
    std::atomic<bool> done{false};
    std::thread setter([&] {
        while (!done) {
            SetAnsiCodePage(437);
            SetAnsiCodePage(1252);
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::string bytes = ToAnsi(text);
        EXPECT_TRUE(bytes == western || bytes == dos);
    }
    done = true;
    setter.join();
}

} // namespace
