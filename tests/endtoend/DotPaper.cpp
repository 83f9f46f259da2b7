#include "tests/endtoend/DotPaper.h"

#include <algorithm>
#include <string>

namespace endtoend {

void DotPaper::Lengthen(int rows) {
    height = std::max(height, rows);
    black.resize(Place(0, height));
}

testing::AssertionResult DotPaper::LooksLike(const Picture &picture) const {
    if (picture.width != width || picture.height != height)
        return testing::AssertionFailure() << "the paper has " << picture.width << " x " << picture.height
                                           << " dots, expected " << width << " x " << height;
    int different = 0;
    std::string first;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if ((picture.At(x, y) == 0) != black[Place(x, y)] && different++ == 0)
                first = std::to_string(x) + ", " + std::to_string(y);
    if (different != 0)
        return testing::AssertionFailure() << different << " dots differ, the first at " << first;
    return testing::AssertionSuccess();
}

} // namespace endtoend
