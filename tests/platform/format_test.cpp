#include "platform/format.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tarvex {
namespace {

TEST(Format, LongOfHighBitPrintsNegativeAsOn32BitPlatform) {
  EXPECT_EQ(Format("%ld", {0x80000000u}), "-2147483648");
  EXPECT_EQ(Format("%d", {0xFFFFFFFFu}), "-1");
  EXPECT_EQ(Format("%d", {std::int64_t{0x1FFFFFFFF}}), "-1");
}

TEST(Format, HexUsesLow32BitsUnsigned) {
  EXPECT_EQ(Format("%lx", {0x80000000u}), "80000000");
  EXPECT_EQ(Format("%x", {-1}), "ffffffff");
  EXPECT_EQ(Format("%X", {0xabcu}), "ABC");
  EXPECT_EQ(Format("%lx", {std::uint64_t{0x1234567890}}), "34567890");
  EXPECT_EQ(Format("%u", {-2}), "4294967294");
}

TEST(Format, WidthZeroPaddingAndPrecision) {
  EXPECT_EQ(Format("%03ld", {7}), "007");
  EXPECT_EQ(Format("%08ld", {1234}), "00001234");
  EXPECT_EQ(Format("%02x", {0xA}), "0a");
  EXPECT_EQ(Format("%04d -> ", {16}), "0016 -> ");
  EXPECT_EQ(Format("%06d", {42}), "000042");
  EXPECT_EQ(Format("%5s|%-5s|", {"ab", "cd"}), "   ab|cd   |");
  EXPECT_EQ(Format("%.2s", {"abcdef"}), "ab");
}

TEST(Format, CharIsOneByte) {
  EXPECT_EQ(Format("%c%c", {'e', 0x16E}), "en");
}

TEST(Format, ZeroCharEndsTheLine) {
  EXPECT_EQ(Format("lang %c%c end", {0, 'x'}), "lang ");
  EXPECT_EQ(Format("lang %c%c end", {'x', 0}), "lang x");
}

TEST(Format, StringStopsAtFirstZero) {
  std::string_view bytes("DVDVIDEO\0VMG", 12);
  EXPECT_EQ(Format("id: %s!", {bytes}), "id: DVDVIDEO!");
}

TEST(Format, FloatHasSixDecimals) {
  EXPECT_EQ(Format("%f", {0.5}), "0.500000");
  EXPECT_EQ(Format("%f", {120.0}), "120.000000");
  EXPECT_EQ(Format("%f", {7}), "7.000000");
}

TEST(Format, MissingArgumentsReadNothingBeyondTheList) {
  EXPECT_EQ(Format("    agl_c %x Location Befor/After nav pack", {3}),
            "    agl_c 3 Location Befor/After nav pack");
  EXPECT_EQ(Format("%d %d|%s|", {5}), "5 0||");
}

TEST(Format, PercentAndLiteralText) {
  EXPECT_EQ(Format("100%% sure"), "100% sure");
  EXPECT_EQ(Format("no conversions"), "no conversions");
}

TEST(Format, ShortAndByteLengthModifiers) {
  EXPECT_EQ(Format("%hd", {0x18000}), "-32768");
  EXPECT_EQ(Format("%hhx", {0x1FF}), "ff");
}

TEST(Format, AppendFormatContinuesTheLine) {
  std::string line = "      Nav cmd: ";
  AppendFormat(line, "%08x%08x", {0x20040000u, 5u});
  EXPECT_EQ(line, "      Nav cmd: 2004000000000005");
}

TEST(Counted, TheNounTakesAnSUnlessTheCountIsOne) {
  EXPECT_EQ(Counted(0, "cell"), "0 cells");
  EXPECT_EQ(Counted(1, "cell"), "1 cell");
  EXPECT_EQ(Counted(2, "title set"), "2 title sets");
  EXPECT_EQ(Counted(4294967296ull, "pack"), "4294967296 packs");
}

}  // namespace
}  // namespace tarvex
