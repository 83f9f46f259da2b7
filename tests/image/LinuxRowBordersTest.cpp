#include "image/LaneLevels.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace nadrel {

namespace {

// 24 pages, each between two that nothing may be read from.
class GuardedPages {
  public:
    GuardedPages()
        : memory(mmap(nullptr, kPages * pageBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (memory == MAP_FAILED)
            throw std::system_error(errno, std::generic_category(), "mmap");
        for (int32_t k = 0; k < kLanes; ++k) {
            if (mprotect(Page(k), pageBytes, PROT_READ | PROT_WRITE) != 0)
                throw std::system_error(errno, std::generic_category(), "mprotect");
            std::memset(Page(k), 0x5A, pageBytes);
        }
    }
    ~GuardedPages() { munmap(memory, kPages * pageBytes); }
    GuardedPages(const GuardedPages &) = delete;
    GuardedPages &operator=(const GuardedPages &) = delete;

    // The first row's page lies highest, as in a picture.
    uint8_t *Page(int32_t row) const {
        return static_cast<uint8_t *>(memory) + static_cast<size_t>(2 * (kLanes - 1 - row) + 1) * pageBytes;
    }

    const size_t pageBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));

  private:
    static constexpr size_t kPages = 2 * kLanes + 1;
    void *const memory;
};

class RowBorders : public testing::TestWithParam<LuminanceForm> {
  protected:
    // Rows that begin so many bytes behind the start of their pages.
    void SpreadAt(size_t place, int32_t width, int32_t count) {
        std::vector<uint8_t> levels(LaneLevelBytes(width));
        GetParam().spread({pages.Page(0) + place, 2 * pages.pageBytes, count}, width, levels.data());
        ASSERT_NE(levels[0], 0);
    }

    GuardedPages pages;
};

} // namespace

TEST_P(RowBorders, NothingIsReadBehindTheRows) {
    for (int32_t width = 1; width <= 200; ++width)
        SpreadAt(pages.pageBytes - 3 * static_cast<size_t>(width), width, kLanes);
}

TEST_P(RowBorders, NothingIsReadBeforeTheRows) {
    for (int32_t width = 1; width <= 200; ++width)
        SpreadAt(0, width, kLanes);
}

TEST_P(RowBorders, NoRowsAreReadButThoseOfTheBand) {
    for (int32_t count = 1; count < kLanes; ++count) {
        ASSERT_EQ(mprotect(pages.Page(kLanes - count), pages.pageBytes, PROT_NONE), 0);
        SpreadAt(0, 100, kLanes - count);
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, RowBorders,
                         testing::ValuesIn(LuminanceForms().begin(), LuminanceForms().end()),
                         [](const auto &form) { return std::string(form.param.name); });

} // namespace nadrel
