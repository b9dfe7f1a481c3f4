#include "extract/payload.h"

#include <gtest/gtest.h>

#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

TEST(LocateAudioPayload, Ac3PayloadFollowsSubStreamHeaderBehindPts) {
  Record r = Ac3Pack(0x82, 1);
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 32u);              // 28 + sub_stream_id, frame count, 2-byte pointer
  EXPECT_EQ(p.length, 20 + 2028 - 32);  // to the end of the packet
  EXPECT_EQ(p.stream, 2u);
}

TEST(LocateAudioPayload, LpcmPayloadSkipsThreeMoreHeaderBytes) {
  Record r = MakePesPack(0xBD, 0x00, {}, {0xA5, 1, 0, 1, 0, 0, 0x80});
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 30u);  // 23 + 7
  EXPECT_EQ(p.length, 2048 - 30);
  EXPECT_EQ(p.stream, 5u);
}

TEST(LocateAudioPayload, MpegAudioStreamNumberIsLowThreeBitsOfStreamId) {
  Record r = MpegAudioPack(0xC3, 1);
  SetPesLength(r, 1000);
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 28u);
  EXPECT_EQ(p.length, 20 + 1000 - 28);
  EXPECT_EQ(p.stream, 3u);
}

TEST(LocateAudioPayload, ExtensionFlagPutsHeaderAt31EvenWithoutPts) {
  // pts_dts_flags 0, pes_extension_flag 1: the cursor is 31 all the same.
  Record r = MakePesPack(0xBD, 0x01, {0, 0, 0, 0, 0, 0, 0, 0}, {0x81, 1, 0, 1});
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 35u);
  EXPECT_EQ(p.stream, 1u);
}

TEST(LocateAudioPayload, StuffingBeforeSubStreamIdIsSkipped) {
  Record r = MakePesPack(0xBD, 0x80, Join({Pts(), {0xFF, 0xFF}}), {0x80, 1, 0, 1});
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 34u);  // sub-stream id at 30
  EXPECT_EQ(p.length, 2048 - 34);
}

TEST(LocateAudioPayload, UnknownSubStreamKeepsStartAndLengthButTakesStreamNumber) {
  Record r = MakePesPack(0xBD, 0x80, Pts(), {0x2B, 1, 0, 1});
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 0u);  // nothing before the first audio pack
  EXPECT_EQ(p.length, 0);
  EXPECT_EQ(p.stream, 3u);
  p.start = 40;
  p.length = 77;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.start, 40u);
  EXPECT_EQ(p.length, 77);
}

TEST(LocateAudioPayload, ShortPesLengthGivesNegativeLengthAndNoBytes) {
  Record r = Ac3Pack(0x80, 1);
  SetPesLength(r, 4);
  AudioPayload p;
  LocateAudioPayload(r, p);
  EXPECT_EQ(p.length, 24 - 32);
  EXPECT_EQ(PayloadBytes(2048, p.start, p.length).size, 0u);
}

TEST(ReadLpcmParameters, DecodesQuantizationFrequencyAndChannels) {
  LpcmParameters lp;
  ReadLpcmParameters(LpcmPack(0xA0, 0x01, 1), lp);
  EXPECT_EQ(lp.bits_per_sample, 16u);
  EXPECT_EQ(lp.sampling_frequency, 48000u);
  EXPECT_EQ(lp.channels, 2u);
  ReadLpcmParameters(LpcmPack(0xA0, 0x55, 1), lp);  // 01 01 0 101
  EXPECT_EQ(lp.bits_per_sample, 20u);
  EXPECT_EQ(lp.sampling_frequency, 96000u);
  EXPECT_EQ(lp.channels, 6u);
  ReadLpcmParameters(LpcmPack(0xA0, 0x87, 1), lp);  // 10 00 0 111
  EXPECT_EQ(lp.bits_per_sample, 24u);
  EXPECT_EQ(lp.sampling_frequency, 48000u);
  EXPECT_EQ(lp.channels, 8u);
}

TEST(ReadLpcmParameters, IllegalCodesGiveTwo) {
  LpcmParameters lp;
  ReadLpcmParameters(LpcmPack(0xA0, 0xE0, 1), lp);  // quantization 3, frequency 2
  EXPECT_EQ(lp.bits_per_sample, 2u);
  EXPECT_EQ(lp.sampling_frequency, 2u);
  EXPECT_EQ(lp.channels, 1u);
  ReadLpcmParameters(LpcmPack(0xA0, 0x30, 1), lp);  // frequency 3
  EXPECT_EQ(lp.sampling_frequency, 2u);
}

TEST(ReadLpcmParameters, OtherSubStreamsLeaveParametersAlone) {
  LpcmParameters lp;
  lp.bits_per_sample = 7;
  lp.channels = 9;
  lp.sampling_frequency = 11;
  ReadLpcmParameters(Ac3Pack(0x80, 1), lp);
  EXPECT_EQ(lp.bits_per_sample, 7u);
  EXPECT_EQ(lp.channels, 9u);
  EXPECT_EQ(lp.sampling_frequency, 11u);
}

TEST(LocateVideoPayload, HeaderEndFollowsPtsAndDts) {
  Record r = VideoPack(1);
  EXPECT_EQ(LocateVideoPayload(r).start, 28u);
  EXPECT_EQ(LocateVideoPayload(r).length, 2028 - 8);
  r[21] = 0xC0;
  EXPECT_EQ(LocateVideoPayload(r).start, 33u);
  r[21] = 0x00;
  EXPECT_EQ(LocateVideoPayload(r).start, 23u);
  r[21] = 0x40;  // DTS without PTS counts for nothing
  EXPECT_EQ(LocateVideoPayload(r).start, 23u);
}

TEST(LocateVideoPayload, EveryOptionalFieldAddsItsSize) {
  Record r = VideoPack(1);
  r[21] = 0xFE;  // PTS DTS ESCR ES-rate trick copy-info CRC
  EXPECT_EQ(LocateVideoPayload(r).start, 28u + 5 + 6 + 3 + 1 + 1 + 2);
  EXPECT_EQ(LocateVideoPayload(r).length, 2028 - (46 - 20));
}

TEST(LocateVideoPayload, ExtensionWithPrivateDataRestartsFromTheFlagsByte) {
  Record r = VideoPack(1);
  r[21] = 0x81;
  r[28] = 0x80 | 0x40 | 0x20 | 0x10 | 0x01;
  // 28 + 17 (flags byte and 16 private bytes) + 1 + 2 + 2 + 2
  EXPECT_EQ(LocateVideoPayload(r).start, 52u);
  r[28] = 0x10;  // P-STD buffer only
  EXPECT_EQ(LocateVideoPayload(r).start, 28u + 1 + 2);
}

TEST(LocateVideoPayload, HeaderDataLengthAndStuffingAreIgnored) {
  Record r = VideoPack(1, {0xFF, 0xFF, 0xFF});
  r[22] = 8;
  EXPECT_EQ(LocateVideoPayload(r).start, 28u);
  EXPECT_EQ(r[28], 0xFF);
}

TEST(LocateSubPicturePayload, CursorByPtsDtsFlagsAndExtension) {
  Record r = SubPicturePack(0x20, true, 1);
  SubPicturePayload p = LocateSubPicturePayload(r);
  EXPECT_EQ(p.start, 29u);
  EXPECT_EQ(p.length, 2028 - 9);
  EXPECT_TRUE(p.has_pts);
  r[21] = 0xC0;
  EXPECT_EQ(LocateSubPicturePayload(r).start, 34u);
  EXPECT_TRUE(LocateSubPicturePayload(r).has_pts);
  r[21] = 0x40;
  EXPECT_EQ(LocateSubPicturePayload(r).start, 24u);
  EXPECT_FALSE(LocateSubPicturePayload(r).has_pts);
  r[21] = 0x81;
  EXPECT_EQ(LocateSubPicturePayload(r).start, 32u);
}

TEST(LocateSubPicturePayload, StuffingAndSubStreamIdAreSkipped) {
  Record r = MakePesPack(0xBD, 0x00, {}, Join({{0xFF, 0xFF, 0x21}, Pattern(10, 3)}));
  SubPicturePayload p = LocateSubPicturePayload(r);
  EXPECT_EQ(p.start, 26u);
  EXPECT_EQ(r[26], Pattern(1, 3)[0]);
}

TEST(PayloadBytes, ClampsToTheRecord) {
  EXPECT_EQ(PayloadBytes(2048, 28, 2020).size, 2020u);
  EXPECT_EQ(PayloadBytes(2048, 28, 3000).size, 2020u);  // runs past the record: cut at 2048
  EXPECT_EQ(PayloadBytes(2048, 28, -5).size, 0u);
  EXPECT_EQ(PayloadBytes(2048, 2048, 10).size, 0u);
  EXPECT_EQ(PayloadBytes(2048, 5000, 10).size, 0u);
  EXPECT_EQ(PayloadBytes(2048, 5000, 10).offset, 2048u);
}

TEST(PayloadLocators, AllFFRecordStaysInsideTheRecord) {
  Record r(2048, 0xFF);
  AudioPayload a;
  LocateAudioPayload(r, a);
  EXPECT_LE(PayloadBytes(r.size(), a.start, a.length).size, 2048u);
  SubPicturePayload s = LocateSubPicturePayload(r);
  EXPECT_EQ(s.start, 2049u);
  EXPECT_EQ(PayloadBytes(r.size(), s.start, s.length).size, 0u);
  VideoPayload v = LocateVideoPayload(r);
  EXPECT_EQ(PayloadBytes(r.size(), v.start, v.length).offset +
                PayloadBytes(r.size(), v.start, v.length).size,
            2048u);
}

}  // namespace
}  // namespace tarvex
