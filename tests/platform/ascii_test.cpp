#include "platform/ascii.h"

#include <gtest/gtest.h>

namespace tarvex {
namespace {

TEST(Ascii, LowerFoldsOnlyAsciiCapitals) {
  EXPECT_EQ(AsciiLower('A'), 'a');
  EXPECT_EQ(AsciiLower('Z'), 'z');
  EXPECT_EQ(AsciiLower('['), '[');
  EXPECT_EQ(AsciiLower('\xC4'), '\xC4');
}

TEST(Ascii, EqualIgnoringCaseNeedsTheSameLength) {
  EXPECT_TRUE(EqualIgnoringAsciiCase("VTS_01_1.VOB", "vts_01_1.vob"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("vts_01_1.vob", "vts_01_1.vo"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("\xC4", "\xE4"));
}

TEST(Ascii, StartsAndEndsWithIgnoringCase) {
  EXPECT_TRUE(StartsWithIgnoringAsciiCase("VIDEO_TS.INI", "video_ts"));
  EXPECT_FALSE(StartsWithIgnoringAsciiCase("vts", "vts_"));
  EXPECT_TRUE(EndsWithIgnoringAsciiCase("/x/menu.VoB", "vob"));
  EXPECT_FALSE(EndsWithIgnoringAsciiCase("/x/menu.vob2", "vob"));
  EXPECT_FALSE(EndsWithIgnoringAsciiCase("ob", "vob"));
}

}  // namespace
}  // namespace tarvex
