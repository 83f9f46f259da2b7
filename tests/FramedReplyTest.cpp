#include "tests/ResponseParserTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FramedReplyTest : public ResponseParserTest {};

struct ShortReply {
    uint8_t type;
    const char *kind;
};

class ShortFramedReplyTest : public ResponseParserTest, public testing::WithParamInterface<ShortReply> {};

INSTANTIATE_TEST_SUITE_P(Of, ShortFramedReplyTest,
                         testing::Values(ShortReply{0x06, "06"}, ShortReply{0x15, "15"},
                                         ShortReply{0x18, "18"}, ShortReply{0x03, "03"},
                                         ShortReply{0x04, "04"}),
                         [](const auto &reply) { return std::string("Type") + reply.param.kind; });

TEST_P(ShortFramedReplyTest, IsPostedWithTheLengthOfTheReplyBeforeAndNoValue) {
    ModelNamePending = 1;
    RepliesTo({'A', 'B', 'C'}, 500);
    RepliesTo({0xC0, GetParam().type}, 500);
    EXPECT_THAT(Replies(), ElementsAre("D 3 response 41 42 43", std::string(GetParam().kind) + " 3 value 0"));
    EXPECT_EQ(3, ResponseLength);
}

TEST_P(ShortFramedReplyTest, HasLengthZeroBeforeAnyReply) {
    EXPECT_THAT(RepliesTo({0xC0, GetParam().type}), ElementsAre(std::string(GetParam().kind) + " 0 value 0"));
}

TEST_P(ShortFramedReplyTest, LeavesTheBytesBehindItQueued) {
    ModelNamePending = 1;
    EXPECT_THAT(RepliesTo({0xC0, GetParam().type, 'A', 'B'}),
                ElementsAre(std::string(GetParam().kind) + " 0 value 0", "D 2 response 41 42"));
}

TEST_F(FramedReplyTest, TwoFramedRepliesInARowArePostedInTwoPasses) {
    Queue({0xC0, 0x06, 0xC0, 0x15});
    Parse(201);
    EXPECT_THAT(Replies(), ElementsAre("06 0 value 0"));
    Parse(2000);
    EXPECT_THAT(Replies(), ElementsAre("06 0 value 0", "15 0 value 0"));
}

TEST_F(FramedReplyTest, FramedRepliesAreUnderstoodOnPlainLinksAndClaimNoRequest) {
    ModelNamePending = 1;
    StatusPending = 1;
    EXPECT_EQ(0, FramedMode);
    EXPECT_THAT(RepliesTo({0xC0, 'S', 0x05}), ElementsAre("S 0 value 5"));
    EXPECT_EQ(1, ModelNamePending);
    EXPECT_EQ(1, StatusPending);
}

TEST_F(FramedReplyTest, AFramedStatusIsPostedAsAValueAndSeen) {
    FramedMode = 1;
    ResponseLength = 9;
    EXPECT_THAT(RepliesTo({0xC0, 'S', 0x92}), ElementsAre("S 9 value 146"));
    EXPECT_EQ(1, FramedStatusSeen);
    EXPECT_EQ(9, ResponseLength);
}

TEST_F(FramedReplyTest, AFramedStatusOf0IsPosted) {
    EXPECT_THAT(RepliesTo({0xC0, 'S', 0x00}), ElementsAre("S 0 value 0"));
}

TEST_F(FramedReplyTest, AFramedStatusWithoutAValueIsSeenAndNotPosted) {
    EXPECT_THAT(RepliesTo({0xC0, 'S'}), IsEmpty());
    EXPECT_EQ(1, FramedStatusSeen);
}

TEST_F(FramedReplyTest, AFramedStatusIsSeenBeforeItsValueIsRead) {
    os.OnCall(
        "Sleep", [] { EXPECT_EQ(1, FramedStatusSeen); }, 2);
    RepliesTo({0xC0, 'S'});
}

TEST_F(FramedReplyTest, FramedPairsArePostedAsDWithTheirType) {
    RepliesTo({0xC0, 0x1B, 0x01, 0x00, 'A'}, 500);
    RepliesTo({0xC0, 'D', 0x00, 0x00, 'B'}, 500);
    EXPECT_THAT(Replies(), ElementsAre("D 4 response 1B 01 00 41", "D 4 response 44 00 00 42"));
    EXPECT_EQ(4, ResponseLength);
}

TEST_F(FramedReplyTest, AFramedPairWithoutASecondByteIsTakenWithAZero) {
    EXPECT_THAT(RepliesTo({0xC0, 'D'}), ElementsAre("D 2 response 44 00"));
}

TEST_F(FramedReplyTest, AFrameByteAloneIsNothing) {
    EXPECT_THAT(RepliesTo({0xC0}), IsEmpty());
}

TEST_F(FramedReplyTest, AFrameOfAnyOtherTypeIsNothingAndWhatFollowsIsClassified) {
    for (int type = 0; type < 256; ++type) {
        const auto byte = static_cast<uint8_t>(type);
        const std::vector<uint8_t> known = {0x06, 0x15, 0x18, 0x03, 0x04, 0x1B, 'D', 'S'};
        if (std::find(known.begin(), known.end(), byte) != known.end())
            continue;
        ModelNamePending = 1;
        const size_t before = os.Notifications().size();
        RepliesTo({0xC0, byte, 'A'}, 500);
        ASSERT_EQ(before + 1, os.Notifications().size()) << type;
        ASSERT_EQ("D 1 response 41", Replies().back()) << type;
    }
}

} // namespace
} // namespace nadrel
