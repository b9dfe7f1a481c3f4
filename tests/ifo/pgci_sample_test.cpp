// Golden details of the program chain tables of the sample disc. Every expected value was read
// by hand from the IFO bytes (offsets in the comments are file offsets).
#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/sample_disc.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;
using test::OpenSample;
using test::PressDetailsOn;
using test::SampleAvailable;
using test::TableSector;

std::vector<std::string> Lines(const Fixture& f, std::size_t from, std::size_t count) {
  std::vector<std::string> out;
  for (std::size_t i = from; i < from + count && i < f.lines().size(); ++i) {
    out.push_back(f.lines()[i]);
  }
  return out;
}

TEST(PgciSampleTest, TitleSetOverviewHeadings) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // vts_pgcit_sa (0xCC) = 2, vtsm_pgci_ut_sa (0xD0) = 3; the unit table's one unit has
  // lu_sa 16 (0x180C), so the language units are there.
  EXPECT_TRUE(HasLine(f, "VTS_PGCITI IFO File: Video title set Program Chain Information Table"));
  EXPECT_TRUE(HasLine(f, "VTSM_PGCI_UT File: Video Title Set Menu PGCI Unit Table"));
  EXPECT_TRUE(HasLine(f, "VTSM_LUI IFO File: Video Title Set Menu Language Unit Table"));
}

TEST(PgciSampleTest, TitleSetPgciTableDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTS_PGCITI");
  // Table at 0x1000: count 1, end address 0x17B; pointer 81000000 / 0x10; chain at 0x1010.
  EXPECT_EQ(Lines(f, 0, 14), (std::vector<std::string>{
                                 "Number of VTS_PGCI_SRP: 1",
                                 "End byte address of VTS_PGCI table: 379",
                                 "  VTS_PGC Category 1: 81000000",
                                 "  VTS_PGCI memory offset address 1: 16",
                                 "    Program Chain Information Table (PGCI) 1",
                                 "     PGC: Number of Programs: 3",  // 0x1012: 03 03
                                 "     PGC: Number of Cells: 3",
                                 "     PGC: Play Back Time: 00:00:08.00",  // 00 00 08 c0
                                 "     PGC: Prohibited user operations: 00000000",
                                 "     PGC: Audio stream 1 status: 8000",  // 0x101C
                                 "     PGC: Audio stream 2 status: 8100",
                                 "     PGC: Audio stream 3 status: 8200",
                                 "     PGC: Audio stream 4 status: 0000",
                                 "     PGC: Audio stream 5 status: 0000",
                             }));
  // Palette at 0x10B4: 00eb8080, 00108080, 0052f05a.
  EXPECT_EQ(Lines(f, 54, 4), (std::vector<std::string>{
                                 "     PGC: Sub-Picture palette as YCrCb:",
                                 "       Color 0: 235-128-128",
                                 "       Color 1: 016-128-128",
                                 "       Color 2: 082-240-090",
                             }));
  // Offsets at 0x10F4: 236, 276, 280, 352. Commands at 0x10FC: 3 pre, 1 post, 0 cell.
  EXPECT_EQ(f.lines()[71], "     PGC: Memory offset of PGC Command Table: 236");
  EXPECT_EQ(f.lines()[72], "         There are 3 Pre Commands");
  EXPECT_TRUE(f.lines()[73].starts_with("           1: 00b1000000030003"));
  EXPECT_TRUE(f.lines()[74].starts_with("           2: 7105000000000003"));
  EXPECT_TRUE(f.lines()[75].starts_with("           3: 0000000000000000"));
  EXPECT_EQ(f.lines()[76], "         There are 1 Post Commands");
  EXPECT_TRUE(f.lines()[77].starts_with("           1: 3008000001420000"));
  EXPECT_EQ(Lines(f, 78, 28),
            (std::vector<std::string>{
                "         There are 0 Cell Commands",
                "     PGC: Memory offset of PGC Program Map: 276",
                "         Entry cell number for Program 1: 1",  // 0x1124: 01 02 03 00
                "         Entry cell number for Program 2: 2",
                "         Entry cell number for Program 3: 3",
                "     PGC: Memory offset of Cell Playback Information Table: 280",
                "         Cell 1 category: 2 0 0 0",            // 0x1128
                "         Cell 1 Play Back Time: 00:00:02.28",  // 00 00 02 e8
                "         Cell 1 entry point sector: 0",
                "         Cell 1 first ILVU VOBU end sector: 0",
                "         Cell 1 start sector of last VOUB: 313",  // 0x139
                "         Cell 1 last sector of this cell: 390",   // 0x186
                "         Cell 2 category: 8 0 0 0",               // 0x1140
                "         Cell 2 Play Back Time: 00:00:03.00",     // 00 00 03 c0
                "         Cell 2 entry point sector: 391",
                "         Cell 2 first ILVU VOBU end sector: 0",
                "         Cell 2 start sector of last VOUB: 783",
                "         Cell 2 last sector of this cell: 859",
                "         Cell 3 category: 8 0 0 0",  // 0x1158
                "         Cell 3 Play Back Time: 00:00:02.02",
                "         Cell 3 entry point sector: 860",
                "         Cell 3 first ILVU VOBU end sector: 0",
                "         Cell 3 start sector of last VOUB: 1154",
                "         Cell 3 last sector of this cell: 1245",
                "     PGC: Memory offset of Cell Position Information Table: 352",
                "         VOB ID number 1 of this Cell 1",  // 0x1170
                "         VOB ID number 1 of this Cell 2",
                "         VOB ID number 1 of this Cell 3",
            }));
  EXPECT_EQ(f.lines().size(), 106u);
}

TEST(PgciSampleTest, TitleSetMenuUnitTableDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTSM_PGCI_UT");
  // Table at 0x1800: 0001 0000 00000245, then "en" 00 88 00000010.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VTSM_PGCI_LUs: 1",
                           "End byte address of VTSM_PGCI_LUs table: 581",
                           "  Video Title Set Menu Language Code 1: en",
                           "  Video Title Set Menu Existence 1: 88",
                           "  Video Title Set Menu Language Start Address 1: 16",
                       }));
}

TEST(PgciSampleTest, TitleSetMenuLanguageUnitDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTSM_LUI");
  // Unit at 0x1810: 2 chains, end address 0x235; pointers 83000000/0x18 and 87000000/0x13A.
  // Chain 1 at 0x1828: 1 program, 1 cell, 00 00 01 c1.
  EXPECT_EQ(Lines(f, 0, 9), (std::vector<std::string>{
                                "LU 1 Number of VTSM_PGCI_SRP: 2",
                                "LU 1 End byte address of VTSM_LU_EA table: 565",
                                "  VTSM_PGC Category 1: 83000000",
                                "  VTSM_PGCI byte address 1: 24",
                                "    PGC: Number of Programs: 1",
                                "    PGC: Number of Cells: 1",
                                "    PGC: Play Back Time: 00:00:01.01",
                                "    PGC: Prohibited user operations: 00000000",
                                "    PGC: Audio stream 1 status: 8000",
                            }));
  // Chain 1: 66 header lines, 6 command lines (1 pre at 0x191C, 1 post), 2 program map,
  // 7 cell playback (0x192E: 02 00 ff 00, 000001c1, 0, 0, 0x12, 0x1B), 2 cell position.
  EXPECT_EQ(f.lines()[70], "    PGC: Memory offset of PGC Command Table: 236");
  EXPECT_TRUE(f.lines()[72].starts_with("          1: 5600000004000000"));
  EXPECT_TRUE(f.lines()[74].starts_with("          1: 3001000000000000"));
  EXPECT_EQ(Lines(f, 76, 13), (std::vector<std::string>{
                                  "    PGC: Memory offset of PGC Program Map: 260",
                                  "        Entry cell number for Program 1: 1",
                                  "    PGC: Memory offset of Cell Playback Information Table: 262",
                                  "        Cell 1 category: 2 0 255 0",
                                  "        Cell 1 Play Back Time: 00:00:01.01",
                                  "        Cell 1 entry point sector: 0",
                                  "        Cell 1 first ILVU VOBU end sector: 0",
                                  "        Cell 1 start sector of last VOUB: 18",
                                  "        Cell 1 last sector of this cell: 27",
                                  "    PGC: Memory offset of Cell Position Information Table: 286",
                                  "        VOB ID number 1 of this Cell 1",
                                  "  VTSM_PGC Category 2: 87000000",
                                  "  VTSM_PGCI byte address 2: 314",
                              }));
  // Chain 2 at 0x194A: no programs or cells, commands only (1 pre at 0x1A3E): 66 + 5 + 6.
  EXPECT_EQ(f.lines().size(), 4u + 83u + 2u + 77u);
}

TEST(PgciSampleTest, VideoManagerOverviewHeadings) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  // vmgm_pgci_ut_sa (byte 200) = 2; its one unit has lu_sa 16 (0x100C).
  EXPECT_TRUE(HasLine(f, "VMGM_PGCI_UT File: Video Manager Menu PGCI Unit Table"));
  EXPECT_TRUE(HasLine(f, "VMGM_LUI IFO File: Video Manager Menu Language Unit Table"));
}

TEST(PgciSampleTest, VideoManagerMenuDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMGM_PGCI_UT");
  // Table at 0x1000: 0001 0000 00000169, "en" 00 80 00000010.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VMGM_PGCI_LUs: 1",
                           "End byte address of VMGM_PGCI_LUs table: 361",
                           "  Video Manager Menu Language Code 1: en",
                           "  Video Manager Menu Existence 1: 80",
                           "  Video Manager Menu Language Start Address 1: 16",
                       }));
  ShowIfoDetails(*f.ctx);
  PressDetailsOn(f, "VMGM_LUI");
  // Unit at 0x1010: 1 chain, end address 0x159; pointer 82000000 / 0x10; chain at 0x1020.
  EXPECT_EQ(Lines(f, 0, 8), (std::vector<std::string>{
                                "There are 1 LU PGCs",
                                "LU 1 Number of VMGM_PGCI_SRP: 1",
                                "LU 1 End byte address of VMGM_LU_EA table: 345",
                                "  VMGM_PGC Category 1: 82000000",
                                "  VMGM_PGCI byte address 1: 16",
                                "    PGC: Number of Programs: 1",
                                "    PGC: Number of Cells: 1",
                                "    PGC: Play Back Time: 00:00:01.01",
                            }));
  // Offsets at 0x1104: 236, 300, 302, 326; commands at 0x110C: 1 pre, 6 post, 0 cell.
  EXPECT_EQ(f.lines()[71], "    PGC: Memory offset of PGC Command Table: 236");
  EXPECT_EQ(f.lines()[72], "        There are 1 Pre Commands");
  EXPECT_EQ(f.lines()[74], "        There are 6 Post Commands");
  EXPECT_EQ(f.lines()[81], "        There are 0 Cell Commands");
  EXPECT_EQ(f.lines()[82], "    PGC: Memory offset of PGC Program Map: 300");
  EXPECT_EQ(f.lines()[92], "        VOB ID number 1 of this Cell 1");  // 0x1166
  // 5 unit lines and 66 + 11 + 2 + 7 + 2 chain lines.
  EXPECT_EQ(f.lines().size(), 93u);
}

TEST(PgciSampleTest, VideoManagerMenuUnitTableComesBackByteForByte) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VIDEO_TS.IFO", "VIDEO_TS.INI");
  EXPECT_TRUE(rt.messages.empty());
  std::vector<std::uint8_t> original = TableSector(rt.original, 200);  // vmgm_pgci_ut_sa
  ASSERT_EQ(original.size(), 2048u);
  // The one unit lies at offset 16. Its end address field is written as the unit's size
  // (346 = 8 + 8 + 330) where the disc holds size - 1 (0x159 = 345); all else is the same.
  ASSERT_EQ(ByteView(original).be32(20), 345u);
  ByteWriter(original).put_be32(20, 346);
  EXPECT_EQ(TableSector(rt.assembled, 200), original);
}

TEST(PgciSampleTest, TitleSetChainTablesComeBackByteForByte) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VTS_01_0.IFO", "VTS_01_0.INI");
  EXPECT_TRUE(rt.messages.empty());
  std::vector<std::uint8_t> pgcit = TableSector(rt.original, 0xCC);  // vts_pgcit_sa
  ASSERT_EQ(pgcit.size(), 2048u);
  EXPECT_EQ(TableSector(rt.assembled, 0xCC), pgcit);
  std::vector<std::uint8_t> unit_table = TableSector(rt.original, 0xD0);  // vtsm_pgci_ut_sa
  ASSERT_EQ(unit_table.size(), 2048u);
  // The unit at offset 16 gets its size as end address (566) where the disc holds
  // size - 1 (0x235 = 565).
  ASSERT_EQ(ByteView(unit_table).be32(20), 565u);
  ByteWriter(unit_table).put_be32(20, 566);
  EXPECT_EQ(TableSector(rt.assembled, 0xD0), unit_table);
}

}  // namespace
}  // namespace tarvex
