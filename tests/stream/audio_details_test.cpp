#include "stream/audio_details.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "stream/details.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Concat;
using test::Fixture;
using test::MakePaddingPack;
using test::MakePesPack;
using test::PutBytes;
using test::PutTimeStamp;
using test::Record;

// A private stream 1 pack with a PTS; the audio header starts at 28.
Record PrivateAudioPack(const std::vector<std::uint8_t>& payload) {
  Record r = MakePesPack(0xBD, 0x80, {0, 0, 0, 0, 0}, payload, 27000);
  PutTimeStamp(r, 23, 0x2, 3600);
  return r;
}

// An MPEG audio pack (stream 0xC0) with a PTS; the payload starts at 28.
Record MpegAudioPack(const std::vector<std::uint8_t>& payload, std::uint8_t stream = 0xC0) {
  Record r = MakePesPack(stream, 0x80, {0, 0, 0, 0, 0}, payload, 27000);
  PutTimeStamp(r, 23, 0x2, 3600);
  return r;
}

// The lines after the blank that follows the PES header lines.
std::vector<std::string> AudioLines(const std::vector<std::string>& lines) {
  auto it = std::find(lines.begin(), lines.end(), "    PTS 3600");
  if (it == lines.end() || it + 1 == lines.end()) return {};
  return {it + 2, lines.end()};
}

std::vector<std::string> DetailsOf(const Record& record, std::uint32_t at_record = 0) {
  Fixture f;
  std::vector<Record> records(at_record, MakePaddingPack());
  records.push_back(record);
  f.OpenBytes("a.vob", Concat(records), kFileVob);
  f.ctx->open.page_end = at_record;
  ShowRecordDetails(*f.ctx);
  return f.lines();
}

TEST(AudioPackDetails, Ac3WholeView) {
  // sub-stream 0x80, 1 frame header, pointer 5: the frame starts at 28 + 3 + 5 = 36.
  Record r = PrivateAudioPack(
      {0x80, 0x01, 0x00, 0x05, 0xAA, 0xBB, 0xCC, 0xDD, 0x0B, 0x77, 0x12, 0x34, 0x4E});
  std::vector<std::string> lines = DetailsOf(r, 1);
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "Details display of record 1 at file address 2048",
                       "  VOB AC3 Audio Pack Details",
                       " ",
                       "pack_start_code 1ba",
                       "   SCR = 00027000.000",
                       "    program_mux_rate = 25200, 1260000 BPS 10080000 bps",
                       " ",
                       "packet_start_code 1bd",
                       "    packet_length 2028",
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
                       "    pes_extension_flag 0",
                       "    header_data_length 5",
                       "    PTS 3600",
                       " ",
                       "    stream_id 80 sub_stream_id 80",
                       "    number_of_frame_headers 1",
                       "    first_access_unit_pointer 5 At 2083",
                       "    Sample rate 44K, Bit rate 112K",
                       " ",
                   }));
}

// Exactly one blank line lies between the PES header lines and the audio lines.
TEST(AudioPackDetails, OneBlankLineBetweenPesLinesAndAudioLines) {
  std::vector<std::string> lines = DetailsOf(PrivateAudioPack({0x81, 0x02, 0x00, 0x00}));
  auto pts = std::find(lines.begin(), lines.end(), "    PTS 3600");
  ASSERT_NE(pts, lines.end());
  ASSERT_LT(pts + 2, lines.end());
  EXPECT_EQ(*(pts + 1), " ");
  EXPECT_EQ(*(pts + 2), "    stream_id 81 sub_stream_id 81");
}

TEST(AudioPackDetails, Ac3PointerZeroIsIllegalAndGivesNoRateLine) {
  std::vector<std::string> lines = DetailsOf(PrivateAudioPack({0x80, 0x02, 0x00, 0x00}));
  EXPECT_EQ(AudioLines(lines), (std::vector<std::string>{
                                   "    stream_id 80 sub_stream_id 80",
                                   "    number_of_frame_headers 2",
                                   "    first_access_unit_pointer 0 At 30",
                                   "**** Illegal audio sector offset size of 0",
                                   " ",
                               }));
}

TEST(AudioPackDetails, Ac3WithoutSyncWordIsReportedAndDecodedRegardless) {
  std::vector<std::string> lines =
      DetailsOf(PrivateAudioPack({0x80, 0x01, 0x00, 0x01, 0x0B, 0x78, 0x00, 0x00, 0x90}));
  EXPECT_EQ(AudioLines(lines), (std::vector<std::string>{
                                   "    stream_id 80 sub_stream_id 80",
                                   "    number_of_frame_headers 1",
                                   "    first_access_unit_pointer 1 At 31",
                                   "**** No Sync Word at offset location in sector",
                                   "    Sample rate 32K, Bit rate 128K",
                                   " ",
                               }));
}

TEST(Ac3Sync, SampleRateCodes) {
  const char* expected[] = {
      "    Sample rate 48K, Bit rate 32K", "    Sample rate 44K, Bit rate 32K",
      "    Sample rate 32K, Bit rate 32K", "    Sample rate 3K, Bit rate 32K"};
  for (std::uint8_t code = 0; code < 4; ++code) {
    Fixture f;
    std::vector<std::uint8_t> frame = {0x0B, 0x77, 0, 0, static_cast<std::uint8_t>(code << 6)};
    CheckAc3Sync(*f.ctx, frame);
    EXPECT_EQ(f.lines(), (std::vector<std::string>{expected[code]}));
  }
}

TEST(Ac3Sync, FrameSizeCodesMapInPairsAndAbove37GiveZero) {
  const int rates[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                       192, 224, 256, 320, 384, 448, 512, 576, 640};
  for (std::uint8_t code = 0; code < 64; ++code) {
    Fixture f;
    CheckAc3Sync(*f.ctx, std::vector<std::uint8_t>{0x0B, 0x77, 0, 0, code});
    int rate = code <= 37 ? rates[code / 2] : 0;
    EXPECT_EQ(f.lines(), (std::vector<std::string>{"    Sample rate 48K, Bit rate " +
                                                   std::to_string(rate) + "K"}))
        << int{code};
  }
}

TEST(Ac3Sync, FrameBeyondTheRecordReadsZeros) {
  // Pointer 0xFFFF puts the frame far past the record.
  std::vector<std::string> lines = DetailsOf(PrivateAudioPack({0x80, 0x01, 0xFF, 0xFF}));
  EXPECT_EQ(AudioLines(lines), (std::vector<std::string>{
                                   "    stream_id 80 sub_stream_id 80",
                                   "    number_of_frame_headers 1",
                                   "    first_access_unit_pointer 65535 At 65565",
                                   "**** No Sync Word at offset location in sector",
                                   "    Sample rate 48K, Bit rate 32K",
                                   " ",
                               }));
}

TEST(AudioPackDetails, LpcmWholeAudioLines) {
  std::vector<std::string> lines = DetailsOf(
      PrivateAudioPack({0xA0, 0x07, 0x00, 0x04, 0x85, 0x11, 0x80, 0x12, 0x34, 0xAB, 0xCD}));
  EXPECT_EQ(lines[1], "  VOB PCM Audio Pack Details");
  EXPECT_EQ(AudioLines(lines), (std::vector<std::string>{
                                   "    stream_id a0 sub_stream_id a0",
                                   "    number_of_frame_headers 7",
                                   "    first_access_unit_pointer 4 At 34",
                                   "    audio_emphasis_flag 1",
                                   "    audio_mute_flag 0",
                                   "    audio_frame_number 5",
                                   "    quantization_word_length 0, 16 bits",
                                   "    audio_sameple_frequency 1, 96kHz",
                                   "    number_of_audio_channels 1, 2 channel Stereo",
                                   "    dynamic_range 128",
                                   "    first sample: 1234 abcd",
                                   " ",
                               }));
}

TEST(AudioPackDetails, LpcmCodeTexts) {
  // Byte p+5: quantization in bits 7..6, frequency in 5..4, channels in 2..0.
  struct Case {
    std::uint8_t b4, b5;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {0x5F,
       0x60,
       {"    audio_emphasis_flag 0", "    audio_mute_flag 1", "    audio_frame_number 31",
        "    quantization_word_length 1, 20 bits", "    audio_sameple_frequency 2, Illegal",
        "    number_of_audio_channels 0, 1 channel Mono"}},
      {0x00,
       0xB2,
       {"    audio_emphasis_flag 0", "    audio_mute_flag 0", "    audio_frame_number 0",
        "    quantization_word_length 2, 24 bits", "    audio_sameple_frequency 3, Illegal",
        "    number_of_audio_channels 2, 3 channel Multi"}},
      {0x00,
       0xC7,
       {"    audio_emphasis_flag 0", "    audio_mute_flag 0", "    audio_frame_number 0",
        "    quantization_word_length 3, Illegal", "    audio_sameple_frequency 0, 48kHz",
        "    number_of_audio_channels 7, 8 channel Multi"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> lines =
        AudioLines(DetailsOf(PrivateAudioPack({0xA1, 0x01, 0x00, 0x04, c.b4, c.b5})));
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(std::vector<std::string>(lines.begin() + 3, lines.begin() + 9), c.lines);
  }
}

TEST(AudioPackDetails, LpcmChannelCode1IsStereo) {
  std::vector<std::string> lines =
      AudioLines(DetailsOf(PrivateAudioPack({0xA3, 0x01, 0x00, 0x04, 0x00, 0x01})));
  EXPECT_TRUE(std::find(lines.begin(), lines.end(),
                        "    number_of_audio_channels 1, 2 channel Stereo") != lines.end());
}

TEST(AudioPackDetails, MpegLayerTwoWithIndex14Is384) {
  // FF FD: ID 1, layer code 2, protection 1; E4: index 14, selector 1.
  std::vector<std::string> lines = DetailsOf(MpegAudioPack({0x00, 0x12, 0xFF, 0xFD, 0xE4}));
  EXPECT_EQ(lines[1], "  VOB MPEG Audio Pack Details");
  EXPECT_EQ(AudioLines(lines), (std::vector<std::string>{
                                   "    stream_id c0 ",
                                   "    ID 1 ",
                                   "    Layer 2 ",
                                   "    Protection bit 1 ",
                                   "    Bitrate index 14 ",
                                   "    Bitrate 384K",
                                   "    sample_frequency selector 1 ",
                                   "    sample_frequency 48K",
                                   " ",
                               }));
}

std::vector<std::string> MpegRateLines(std::uint8_t second, std::uint8_t third) {
  // A leading 0x12: a 0xFF right at the payload start would be skipped as PES stuffing.
  std::vector<std::string> lines =
      AudioLines(DetailsOf(MpegAudioPack({0x12, 0xFF, second, third})));
  return lines.size() > 5 ? std::vector<std::string>(lines.begin() + 4, lines.begin() + 6) : lines;
}

TEST(AudioPackDetails, MpegIndex15PrintsMinusTwoAndIndex0TheIllegalLine) {
  EXPECT_EQ(MpegRateLines(0xFC, 0xF0),
            (std::vector<std::string>{"    Bitrate index 15 ", "    Bitrate -2K"}));
  EXPECT_EQ(
      MpegRateLines(0xFC, 0x00),
      (std::vector<std::string>{"    Bitrate index 0 ", "    Illegal audio bit rate index value"}));
}

// In the frame header layer code 3 means Layer I, but it takes the Layer III rates.
TEST(AudioPackDetails, MpegLayerCode3UsesTheLayerThreeRates) {
  const int layer_three[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
  for (std::uint8_t index = 1; index <= 14; ++index) {
    EXPECT_EQ(
        MpegRateLines(0xFF, static_cast<std::uint8_t>(index << 4)),
        (std::vector<std::string>{"    Bitrate index " + std::to_string(index) + " ",
                                  "    Bitrate " + std::to_string(layer_three[index - 1]) + "K"}));
  }
}

TEST(AudioPackDetails, MpegLayerCode1UsesTheLayerOneRatesAndCode0HasNone) {
  EXPECT_EQ(MpegRateLines(0xFA, 0x20),
            (std::vector<std::string>{"    Bitrate index 2 ", "    Bitrate 64K"}));
  EXPECT_EQ(
      MpegRateLines(0xF8, 0x20),
      (std::vector<std::string>{"    Bitrate index 2 ", "    Illegal audio bit rate index value"}));
}

TEST(AudioPackDetails, MpegSampleFrequencyTexts) {
  const char* texts[] = {"    sample_frequency 44.1K", "    sample_frequency 48K",
                         "    sample_frequency 32K", "    Illegal sample_frequency selection"};
  for (std::uint8_t s = 0; s < 4; ++s) {
    std::vector<std::string> lines = AudioLines(
        DetailsOf(MpegAudioPack({0x00, 0xFF, 0xFC, static_cast<std::uint8_t>(0x10 | (s << 2))})));
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[6], "    sample_frequency selector " + std::to_string(s) + " ");
    EXPECT_EQ(lines[7], texts[s]);
  }
}

// The PES stuffing skip runs over 0xFF bytes, so a frame sync right at the payload start is
// passed over and the search goes on from the byte after it.
TEST(AudioPackDetails, MpegSyncRightAtThePayloadStartIsTakenForStuffing) {
  std::vector<std::string> lines =
      AudioLines(DetailsOf(MpegAudioPack({0xFF, 0xFD, 0xE4, 0x00, 0x00, 0xFF, 0xF3, 0x18})));
  ASSERT_EQ(lines.size(), 9u);
  EXPECT_EQ(lines[2], "    Layer 1 ");
  EXPECT_EQ(lines[4], "    Bitrate index 1 ");
  EXPECT_EQ(lines[5], "    Bitrate 32K");
  EXPECT_EQ(lines[6], "    sample_frequency selector 2 ");
}

// The frame-sync search stops at the end of the record; the header bytes are then read from
// offset 2048 on, which read as 0.
TEST(AudioPackDetails, MpegWithoutSyncInTheRecordReadsZeroHeader) {
  Record r = MpegAudioPack({});
  r[2047] = 0xFF;  // a sync byte whose partner would lie beyond the record
  std::vector<std::string> lines = AudioLines(DetailsOf(r));
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "    stream_id c0 ",
                       "    ID 0 ",
                       "    Layer 0 ",
                       "    Protection bit 0 ",
                       "    Bitrate index 0 ",
                       "    Illegal audio bit rate index value",
                       "    sample_frequency selector 0 ",
                       "    sample_frequency 44.1K",
                       " ",
                   }));
}

TEST(AudioPackDetails, MpegStreamAboveC7GetsNoAudioLines) {
  std::vector<std::string> lines = DetailsOf(MpegAudioPack({0xFF, 0xFD, 0xE4}, 0xC8));
  EXPECT_EQ(lines[1], "  VOB MPEG Audio Pack Details");
  EXPECT_EQ(lines.back(), " ");
  EXPECT_EQ(*(lines.end() - 2), "    PTS 3600");
}

// The branch follows the byte at the cursor: an MPEG audio pack whose payload starts with 0x80
// is shown as AC-3, with the stream id the classification left.
TEST(AudioPackDetails, ByteAtTheCursorSelectsThePrivateStreamBranch) {
  std::vector<std::string> lines = AudioLines(DetailsOf(MpegAudioPack({0x80, 0x01, 0x00, 0x00})));
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], "    stream_id c0 sub_stream_id 80");
}

}  // namespace
}  // namespace tarvex
