#include "tests/printer/Printing.h"

#include <algorithm>

namespace printer::testing {

Fonts &TestFonts() {
    static Fonts fonts;
    return fonts;
}

int BlackDots(const Bitmap &picture, const Area &area) {
    int dots = 0;
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int x = area.x; x < area.x + area.width; ++x)
            dots += picture.Get(x, y);
    return dots;
}

Area BlackArea(const Bitmap &picture) {
    int left = picture.Width(), top = picture.Height(), right = 0, bottom = 0;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x)
            if (picture.Get(x, y)) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x + 1);
                bottom = std::max(bottom, y + 1);
            }
    return right == 0 ? Area{} : Area{left, top, right - left, bottom - top};
}

std::vector<std::string> RowsOf(const Bitmap &picture) {
    std::vector<std::string> rows;
    for (int y = 0; y < picture.Height(); ++y) {
        rows.emplace_back();
        for (int x = 0; x < picture.Width(); ++x)
            rows.back() += picture.Get(x, y) ? '#' : '.';
    }
    return rows;
}

std::vector<std::string> Printing::Print(const std::string &bytes) {
    std::vector<Command> commands;
    decoder_.Feed(BytesOf(bytes), commands);
    std::vector<std::string> remarks;
    for (const Command &command : commands)
        for (const std::string &remark : renderer_.Execute(command))
            remarks.push_back(remark);
    return remarks;
}

Bitmap PictureOf(const std::string &bytes, int width) {
    Printing printing(width);
    EXPECT_EQ(printing.Print(bytes), std::vector<std::string>());
    return printing.Picture();
}

void ExpectBlackExactly(const Bitmap &picture, const std::vector<Area> &areas) {
    Bitmap expected(picture.Width(), picture.Height());
    for (const Area &area : areas)
        expected.Fill(area.x, area.y, area.width, area.height);
    const Area black = BlackArea(picture);
    EXPECT_TRUE(picture == expected) << "black from " << black.x << ", " << black.y << ", " << black.width
                                     << " x " << black.height;
}

} // namespace printer::testing
