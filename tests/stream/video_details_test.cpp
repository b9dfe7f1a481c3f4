#include "stream/video_details.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "stream/pes_header.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::MakePesPack;
using test::PutBytes;
using test::Record;

// A sequence header with the given aspect ratio and frame rate codes.
std::vector<std::uint8_t> SequenceHeader(std::uint8_t aspect = 2, std::uint8_t rate = 4) {
  return {0x00, 0x00, 0x01, 0xB3, 0x2D, 0x01, 0xE0, static_cast<std::uint8_t>(aspect << 4 | rate),
          0x04, 0x93, 0xE7, 0x10};
}

std::vector<std::string> Details(const std::vector<std::uint8_t>& payload) {
  Fixture f;
  ShowVideoStreamDetails(*f.ctx, ByteView(payload));
  return f.lines();
}

std::vector<std::string> LinesStarting(const std::vector<std::string>& lines,
                                       const std::string& prefix) {
  std::vector<std::string> out;
  for (const auto& l : lines) {
    if (l.rfind(prefix, 0) == 0) out.push_back(l);
  }
  return out;
}

TEST(VideoStreamDetails, PayloadStartingWithPictureOrGopGivesOnlyPesLinesAndBlank) {
  for (std::uint8_t code : {0x00, 0xB8}) {
    Fixture f;
    Record r = MakePesPack(0xE0, 0x00, {}, {0x00, 0x00, 0x01, code, 0x00, 0x08, 0x00, 0x40});
    ShowVideoPackDetails(*f.ctx, r);
    ASSERT_EQ(f.lines().size(), 3u + 16u + 1u) << int{code};  // pack, PES, blank
    EXPECT_EQ(f.lines()[18], "    header_data_length 0");
    EXPECT_EQ(f.lines().back(), " ");
  }
}

TEST(VideoStreamDetails, ThreePicturesGiveThreeTypeLinesAndOnlyTheLastCodingExtension) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(200, 0);
  // Pictures I, P, B at 20, 60, 100, each followed by a coding extension 8 bytes later whose
  // picture_structure is 1, 2 and 3 in turn.
  std::size_t at = 20;
  for (std::uint8_t n = 1; n <= 3; ++n, at += 40) {
    std::vector<std::uint8_t> bytes = {0x00, 0x00, 0x01,
                                       0x00, 0x00, static_cast<std::uint8_t>(n << 3)};
    std::copy(bytes.begin(), bytes.end(), p.begin() + static_cast<std::ptrdiff_t>(at));
    std::vector<std::uint8_t> ext = {0x00, 0x00, 0x01, 0xB5, 0x8F, 0xFF, n, 0x00, 0x00};
    std::copy(ext.begin(), ext.end(), p.begin() + static_cast<std::ptrdiff_t>(at + 8));
  }
  std::vector<std::string> lines = Details(p);
  EXPECT_EQ(LinesStarting(lines, "    picture_coding_type"),
            (std::vector<std::string>{"    picture_coding_type I frame",
                                      "    picture_coding_type P frame",
                                      "    picture_coding_type B frame"}));
  std::vector<std::string> tail(lines.end() - 5, lines.end());
  EXPECT_EQ(tail, (std::vector<std::string>{
                      "  PICTURE_CODING_EXTENSION", "    picture_structure Frame",
                      "    top_field_first Not Set", "    repeat_first_field Not Set",
                      "    progressive_frame Not Set"}));
  EXPECT_EQ(LinesStarting(lines, "  PICTURE_CODING_EXTENSION").size(), 1u);
}

TEST(VideoStreamDetails, FrameRateWarnings) {
  const std::vector<std::string> expected = {
      "    frame_rate_code 0 Illegal",
      "    frame_rate_code 1 23.976 DVD-Video Warning",
      "    frame_rate_code 2 24 DVD-Video Warning",
      "    frame_rate_code 3 25",
      "    frame_rate_code 4 29.97",
      "    frame_rate_code 5 30 DVD-Video Warning",
      "    frame_rate_code 6 50 DVD-Video Warning",
      "    frame_rate_code 7 59.94 DVD-Video Warning",
      "    frame_rate_code 8 60 DVD-Video Warning",
      "    frame_rate_code 9 Illegal",
      "    frame_rate_code 10 Illegal",
      "    frame_rate_code 11 Illegal",
      "    frame_rate_code 12 Illegal",
      "    frame_rate_code 13 Illegal",
      "    frame_rate_code 14 Illegal",
      "    frame_rate_code 15 Illegal",
  };
  for (std::uint8_t rate = 0; rate < 16; ++rate) {
    std::vector<std::string> lines = Details(SequenceHeader(2, rate));
    ASSERT_GE(lines.size(), 5u);
    EXPECT_EQ(lines[4], expected[rate]);
  }
}

TEST(VideoStreamDetails, AspectRatioLines) {
  const std::vector<std::string> expected = {
      "    aspect_ratio_information 0 Illegal",
      "    aspect_ratio_information 1 1:1 DVD-Video Warning",
      "    aspect_ratio_information 2 4:3",
      "    aspect_ratio_information 3 16:9",
      "    aspect_ratio_information 4 2.21:1 DVD-Video Warning",
      "    aspect_ratio_information 5 Illegal",
  };
  for (std::uint8_t aspect = 0; aspect < expected.size(); ++aspect) {
    std::vector<std::string> lines = Details(SequenceHeader(aspect, 3));
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[3], expected[aspect]);
  }
}

TEST(VideoStreamDetails, ProfileAndLevelTexts) {
  struct Case {
    std::uint8_t profile, level;
    const char* line;
  };
  const Case cases[] = {
      {1, 4, "    profile_and_level_indication HP:HL"},
      {2, 6, "    profile_and_level_indication Spatially ScallableP:H 1440L"},
      {3, 10, "    profile_and_level_indication SNR ScalableP:LL"},
      {5, 8, "    profile_and_level_indication SP:ML"},
      {0, 5, "    profile_and_level_indication ??P:??L"},
  };
  for (const Case& c : cases) {
    std::vector<std::uint8_t> p = SequenceHeader();
    p.resize(1100, 0);
    // At the last position searched.
    PutBytes(p, 1034,
             {0x00, 0x00, 0x01, 0xB5, static_cast<std::uint8_t>(0x10 | c.profile),
              static_cast<std::uint8_t>(c.level << 4)});
    std::vector<std::string> lines = Details(p);
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[7], "  SEQUENCE_EXTENSION");
    EXPECT_EQ(lines[8], c.line);
    EXPECT_EQ(lines[9], "    progressive_sequence Not Set");
  }
}

TEST(VideoStreamDetails, SequenceExtensionBeyondPosition1034IsNotFound) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(1100, 0);
  PutBytes(p, 1035, {0x00, 0x00, 0x01, 0xB5, 0x14, 0x80});
  EXPECT_EQ(Details(p).size(), 7u);
}

TEST(VideoStreamDetails, OnlyAnExtensionWithId1IsASequenceExtension) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(100, 0);
  PutBytes(p, 20, {0x00, 0x00, 0x01, 0xB5, 0x24, 0x80});
  EXPECT_EQ(Details(p).size(), 7u);
}

TEST(VideoStreamDetails, WithoutAPictureNoCodingExtensionIsSought) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(100, 0);
  PutBytes(p, 12, {0x00, 0x00, 0x01, 0xB5, 0x8F, 0xFF, 0x03, 0x80, 0x80});
  EXPECT_EQ(Details(p).size(), 7u);
}

TEST(VideoStreamDetails, CodingExtensionMoreThan15BytesAfterThePictureIsNotFound) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(100, 0);
  PutBytes(p, 20, {0x00, 0x00, 0x01, 0x00, 0x00, 0x18});
  PutBytes(p, 36, {0x00, 0x00, 0x01, 0xB5, 0x8F, 0xFF, 0x03, 0x80, 0x80});
  std::vector<std::string> lines = Details(p);
  EXPECT_EQ(lines.back(), "    picture_coding_type B frame");
  PutBytes(p, 35, {0x00, 0x00, 0x01, 0xB5, 0x8F, 0xFF, 0x01, 0x80, 0x80});
  lines = Details(p);
  EXPECT_EQ(
      std::vector<std::string>(lines.end() - 5, lines.end()),
      (std::vector<std::string>{"  PICTURE_CODING_EXTENSION", "    picture_structure Top Field",
                                "    top_field_first Set", "    repeat_first_field Not Set",
                                "    progressive_frame Set"}));
}

TEST(VideoStreamDetails, PictureStructureAndTypeTexts) {
  const char* structures[] = {"    picture_structure Illegal", "    picture_structure Top Field",
                              "    picture_structure Bottom Field", "    picture_structure Frame"};
  for (std::uint8_t s = 0; s < 4; ++s) {
    std::vector<std::uint8_t> p = SequenceHeader();
    p.resize(100, 0);
    PutBytes(p, 20, {0x00, 0x00, 0x01, 0x00, 0x00, 0x38});  // type 7
    PutBytes(p, 28, {0x00, 0x00, 0x01, 0xB5, 0x8F, 0xFF, s, 0x02, 0x00});
    std::vector<std::string> lines = Details(p);
    EXPECT_EQ(std::vector<std::string>(lines.end() - 6, lines.end()),
              (std::vector<std::string>{"    picture_coding_type Illegal frame type",
                                        "  PICTURE_CODING_EXTENSION", structures[s],
                                        "    top_field_first Not Set", "    repeat_first_field Set",
                                        "    progressive_frame Not Set"}));
  }
}

// A found picture start code is passed by its 4 bytes plus one: a code starting 5 bytes after
// it is still seen.
TEST(VideoStreamDetails, PictureScanResumesFiveBytesAfterACode) {
  std::vector<std::uint8_t> p = SequenceHeader();
  p.resize(100, 0);
  PutBytes(p, 20, {0x00, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00, 0x01, 0x00, 0x00, 0x10});
  std::vector<std::string> lines = Details(p);
  EXPECT_EQ(LinesStarting(lines, "    picture_coding_type"),
            (std::vector<std::string>{"    picture_coding_type Illegal frame type",
                                      "    picture_coding_type P frame"}));
}

// The picture scan is bounded by the end of the record: a start code that the record only
// begins is not completed by the missing bytes.
TEST(VideoStreamDetails, PictureScanStopsAtTheRecordEnd) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x00, {}, SequenceHeader());
  PutBytes(r, 2045, {0x00, 0x00, 0x01});
  ShowVideoPackDetails(*f.ctx, r);
  EXPECT_TRUE(LinesStarting(f.lines(), "    picture_coding_type").empty());
  // A code whose four bytes all lie in the record is found; its type byte, beyond, reads 0.
  f.ctx->ClearReportList();
  PutBytes(r, 2044, {0x00, 0x00, 0x01, 0x00});
  ShowVideoPackDetails(*f.ctx, r);
  EXPECT_EQ(LinesStarting(f.lines(), "    picture_coding_type"),
            (std::vector<std::string>{"    picture_coding_type Illegal frame type"}));
}

TEST(VideoStreamDetails, BitRateAndBufferSizeLines) {
  std::vector<std::uint8_t> p = {0x00, 0x00, 0x01, 0xB3, 0xFF, 0xFF,
                                 0xFF, 0x23, 0xFF, 0xFF, 0xFF, 0xFF};
  std::vector<std::string> lines = Details(p);
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_EQ(lines[1], "    horizontal_size_value width 4095");
  EXPECT_EQ(lines[2], "    vertical_size_value height 4095");
  // 255 x 1024 + 255 x 4 + 3 = 262143; vbv 31 x 32 + 31 = 1023.
  EXPECT_EQ(lines[5], "    bit_rate_value 262143, 104857200bps");
  EXPECT_EQ(lines[6], "    vbv_buffer_size_value 1023, 1047552 bytes");
}

}  // namespace
}  // namespace tarvex
