#include "tests/faults/FaultPoint.h"

namespace nadrel::faults {
namespace {

// One of the three functions; the result where it has one.
using Print = std::optional<int32_t> (*)(const char16_t *path);

struct Case {
    const char *name;
    uint16_t depth; // bits a pixel
    Print print;
};

void PrintTo(const Case &given, std::ostream *out) {
    *out << given.name;
}

std::optional<int32_t> Positioned(const char16_t *path) {
    return BmpSaveSpool(path, 3, 4);
}
std::optional<int32_t> Normal(const char16_t *path) {
    NormalBmpSaveSpool(path);
    return std::nullopt;
}
std::optional<int32_t> Compressed(const char16_t *path) {
    CompressedBmpSaveSpool(path);
    return std::nullopt;
}

// Two bands and a part of one, wide enough for more than one lane of the dither.
BmpBuilder PictureOf(uint16_t depth) {
    constexpr int32_t kWidth = 70, kHeight = 51;
    if (depth == 1)
        return BmpBuilder::OneBit(kWidth, kHeight, [](int32_t x, int32_t y) { return x * y % 3 == 0; });
    return BmpBuilder::Colour(kWidth, kHeight, [](int32_t x, int32_t y) {
        return Pixel{static_cast<uint8_t>(3 * x), static_cast<uint8_t>(5 * y), static_cast<uint8_t>(x * y)};
    });
}

struct Printed {
    std::optional<int32_t> result;
    std::vector<uint8_t> spool;
};

Printed PrintPicture(const Case &given, Point &point) {
    const auto result = given.print(point.Picture());
    const allocation::Exempt own;
    return {result, SpoolBytes()};
}

class PictureFaultsTest : public testing::TestWithParam<std::tuple<Case, bool, bool>> {
  protected:
    void Prepare(Point &point) const {
        EXPECT_TRUE(point.OpenLink(wireless, framed));
        point.Give(PictureOf(given.depth));
        SetPrintPosition(1, 2);
    }

    // What is in the spool when nothing fails.
    std::vector<uint8_t> Whole() const {
        Point point;
        point.AttachPrinter();
        Prepare(point);
        PrintPicture(given, point);
        const std::vector<uint8_t> spool = SpoolBytes();
        point.ExpectUsable();
        return spool;
    }

    Case given = std::get<0>(GetParam());
    bool wireless = std::get<1>(GetParam());
    bool framed = std::get<2>(GetParam());
};

constexpr size_t kBefore = 6; // bytes of SetPrintPosition
constexpr size_t kFrame = 11; // bytes that a frame adds to what needs no escaping

// All of the picture or none of it; -1 for a file that cannot be read, 0 without memory.
std::vector<uint8_t> Check(const Printed &printed, const std::vector<uint8_t> &whole, const Point &point) {
    const bool fails = point.FileFailed() || point.AllocationFailed();
    const std::vector<uint8_t> expected(whole.begin(), fails ? whole.begin() + kBefore : whole.end());
    EXPECT_EQ(expected, printed.spool);
    if (printed.result) {
        const int32_t failure = point.FileFailed() ? -1 : 0;
        EXPECT_EQ(fails ? failure : static_cast<int32_t>(whole.size()), *printed.result);
    }
    return expected;
}

// The spool goes out whole or, refused, not at all; framed it is longer by the frame and what is escaped.
void CheckSent(const std::vector<uint8_t> &spool, bool framed, const Point &point) {
    EXPECT_EQ(1u, point.Asked());
    if (point.Refused() != 0) {
        EXPECT_EQ("", HexOf(point.Written()));
    } else if (framed) {
        EXPECT_LE(spool.size() + kFrame, point.Written().size());
    } else {
        EXPECT_EQ(spool, point.Written());
    }
    EXPECT_EQ(point.Refused() != 0 ? kIoError : kNoReason, LastLinkError);
}

} // namespace

TEST_P(PictureFaultsTest, PrintsItWholeOrNotAtAll) {
    const std::vector<uint8_t> whole = Whole();
    ASSERT_GT(whole.size(), kBefore);
    Printed printed;
    const auto act = [&](Point &point) {
        printed = PrintPicture(given, point);
        return PrintSpool(1);
    };
    TryEveryPoint({.name = given.name,
                   .sources = {Source::system, Source::files, Source::memory},
                   .prepare = [&](Point &point) { Prepare(point); },
                   .act = act,
                   .check =
                       [&](Point &point, int32_t result) {
                           EXPECT_EQ(NADREL_SUCCESS, result);
                           point.ExpectFilesClosed();
                           point.ExpectNoDisplay();
                           CheckSent(Check(printed, whole, point), framed, point);
                       }});
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, PictureFaultsTest,
    testing::Combine(testing::Values(Case{"Colour", 24, Positioned}, Case{"ColourNormal", 24, Normal},
                                     Case{"ColourCompressed", 24, Compressed}, Case{"OneBit", 1, Positioned},
                                     Case{"OneBitNormal", 1, Normal},
                                     Case{"OneBitCompressed", 1, Compressed}),
                     testing::Bool(), testing::Bool()),
    [](const auto &tested) {
        return std::string(std::get<0>(tested.param).name) + (std::get<1>(tested.param) ? "Tcp" : "Serial") +
               (std::get<2>(tested.param) ? "Framed" : "");
    });

} // namespace nadrel::faults
