#pragma once

#include "printer/Bitmap.h"

namespace printer {

// The paper that has come out of the printer, growing downward.
class Paper {
  public:
    static constexpr int LongestPaper = 200000; // rows

    explicit Paper(int width, int longest = LongestPaper) : picture_(width, 0), longest_(longest) {}

    int Width() const { return picture_.Width(); }
    int Rows() const { return picture_.Height(); }

    // Prints at the present row, without a feed. What lies beyond the sides or the longest paper is left out.
    void Print(const Bitmap &picture, int x);

    void Feed(int rows); // not negative

    // True once something did not fit on the longest paper.
    bool IsFull() const { return full_; }

    const Bitmap &Picture() const { return picture_; }

    // Counts the prints and feeds, so that one can tell whether there is something new.
    uint64_t Changes() const { return changes_; }

  private:
    void GrowTo(int rows);

    Bitmap picture_;
    int longest_;
    int row_ = 0;
    bool full_ = false;
    uint64_t changes_ = 0;
};

} // namespace printer
