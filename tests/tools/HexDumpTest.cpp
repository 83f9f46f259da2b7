#include "tools/HexDump.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <vector>

namespace {

std::string Dump(const std::vector<std::vector<uint8_t>> &pieces) {
    std::ostringstream out;
    tool::HexDump dump(out);
    for (const auto &piece : pieces)
        dump.Add(piece);
    dump.Finish();
    return out.str();
}

std::vector<uint8_t> Counting(size_t count) {
    std::vector<uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

} // namespace

TEST(HexDump, IsEmptyWithoutBytes) {
    EXPECT_EQ(Dump({}), "");
    EXPECT_EQ(Dump({{}}), "");
}

TEST(HexDump, WritesTwoDigitsAByte) {
    EXPECT_EQ(Dump({{0x1B, 0x40, 0x00, 0xFF}}), "1B 40 00 FF\n");
}

TEST(HexDump, WritesSixteenBytesALine) {
    EXPECT_EQ(Dump({Counting(16)}), "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n");
    EXPECT_EQ(Dump({Counting(33)}), "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
                                    "10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F\n"
                                    "20\n");
}

TEST(HexDump, DoesNotShowHowTheBytesCame) {
    std::vector<std::vector<uint8_t>> single;
    for (const uint8_t byte : Counting(40))
        single.push_back({byte});
    EXPECT_EQ(Dump(single), Dump({Counting(40)}));
}
