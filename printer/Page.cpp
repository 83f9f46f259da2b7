#include "printer/Page.h"

#include "printer/FirmwareTables.h"

#include <algorithm>

namespace printer {

Page::Page(int paperWidth) : picture_(paperWidth, LongestPage), area_{0, 0, paperWidth, LongestPage} {}

bool Page::SetArea(const Area &area) {
    const int width = std::min(area.width, picture_.Width() - area.x);
    const int height = std::min(area.height, LongestPage - area.y);
    if (width <= 0 || height <= 0)
        return false;
    area_ = {area.x, area.y, width, height};
    bottom_ = std::max(bottom_, area.y + height);
    y_ = 0;
    return true;
}

void Page::SetDirection(Direction direction) {
    direction_ = direction;
    y_ = 0;
}

void Page::Clear() {
    picture_.Erase(area_.x, area_.y, area_.width, area_.height);
}

Bitmap Page::Picture() const {
    return picture_.Rows(0, bottom_ > 0 ? bottom_ : picture_.UsedHeight());
}

} // namespace printer
