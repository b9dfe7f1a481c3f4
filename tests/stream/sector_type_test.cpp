#include "stream/sector_type.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/test_support.h"

namespace tarvex {
namespace {

using test::MakePackHeader;
using test::MakePesPack;

TEST(SectorType, PrivateStreamWithUnknownSubStreamIsIllegalAndClearsStreamNumber) {
  auto r = MakePesPack(0xBD, 0x00, {}, {0x89});
  std::uint32_t stream = 0x55;
  EXPECT_EQ(GetSectorType(r, stream), kSectorIllegal);
  EXPECT_EQ(stream, 0u);
}

TEST(SectorType, NavigationPackBehindSystemHeaderSetsStreamNumberZero) {
  auto r = MakePackHeader();
  r[14] = 0;
  r[15] = 0;
  r[16] = 1;
  r[17] = 0xBB;
  r[38] = 0;
  r[39] = 0;
  r[40] = 1;
  r[41] = 0xBF;
  r[44] = 1;
  std::uint32_t stream = 0x80;
  EXPECT_EQ(GetSectorType(r, stream), kSectorNavigation);
  EXPECT_EQ(stream, 0u);
}

TEST(SectorType, VideoAudioAndPrivateStreams) {
  std::uint32_t stream = 0;
  EXPECT_EQ(GetSectorType(MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, {}), stream), kSectorVideo);
  EXPECT_EQ(stream, 0xE0u);
  EXPECT_EQ(GetSectorType(MakePesPack(0xC1, 0x80, {0, 0, 0, 0, 0}, {}), stream), kSectorMpegAudio);
  EXPECT_EQ(stream, 0xC1u);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0x81}), stream), kSectorAc3);
  EXPECT_EQ(stream, 0x81u);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0xA0}), stream), kSectorLpcm);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0x21}), stream), kSectorSubPicture);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0x88}), stream), kSectorDts);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0x90}), stream), kSectorSdds);
  EXPECT_EQ(GetSectorType(MakePesPack(0xBE, 0x00, {}, {}), stream), kSectorPadding);
}

TEST(SectorType, SubStream48AndFFAreIllegalWithoutTouchingStreamNumber) {
  std::uint32_t stream = 0x33;
  EXPECT_EQ(GetSectorType(MakePesPack(0xBD, 0x00, {}, {0x48}), stream), kSectorIllegal);
  EXPECT_EQ(stream, 0x33u);
}

TEST(SectorType, PrivateSubstreamIdSkipsAtMostSevenStuffingBytes) {
  std::vector<std::uint8_t> p = {0,    0,    1,    0xBD, 0,    0,    0x81, 0x00, 0,
                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x80};
  EXPECT_EQ(PrivateSubstreamId(p), 0xFF);  // the eighth 0xFF is the answer
  p.erase(p.begin() + 9);
  EXPECT_EQ(PrivateSubstreamId(p), 0x80);
}

TEST(SectorType, ScrBaseAndExtensionRoundTrip) {
  auto r = MakePackHeader(0x123456789ull, 299);
  ByteView pack(r);
  EXPECT_EQ(ScrBase(pack.sub(4)), 0x23456789u);
  EXPECT_EQ(ScrExtension(pack.sub(4)), 299u);
}

TEST(SectorType, DecodePtsDropsBit32) {
  test::Record r(2048, 0);
  test::PutTimeStamp(r, 23, 0x2, (1ull << 32) + 12345);
  EXPECT_EQ(DecodePts(ByteView(r).sub(23)), 12345u);
}

}  // namespace
}  // namespace tarvex

namespace tarvex {
namespace {

// The scan as written out plainly: every position 0..2044, start code read big-endian.
VideoScan ReferenceScan(const std::vector<std::uint8_t>& buf) {
  VideoScan scan;
  ByteView v(buf);
  for (std::size_t i = 0; i <= 2044; ++i) {
    std::uint32_t w = v.be32(i);
    if (w == 0x1B8) {
      scan.gop_found = 1;
      scan.gop_position = static_cast<std::int32_t>(i);
    } else if (w == 0x100) {
      scan.frame_type = (v.u8(i + 5) & 0x38) >> 3;
      scan.frame_number = static_cast<std::int32_t>(static_cast<std::uint32_t>(v.s8(i + 4)) << 2) |
                          ((v.u8(i + 5) & 0xC0) >> 6);
      break;
    }
  }
  return scan;
}

TEST(ScanVideoHeaders, QuickScanFindsWhatEveryPositionScanFinds) {
  std::mt19937 rng(7);
  // Bytes drawn mostly from 00, 01, 00 and B8 so that start codes and near misses abound.
  const std::uint8_t alphabet[] = {0x00, 0x00, 0x00, 0x01, 0xB8, 0x00, 0x37, 0xFF};
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::uint8_t> buf(4096);
    for (auto& b : buf) b = alphabet[rng() % 8];
    if (round % 2 == 0) {  // keep pictures rare in half the rounds, so GOPs are seen late
      for (std::size_t i = 3; i < buf.size(); ++i) {
        if (buf[i] == 0x00 && buf[i - 1] == 0x01) buf[i] = 0x37;
      }
    }
    VideoScan quick;
    ScanVideoHeaders(buf, quick);
    VideoScan reference = ReferenceScan(buf);
    ASSERT_EQ(quick.frame_number, reference.frame_number) << round;
    ASSERT_EQ(quick.frame_type, reference.frame_type) << round;
    ASSERT_EQ(quick.gop_found, reference.gop_found) << round;
    ASSERT_EQ(quick.gop_position, reference.gop_position) << round;
  }
}

TEST(ScanVideoHeaders, ShortBufferReadsZerosBeyondItsEnd) {
  std::vector<std::uint8_t> buf = {0x00, 0x00, 0x01, 0x00};
  VideoScan scan;
  ScanVideoHeaders(buf, scan);
  EXPECT_EQ(scan.frame_number, 0);
  EXPECT_EQ(scan.frame_type, 0);
}

TEST(ScanVideoHeaders, NothingFoundKeepsMinusOne) {
  std::vector<std::uint8_t> buf(4096, 0);
  VideoScan scan;
  ScanVideoHeaders(buf, scan);
  EXPECT_EQ(scan.frame_number, -1);
  EXPECT_EQ(scan.frame_type, -1);
  EXPECT_EQ(scan.gop_found, -1);
}

}  // namespace
}  // namespace tarvex
