#include "stream/pes_header.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "stream/audio_details.h"
#include "stream/details.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::MakePesPack;
using test::PutBytes;
using test::PutTimeStamp;
using test::Record;

bool HasLine(const std::vector<std::string>& lines, const std::string& text) {
  return std::find(lines.begin(), lines.end(), text) != lines.end();
}

bool HasLineStarting(const std::vector<std::string>& lines, const std::string& prefix) {
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string& l) { return l.rfind(prefix, 0) == 0; });
}

// The full details of a video pack with PTS and DTS and a sequence header, picture header and
// picture coding extension in its payload, each line worked out from the pack's bytes.
TEST(VideoPackDetails, WholeView) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0xC0, std::vector<std::uint8_t>(10, 0),
                         {
                             // sequence header: 720 x 480, 4:3, 29.97, bit rate 4687, vbv 226
                             0x00,
                             0x00,
                             0x01,
                             0xB3,
                             0x2D,
                             0x01,
                             0xE0,
                             0x24,
                             0x04,
                             0x93,
                             0xE7,
                             0x10,
                             // sequence extension: MP@ML, progressive_sequence set
                             0x00,
                             0x00,
                             0x01,
                             0xB5,
                             0x14,
                             0x8A,
                             0x00,
                             0x00,
                             0x00,
                             0x00,
                             // GOP header
                             0x00,
                             0x00,
                             0x01,
                             0xB8,
                             0x00,
                             0x08,
                             0x00,
                             0x40,
                             // picture header at payload offset 30: I frame
                             0x00,
                             0x00,
                             0x01,
                             0x00,
                             0x00,
                             0x0F,
                             0xFF,
                             0xF8,
                             // picture coding extension at 38: frame, tff, rff, progressive
                             0x00,
                             0x00,
                             0x01,
                             0xB5,
                             0x8F,
                             0xFF,
                             0x03,
                             0x82,
                             0x80,
                         },
                         900000);
  PutTimeStamp(r, 23, 0x3, 93003);
  PutTimeStamp(r, 28, 0x1, 90000);
  f.OpenBytes("a.vob", r, kFileVob);
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Details display of record 0 at file address 0",
                           "  VOB Video Pack Details",
                           " ",
                           "pack_start_code 1ba",
                           "   SCR = 00900000.000",
                           "    program_mux_rate = 25200, 1260000 BPS 10080000 bps",
                           " ",
                           "packet_start_code 1e0",
                           "    packet_length 2028",
                           "    scrambling_control 0",
                           "    priority 0",
                           "    data_alignment_indicator 0",
                           "    copyright 0",
                           "    original_or_copy 1",
                           "    pts_dts_flags 3",
                           "    escr_flag 0",
                           "    es_rate_flag 0",
                           "    dsm_tick_mode_flag 0",
                           "    additional_copy_info_flag 0",
                           "    pes_crc_flag 0",
                           "    pes_extension_flag 0",
                           "    header_data_length 10",
                           "    PTS 93003",
                           "    DTS 90000",
                           " ",
                           "video sequence_header_code 1b3",
                           "    horizontal_size_value width 720",
                           "    vertical_size_value height 480",
                           "    aspect_ratio_information 2 4:3",
                           "    frame_rate_code 4 29.97",
                           "    bit_rate_value 4687, 1874800bps",
                           "    vbv_buffer_size_value 226, 231424 bytes",
                           "  SEQUENCE_EXTENSION",
                           "    profile_and_level_indication MP:ML",
                           "    progressive_sequence Set",
                           "    picture_coding_type I frame",
                           "  PICTURE_CODING_EXTENSION",
                           "    picture_structure Frame",
                           "    top_field_first Set",
                           "    repeat_first_field Set",
                           "    progressive_frame Set",
                       }));
}

TEST(PesHeaderLines, FlagBitsOfBytes20And21) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x3E, {}, {});
  r[20] = 0xBF;  // scrambling 3, priority 1, alignment 1, copyright 1, original 1
  ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           " ",
                           "packet_start_code 1e0",
                           "    packet_length 2028",
                           "    scrambling_control 3",
                           "    priority 1",
                           "    data_alignment_indicator 1",
                           "    copyright 1",
                           "    original_or_copy 1",
                           "    pts_dts_flags 0",
                           "    escr_flag 1",
                           "    es_rate_flag 1",
                           "    dsm_tick_mode_flag 1",
                           "    additional_copy_info_flag 1",
                           "    pes_crc_flag 1",
                           "    pes_extension_flag 0",
                           "    header_data_length 0",
                       }));
}

TEST(PesHeaderLines, VideoWithPtsOnlyPrintsNoDtsLine) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, {});
  PutTimeStamp(r, 23, 0x2, 123456);
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 28u);
  EXPECT_TRUE(HasLine(f.lines(), "    PTS 123456"));
  EXPECT_FALSE(HasLineStarting(f.lines(), "    DTS"));
}

TEST(PesHeaderLines, ForbiddenFlagsOnePrintsNeitherAndLeavesTheCursorAt23) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x40, {}, {0x00, 0x00, 0x01, 0xB3});
  PutTimeStamp(r, 28, 0x1, 5);  // never read
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 23u);
  EXPECT_FALSE(HasLineStarting(f.lines(), "    PTS"));
  EXPECT_FALSE(HasLineStarting(f.lines(), "    DTS"));
  // The video details then start at 23, where the sequence header lies.
  f.ctx->ClearReportList();
  ShowVideoPackDetails(*f.ctx, r);
  EXPECT_TRUE(HasLine(f.lines(), "video sequence_header_code 1b3"));
}

TEST(PesHeaderLines, AudioWithPtsAndDtsFlagsPrintsOnlyThePts) {
  Fixture f;
  Record r = MakePesPack(0xBD, 0xC0, std::vector<std::uint8_t>(10, 0), {});
  PutTimeStamp(r, 23, 0x3, 3003);
  PutTimeStamp(r, 28, 0x1, 1001);
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kAudio), 28u);
  EXPECT_TRUE(HasLine(f.lines(), "    PTS 3003"));
  EXPECT_FALSE(HasLineStarting(f.lines(), "    DTS"));
}

TEST(PesHeaderLines, SubPictureWithPtsAndDtsPrintsBoth) {
  Fixture f;
  Record r = MakePesPack(0xBD, 0xC0, std::vector<std::uint8_t>(10, 0), {});
  PutTimeStamp(r, 23, 0x3, 3003);
  PutTimeStamp(r, 28, 0x1, 1001);
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kSubPicture), 33u);
  EXPECT_TRUE(HasLine(f.lines(), "    PTS 3003"));
  EXPECT_TRUE(HasLine(f.lines(), "    DTS 1001"));
}

TEST(PesHeaderLines, PtsOf2To32TicksOrMoreIsReducedModulo2To32) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, {});
  PutTimeStamp(r, 23, 0x2, (std::uint64_t{1} << 32) + 77);
  ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo);
  EXPECT_TRUE(HasLine(f.lines(), "    PTS 77"));
}

TEST(PesHeaderLines, PtsAbove2To31PrintsAsANegativeLong) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, {});
  PutTimeStamp(r, 23, 0x2, 0xFFFFFFFFull);
  ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo);
  EXPECT_TRUE(HasLine(f.lines(), "    PTS -1"));
}

// The extension flags byte 0x9E follows the PTS at 28; P-STD bytes 7A BC after it.
Record ExtensionPack(std::uint8_t stream_id) {
  Record r = MakePesPack(stream_id, 0x81, std::vector<std::uint8_t>(8, 0), {});
  PutTimeStamp(r, 23, 0x2, 1000);
  PutBytes(r, 28, {0x9E, 0x7A, 0xBC});
  return r;
}

const std::vector<std::string> kExtensionCommonLines = {
    "    private_data_flag 1",
    "    pack_header_field_flag 0",
    "    program_packet_sequuence_counter_flag 0",
    "    p-std_buffer_flag 1",
};

std::vector<std::string> ExtensionLines(const std::vector<std::string>& lines) {
  auto it = std::find(lines.begin(), lines.end(), "    private_data_flag 1");
  if (it == lines.end()) return {};
  return {it, lines.end()};
}

TEST(PesHeaderLines, VideoExtensionFlag2IsAValueAndPstdFollowsTheFlags) {
  Fixture f;
  Record r = ExtensionPack(0xE0);
  PutBytes(r, 31, {0xFF, 0xFF, 0x42});
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 33u);
  std::vector<std::string> expected = kExtensionCommonLines;
  expected.insert(expected.end(), {"    extension_flag_2 e", "    p-std_buffer_scale 1",
                                   "    p-std_buffer_size 2748, 2813952 bytes"});
  EXPECT_EQ(ExtensionLines(f.lines()), expected);
}

TEST(PesHeaderLines, SubPictureExtensionFlag2IsASingleBitAndBytesUseNineBits) {
  Fixture f;
  Record r = ExtensionPack(0xBD);
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kSubPicture), 31u);
  std::vector<std::string> expected = kExtensionCommonLines;
  expected.insert(expected.end(), {"    PES_extension_flag_2 0", "    p-std_buffer_scale 1",
                                   "    p-std_buffer_size 2748, 192512 bytes"});
  EXPECT_EQ(ExtensionLines(f.lines()), expected);
}

TEST(PesHeaderLines, AudioPstdIsAlwaysAt29And30AndTheCursorSetTo31) {
  Fixture f;
  Record r = MakePesPack(0xBD, 0x01, {}, {});
  PutBytes(r, 23, {0x9F, 0x11, 0x22, 0x33, 0x44, 0x55, 0x7A, 0xBC});
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kAudio), 31u);
  std::vector<std::string> expected = kExtensionCommonLines;
  expected.insert(expected.end(), {"    extension_flag_2 f", "    p-std_buffer_scale 1",
                                   "    p-std_buffer_size 188, 192512 bytes"});
  EXPECT_EQ(ExtensionLines(f.lines()), expected);
}

TEST(PesHeaderLines, VideoExtensionWithoutPtsTakesPstdRightAfterTheFlagsAt23) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x01, {}, {});
  PutBytes(r, 23, {0x9E, 0x1F, 0xFF});
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 26u);
  EXPECT_TRUE(HasLine(f.lines(), "    p-std_buffer_scale 0"));
  EXPECT_TRUE(HasLine(f.lines(), "    p-std_buffer_size 4095, 4193280 bytes"));
}

TEST(PesHeaderLines, StuffingBytesAreSkipped) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x00, {}, {0xFF, 0xFF, 0xFF, 0x00});
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 26u);
}

TEST(PesHeaderLines, StuffingToTheEndOfTheRecordStopsThere) {
  Fixture f;
  Record r = MakePesPack(0xE0, 0x00, {}, std::vector<std::uint8_t>(2048, 0xFF));
  EXPECT_EQ(ShowPesHeaderLines(*f.ctx, r, PesMember::kVideo), 2048u);
  f.ctx->ClearReportList();
  ShowVideoPackDetails(*f.ctx, r);
  EXPECT_EQ(f.lines().back(), " ");
}

TEST(SubPictureDetails, WholeView) {
  Fixture f;
  Record r = MakePesPack(0xBD, 0x81, std::vector<std::uint8_t>(8, 0),
                         {0x20, 0x12, 0x34, 0x0A, 0xBC}, 45000);
  PutTimeStamp(r, 23, 0x2, 180000);
  PutBytes(r, 28, {0x00, 0x40, 0x20});  // extension flags 0, P-STD bytes 40 20
  r[20] = 0x85;
  f.OpenBytes("a.vob", r, kFileVob);
  // The payload was placed at 31 by MakePesPack (8 header bytes): sub-stream 0x20 there.
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Details display of record 0 at file address 0",
                           "  VOB Sub-Picture Pack Details",
                           " ",
                           "pack_start_code 1ba",
                           "   SCR = 00045000.000",
                           "    program_mux_rate = 25200, 1260000 BPS 10080000 bps",
                           " ",
                           "packet_start_code 1bd",
                           "    packet_length 2028",
                           "    scrambling_control 0",
                           "    priority 0",
                           "    data_alignment_indicator 1",
                           "    copyright 0",
                           "    original_or_copy 1",
                           "    pts_dts_flags 2",
                           "    escr_flag 0",
                           "    es_rate_flag 0",
                           "    dsm_tick_mode_flag 0",
                           "    additional_copy_info_flag 0",
                           "    pes_crc_flag 0",
                           "    pes_extension_flag 1",
                           "    header_data_length 8",
                           "    PTS 180000",
                           "    private_data_flag 0",
                           "    pack_header_field_flag 0",
                           "    program_packet_sequuence_counter_flag 0",
                           "    p-std_buffer_flag 0",
                           "    PES_extension_flag_2 0",
                           "    p-std_buffer_scale 0",
                           "    p-std_buffer_size 32, 32768 bytes",
                           "    sub_stream_id: x20 32",
                           "    SUP_SZ size of sub-picture unit: 4660",
                           "    SP_DCSQT_SA start address of display control seq table: 2748",
                           " ",
                       }));
}

}  // namespace
}  // namespace tarvex
