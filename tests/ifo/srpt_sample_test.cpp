// Golden details of the title search pointer, part-of-title search pointer and time map tables
// of the sample disc, and the tables after a disassembly/assembly round trip. Every expected
// line was read by hand from the IFO bytes (offsets given in the comments).
#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/sample_disc.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;
using test::OpenSample;
using test::SampleAvailable;
using test::TableSector;

TEST(SrptSampleTest, OverviewHeadingLines) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture vmg;
  OpenSample(vmg, "VIDEO_TS.IFO");
  // tt_srpt_sa (VMGI_MAT bytes 196-199) = 1.
  EXPECT_TRUE(HasLine(vmg.lines(),
                      "VMG_PTT_SRPTI IFO File: Part of title search pointer table information"));
  Fixture vts;
  OpenSample(vts, "VTS_01_0.IFO");
  // vts_ptt_srpt_sa (0xC8) = 1, vts_tmapt_sa (0xD4) = 4.
  EXPECT_TRUE(
      HasLine(vts.lines(), "PTT_SRPTI IFO File: Part of title search pointer table information"));
  EXPECT_TRUE(HasLine(vts.lines(), "VTS_TMAPTI IFO File: Video title set Time Map Table"));
}

TEST(SrptSampleTest, TitleSearchPointerDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  // Sector 1 (0x800): 00 01 00 00 00 00 00 13 | 3c 01 00 03 00 00 01 01 00 00 00 28.
  EXPECT_EQ(test::DetailsOf(f, "VMG_PTT"),
            (std::vector<std::string>{
                "Number of Title Unit Serch Pointers TTUs in the VTS: 1",
                "End byte address of PTT_SRPT table: 19",
                "    Title set 1: Title playback type: 3c",
                "    Title set 1: Number of angles: 1",
                "    Title set 1: Number of PTTs: 3",
                "    Title set 1: Parental ID field: 0",
                "    Title set 1: Title set number: 1",
                "    Title set 1: VTS_TTN: 1",
                "    Title set 1: Title set starting sector number: 40",
            }));
}

TEST(SrptSampleTest, PartOfTitleSearchPointerDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // Sector 1 (0x800): 00 01 00 00 00 00 00 17 | 00 00 00 0c | 00 01 00 01 | 00 01 00 02 |
  // 00 01 00 03: one unit at offset 12 whose parts run to 23 + 1.
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"),
            (std::vector<std::string>{
                "Number of Title Unit Serch Pointers TTUs in the VTS: 1",
                "End byte address of PTT_SRPT table: 23",
                "  Starting memory address of TTU 1: 12",
                "    Program chain number (PGCN): 1 Program number (PG): 1",
                "    Program chain number (PGCN): 1 Program number (PG): 2",
                "    Program chain number (PGCN): 1 Program number (PG): 3",
            }));
}

TEST(SrptSampleTest, TimeMapDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // Sector 4 (0x2000): 00 01 00 00 00 00 00 2b | 00 00 00 0c | 01 00 00 07 | 00 00 00 4d |
  // 80 00 00 ea | 00 00 01 87 | 00 00 02 24 | 80 00 02 c0 | 00 00 03 5c | 80 00 03 f2.
  EXPECT_EQ(test::DetailsOf(f, "VTS_TMAPT"),
            (std::vector<std::string>{
                "Number of VTS_TMAPS: 1",
                "End byte address of VTS_TMAPT_EA table: 43",
                "  Time map 1 byte start address 12.",
                "  Time map 1 contains 7 entries using time unit of 1 seconds.",
                "    Entry 1 at sector address 77",
                "    Discontinuity Entry 2 at sector address 234",
                "    Entry 3 at sector address 391",
                "    Entry 4 at sector address 548",
                "    Discontinuity Entry 5 at sector address 704",
                "    Entry 6 at sector address 860",
                "    Discontinuity Entry 7 at sector address 1010",
            }));
}

TEST(SrptSampleTest, TitleSearchPointersComeBackUnchanged) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VIDEO_TS.IFO", "VIDEO_TS.INI");
  EXPECT_TRUE(rt.messages.empty());
  // Parental ID 0 and VTS_TTN 1 are not changed by their established load rules.
  std::vector<std::uint8_t> table = TableSector(rt.assembled, 196);
  ASSERT_FALSE(table.empty());
  EXPECT_EQ(table, TableSector(rt.original, 196));
}

TEST(SrptSampleTest, PartOfTitleTableIsRebuiltWithOnePointerPerPart) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VTS_01_0.IFO", "VTS_01_0.INI");
  EXPECT_TRUE(rt.messages.empty());
  std::vector<std::uint8_t> table = TableSector(rt.assembled, kVtsPttSrptSa);
  ASSERT_FALSE(table.empty());
  // Three parts (1,1) (1,2) (1,3): pointers 20, 24, 28, end address 8 x 3 + 7 = 31.
  std::vector<std::uint8_t> expected = {0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F,
                                        0x00, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x18,
                                        0x00, 0x00, 0x00, 0x1C, 0x00, 0x01, 0x00, 0x01,
                                        0x00, 0x01, 0x00, 0x02, 0x00, 0x01, 0x00, 0x03};
  expected.resize(2048, 0);
  EXPECT_EQ(table, expected);
}

TEST(SrptSampleTest, TimeMapComesBackUnchanged) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VTS_01_0.IFO", "VTS_01_0.INI");
  EXPECT_TRUE(rt.messages.empty());
  std::vector<std::uint8_t> table = TableSector(rt.assembled, kVtsTmaptSa);
  ASSERT_FALSE(table.empty());
  EXPECT_EQ(table, TableSector(rt.original, kVtsTmaptSa));
}

}  // namespace
}  // namespace tarvex
