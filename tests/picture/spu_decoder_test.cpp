// The sub-picture decoder on units built by hand: the expected pixels are read off the codes
// written below, one run at a time.
#include "picture/spu_decoder.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarvex::picture {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Area x 10-109, y 20-23 (100 x 4); colour codes 5 9 12 15, contrasts 0 15 8 4; displayed at
// delay 0, stopped at delay 100.
Bytes EveryCodeLength() {
  return {0x00, 0x30, 0x00,
          0x12,  // size 48, control sequences at 18
                 // top field (lines 0 and 2) at 4:
                 // line 0: D = 3 x 1 | 16 = 5 x 2 | 053 = 20 x 3 | 0100 = 64 x 0 | 0002 = rest x 2
          0xD1, 0x60, 0x53, 0x01, 0x00, 0x00, 0x02, 0x00, 0x02,  // line 2: rest x 2
          // bottom field (lines 1 and 3) at 13:
          0x50, 0x00, 0x30,  // line 1: 5 = 1 x 1 | 0003 = rest x 3, then the byte boundary
          0x00, 0x01,        // line 3: rest x 1
          // sequence at 18: delay 0, next at 42
          0x00, 0x00, 0x00, 0x2A, 0x03, 0xFC, 0x95,  // colours e2 15, e1 12, p 9, b 5
          0x04, 0x48, 0xF0,                          // contrasts e2 4, e1 8, p 15, b 0
          0x05, 0x00, 0xA0, 0x6D, 0x01, 0x40, 0x17,  // x 10-109, y 20-23
          0x06, 0x00, 0x04, 0x00, 0x0D,              // top field at 4, bottom at 13
          0x01, 0xFF,                                // start display
          // sequence at 42: delay 100, points at itself
          0x00, 0x64, 0x00, 0x2A, 0x02, 0xFF};
}

std::array<Rgb, 16> TestPalette() {
  std::array<Rgb, 16> p{};
  for (std::uint8_t i = 0; i < 16; ++i)
    p[i] = {static_cast<std::uint8_t>(i * 10), static_cast<std::uint8_t>(i * 10 + 1),
            static_cast<std::uint8_t>(i * 10 + 2)};
  return p;
}

TEST(SubpictureDecoder, ReadsTheControlSequences) {
  Bytes unit = EveryCodeLength();
  SpuControl c = DecodeSpuControl(unit);
  EXPECT_EQ(c.size, 48u);
  ASSERT_TRUE(c.start_delay && c.stop_delay);
  EXPECT_EQ(*c.start_delay, 0);
  EXPECT_EQ(*c.stop_delay, 100);
  EXPECT_FALSE(c.forced);
  EXPECT_EQ(c.colors, (SpuCodes{5, 9, 12, 15}));
  EXPECT_EQ(c.contrast, (SpuCodes{0, 15, 8, 4}));
  EXPECT_EQ(c.x0, 10);
  EXPECT_EQ(c.x1, 109);
  EXPECT_EQ(c.y0, 20);
  EXPECT_EQ(c.y1, 23);
  EXPECT_EQ(c.width(), 100u);
  EXPECT_EQ(c.height(), 4u);
}

TEST(SubpictureDecoder, DecodesEveryRunLengthCodeLengthOnBothFields) {
  Bytes unit = EveryCodeLength();
  std::vector<std::uint8_t> px = DecodeSpuPixels(unit, DecodeSpuControl(unit));
  ASSERT_EQ(px.size(), 400u);
  auto at = [&](int x, int y) { return px[y * 100 + x]; };
  for (int x = 0; x < 3; ++x) EXPECT_EQ(at(x, 0), 1) << x;
  for (int x = 3; x < 8; ++x) EXPECT_EQ(at(x, 0), 2) << x;
  for (int x = 8; x < 28; ++x) EXPECT_EQ(at(x, 0), 3) << x;
  for (int x = 28; x < 92; ++x) EXPECT_EQ(at(x, 0), 0) << x;
  for (int x = 92; x < 100; ++x) EXPECT_EQ(at(x, 0), 2) << x;
  EXPECT_EQ(at(0, 1), 1);
  for (int x = 1; x < 100; ++x) EXPECT_EQ(at(x, 1), 3) << x;
  for (int x = 0; x < 100; ++x) EXPECT_EQ(at(x, 2), 2) << x;
  for (int x = 0; x < 100; ++x) EXPECT_EQ(at(x, 3), 1) << x;
}

TEST(SubpictureDecoder, ColoursThroughThePaletteWithSeventeenTimesTheContrast) {
  Bytes unit = EveryCodeLength();
  RgbaImage image = RenderSpu(unit, DecodeSpuControl(unit), TestPalette());
  ASSERT_EQ(image.width, 100u);
  ASSERT_EQ(image.height, 4u);
  auto px = [&](int x, int y) {
    const std::uint8_t* p = image.rgba.data() + (y * 100 + x) * 4;
    return std::vector<int>{p[0], p[1], p[2], p[3]};
  };
  EXPECT_EQ(px(0, 0), (std::vector<int>{90, 91, 92, 255}));     // value 1: entry 9, contrast 15
  EXPECT_EQ(px(3, 0), (std::vector<int>{120, 121, 122, 136}));  // value 2: entry 12, contrast 8
  EXPECT_EQ(px(8, 0), (std::vector<int>{150, 151, 152, 68}));   // value 3: entry 15, contrast 4
  EXPECT_EQ(px(28, 0), (std::vector<int>{50, 51, 52, 0}));      // value 0: entry 5, contrast 0
}

TEST(SubpictureDecoder, ADisplayAreaLargerThanTheDataIsBackground) {
  // 8 x 6 area; each field codes one line and a half (a run of 4, then nothing).
  Bytes unit = {0x00, 0x1F, 0x00, 0x0B, 0x00, 0x01, 0x11,  // top at 4: line 0 rest x 1; line 2: 4 x
                                                           // 1, data ends
                0x00, 0x03, 0x13,  // bottom at 7: line 1 rest x 3; line 3: 4 x 3, data ends
                0x00,              // filler before the table
                0x00, 0x00, 0x00, 0x0B, 0x03, 0x00, 0x10, 0x04, 0xFF, 0xF0, 0x05, 0x00, 0x00, 0x07,
                0x00, 0x00, 0x05, 0x06, 0x00, 0x04, 0x00, 0x07};
  unit[1] = static_cast<std::uint8_t>(unit.size() + 2);
  unit.push_back(0x01);
  unit.push_back(0xFF);
  SpuControl c = DecodeSpuControl(unit);
  ASSERT_EQ(c.width(), 8u);
  ASSERT_EQ(c.height(), 6u);
  std::vector<std::uint8_t> px = DecodeSpuPixels(unit, c);
  std::vector<std::uint8_t> want = {
      1, 1, 1, 1, 1, 1, 1, 1,  // line 0
      3, 3, 3, 3, 3, 3, 3, 3,  // line 1
      1, 1, 1, 1, 0, 0, 0, 0,  // line 2: the top field's data ends after 4 pixels
      3, 3, 3, 3, 0, 0, 0, 0,  // line 3
      0, 0, 0, 0, 0, 0, 0, 0,  // lines 4 and 5: no data at all
      0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(px, want);
}

TEST(SubpictureDecoder, AColourAndContrastChangeRecoloursPartOfALine) {
  // 8 x 2 area at 0,0, every pixel value 1 (entry 1, contrast 15); from screen line 1, column 4
  // on, value 1 takes entry 7 and contrast 3.
  Bytes unit = {0x00, 0x00, 0x00, 0x08, 0x00, 0x01, 0x00,
                0x01,                    // top at 4, bottom at 6: whole lines of 1
                0x00, 0x00, 0x00, 0x08,  // the only sequence
                0x00,                    // forced start
                0x03, 0x00, 0x10, 0x04, 0x00, 0xF0, 0x05, 0x00, 0x00, 0x07, 0x00, 0x00, 0x01, 0x06,
                0x00, 0x04, 0x00, 0x06, 0x07, 0x00, 0x10,  // change: 16 bytes of parameters
                                                           // with their size
                0x00, 0x01, 0x10, 0x01,                    // lines 1-1, one change point
                0x00, 0x04, 0x00, 0x70, 0x00, 0x30,        // column 4: p entry 7, p contrast 3
                0x0F, 0xFF, 0xFF, 0xFF,                    // end of the changes
                0xFF};
  unit[1] = static_cast<std::uint8_t>(unit.size());
  SpuControl c = DecodeSpuControl(unit);
  EXPECT_TRUE(c.forced);
  ASSERT_EQ(c.changes.size(), 1u);
  RgbaImage image = RenderSpu(unit, c, TestPalette());
  ASSERT_EQ(image.width, 8u);
  ASSERT_EQ(image.height, 2u);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 8; ++x) {
      const std::uint8_t* p = image.rgba.data() + (y * 8 + x) * 4;
      bool changed = y == 1 && x >= 4;
      EXPECT_EQ(p[0], changed ? 70 : 10) << x << "," << y;
      EXPECT_EQ(p[3], changed ? 51 : 255) << x << "," << y;
    }
  }
}

TEST(SubpictureDecoder, ConvertsPaletteEntriesByTheBt601Formula) {
  // Y 235, Cr 128, Cb 128: 1.164 x 219 = 254.9 -> 255 white.
  EXPECT_EQ(PaletteEntryToRgb(0x00EB8080), (Rgb{255, 255, 255}));
  // Y 16: black.
  EXPECT_EQ(PaletteEntryToRgb(0x00108080), (Rgb{0, 0, 0}));
  // Y 81, Cr 240, Cb 90: 1.164 x 65 = 75.66; R 75.66 + 1.596 x 112 = 254.41 -> 254;
  // G 75.66 - 0.813 x 112 - 0.391 x -38 = 75.66 - 91.056 + 14.858 = -0.54 -> 0 (rounds to -1);
  // B 75.66 + 2.018 x -38 = -1.024 -> 0.
  EXPECT_EQ(PaletteEntryToRgb(0x0051F05A), (Rgb{254, 0, 0}));
  EXPECT_EQ(RgbHex({254, 0, 16}), "fe0010");
}

}  // namespace
}  // namespace tarvex::picture
