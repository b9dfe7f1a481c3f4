#include "stream/sector_type.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace tarvex {
namespace {

using test::MakePackHeader;
using test::MakePesPack;

TEST(SectorType, PrivateStreamWithUnknownSubStreamIsIllegalAndClearsStreamNumber) {
  auto r = MakePesPack(0xBD, 0x00, {}, {0x89});
  std::uint32_t stream = 0x55;
  EXPECT_EQ(get_sector_type(r, stream), kSectorIllegal);
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
  EXPECT_EQ(get_sector_type(r, stream), kSectorNavigation);
  EXPECT_EQ(stream, 0u);
}

TEST(SectorType, VideoAudioAndPrivateStreams) {
  std::uint32_t stream = 0;
  EXPECT_EQ(get_sector_type(MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, {}), stream), kSectorVideo);
  EXPECT_EQ(stream, 0xE0u);
  EXPECT_EQ(get_sector_type(MakePesPack(0xC1, 0x80, {0, 0, 0, 0, 0}, {}), stream),
            kSectorMpegAudio);
  EXPECT_EQ(stream, 0xC1u);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0x81}), stream), kSectorAc3);
  EXPECT_EQ(stream, 0x81u);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0xA0}), stream), kSectorLpcm);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0x21}), stream), kSectorSubPicture);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0x88}), stream), kSectorDts);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0x90}), stream), kSectorSdds);
  EXPECT_EQ(get_sector_type(MakePesPack(0xBE, 0x00, {}, {}), stream), kSectorPadding);
}

TEST(SectorType, SubStream48AndFFAreIllegalWithoutTouchingStreamNumber) {
  std::uint32_t stream = 0x33;
  EXPECT_EQ(get_sector_type(MakePesPack(0xBD, 0x00, {}, {0x48}), stream), kSectorIllegal);
  EXPECT_EQ(stream, 0x33u);
}

TEST(SectorType, PrivateSubstreamIdSkipsAtMostSevenStuffingBytes) {
  std::vector<std::uint8_t> p = {0,    0,    1,    0xBD, 0,    0,    0x81, 0x00, 0,
                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x80};
  EXPECT_EQ(private_substream_id(p), 0xFF);  // the eighth 0xFF is the answer
  p.erase(p.begin() + 9);
  EXPECT_EQ(private_substream_id(p), 0x80);
}

TEST(SectorType, ScrBaseAndExtensionRoundTrip) {
  auto r = MakePackHeader(0x123456789ull, 299);
  ByteView pack(r);
  EXPECT_EQ(scr_base(pack.sub(4)), 0x23456789u);
  EXPECT_EQ(scr_extension(pack.sub(4)), 299u);
}

TEST(SectorType, DecodePtsDropsBit32) {
  test::Record r(2048, 0);
  test::PutTimeStamp(r, 23, 0x2, (1ull << 32) + 12345);
  EXPECT_EQ(DecodePts(ByteView(r).sub(23)), 12345u);
}

}  // namespace
}  // namespace tarvex
