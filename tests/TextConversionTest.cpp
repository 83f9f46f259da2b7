#include "platform/TextConversion.h"
#include "platform/linux/AnsiCodePage.h"
#include "tests/CodePageOracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace code_pages {

namespace {

using platform::AnsiCodePage;
using platform::FromAnsi;
using platform::SetAnsiCodePage;

const uint32_t kCodePageAtStart = AnsiCodePage();

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

std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        text += {"0123456789ABCDEF"[byte >> 4 & 15], "0123456789ABCDEF"[byte & 15]};
    return text;
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

} // namespace code_pages
