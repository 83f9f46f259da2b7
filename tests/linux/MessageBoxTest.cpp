#include "platform/MessageBox.h"

#include <gtest/gtest.h>

namespace {

std::string Shown(const char16_t *text) {
    testing::internal::CaptureStderr();
    platform::ShowMessage(text);
    return testing::internal::GetCapturedStderr();
}

TEST(MessageBox, IsALineOnStandardErrorInUtf8) {
    EXPECT_EQ(Shown(u"Caf\u00E9 \u20AC \U0001F5A8"), "Caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x96\xA8\n");
}

TEST(MessageBox, ShowsAPercentSignAsItIs) {
    EXPECT_EQ(Shown(u"100 %s"), "100 %s\n");
}

TEST(MessageBox, ShowsNoTextAsAnEmptyLine) {
    EXPECT_EQ(Shown(nullptr), "\n");
}

TEST(MessageBox, ShowsCharactersBehindTheSurrogatesAsTheyAre) {
    EXPECT_EQ(Shown(u"\uE000 \uFF21 \uFFFD"), "\xEE\x80\x80 \xEF\xBC\xA1 \xEF\xBF\xBD\n");
}

TEST(MessageBox, ShowsALoneSurrogateAsAReplacementCharacter) {
    constexpr char16_t kLow[] = {0xDC00, u'x', 0};
    constexpr char16_t kHigh[] = {0xD800, u'x', 0};
    constexpr char16_t kHighAtTheEnd[] = {u'x', 0xDBFF, 0};
    EXPECT_EQ(Shown(kLow), "\xEF\xBF\xBDx\n");
    EXPECT_EQ(Shown(kHigh), "\xEF\xBF\xBDx\n");
    EXPECT_EQ(Shown(kHighAtTheEnd), "x\xEF\xBF\xBD\n");
}

} // namespace
