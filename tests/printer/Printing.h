#pragma once

#include "printer/Renderer.h"

#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>

namespace printer::testing {

// The installed font, opened once for all tests.
Fonts &TestFonts();

// How many dots of a rectangle are black.
int BlackDots(const Bitmap &picture, const Area &area);

// The smallest rectangle around all black dots; of width 0 in a white picture.
Area BlackArea(const Bitmap &picture);

// '#' for black, '.' for white, a string a row.
std::vector<std::string> RowsOf(const Bitmap &picture);

// What the commands print on fresh paper.
class Printing {
  public:
    explicit Printing(int width = 384, int longest = Paper::LongestPaper)
        : paper_(width, longest), renderer_(paper_, TestFonts()) {}

    // Decodes and carries out; the remarks come back.
    std::vector<std::string> Print(const std::string &bytes);

    const Bitmap &Picture() const { return paper_.Picture(); }
    int Rows() const { return paper_.Rows(); }
    const Renderer &GetRenderer() const { return renderer_; }

  private:
    Paper paper_;
    Renderer renderer_;
    StreamDecoder decoder_;
};

// The picture that commands print on fresh paper, and the remarks put to the test that there are none.
Bitmap PictureOf(const std::string &bytes, int width = 384);

// That these rectangles are black and everything else is white. Reversed spaces print as exact rectangles.
void ExpectBlackExactly(const Bitmap &picture, const std::vector<Area> &areas);

} // namespace printer::testing
