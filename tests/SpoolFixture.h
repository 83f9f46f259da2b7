#pragma once

#include "tests/LibraryTest.h"

#include <cctype>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

// What the tests of the spool room share: the whole storage, and rows that hold one call with its bytes.
namespace nadrel {

inline constexpr int32_t kStorageFirst = -4096;       // the first position of the storage
inline constexpr int32_t kFull = 409600;              // where the spool ends
inline constexpr int32_t kStorageEnd = 409600 + 4096; // behind the last position of the storage

// "41 41 41"
inline std::string Repeated(const std::string &byte, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : " ") + byte;
    return text;
}

// Two stretches of hexadecimal text, either of which may be empty.
inline std::string Joined(const std::string &first, const std::string &second) {
    return first.empty() || second.empty() ? first + second : first + " " + second;
}

inline int32_t LengthOf(const std::string &hex) {
    return static_cast<int32_t>((hex.size() + 1) / 3);
}

class SpoolFixture : public LibraryTest {
  protected:
    // `count` bytes of the storage from a position that may lie in a margin.
    static std::string HexAt(int32_t position, int32_t count) {
        return scripted::ToHex(SpoolBuffer.At(position), static_cast<size_t>(count));
    }

    // The whole storage with both margins.
    static std::vector<uint8_t> Storage() {
        return {SpoolBuffer.At(kStorageFirst), SpoolBuffer.At(kStorageFirst) + (kStorageEnd - kStorageFirst)};
    }

    // Empties the spool and puts the next command at `position`.
    static void StartAt(int32_t position) {
        ClearSpool();
        SpoolLength = position;
    }

    // Whether `call` leaves storage and spool length alone.
    template <typename Call>
    static bool ChangesNothing(Call call) {
        const std::vector<uint8_t> before = Storage();
        const int32_t length = SpoolLength;
        call();
        return SpoolLength == length && Storage() == before;
    }
};

// One call, as it is written in a host, and the bytes it appends.
struct DirectRow {
    const char *call;
    void (*run)();
    const char *bytes;
    bool onPage = false; // the call is made in page mode
};

// A direct command that carries text: without a link there is no conversion, and the text is empty.
struct TextRow {
    const char *call;
    void (*run)();
    const char *bytes;
    const char *withoutALink;
};

// A call through the link, with its result.
struct LinkRow {
    const char *call;
    int32_t (*run)();
    const char *bytes;
    bool storesResult;
};

#define SPOOL_CALL(...) #__VA_ARGS__, [] { __VA_ARGS__; }
#define SPOOL_RESULT(...) #__VA_ARGS__, [] { return __VA_ARGS__; }

inline void PrintTo(const DirectRow &row, std::ostream *out) {
    *out << row.call << ": " << row.bytes;
}
inline void PrintTo(const TextRow &row, std::ostream *out) {
    *out << row.call << ": " << row.bytes;
}
inline void PrintTo(const LinkRow &row, std::ostream *out) {
    *out << row.call << ": " << row.bytes;
}

// A test name from a call: letters, digits and underscores, and the row's number to keep names apart.
template <typename Row>
std::string RowName(const testing::TestParamInfo<Row> &info) {
    std::string name;
    for (const char c : std::string(info.param.call))
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += c;
        else if (c == '-')
            name += "minus";
        else if (!name.empty() && name.back() != '_')
            name += '_';
    return name + (name.back() == '_' ? "" : "_") + std::to_string(info.index);
}

// Rows of direct commands that take no text: the same bytes with and without a link.
class CommandBytes : public SpoolFixture, public testing::WithParamInterface<DirectRow> {
  protected:
    void Run() {
        PageModeFlag = GetParam().onPage ? 1 : 0;
        GetParam().run();
    }
};

// One row for each direct appender: the guard, which makes no link test.
class DirectAppender : public CommandBytes {};

class TextCommand : public SpoolFixture, public testing::WithParamInterface<TextRow> {};

// One row for each appender through the link.
class LinkAppender : public SpoolFixture, public testing::WithParamInterface<LinkRow> {};

} // namespace nadrel
