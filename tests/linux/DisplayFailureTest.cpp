#include "platform/Display.h"

#include "tests/platform/ScriptedAllocation.h"

#include <gtest/gtest.h>

#include <vector>

namespace platform {

namespace {

// What a call makes when there is no memory for it: for the nth thing that it asks for.
template <typename Call>
auto MadeWithoutMemory(Call call, int nth = 1) {
    scripted::allocation::FailNth(nth, 0, SIZE_MAX);
    const auto made = call();
    EXPECT_EQ(scripted::allocation::Failures(), 1);
    scripted::allocation::Allow();
    return made;
}

} // namespace

TEST(DisplayFailure, WithoutMemoryNothingIsMade) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer has an operator new of its own";
    const std::vector<PaletteEntry> entries(2);
    DeviceContext *const screen = CreateDisplayContext();
    for (const int nth : {1, 2})
        EXPECT_EQ(MadeWithoutMemory([&] { return CreatePalette(entries); }, nth), nullptr);
    EXPECT_EQ(MadeWithoutMemory([] { return CreateDisplayContext(); }), nullptr);
    EXPECT_EQ(MadeWithoutMemory([&] { return CreateMemoryContext(screen); }), nullptr);
    EXPECT_EQ(MadeWithoutMemory([&] { return CreateCompatibleBitmap(screen, 8, 8); }), nullptr);
    DeleteContext(screen);
}

} // namespace platform
