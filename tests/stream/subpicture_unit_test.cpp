#include "stream/subpicture_unit.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using Bytes = std::vector<std::uint8_t>;

// A SUP file: unit size, table offset 4, then a display control sequence at offset 4 with
// command time 0x0102 and next address 0x0304, followed by the commands.
Bytes Unit(const Bytes& commands, std::uint16_t size = 0x0800) {
  Bytes b = {static_cast<std::uint8_t>(size >> 8),
             static_cast<std::uint8_t>(size),
             0x00,
             0x04,
             0x01,
             0x02,
             0x03,
             0x04};
  // The sequence is read from file offset 4, so its commands start at file offset 8.
  b.insert(b.end(), commands.begin(), commands.end());
  return b;
}

std::vector<std::string> Decode(Fixture& f, const Bytes& file, std::uint32_t record = 0) {
  f.OpenBytes("unit.sup", file, kFileSup);
  DecodeSubpictureUnit(*f.ctx, record);
  return f.lines();
}

const std::vector<std::string> kHeader = {
    "Size of sub-picture unit: 2048", "Offset to Display Control Sequence Table: 4",
    "Display Control Command Time: 258", "Start address of next command table: 772"};

std::vector<std::string> WithHeader(std::vector<std::string> tail) {
  std::vector<std::string> out = kHeader;
  out.insert(out.end(), tail.begin(), tail.end());
  return out;
}

TEST(DecodeSubPictureUnit, StartAndStopTimingThenEnd) {
  Fixture f;
  EXPECT_EQ(Decode(f, Unit({0x01, 0x02, 0xFF})),
            WithHeader({"Set display start timing of pixel data.",
                        "Set display stop timing of pixel data."}));
}

TEST(DecodeSubPictureUnit, ColourCommandWhoseLastParameterIs07StopsDecoding) {
  Fixture f;
  EXPECT_EQ(Decode(f, Unit({0x03, 0x12, 0x07, 0x01, 0xFF})),
            WithHeader({"Set color code of pixel data to: 1207"}));
}

TEST(DecodeSubPictureUnit, DisplayAddressStepsOverOnlyTwoOfItsFourBytes) {
  Fixture f;
  // 0x33 and 0x44 are then decoded as codes of their own (no lines), then 0x01 prints.
  EXPECT_EQ(
      Decode(f, Unit({0x06, 0x11, 0x22, 0x33, 0x44, 0x01, 0xFF})),
      WithHeader({"Set display address to: 11223344", "Set display start timing of pixel data."}));
}

TEST(DecodeSubPictureUnit, EveryCommandLine) {
  Fixture f;
  EXPECT_EQ(Decode(f, Unit({0x00, 0x04, 0xAB, 0xCD, 0x05, 1, 2, 3, 0xA4, 0x5B, 0x6C, 0x08, 0xFE,
                            0x07, 0x01})),
            WithHeader({"Forcedly start display of this sub-picture",
                        "Set pixel mix ratio to: abcd", "Set display area to: 010203a45b6c",
                        "Change color and contrast to: decoding break"}));
}

TEST(DecodeSubPictureUnit, TableOffsetBeyond2048IsAFileOffset) {
  Fixture f;
  Bytes file(5000, 0);
  file[0] = 0x12, file[1] = 0x34;  // size 4660
  file[2] = 0x0F, file[3] = 0xA0;  // table at 4000
  file[4000] = 0x00, file[4001] = 0x10;
  file[4002] = 0x00, file[4003] = 0x20;
  file[4004] = 0x02;
  file[4005] = 0xFF;
  EXPECT_EQ(Decode(f, file), (std::vector<std::string>{
                                 "Size of sub-picture unit: 4660",
                                 "Offset to Display Control Sequence Table: 4000",
                                 "Display Control Command Time: 16",
                                 "Start address of next command table: 32",
                                 "Set display stop timing of pixel data.",
                             }));
}

TEST(DecodeSubPictureUnit, TableOffsetIsTakenFromTheFileStartNotTheUnit) {
  Fixture f;
  Bytes file(4096, 0xFF);
  // Unit at record 1 with table offset 8: the sequence is read at file offset 8 (record 0).
  file[2048] = 0x00, file[2049] = 0x40, file[2050] = 0x00, file[2051] = 0x08;
  file[8] = 0, file[9] = 5, file[10] = 0, file[11] = 6, file[12] = 0x01, file[13] = 0xFF;
  EXPECT_EQ(Decode(f, file, 1), (std::vector<std::string>{
                                    "Size of sub-picture unit: 64",
                                    "Offset to Display Control Sequence Table: 8",
                                    "Display Control Command Time: 5",
                                    "Start address of next command table: 6",
                                    "Set display start timing of pixel data.",
                                }));
}

TEST(DecodeSubPictureUnit, ShortSecondReadKeepsTheFirstReadsBytesBehind) {
  Fixture f;
  // A 3000-byte file, table at 2990: the second read gets 10 bytes; the rest of the buffer
  // still holds the unit's first record.
  Bytes file(3000, 0x08);
  file[0] = 0x0B, file[1] = 0xB8, file[2] = 0x0B, file[3] = 0xAE;  // size 3000, table 2990
  file[10] = 0x02;  // buffer byte 10 after the second read: from the first read
  file[11] = 0xFF;
  for (int i = 0; i < 10; ++i) file[2990 + i] = static_cast<std::uint8_t>(i);
  // After the second read: 00 01 02 03 04 05 06 07 08 09 (new), then 02 FF (kept).
  // i = 4: 04 pixel mix ratio 0506; i = 7: 07 prints and stops.
  EXPECT_EQ(Decode(f, file), (std::vector<std::string>{
                                 "Size of sub-picture unit: 3000",
                                 "Offset to Display Control Sequence Table: 2990",
                                 "Display Control Command Time: 1",
                                 "Start address of next command table: 515",
                                 "Set pixel mix ratio to: 0506",
                                 "Change color and contrast to: decoding break",
                             }));
}

TEST(DecodeSubPictureUnit, DecodingStartsFromAZeroedBuffer) {
  Fixture f;
  // A 6-byte file: size 0x0102, table at 0; both reads get the same six bytes with zeros
  // behind them: 02 at index 4, then FF ends.
  Bytes file = {0x01, 0x02, 0x00, 0x00, 0x02, 0xFF};
  auto lines = Decode(f, file);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[2], "Display Control Command Time: 258");
  EXPECT_EQ(lines[3], "Start address of next command table: 0");
  EXPECT_EQ(lines[4], "Set display stop timing of pixel data.");
}

TEST(DecodeSubPictureUnit, RunOfZeroCodesEndsAtTheRecordEnd) {
  Fixture f;
  Bytes file = {0x00, 0x10, 0x00, 0x00};
  auto lines = Decode(f, file);
  // Index 4 .. 2047 each decode 0x00.
  ASSERT_EQ(lines.size(), 4u + 2044u);
  EXPECT_EQ(lines.back(), "Forcedly start display of this sub-picture");
}

TEST(DecodeSubPictureUnit, DisplayAreaNearTheRecordEndReadsZerosBeyondIt) {
  Fixture f;
  Bytes file(2048, 0x08);
  file[0] = 0, file[1] = 0, file[2] = 0, file[3] = 0;
  file[4] = 0x08;
  file[2045] = 0x05, file[2046] = 0xAA, file[2047] = 0xBB;
  auto lines = Decode(f, file);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[4], "Set display area to: aabb00000000");
}

TEST(DecodeSubPictureUnit, ClearsTheListFirst) {
  Fixture f;
  f.ctx->AddReportLine("old");
  auto lines = Decode(f, Unit({0xFF}));
  EXPECT_EQ(lines, kHeader);
}

}  // namespace
}  // namespace tarvex
