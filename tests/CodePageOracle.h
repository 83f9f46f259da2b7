#pragma once

#include <iconv.h>

#include <cstdint>
#include <map>
#include <string>

// What the code pages must give, from sources that share nothing with the tables under test.
namespace code_pages {

inline constexpr uint32_t kUtf8 = 65001;
inline constexpr char kReplacement[] = "\xEF\xBF\xBD"; // U+FFFD
inline constexpr uint32_t kCodePages[] = {437,  737,  775,  850,  852,  855, 857,  858,  860,  861,
                                          862,  863,  864,  865,  866,  874, 1250, 1251, 1252, 1253,
                                          1254, 1255, 1256, 1257, 1258, 932, 936,  949,  950,  kUtf8};

bool IsSingleByte(uint32_t codePage);

std::u16string Utf16(char32_t character);

// One byte below 256, else a pair with the high one first.
std::string BytesOf(uint32_t number);

// The C library's converter.
class IndependentConverter {
  public:
    explicit IndependentConverter(uint32_t codePage);
    ~IndependentConverter();
    IndependentConverter(const IndependentConverter &) = delete;
    IndependentConverter &operator=(const IndependentConverter &) = delete;

    bool IsOpen() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    // '?' for what the page lacks. That includes a letter that a single-byte page can only put together from
    // a base and a mark, and the tag characters, which the library drops.
    std::string Convert(char32_t character);

  private:
    iconv_t converter_;
    bool isSingleByte_;
};

// The bytes of code units, by unit.
using Differences = std::map<char16_t, std::string>;

// Where the C library differs and the tables are right.
Differences DifferencesOf(uint32_t codePage);

// The near characters that the system which the pages come from puts in the place of those they lack: data of
// the project, compared with that system's answers by the tests that run there.
Differences NearCharactersOf(uint32_t codePage);

} // namespace code_pages
