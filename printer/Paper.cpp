#include "printer/Paper.h"

#include <algorithm>

namespace printer {

void Paper::Print(const Bitmap &picture, int x) {
    GrowTo(row_ + picture.Height());
    picture_.Draw(picture, x, row_);
}

void Paper::Feed(int rows) {
    GrowTo(row_ + rows);
    row_ = std::min(row_ + rows, longest_);
}

void Paper::GrowTo(int rows) {
    ++changes_;
    full_ |= rows > longest_;
    picture_.Resize(std::max(Rows(), std::min(rows, longest_)));
}

} // namespace printer
