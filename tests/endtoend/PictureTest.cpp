#include "tests/endtoend/DotPaper.h"
#include "tests/endtoend/EndToEnd.h"

#include "tests/image/BmpBuilder.h"
#include "tests/image/Oracle.h"

#include <fstream>
#include <random>

using namespace endtoend;
using nadrel::BmpBuilder;
using nadrel::Pixel;

namespace {

constexpr int kPaper = 384;

struct Size {
    int width;
    int height;
};

// Around whole bytes, whole groups of four bytes and whole bands; the last is wider than the paper.
constexpr Size kSizes[] = {{8, 1},   {1, 25},   {12, 24},  {100, 50}, {31, 23},
                           {33, 48}, {383, 71}, {384, 96}, {200, 7},  {401, 30}};

// A random picture and the dots that it should give on paper.
class Dots {
  public:
    // One bit a pixel; the dots are its set bits, or its clear ones.
    static Dots OneBit(Size size, uint32_t seed, bool setBitsPrint) {
        Dots dots(size);
        std::mt19937 random(seed);
        for (size_t i = 0; i < dots.black.size(); ++i)
            dots.black[i] = random() % 3 == 0;
        dots.file = BmpBuilder::OneBit(size.width, size.height, [&](int x, int y) {
                        return dots.IsBlack(x, y) == setBitsPrint ? 1 : 0;
                    }).Bytes();
        return dots;
    }

    // Colours, rows of black and white between them.
    static Dots Colours(Size size, uint32_t seed) {
        Dots dots(size);
        std::mt19937 random(seed);
        const BmpBuilder builder = BmpBuilder::Colour(size.width, size.height, [&](int x, int y) {
            if (y % 9 == 4)
                return (x + y) / 5 % 2 == 0 ? nadrel::kBlack : nadrel::kWhite;
            const auto level = [&] { return static_cast<uint8_t>(random() % 200); };
            return Pixel{level(), level(), level()};
        });
        dots.file = builder.Bytes();
        dots.TakeDithered(builder);
        return dots;
    }

    bool IsBlack(int x, int y) const {
        return black[static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x)];
    }

    // Drops the columns that make no whole byte.
    void DropBrokenByte() {
        for (int y = 0; y < size.height; ++y)
            for (int x = size.width / 8 * 8; x < size.width; ++x)
                black[static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x)] =
                    false;
    }

    Size size;
    std::vector<uint8_t> file;

  private:
    explicit Dots(Size pixels)
        : size(pixels), black(static_cast<size_t>(pixels.width) * static_cast<size_t>(pixels.height)) {}

    void TakeDithered(const BmpBuilder &builder) {
        const size_t stride = BmpBuilder::StrideOf(size.width, 24);
        oracle::Dither dither(size.width);
        for (int y = 0; y < size.height; ++y) {
            const uint8_t *stored = &builder.pixels[stride * static_cast<size_t>(size.height - 1 - y)];
            std::vector<uint8_t> row(stored, stored + stride);
            dither.DitherRow(row.data(), true);
            for (int x = 0; x < size.width; ++x)
                black[static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x)] =
                    row[3 * static_cast<size_t>(x)] == 0;
        }
    }

    std::vector<bool> black;
};

class Pictures : public OnEveryLink {
  protected:
    void SetUp() override { ASSERT_TRUE(Open(GetParam())); }

    std::u16string FileOf(const Dots &dots) {
        const std::filesystem::path path = folder.Path() / "picture.bmp";
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(dots.file.data()),
                   static_cast<std::streamsize>(dots.file.size()));
        return ToUtf16(path.string());
    }

    // Appends the picture at the paper's end and draws its dots there; bands feed the paper by their lines,
    // compressed ones by 24 each.
    void AppendNormal(const Dots &dots) {
        NormalBmpSaveSpool(FileOf(dots).c_str());
        Draw(dots, 0, dots.size.height);
    }
    void AppendAt(const Dots &dots, int x) {
        EXPECT_GT(BmpSaveSpool(FileOf(dots).c_str(), x, 0), 0);
        Draw(dots, x, dots.size.height);
    }
    void AppendCompressed(const Dots &dots) {
        CompressedBmpSaveSpool(FileOf(dots).c_str());
        Draw(dots, 0, (dots.size.height / 24 + 1) * 24);
    }

    // Prints a picture of each size under the other, by append(size, seed).
    template <typename AppendOne>
    void PrintEach(uint32_t firstSeed, AppendOne append) {
        uint32_t seed = firstSeed;
        for (const Size size : kSizes) {
            SetLineSpace(60); // the bands join all the same
            append(size, seed++);
            AppendMark();
        }
        EXPECT_TRUE(expected.LooksLike(Print()));
    }

    // A black rectangle tells whether the picture ended where it should.
    void AppendMark() {
        SetLineSpace(30);
        SetTextStyle(0, 0, 0, 0, 1);
        TextSaveSpool(u" ");
        PrintData();
        expected.Draw(0, expected.Height(), 12, 24, [](int, int) { return true; });
        expected.Feed(6);
    }

    // Prints the spool; the paper that has come out when all of it was decoded.
    Picture Print() {
        PrintDotFeed(13);
        expected.Feed(13);
        EXPECT_EQ(PrintSpool(1), 1);
        EXPECT_TRUE(HasListed("print and feed 13 dots"));
        EXPECT_EQ(Printer().Listed("unknown"), 0u);
        EXPECT_EQ(Printer().Listed("incomplete"), 0u);
        ClosePrinter();
        StopPrinter();
        return ReadPng(Printer().Picture());
    }

    DotPaper expected{kPaper};

  private:
    void Draw(const Dots &dots, int x, int fed) {
        const int top = expected.Height();
        expected.Draw(x, top, dots.size.width, dots.size.height,
                      [&](int column, int row) { return dots.IsBlack(column, row); });
        expected.Feed(top + fed - expected.Height());
    }
};
NADREL_ON_EVERY_LINK(Pictures);

} // namespace

TEST_P(Pictures, PrintOneBitAPixelDotByDot) {
    PrintEach(1, [this](Size size, uint32_t seed) { AppendNormal(Dots::OneBit(size, seed, false)); });
}

TEST_P(Pictures, PrintOneBitAPixelAtAPositionDotByDot) {
    PrintEach(100, [this](Size size, uint32_t seed) {
        Dots dots = Dots::OneBit(size, seed, true);
        dots.DropBrokenByte();
        AppendAt(dots, static_cast<int>(seed % 60));
    });
}

TEST_P(Pictures, PrintOneBitAPixelCompressedDotByDot) {
    PrintEach(200, [this](Size size, uint32_t seed) { AppendCompressed(Dots::OneBit(size, seed, false)); });
}

TEST_P(Pictures, PrintColoursDitheredDotByDot) {
    PrintEach(300, [this](Size size, uint32_t seed) { AppendNormal(Dots::Colours(size, seed)); });
}

TEST_P(Pictures, PrintColoursAtAPositionDitheredDotByDot) {
    PrintEach(400, [this](Size size, uint32_t seed) {
        AppendAt(Dots::Colours(size, seed), static_cast<int>(seed % 60));
    });
}

TEST_P(Pictures, PrintColoursCompressedDitheredDotByDot) {
    PrintEach(500, [this](Size size, uint32_t seed) { AppendCompressed(Dots::Colours(size, seed)); });
}

TEST_P(Pictures, StandWhereTheyArePutOnAPage) {
    const Dots left = Dots::Colours({61, 50}, 600);
    const Dots right = Dots::OneBit({96, 40}, 601, true);
    const Dots below = Dots::OneBit({75, 48}, 602, false);
    const Dots last = Dots::Colours({100, 30}, 603);
    const auto draw = [this](const Dots &dots, int x, int y) {
        expected.Draw(16 + x, 8 + y, dots.size.width, dots.size.height,
                      [&](int column, int row) { return dots.IsBlack(column, row); });
    };
    InitPageMode(16, 8, 300, 240);
    EXPECT_GT(BmpSaveSpool(FileOf(right).c_str(), 150, 20), 0);
    EXPECT_GT(BmpSaveSpool(FileOf(left).c_str(), 5, 3), 0);
    Page_SetPosition(0, 70);
    NormalBmpSaveSpool(FileOf(below).c_str());
    Page_SetPosition(0, 130);
    CompressedBmpSaveSpool(FileOf(last).c_str());
    Page_Print_StandardMode();
    draw(right, 150, 20);
    draw(left, 5, 3);
    draw(below, 0, 70);
    draw(last, 0, 130);
    expected.Feed(248 - expected.Height());
    EXPECT_TRUE(expected.LooksLike(Print()));
}
