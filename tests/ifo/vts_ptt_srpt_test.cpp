// The part-of-title search pointer table of a title set (PTT_SRPTI, section "vts_ptt_srpt").
// Every expected value below is worked out by hand from the table layout: an 8-byte header,
// one 4-byte offset per title unit (from the table start), then 4-byte part entries
// (PGCN, a zero byte, PGN).
#include <gtest/gtest.h>

#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/overview.h"
#include "ifo/table.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

// Two units: unit 1 at offset 16 with parts (1,1) and (1,2), unit 2 at offset 24 with part
// (2,1); 8 + 8 + 12 = 28 bytes, end address 27.
std::vector<std::uint8_t> TwoUnits() {
  return {0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1B, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00,
          0x00, 0x18, 0x00, 0x01, 0x00, 0x01, 0x00, 0x01, 0x00, 0x02, 0x00, 0x02, 0x00, 0x01};
}

void OpenVts(Fixture& f, const std::vector<std::uint8_t>& table) {
  test::OpenIfo(f, "VTS_01_0.IFO",
                test::WithTableAt(test::MakeVtsImage(), kVtsPttSrptSa, 1, table));
}

const std::vector<std::string> kTwoUnitsReport = {
    "Number of Title Unit Serch Pointers TTUs in the VTS: 2",
    "End byte address of PTT_SRPT table: 27",
    "  Starting memory address of TTU 1: 16",
    "  Starting memory address of TTU 2: 24",
    "    Program chain number (PGCN): 1 Program number (PG): 1",
    "    Program chain number (PGCN): 1 Program number (PG): 2",
    "    Program chain number (PGCN): 2 Program number (PG): 1",
};

TEST(SrptPartOpenTest, AbsentTableGivesOneLine) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  EXPECT_EQ(f.lines()[3], "** PTT_SRPTI IFO File: There is no Part of title search pointer table.");
}

TEST(SrptPartOpenTest, HeadingLineFollowsTheVobLines) {
  Fixture f;
  OpenVts(f, TwoUnits());
  ASSERT_GE(f.lines().size(), 4u);
  EXPECT_EQ(f.lines()[3], "PTT_SRPTI IFO File: Part of title search pointer table information");
}

TEST(SrptPartReportTest, PointersFirstThenEveryPartUnitByUnit) {
  Fixture f;
  OpenVts(f, TwoUnits());
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"), kTwoUnitsReport);
}

TEST(SrptPartDisassembleTest, PartKeysCarryTheData) {
  Fixture f;
  OpenVts(f, TwoUnits());
  f.ctx->convert.source_path = f.dir.file("VTS_01_0.INI");
  DisassembleTable(*f.ctx, TableId::kVtsPttSrpt);
  f.ctx->profiles.Flush();
  EXPECT_EQ(test::SectionLines(test::ReadFileText(f.ctx->convert.source_path), "vts_ptt_srpt"),
            (std::vector<std::string>{"vts_ttu_ns=2", "vts_ptt_srpt_ea=27", "ttu_sa01=16",
                                      "ptt_srp_pgcn_001_001=true", "ptt_srp_pgcn_001_002=true",
                                      "ttu_sa02=24", "ptt_srp_pgcn_002_001=true"}));
}

TEST(SrptPartAssembleTest, ThreeEntriesGiveOnePointerPerEntry) {
  Fixture f;
  test::UseSource(f,
                  "[vts_ptt_srpt]\nvts_ttu_ns=2\nvts_ptt_srpt_ea=27\nttu_sa01=16\n"
                  "ptt_srp_pgcn_001_001=true\nptt_srp_pgcn_001_002=true\nttu_sa02=24\n"
                  "ptt_srp_pgcn_002_001=true\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPttSrpt);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(t.bytes, 32u);  // 8 + 3 x 4 + 3 x 4
  EXPECT_EQ(t.sectors, 1u);
  std::vector<std::uint8_t> expected = {
      0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F,  // count 2, end address 31
      0x00, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x18, 0x00, 0x00, 0x00, 0x1C,  // 20, 24, 28
      0x00, 0x01, 0x00, 0x01, 0x00, 0x01, 0x00, 0x02, 0x00, 0x02, 0x00, 0x01};
  expected.resize(2048, 0);
  EXPECT_EQ(t.file, expected);
}

TEST(SrptPartAssembleTest, UnitBeyondTheCountIsNeverRead) {
  Fixture f;
  test::UseSource(f,
                  "[vts_ptt_srpt]\nvts_ttu_ns=2\nptt_srp_pgcn_001_001=true\n"
                  "ptt_srp_pgcn_003_001=true\n");
  LoadTableSource(*f.ctx, TableId::kVtsPttSrpt);
  ASSERT_EQ(f.ctx->ifo.vts_ptt_srpt.entries.size(), 1u);
  EXPECT_EQ(f.ctx->ifo.vts_ptt_srpt.entries[0].pgcn, 1u);
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsPttSrpt).bytes, 16u);  // 8 + 4 + 4
}

TEST(SrptPartAssembleTest, PartsStopAtTheFirstGap) {
  Fixture f;
  test::UseSource(f,
                  "[vts_ptt_srpt]\nvts_ttu_ns=1\nptt_srp_pgcn_001_001=true\n"
                  "ptt_srp_pgcn_001_002=true\nptt_srp_pgcn_001_004=true\n");
  LoadTableSource(*f.ctx, TableId::kVtsPttSrpt);
  const std::vector<PttEntry>& e = f.ctx->ifo.vts_ptt_srpt.entries;
  ASSERT_EQ(e.size(), 2u);
  EXPECT_EQ(e[1].pgn, 2u);
}

TEST(SrptPartAssembleTest, KeysOfAnotherChainAndValuesAreIgnored) {
  Fixture f;
  // Unit 1 only looks up chain 1's keys; the value "false" still marks the key present.
  test::UseSource(f,
                  "[vts_ptt_srpt]\nvts_ttu_ns=1\nttu_sa01=999\nptt_srp_pgcn_002_001=true\n"
                  "ptt_srp_pgcn_001_001=false\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPttSrpt);
  std::vector<std::uint8_t> expected = {0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0F,
                                        0x00, 0x00, 0x00, 0x0C, 0x00, 0x01, 0x00, 0x01};
  expected.resize(2048, 0);
  EXPECT_EQ(t.file, expected);
}

TEST(SrptPartAssembleTest, MissingCountIsAnAssemblerErrorAndDropsTheTable) {
  Fixture f;
  test::UseSource(f, "[vts_ptt_srpt]\nptt_srp_pgcn_001_001=true\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPttSrpt);
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"IFO assembler error!: vts_ttu_ns"}));
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_TRUE(t.file.empty());
}

TEST(SrptPartAssembleTest, AtMost256PartsPerUnit) {
  Fixture f;
  std::string source = "[vts_ptt_srpt]\nvts_ttu_ns=1\n";
  for (int p = 1; p <= 257; ++p) source += Format("ptt_srp_pgcn_001_%03d=true\n", {p});
  test::UseSource(f, source);
  LoadTableSource(*f.ctx, TableId::kVtsPttSrpt);
  EXPECT_EQ(f.ctx->ifo.vts_ptt_srpt.entries.size(), 256u);
  // The program number is one byte: part 256 is written as 0.
  EXPECT_EQ(f.ctx->ifo.vts_ptt_srpt.entries.back().pgn, 0u);
}

// With no part entries loaded the table is left out: both sizes 0, start sector 0.
TEST(SrptPartRulesTest, NoEntriesLeavesTheTableOut) {
  Fixture f;
  test::UseSource(f, "[vts_ptt_srpt]\nvts_ttu_ns=2\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPttSrpt);
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_EQ(t.bytes, 0u);
  EXPECT_TRUE(t.file.empty());
}

TEST(SrptPartRulesTest, NoEntriesGivesStartSectorZeroInTheTitleSet) {
  Fixture f;
  f.OpenBytes("SRC.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  f.ctx->convert.source_path = f.dir.file("VTS_01_0.INI");
  DisassembleTitleSet(*f.ctx);
  f.ctx->profiles.Flush();
  std::string base = test::ReadFileText(f.ctx->convert.source_path);
  for (const char* part : {"", "ptt_srp_pgcn_001_001=true\n"}) {
    f.ctx->profiles.Flush();
    test::WriteText(f.ctx->convert.source_path, base + "\n[vts_ptt_srpt]\nvts_ttu_ns=1\n" + part);
    LoadTableSource(*f.ctx, TableId::kVtsPttSrpt);
    std::vector<std::uint8_t> bytes = test::AssembleTitleSetInto(f, "VTS_01_0.IFO");
    ByteView v(bytes);
    if (*part == '\0') {
      EXPECT_EQ(bytes.size(), 2048u);
      EXPECT_EQ(v.be32(kVtsPttSrptSa), 0u);
    } else {
      EXPECT_EQ(bytes.size(), 2u * 2048);
      EXPECT_EQ(v.be32(kVtsPttSrptSa), 1u);
      EXPECT_EQ(v.be32(2048 + 4), 15u);
    }
  }
}

// Decimal and key parsing: the count is read like atol and truncated to 16 bits.
TEST(SrptPartRulesTest, CountIsReadLikeAtolAndTruncated) {
  Fixture f;
  test::UseSource(f,
                  "[vts_ptt_srpt]\nvts_ttu_ns= 65537 units\nptt_srp_pgcn_001_001=true\n"
                  "ptt_srp_pgcn_002_001=true\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPttSrpt);
  // 65537 truncates to 1: only unit 1 is read.
  EXPECT_EQ(t.bytes, 16u);
  EXPECT_EQ(ByteView(t.file).be16(0), 1u);
}

// The body is read with zeros beyond the end of the file; the loop over the 16-bit unit count
// runs in full, the parts, whose extent comes from the 32-bit offsets, are bounded by the file
// length.
TEST(SrptPartRulesTest, HostileOffsetsAreBoundedByTheFileLength) {
  Fixture f;
  // 65535 units, end address 0xFFFFFFFF, units alternating between offsets 8 and
  // 0x7FFFFFFF: without a bound the parts would number in the billions.
  std::vector<std::uint8_t> table = {0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF};
  for (int n = 0; n < 64; ++n) {
    std::uint32_t off = n % 2 == 0 ? 8 : 0x7FFFFFFF;
    for (int b = 3; b >= 0; --b) table.push_back(static_cast<std::uint8_t>(off >> (8 * b)));
  }
  f.OpenBytes("VTS_01_0.IFO", test::WithTables(test::MakeVtsImage(), {{kVtsPttSrptSa, table}}),
              kFileIfo);
  ShowIfoOverview(*f.ctx);
  std::vector<std::string> lines = test::DetailsOf(f, "PTT_SRPTI");
  // All 65535 units are listed; the pointers of units 65 on lie beyond the end of the file and
  // read 0. All parts together are bounded by the 64 4-byte positions inside the file (256
  // bytes after the header).
  ASSERT_EQ(lines.size(), 2u + 65535u + 64u);
  EXPECT_EQ(lines[2], "  Starting memory address of TTU 1: 8");
  EXPECT_EQ(lines[3], "  Starting memory address of TTU 2: 2147483647");
  EXPECT_EQ(lines[66], "  Starting memory address of TTU 65: 0");
  EXPECT_EQ(lines[65536], "  Starting memory address of TTU 65535: 0");
  // Unit 1 runs from offset 8 (body position 0, the first pointer: 00 00 00 08) on.
  EXPECT_EQ(lines[65537], "    Program chain number (PGCN): 0 Program number (PG): 8");
  EXPECT_EQ(lines[65538], "    Program chain number (PGCN): 32767 Program number (PG): 255");
}

// A truncated table: 3 units, end address 27, but the file ends after the first pointer
// (offset 20). Units 2 and 3 read their offsets as 0; unit 1's parts run from 20 up to unit
// 2's offset 0, so there are none.
TEST(SrptPartRulesTest, TruncatedFileListsEveryUnitWithZerosBeyondItsEnd) {
  Fixture f;
  std::vector<std::uint8_t> table = {0x00, 0x03, 0x00, 0x00, 0x00, 0x00,
                                     0x00, 0x1B, 0x00, 0x00, 0x00, 0x14};
  std::vector<std::uint8_t> image =
      test::WithTables(test::MakeVtsImage(), {{kVtsPttSrptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"),
            (std::vector<std::string>{
                "Number of Title Unit Serch Pointers TTUs in the VTS: 3",
                "End byte address of PTT_SRPT table: 27", "  Starting memory address of TTU 1: 20",
                "  Starting memory address of TTU 2: 0", "  Starting memory address of TTU 3: 0"}));
  std::string text = test::DisassembleTables(f, {TableId::kVtsPttSrpt});
  EXPECT_EQ(test::SectionLines(text, "vts_ptt_srpt"),
            (std::vector<std::string>{"vts_ttu_ns=3", "vts_ptt_srpt_ea=27", "ttu_sa01=20",
                                      "ttu_sa02=0", "ttu_sa03=0"}));
}

TEST(SrptPartRulesTest, EntriesBeyondTheEndOfTheFileReadZero) {
  Fixture f;
  // One unit at offset 12 whose parts run to end address + 1 = 24: three parts, but the file
  // ends after the first part's PGCN. The first part reads its missing PGN as 0; the others
  // begin beyond the end of the file and are not walked.
  std::vector<std::uint8_t> table = {0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00,
                                     0x17, 0x00, 0x00, 0x00, 0x0C, 0x00, 0x05};
  std::vector<std::uint8_t> image =
      test::WithTables(test::MakeVtsImage(), {{kVtsPttSrptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"),
            (std::vector<std::string>{
                "Number of Title Unit Serch Pointers TTUs in the VTS: 1",
                "End byte address of PTT_SRPT table: 23", "  Starting memory address of TTU 1: 12",
                "    Program chain number (PGCN): 5 Program number (PG): 0"}));
}

// Every report and disassembly reads the table afresh from the file.
TEST(SrptPartRulesTest, ReportReadsAfresh) {
  Fixture f;
  OpenVts(f, TwoUnits());
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"), kTwoUnitsReport);
  ReportTable(*f.ctx, TableId::kVtsPttSrpt);
  EXPECT_EQ(f.lines(), kTwoUnitsReport);
  test::OverwriteOpenFile(f, 2048 + 27, {7});
  ReportTable(*f.ctx, TableId::kVtsPttSrpt);
  EXPECT_EQ(f.lines()[6], "    Program chain number (PGCN): 2 Program number (PG): 7");
}

// A shown heading gets details and disassembly even with a zero header.
TEST(SrptPartRulesTest, ZeroHeaderStillHasDetailsAndDisassembly) {
  Fixture f;
  OpenVts(f, std::vector<std::uint8_t>(8, 0));
  EXPECT_EQ(test::DetailsOf(f, "PTT_SRPTI"),
            (std::vector<std::string>{"Number of Title Unit Serch Pointers TTUs in the VTS: 0",
                                      "End byte address of PTT_SRPT table: 0"}));
  EXPECT_EQ(test::DisassembledSection(f, "VTS_01_0.INI", "vts_ptt_srpt"),
            (std::vector<std::string>{"vts_ttu_ns=0", "vts_ptt_srpt_ea=0"}));
}

// Disassembling and assembling a title set through the drivers rebuilds the table with one
// search pointer per part: the three parts give pointers 20, 24, 28 and end address 31.
TEST(SrptPartRoundTripTest, DriversRebuildTheTable) {
  Fixture f;
  OpenVts(f, TwoUnits());
  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VTS_01_0.IFO");
  ASSERT_EQ(out.size(), 2u * 2048);
  ByteView v(out);
  EXPECT_EQ(v.be32(kVtsPttSrptSa), 1u);
  std::vector<std::uint8_t> expected = {0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F,
                                        0x00, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x18,
                                        0x00, 0x00, 0x00, 0x1C, 0x00, 0x01, 0x00, 0x01,
                                        0x00, 0x01, 0x00, 0x02, 0x00, 0x02, 0x00, 0x01};
  expected.resize(2048, 0);
  EXPECT_EQ(std::vector<std::uint8_t>(out.begin() + 2048, out.end()), expected);
}

}  // namespace
}  // namespace tarvex
