// Whole outputs on the bundled sample disc's title VOB, one record of each pack kind found
// there: navigation (0), video with sequence header (1), AC-3 (2), LPCM (3), MPEG audio (4)
// and sub-picture (191). Every expected line was worked out from the record's bytes.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "app/open_file.h"
#include "platform/file_io.h"
#include "stream/details.h"
#include "stream/hex_view.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

const std::string kTitleVob =
    std::string(TARVEX_SOURCE_DIR) + "/samples/disc/VIDEO_TS/VTS_01_1.VOB";

class StreamGoldenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(File::Exists(kTitleVob)) << "no sample disc at " << kTitleVob;
    f_.ctx->open.file_path = kTitleVob;
    OpenSelectedFile(*f_.ctx);
    ASSERT_TRUE(f_.ctx->open.file_handle.is_open());
  }
  std::vector<std::string> Details(std::uint32_t record) {
    f_.ctx->open.page_end = record;
    ShowRecordDetails(*f_.ctx);
    return f_.lines();
  }
  test::Fixture f_;
};

// The PES lines shared by the sample's packs: marker byte 0x80, packet_length 2028, and the
// extension flags byte 0x10 (only p-std_buffer_flag set).
std::vector<std::string> PesLines(const char* code, const char* pts_dts, const char* length,
                                  std::vector<std::string> stamps, const char* pstd_scale,
                                  const char* pstd_size) {
  std::vector<std::string> lines = {" ",
                                    std::string("packet_start_code ") + code,
                                    "    packet_length 2028",
                                    "    scrambling_control 0",
                                    "    priority 0",
                                    "    data_alignment_indicator 0",
                                    "    copyright 0",
                                    "    original_or_copy 0",
                                    std::string("    pts_dts_flags ") + pts_dts,
                                    "    escr_flag 0",
                                    "    es_rate_flag 0",
                                    "    dsm_tick_mode_flag 0",
                                    "    additional_copy_info_flag 0",
                                    "    pes_crc_flag 0",
                                    "    pes_extension_flag 1",
                                    std::string("    header_data_length ") + length};
  lines.insert(lines.end(), stamps.begin(), stamps.end());
  lines.insert(lines.end(),
               {"    private_data_flag 0", "    pack_header_field_flag 0",
                "    program_packet_sequuence_counter_flag 0", "    p-std_buffer_flag 1",
                "    extension_flag_2 0", std::string("    p-std_buffer_scale ") + pstd_scale,
                std::string("    p-std_buffer_size ") + pstd_size});
  return lines;
}

std::vector<std::string> Join(std::vector<std::vector<std::string>> parts) {
  std::vector<std::string> out;
  for (auto& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

const char* const kMuxRate = "    program_mux_rate = 25200, 1260000 BPS 10080000 bps";

TEST_F(StreamGoldenTest, OpenListsTheFirstPage) {
  EXPECT_EQ(f_.lines(), (std::vector<std::string>{
                            "000000 Navigations  SCR 0.000",
                            "000001 Video  SCR 146.086 PTS 48003 DTS 45000",
                            " -> Video: Frame number 0 Frame type 1 GOP",
                            "000002 AC-3 Audio  SCR 292.172 PTS 47523",
                            "000003 PCM Audio  SCR 438.258 PTS 48003",
                            "000004 MPEG Audio channel 0 Pack SCR 585.044 PTS 47101",
                            "000005 Video  SCR 731.130",
                            "000006 Video  SCR 877.216",
                            "000007 Video  SCR 1024.002",
                            "000008 Video  SCR 1170.088",
                            "000009 Video  SCR 1316.174",
                            "000010 Video  SCR 1462.260",
                            "000011 Video  SCR 1609.046",
                            "000012 Video  SCR 1755.132",
                            "000013 Video  SCR 1901.218",
                            "000014 Video  SCR 2048.004",
                            "000015 Video  SCR 2194.090 PTS 57012 DTS 48003",
                            " -> Video: Frame number 3 Frame type 2",
                        }));
  EXPECT_EQ(f_.ctx->open.record_count, 1246u);
}

TEST_F(StreamGoldenTest, HexViewOfTheVideoPack) {
  f_.ctx->open.page_end = 1;
  ShowRecordHex(*f_.ctx, false);
  ASSERT_EQ(f_.lines().size(), 130u);
  EXPECT_EQ(f_.lines()[0], "Hex display of record 1 at file address 2048");
  EXPECT_EQ(f_.lines()[1], " ");
  EXPECT_EQ(f_.lines()[2], "0000 -> 00 00 01 BA 44 00 04 04 94 AD 01 89 C3 F8 00 00 ");
  EXPECT_EQ(f_.lines()[3], "0016 -> 01 E0 07 EC 80 C1 0E 31 00 03 77 07 11 00 03 5F ");
  EXPECT_EQ(f_.lines()[4], "0032 -> 91 10 60 E6 FF 00 00 01 B3 2D 01 E0 24 04 E2 23 ");
  EXPECT_EQ(f_.lines()[128], "2016 -> 5C A5 29 11 7E B4 01 B8 06 40 89 FF 21 88 1F C3 ");
  EXPECT_EQ(f_.lines()[129], "2032 -> 76 00 1A B0 00 D4 2C 7D EB 2F 93 5E D8 01 C8 06 ");
  // Every other row, against the file's bytes.
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(kTitleVob);
  for (std::size_t row = 0; row < 128; ++row) {
    char expected[128];
    int n = std::snprintf(expected, sizeof expected, "%04zu -> ", row * 16);
    for (std::size_t i = 0; i < 16; ++i) {
      n += std::snprintf(expected + n, sizeof expected - static_cast<std::size_t>(n), "%02X ",
                         bytes[2048 + row * 16 + i]);
    }
    EXPECT_EQ(f_.lines()[2 + row], expected);
  }
}

TEST_F(StreamGoldenTest, DetailsOfTheNavigationPackUpToThePci) {
  std::vector<std::string> lines = Details(0);
  ASSERT_GE(lines.size(), 30u);
  // The PCI and DSI fields after these belong to the navigation pack's own tests.
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 30),
            (std::vector<std::string>{
                "Details display of record 0 at file address 0",
                "  VOB Navigations Pack Details",
                " ",
                "pack_start_code 1ba",
                "   SCR = 00000000.000",
                kMuxRate,
                " ",
                "system_header_start_code 1bb",
                "    header_length 18",
                "    rate_bound = 25200, 1260000 BPS 10080000 bps",
                "    audio_bound = 3",
                "    fixed_flag = 0",
                "    CSPS_flag = 0",
                "    system_audio_lock_flag = 1",
                "    system_video_lock_flag = 1",
                "    video_bound = 1",
                "    packet_rate_restriction_flag = 0",
                "    video_stream_id = b9",
                "      PSTD_buf_bound = 230, 235520 bytes",
                "    audio_stream_id = b8",
                "      PSTD_buf_bound = 32, 4096 bytes",
                "    private_stream_1_id = bd",
                "      PSTD_buf_bound = 0, 0 bytes",
                "    private_stream_2_id = bf",
                "      PSTD_buf_bound = 2, 2048 bytes",
                " ",
                "PCI packet_start_code_prefix 1bf",
                "    packete_length 980",
                "    PCI sub_stream_id 0",
                "  PCI General Information",
            }));
}

TEST_F(StreamGoldenTest, DetailsOfTheVideoPack) {
  EXPECT_EQ(
      Details(1),
      Join({
          {"Details display of record 1 at file address 2048", "  VOB Video Pack Details", " ",
           "pack_start_code 1ba", "   SCR = 00000146.086", kMuxRate},
          PesLines("1e0", "3", "14", {"    PTS 48003", "    DTS 45000"}, "1", "230, 235520 bytes"),
          {" ", "video sequence_header_code 1b3", "    horizontal_size_value width 720",
           "    vertical_size_value height 480", "    aspect_ratio_information 2 4:3",
           "    frame_rate_code 4 29.97", "    bit_rate_value 5000, 2000000bps",
           "    vbv_buffer_size_value 112, 114688 bytes", "  SEQUENCE_EXTENSION",
           "    profile_and_level_indication MP:ML", "    progressive_sequence Set",
           "    picture_coding_type I frame", "  PICTURE_CODING_EXTENSION",
           "    picture_structure Frame", "    top_field_first Not Set",
           "    repeat_first_field Not Set", "    progressive_frame Set"},
      }));
}

TEST_F(StreamGoldenTest, DetailsOfTheAc3Pack) {
  EXPECT_EQ(
      Details(2),
      Join({
          {"Details display of record 2 at file address 4096", "  VOB AC3 Audio Pack Details", " ",
           "pack_start_code 1ba", "   SCR = 00000292.172", kMuxRate},
          PesLines("1bd", "2", "9", {"    PTS 47523"}, "1", "4, 4096 bytes"),
          {" ", "    stream_id 80 sub_stream_id 80", "    number_of_frame_headers 6",
           "    first_access_unit_pointer 1 At 4131", "    Sample rate 48K, Bit rate 96K", " "},
      }));
}

TEST_F(StreamGoldenTest, DetailsOfTheLpcmPack) {
  EXPECT_EQ(Details(3),
            Join({
                {"Details display of record 3 at file address 6144", "  VOB PCM Audio Pack Details",
                 " ", "pack_start_code 1ba", "   SCR = 00000438.258", kMuxRate},
                PesLines("1bd", "2", "10", {"    PTS 48003"}, "1", "4, 4096 bytes"),
                {" ", "    stream_id a1 sub_stream_id a1", "    number_of_frame_headers 7",
                 "    first_access_unit_pointer 4 At 6183", "    audio_emphasis_flag 0",
                 "    audio_mute_flag 0", "    audio_frame_number 12",
                 "    quantization_word_length 0, 16 bits", "    audio_sameple_frequency 0, 48kHz",
                 "    number_of_audio_channels 1, 2 channel Stereo", "    dynamic_range 128",
                 "    first sample: 0000 0000", " "},
            }));
}

// The payload's own frame sync at offset 32 follows a stuffing byte and is skipped with it, so
// the header shown is the next frame's, found at offset 224 (the same FF FD 44 header).
TEST_F(StreamGoldenTest, DetailsOfTheMpegAudioPack) {
  EXPECT_EQ(Details(4), Join({
                            {"Details display of record 4 at file address 8192",
                             "  VOB MPEG Audio Pack Details", " ", "pack_start_code 1ba",
                             "   SCR = 00000585.044", kMuxRate},
                            PesLines("1c2", "2", "9", {"    PTS 47101"}, "0", "32, 32768 bytes"),
                            {" ", "    stream_id c2 ", "    ID 1 ", "    Layer 2 ",
                             "    Protection bit 1 ", "    Bitrate index 4 ", "    Bitrate 64K",
                             "    sample_frequency selector 1 ", "    sample_frequency 48K", " "},
                        }));
}

TEST_F(StreamGoldenTest, DetailsOfTheSubPicturePack) {
  EXPECT_EQ(Details(191), (std::vector<std::string>{
                              "Details display of record 191 at file address 391168",
                              "  VOB Sub-Picture Pack Details",
                              " ",
                              "pack_start_code 1ba",
                              "   SCR = 00124503.000",
                              kMuxRate,
                              " ",
                              "packet_start_code 1bd",
                              "    packet_length 254",
                              "    scrambling_control 0",
                              "    priority 0",
                              "    data_alignment_indicator 0",
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
                              "    PTS 138003",
                              "    private_data_flag 0",
                              "    pack_header_field_flag 0",
                              "    program_packet_sequuence_counter_flag 0",
                              "    p-std_buffer_flag 1",
                              "    PES_extension_flag_2 0",
                              "    p-std_buffer_scale 1",
                              "    p-std_buffer_size 58, 59392 bytes",
                              "    sub_stream_id: x20 32",
                              "    SUP_SZ size of sub-picture unit: 242",
                              "    SP_DCSQT_SA start address of display control seq table: 212",
                              " ",
                          }));
}

}  // namespace
}  // namespace tarvex
