#pragma once

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>

// Random tests: every case is made from a number of its own, and a failing one prints how to repeat it alone.
//
//     NADREL_SEED=4711      that case and no other
//     NADREL_CASES=1000000  so many cases of each test instead of the usual number
namespace nadrel {

// The same numbers everywhere.
class Random {
  public:
    explicit Random(uint32_t seed) : engine(seed) {}
    uint32_t operator()() { return static_cast<uint32_t>(engine()); }

  private:
    std::mt19937 engine;
};

inline uint32_t NumberFrom(const char *variable, uint32_t otherwise) {
    const char *const given = std::getenv(variable);
    return given == nullptr ? otherwise : static_cast<uint32_t>(std::strtoul(given, nullptr, 10));
}

// Runs `play(random)` for each case until one fails. Tests that share a `play` differ in the first case.
template <typename Play>
void PlayRandomCases(uint32_t usual, Play play, uint32_t firstCase = 1) {
    const bool alone = std::getenv("NADREL_SEED") != nullptr;
    const uint32_t first = NumberFrom("NADREL_SEED", firstCase);
    const uint32_t count = alone ? 1 : NumberFrom("NADREL_CASES", usual);
    const auto *const test = testing::UnitTest::GetInstance()->current_test_info();
    for (uint32_t seed = first; seed - first < count && !testing::Test::HasFailure(); ++seed) {
        Random random(seed);
        play(random);
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "repeat with: NADREL_SEED=" << seed
                          << " ./image_tests --gtest_filter=" << test->test_suite_name() << '.'
                          << test->name();
    }
}

} // namespace nadrel
