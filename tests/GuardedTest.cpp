#include "spool/Guarded.h"

#include <gtest/gtest.h>
#include <new>

namespace nadrel {

TEST(Guarded, GivesTheBodysResult) {
    EXPECT_EQ(Guarded([]() -> int32_t { return -3; }), -3);
}

TEST(Guarded, AnExceptionBecomes0) {
    EXPECT_EQ(Guarded([]() -> int32_t { throw std::bad_alloc(); }), 0);
    EXPECT_EQ(Guarded([]() -> int32_t { throw 5; }), 0);
}

} // namespace nadrel
