#pragma once

#include "tests/endtoend/PngPicture.h"

#include <gtest/gtest.h>

#include <vector>

namespace endtoend {

// What a paper should look like, dot by dot.
class DotPaper {
  public:
    explicit DotPaper(int paperWidth) : width(paperWidth) {}

    // Makes dots of width x height places black at x, y where `isBlack(column, row)`; what lies beside the
    // paper is left out. The paper is at least as long as y + height from then on.
    template <typename IsBlack>
    void Draw(int x, int y, int dotsWide, int dotsHigh, IsBlack isBlack) {
        Lengthen(y + dotsHigh);
        for (int row = 0; row < dotsHigh; ++row)
            for (int column = 0; column < dotsWide; ++column)
                if (isBlack(column, row) && x + column < width)
                    black[Place(x + column, y + row)] = true;
    }

    // The paper ends so many rows below its present end.
    void Feed(int rows) { Lengthen(height + rows); }

    int Height() const { return height; }

    testing::AssertionResult LooksLike(const Picture &picture) const;

  private:
    size_t Place(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
    void Lengthen(int rows);

    int width;
    int height = 0;
    std::vector<bool> black;
};

} // namespace endtoend
