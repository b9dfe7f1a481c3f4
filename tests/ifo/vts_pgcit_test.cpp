// The title set PGCI table: open, report, disassembly, load, measure and emit. Expected values
// are worked out by hand from the table layout (header 8 bytes, 8-byte search pointers, the
// chains after them) and from the sample chain of ifo_images.cpp (318 bytes).
#include "ifo/vts_pgcit.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;
using test::PressDetailsOn;

// One chain: count 1, end address 8 + 8 + 318 - 1 = 333, category 81020304, offset 16.
std::vector<std::uint8_t> OnePgcTable() {
  std::vector<std::uint8_t> table(16, 0);
  ByteWriter w(table);
  w.put_be16(0, 1);
  w.put_be32(4, 333);
  w.put_be32(8, 0x81020304);
  w.put_be32(12, 16);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  table.insert(table.end(), pgc.begin(), pgc.end());
  return table;
}

std::vector<std::uint8_t> VtsWithPgcit(const std::vector<std::uint8_t>& table) {
  return test::WithTableAt(test::MakeVtsImage(), kVtsPgcitSa, 1, table);
}

void OpenImage(Fixture& f, const std::vector<std::uint8_t>& image) {
  test::OpenIfo(f, "VTS_01_0.IFO", image);
}

TEST(VtsPgcitOpenTest, StartSectorZeroGivesOnlyTheAbsenceLine) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  f.ctx->ClearReportList();
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVtsPgcit, f.ctx->open.file_handle), 0u);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"** VTS_PGCITI IFO File: There is no Video title set Program "
                                      "Chain Information Table"}));
}

TEST(VtsPgcitOpenTest, OverviewShowsTheHeadingLine) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  EXPECT_TRUE(HasLine(f, "VTS_PGCITI IFO File: Video title set Program Chain Information Table"));
}

TEST(VtsPgcitReportTest, ReportsHeaderPointerAndTheChainIndentedByFive) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  PressDetailsOn(f, "VTS_PGCITI");
  const std::vector<std::string>& l = f.lines();
  // 5 table lines and 91 chain lines (2 + 1 + 1 + 40 + 5 + 17 + 6 + 3 + 13 + 3).
  ASSERT_EQ(l.size(), 96u);
  EXPECT_EQ(l[0], "Number of VTS_PGCI_SRP: 1");
  EXPECT_EQ(l[1], "End byte address of VTS_PGCI table: 333");
  EXPECT_EQ(l[2], "  VTS_PGC Category 1: 81020304");
  EXPECT_EQ(l[3], "  VTS_PGCI memory offset address 1: 16");
  EXPECT_EQ(l[4], "    Program Chain Information Table (PGCI) 1");
  EXPECT_EQ(l[5], "     PGC: Number of Programs: 2");
  EXPECT_EQ(l[6], "     PGC: Number of Cells: 2");
  EXPECT_EQ(l[7], "     PGC: Play Back Time: 01:23:45.19");
  EXPECT_EQ(l[95], "         VOB ID number 1 of this Cell 2");
  for (std::size_t i = 5; i < l.size(); ++i)
    EXPECT_TRUE(l[i].starts_with("     PGC") || l[i].starts_with("       ")) << l[i];
}

TEST(VtsPgcitReportTest, ReportingTwiceGivesTheSameLines) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  ReportTable(*f.ctx, TableId::kVtsPgcit);
  std::vector<std::string> first = f.lines();
  ReportTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(f.lines(), first);
  // The command table header is read afresh each time: still one pre command.
  EXPECT_TRUE(HasLine(f, "         There are 1 Pre Commands"));
}

TEST(VtsPgcitReportTest, TableWithZeroHeaderStillGetsDetailsAndDisassembly) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(std::vector<std::uint8_t>(8, 0)));
  PressDetailsOn(f, "VTS_PGCITI");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of VTS_PGCI_SRP: 0",
                                                 "End byte address of VTS_PGCI table: 0"}));
  ShowIfoDetails(*f.ctx);  // back to the overview
  std::string source = test::DisassembleIfoTo(f, "VTS_01_0.INI");
  EXPECT_NE(
      test::ReadFileText(source).find("[vts_pgcit]\r\nvts_pgci_srp_ns=0\r\nvts_pgcit_ea=0\r\n"),
      std::string::npos);
}

TEST(VtsPgcitReportTest, PointersBeyondTheFileReadAsZerosWithinTheChainBudget) {
  // Count 65535 and end address 65535, but the file ends 16 bytes after the header: two
  // pointers in the file, the others read as zeros. Their chains lie beyond the end of the file
  // and read as zeros too. One pass walks at most as many chains as the file holds 8-byte
  // pointers: (2048 + 24) / 8 = 259.
  std::vector<std::uint8_t> table(24, 0);
  ByteWriter w(table);
  w.put_be16(0, 0xFFFF);
  w.put_be32(4, 0xFFFF);
  w.put_be32(8, 0x80000000);
  w.put_be32(12, 24);
  w.put_be32(16, 0x81000000);
  w.put_be32(20, 0);
  std::vector<std::uint8_t> image = VtsWithPgcit(table);
  image.resize(2048 + 24);
  Fixture f;
  OpenImage(f, image);
  PressDetailsOn(f, "VTS_PGCITI");
  // 2 header lines, then per pointer 3 lines and 74 lines of an all-zero chain
  // (2 + 1 + 1 + 40 + 5 + 17 + 2 + 2 + 2 + 2).
  EXPECT_EQ(f.lines().size(), 2u + 259u * (3u + 74u));
  EXPECT_EQ(f.lines()[0], "Number of VTS_PGCI_SRP: 65535");
  EXPECT_TRUE(HasLine(f, "  VTS_PGC Category 2: 81000000"));
  EXPECT_TRUE(HasLine(f, "  VTS_PGC Category 259: 00000000"));
  EXPECT_TRUE(HasLine(f, "  VTS_PGCI memory offset address 259: 0"));
  EXPECT_TRUE(HasLine(f, "     PGC: Number of Programs: 0"));
}

// A truncated table: 3 chains, end address 1000, but the file ends after the first search
// pointer (category 80000000, offset 32). Pointers 2 and 3 and all three chains lie beyond the
// end of the file and read as zeros; every chain the header counts is listed.
std::vector<std::uint8_t> TruncatedThreeChains() {
  std::vector<std::uint8_t> table(16, 0);
  ByteWriter w(table);
  w.put_be16(0, 3);
  w.put_be32(4, 1000);
  w.put_be32(8, 0x80000000);
  w.put_be32(12, 32);
  std::vector<std::uint8_t> image = VtsWithPgcit(table);
  image.resize(2048 + 16);
  return image;
}

TEST(VtsPgcitReportTest, TruncatedFileListsEveryChainWithZerosBeyondItsEnd) {
  Fixture f;
  OpenImage(f, TruncatedThreeChains());
  PressDetailsOn(f, "VTS_PGCITI");
  ASSERT_EQ(f.lines().size(), 2u + 3u * (3u + 74u));
  EXPECT_EQ(f.lines()[2], "  VTS_PGC Category 1: 80000000");
  EXPECT_EQ(f.lines()[3], "  VTS_PGCI memory offset address 1: 32");
  EXPECT_EQ(f.lines()[2 + 77], "  VTS_PGC Category 2: 00000000");
  EXPECT_EQ(f.lines()[2 + 2 * 77 + 1], "  VTS_PGCI memory offset address 3: 0");
  EXPECT_EQ(f.lines()[2 + 2 * 77 + 2], "    Program Chain Information Table (PGCI) 3");
}

TEST(VtsPgcitAssembleTest, TruncatedFileDisassemblesAndAssemblesEveryChain) {
  Fixture f;
  OpenImage(f, TruncatedThreeChains());
  std::string text = test::DisassembleTables(f, {TableId::kVtsPgcit});
  EXPECT_NE(text.find("vts_pgci_srp_ns=3\r\n"), std::string::npos);
  EXPECT_NE(text.find("vts_pgc_cat03=00000000\r\nvts_pgci_sa03=0\r\n"), std::string::npos);
  EXPECT_NE(text.find("[vts_pgcit03]"), std::string::npos);
  // Three all-zero chains of a bare 236-byte header each after 3 pointers:
  // 8 + 24 + 3 x 236 = 740 bytes; offsets 32, 268 and 504; end address 739.
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPgcit);
  EXPECT_EQ(t.bytes, 740u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 3u);
  EXPECT_EQ(v.be32(4), 739u);
  EXPECT_EQ(v.be32(8), 0x80000000u);
  EXPECT_EQ(v.be32(12), 32u);
  EXPECT_EQ(v.be32(20), 268u);
  EXPECT_EQ(v.be32(28), 504u);
}

TEST(VtsPgcitDisassembleTest, WritesPointerKeysAndTheChainSection) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string text = test::DisassembleTables(f, {TableId::kVtsPgcit});
  EXPECT_TRUE(
      text.starts_with("[vts_pgcit]\r\nvts_pgci_srp_ns=1\r\nvts_pgcit_ea=333\r\n"
                       "vts_pgc_cat01=81020304\r\nvts_pgci_sa01=16\r\n\r\n"
                       "[vts_pgcit01]\r\nvts_pgc_cnt=00000202\r\n"
                       "vts_pgc_pb_tm=012345d9\r\n"))
      << text;
  EXPECT_NE(text.find("vts_pgc_cmdt_pre_ns=1\r\n"), std::string::npos);
  EXPECT_NE(text.find("vts_pgc_c_posit_cell002_cellid=2\r\n"), std::string::npos);
}

TEST(VtsPgcitDisassembleTest, ReportThenDisassemblyReadTheSameCommandCounts) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  ReportTable(*f.ctx, TableId::kVtsPgcit);
  ReportTable(*f.ctx, TableId::kVtsPgcit);
  std::string text = test::DisassembleTables(f, {TableId::kVtsPgcit});
  EXPECT_NE(text.find("vts_pgc_cmdt_pre_ns=1\r\nvts_pgc_cmdt_post_ns=1\r\nvts_pgc_cmdt_cmds_ns=0"),
            std::string::npos);
}

TEST(VtsPgcitAssembleTest, DisassembledTableAssemblesBackToTheSameBytes) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string text = test::WithoutCr(test::DisassembleTables(f, {TableId::kVtsPgcit}));
  test::LoadSource(f, TableId::kVtsPgcit, text);
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(size.bytes, 334u);
  EXPECT_EQ(size.sectors, 1u);
  std::vector<std::uint8_t> expected = OnePgcTable();
  expected.resize(2048, 0);
  EXPECT_EQ(test::EmitInto(f, TableId::kVtsPgcit), expected);
  EXPECT_TRUE(f.ui.Messages().empty());
}

// Loading, measuring and writing a table keep apart from the table of the open IFO: its
// details afterwards still show the file's header (1 chain, end address 333), not the
// source's count of 2.
TEST(VtsPgcitAssembleTest, AssemblyLeavesTheOpenTableAlone) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  test::UseSource(f, "[vts_pgcit]\nvts_pgci_srp_ns=2\nvts_pgc_cat01=1\nvts_pgc_cat02=2\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsPgcit);
  EXPECT_EQ(ByteView(t.file).be16(0), 2u);
  ReportTable(*f.ctx, TableId::kVtsPgcit);
  ASSERT_GE(f.lines().size(), 2u);
  EXPECT_EQ(f.lines()[0], "Number of VTS_PGCI_SRP: 1");
  EXPECT_EQ(f.lines()[1], "End byte address of VTS_PGCI table: 333");
}

TEST(VtsPgcitAssembleTest, SourceOffsetsAreIgnoredAndAlwaysRecomputed) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string text = test::WithoutCr(test::DisassembleTables(f, {TableId::kVtsPgcit}));
  std::size_t at = text.find("vts_pgci_sa01=16");
  ASSERT_NE(at, std::string::npos);
  text.replace(at, 16, "vts_pgci_sa01=9999");
  test::LoadSource(f, TableId::kVtsPgcit, text);
  MeasureTable(*f.ctx, TableId::kVtsPgcit);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVtsPgcit);
  EXPECT_EQ(ByteView(out).be32(12), 16u);
}

TEST(VtsPgcitAssembleTest, TwoChainsOf300And500BytesArePlacedOneAfterTheOther) {
  Fixture f;
  VtsPgcitState& s = f.ctx->ifo.vts_pgcit;
  s.pgcs = {{0x80000000, std::vector<std::uint8_t>(300, 0xAA)},
            {0x81000000, std::vector<std::uint8_t>(500, 0xBB)}};
  // 8 + 2 x 8 + 300 + 500 = 824 bytes: end address 823, one sector.
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(size.bytes, 824u);
  EXPECT_EQ(size.sectors, 1u);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVtsPgcit);
  ASSERT_EQ(out.size(), 2048u);
  ByteView v(out);
  EXPECT_EQ(v.be16(0), 2u);
  EXPECT_EQ(v.be16(2), 0u);
  EXPECT_EQ(v.be32(4), 823u);
  EXPECT_EQ(v.be32(8), 0x80000000u);
  EXPECT_EQ(v.be32(12), 24u);  // 8 + 2 x 8
  EXPECT_EQ(v.be32(16), 0x81000000u);
  EXPECT_EQ(v.be32(20), 324u);  // 24 + 300
  EXPECT_EQ(v.u8(24), 0xAA);
  EXPECT_EQ(v.u8(323), 0xAA);
  EXPECT_EQ(v.u8(324), 0xBB);
  EXPECT_EQ(v.u8(823), 0xBB);
  EXPECT_EQ(v.u8(824), 0);
  // The write leaves the module empty.
  EXPECT_TRUE(s.pgcs.empty());
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsPgcit).bytes, 0u);
}

TEST(VtsPgcitAssembleTest, MissingCountIsReportedAndNothingIsLoaded) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsPgcit, "[vts_pgcit]\nvts_pgcit_ea=333\n");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgciti: vts_pgci_srp_ns"}));
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(test::EmitInto(f, TableId::kVtsPgcit).empty());
}

TEST(VtsPgcitAssembleTest, CountZeroLoadsNothingAndTheTableIsLeftOut) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsPgcit, "[vts_pgcit]\nvts_pgci_srp_ns=0\n");
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(test::EmitInto(f, TableId::kVtsPgcit).empty());
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(VtsPgcitAssembleTest, MissingCategoryIsReportedAndLeftZero) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string text = test::WithoutCr(test::DisassembleTables(f, {TableId::kVtsPgcit}));
  std::size_t at = text.find("vts_pgc_cat01=81020304\n");
  ASSERT_NE(at, std::string::npos);
  text.erase(at, 23);
  test::LoadSource(f, TableId::kVtsPgcit, text);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgciti: vts_pgc_cat01"}));
  MeasureTable(*f.ctx, TableId::kVtsPgcit);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVtsPgcit);
  EXPECT_EQ(ByteView(out).be32(8), 0u);
  EXPECT_EQ(ByteView(out).be32(12), 16u);
}

TEST(VtsPgcitAssembleTest, CategoryIsReadAsAHexNumberWithOrWithoutX) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string text = test::WithoutCr(test::DisassembleTables(f, {TableId::kVtsPgcit}));
  std::size_t at = text.find("vts_pgc_cat01=81020304");
  text.replace(at, 22, "vts_pgc_cat01=x8102030A");
  test::LoadSource(f, TableId::kVtsPgcit, text);
  MeasureTable(*f.ctx, TableId::kVtsPgcit);
  EXPECT_EQ(ByteView(test::EmitInto(f, TableId::kVtsPgcit)).be32(8), 0x8102030Au);
}

// A title set with a PGCI table at sector 1 and a menu PGCI unit table at sector 2, both in
// the form the assembler writes, goes through the disassembly and the batch assembly and
// comes back with the same table sectors and start sectors.
TEST(VtsPgcitRoundTripTest, TitleSetWithBothChainTablesAssemblesBackToTheSameTables) {
  std::vector<std::uint8_t> unit_table(32, 0);
  ByteWriter w(unit_table);
  w.put_be16(0, 1);
  w.put_be32(4, 349);  // 8 + 8 + 8 + 8 + 318 - 1
  w.put_u8(8, 'e');
  w.put_u8(9, 'n');
  w.put_u8(11, 0x80);
  w.put_be32(12, 16);
  w.put_be16(16, 1);
  w.put_be32(20, 334);  // the unit's size: 8 + 8 + 318
  w.put_be32(24, 0x82000000);
  w.put_be32(28, 16);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  unit_table.insert(unit_table.end(), pgc.begin(), pgc.end());

  std::vector<std::uint8_t> image = VtsWithPgcit(OnePgcTable());
  test::PlaceTable(image, kVtsmPgciUtSa, 2, unit_table);
  Fixture f;
  OpenImage(f, image);
  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VTS_01_0.IFO");
  // The image has no part-of-title search pointer table, so its count is missing.
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"IFO assembler error!: vts_ttu_ns"}));
  ASSERT_GE(out.size(), 3u * 2048);
  EXPECT_EQ(ByteView(out).be32(kVtsPgcitSa), 1u);
  EXPECT_EQ(ByteView(out).be32(kVtsmPgciUtSa), 2u);
  EXPECT_TRUE(std::equal(image.begin() + 2048, image.begin() + 3 * 2048, out.begin() + 2048));
}

TEST(VtsPgcitRoundTripTest, CountZeroInTheSourceLeavesTheStartSectorZero) {
  Fixture f;
  OpenImage(f, VtsWithPgcit(OnePgcTable()));
  std::string source = test::DisassembleIfoTo(f, "VTS_01_0.INI");
  std::string text = test::WithoutCr(test::ReadFileText(source));
  std::size_t at = text.find("vts_pgci_srp_ns=1");
  ASSERT_NE(at, std::string::npos);
  text.replace(at, 17, "vts_pgci_srp_ns=0");
  test::WriteText(f.dir.file("vts_01_0_edit.ini"), text);
  std::vector<std::uint8_t> out =
      test::AssembleBatchInto(f, f.dir.file("vts_01_0_edit.ini"), "VTS_01_0.IFO");
  EXPECT_EQ(ByteView(out).be32(kVtsPgcitSa), 0u);
  EXPECT_EQ(out.size(), 2048u);  // only the information table
}

}  // namespace
}  // namespace tarvex
