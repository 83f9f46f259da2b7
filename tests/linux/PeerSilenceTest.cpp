#include "platform/linux/PeerSilence.h"

#include <gtest/gtest.h>

namespace {

using platform::LifeSigns;
using platform::PeerIsSilent;

TEST(PeerSilence, APeerThatAnswersEveryQuestionIsNeverSilent) {
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 0, .unanswered = 0}));
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 119'000, .unanswered = 0}));
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 240'000, .unanswered = 1}));
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 86'400'000, .unanswered = 0}));
}

TEST(PeerSilence, AShortOutageIsNotSilence) {
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 119'999, .unanswered = 9}));
}

TEST(PeerSilence, TwoMinutesAndFiveUnansweredQuestionsAre) {
    EXPECT_FALSE(PeerIsSilent({.sinceAnswer = 120'000, .unanswered = 4}));
    EXPECT_TRUE(PeerIsSilent({.sinceAnswer = 120'000, .unanswered = 5}));
    EXPECT_TRUE(PeerIsSilent({.sinceAnswer = 4'294'967'295, .unanswered = 255}));
}

} // namespace
