// Cell address tables. Expected values are worked out by hand from the table layout: an
// 8-byte header (VOB count, reserved, end address) and 12 bytes per cell (VOB ID, cell ID,
// reserved, first sector, last sector).
#include "ifo/c_adt.h"

#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/adt_test_tables.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::CellEntry;
using test::Fixture;
using test::HasLine;

// 2 VOBs and 5 cells: end address 8 + 60 - 1 = 67.
const std::vector<CellEntry> kFiveCells = {
    {1, 1, 0, 99}, {1, 2, 100, 199}, {2, 1, 200, 299}, {2, 2, 300, 399}, {2, 3, 400, 499}};

void OpenTitleSetWith(Fixture& f, std::vector<std::uint8_t> c_adt,
                      std::size_t offset = kVtsCAdtSa) {
  test::OpenIfo(f, "VTS_01_0.IFO", test::WithTables(test::MakeVtsImage(), {{offset, c_adt}}));
}

TEST(AdtOpenTest, AbsentTitleSetTablesEndTheirLinesWithAFullStop) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  EXPECT_TRUE(
      HasLine(f, "** VTSM_C_ADT IFO File: There is no Video Title Set Menu Cell Address Table."));
  EXPECT_TRUE(HasLine(f, "** VTS_C_ADT IFO File: There is no Video Title Set Cell Address Table."));
}

TEST(AdtOpenTest, AbsentVideoManagerTableEndsItsLineWithAFullStop) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  EXPECT_TRUE(
      HasLine(f, "** VMGM_C_ADT IFO File: There is no VMGM Cell Address Table information."));
}

TEST(AdtOpenTest, AbsentTableGivesExactlyOneLine) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  f.ctx->ClearReportList();
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVtsCAdt, f.ctx->open.file_handle), 0u);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "** VTS_C_ADT IFO File: There is no Video Title Set Cell Address "
                           "Table."}));
}

TEST(AdtOpenTest, HeadingLinesOfTheThreeVariants) {
  Fixture f;
  std::vector<std::uint8_t> table = test::MakeCAdt(2, kFiveCells);
  test::OpenIfo(
      f, "VTS_01_0.IFO",
      test::WithTables(test::MakeVtsImage(), {{kVtsmCAdtSa, table}, {kVtsCAdtSa, table}}));
  EXPECT_TRUE(HasLine(f, "VTSM_C_ADT IFO File: Video Title Set Menu Cell Address Table"));
  EXPECT_TRUE(HasLine(f, "VTS_C_ADT IFO File: Video Title Set Cell Address Table"));

  Fixture g;
  std::vector<std::uint8_t> vmg = test::WithTables(test::MakeVmgImage(), {{216, table}});
  test::OpenIfo(g, "VIDEO_TS.IFO", vmg);
  EXPECT_TRUE(HasLine(g, "VMGM_C_ADT IFO File: VMGM Cell Address Table information"));
}

TEST(AdtOpenTest, OpenReturnsTheEndAddress) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells));
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVtsCAdt, f.ctx->open.file_handle), 67u);
}

std::vector<std::string> FiveCellLines(const std::string& count_line, const std::string& name) {
  return {count_line,
          "End byte address of " + name + " table: 67",
          "For table entry 1 VOB ID 1 Cell ID 1.",
          "Start sector address is 0 and end sector addres is 99.",
          "For table entry 2 VOB ID 1 Cell ID 2.",
          "Start sector address is 100 and end sector addres is 199.",
          "For table entry 3 VOB ID 2 Cell ID 1.",
          "Start sector address is 200 and end sector addres is 299.",
          "For table entry 4 VOB ID 2 Cell ID 2.",
          "Start sector address is 300 and end sector addres is 399.",
          "For table entry 5 VOB ID 2 Cell ID 3.",
          "Start sector address is 400 and end sector addres is 499."};
}

TEST(AdtReportTest, TitleSetTableReportsEveryCellAfterClearingTheList) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells));
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines(), FiveCellLines("Number of VOBs in VTS_VOBS: 2", "VTS_C_ADT"));
}

TEST(AdtReportTest, TitleSetMenuTableCountLineHasAColon) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells), kVtsmCAdtSa);
  ReportTable(*f.ctx, TableId::kVtsmCAdt);
  EXPECT_EQ(f.lines(), FiveCellLines("Number of VOBs in VTSM_VOBS: 2", "VTSM_C_ADT"));
}

TEST(AdtReportTest, VideoManagerCountLineHasNoColon) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO",
                test::WithTables(test::MakeVmgImage(), {{216, test::MakeCAdt(2, kFiveCells)}}));
  ReportTable(*f.ctx, TableId::kVmgmCAdt);
  EXPECT_EQ(f.lines(), FiveCellLines("Number of VOBs in VMGM_VOBS 2", "VMGM_C_ADT"));
}

TEST(AdtReportTest, DetailsOfTheHeadingLineRunTheReport) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells));
  for (std::size_t i = 0; i < f.lines().size(); ++i) {
    if (f.lines()[i].starts_with("VTS_C_ADT")) f.ctx->report.Select(i);
  }
  ShowIfoDetails(*f.ctx);
  ASSERT_EQ(f.lines().size(), 12u);
  EXPECT_EQ(f.lines()[0], "Number of VOBs in VTS_VOBS: 2");
}

TEST(AdtReportTest, EndAddressBelowSevenGivesNoCells) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(1, {{1, 1, 5, 6}}, 3));
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of VOBs in VTS_VOBS: 1",
                                                 "End byte address of VTS_C_ADT table: 3"}));
}

TEST(AdtReportTest, HeaderValuesOfZeroStillGiveTheHeaderLines) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(0, {}, 0));
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of VOBs in VTS_VOBS: 0",
                                                 "End byte address of VTS_C_ADT table: 0"}));
}

TEST(AdtReportTest, HugeEndAddressIsBoundedByTheFileLength) {
  Fixture f;
  // End address 0x7FFFFFFF claims 178956970 cells; the file holds the table in its second
  // sector (2048 bytes after the 8-byte header: ceil(2040 / 12) = 170 cells start in it).
  std::vector<std::uint8_t> table = test::MakeCAdt(1, {{1, 1, 5, 6}}, 0x7FFFFFFF);
  table.resize(2048, 0);
  OpenTitleSetWith(f, table);
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines().size(), 2u + 2u * 170u);
  EXPECT_EQ(f.lines()[1], "End byte address of VTS_C_ADT table: 2147483647");
  EXPECT_EQ(f.lines()[2], "For table entry 1 VOB ID 1 Cell ID 1.");
  EXPECT_EQ(f.lines().back(), "Start sector address is 0 and end sector addres is 0.");
}

TEST(AdtReportTest, CellsBeyondTheEndOfTheFileReadAsZeros) {
  Fixture f;
  // End address 31 says 2 cells; the file ends 4 bytes into the second one.
  std::vector<std::uint8_t> table = test::MakeCAdt(1, {{1, 1, 5, 6}, {1, 2, 7, 8}}, 31);
  table.resize(8 + 12 + 4);
  OpenTitleSetWith(f, table);
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  ASSERT_EQ(f.lines().size(), 6u);
  EXPECT_EQ(f.lines()[4], "For table entry 2 VOB ID 1 Cell ID 2.");
  EXPECT_EQ(f.lines()[5], "Start sector address is 0 and end sector addres is 0.");
}

TEST(AdtReportTest, OnlyTheLow16BitsOfTheEndAddressAreRead) {
  Fixture f;
  // End address 0x00010013: (0x10013 - 7) / 12 = 5462 cells, of which the file holds 2; only
  // 0x13 = 19 bytes are read: cell 1 (bytes 0-11) and bytes 12-18 of cell 2 (VOB ID, cell ID,
  // reserved byte and the first 3 bytes of its first sector).
  std::vector<std::uint8_t> table =
      test::MakeCAdt(1, {{1, 1, 5, 6}, {1, 2, 0x01020304, 8}}, 0x00010013);
  OpenTitleSetWith(f, table);
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  ASSERT_EQ(f.lines().size(), 6u);
  EXPECT_EQ(f.lines()[4], "For table entry 2 VOB ID 1 Cell ID 2.");
  // 01 02 03 read, the fourth byte lies beyond the 19 bytes: 0x01020300 = 16909056.
  EXPECT_EQ(f.lines()[5], "Start sector address is 16909056 and end sector addres is 0.");
}

TEST(AdtReportTest, ReportReadsTheCellsAfreshFromTheFile) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells));
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  std::vector<std::string> first = f.lines();
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines(), first);
  // Change cell 1's last sector in the file (table at sector 1: byte 2048 + 8 + 8).
  test::OverwriteOpenFile(f, 2048 + 16, {0, 0, 0, 42});
  ReportTable(*f.ctx, TableId::kVtsCAdt);
  EXPECT_EQ(f.lines()[3], "Start sector address is 0 and end sector addres is 42.");
}

TEST(AdtDisassembleTest, TwoVobsAndFiveCellsWriteOnlyTwoCells) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(2, kFiveCells));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsCAdt}),
            "[vts_c_adt]\r\nvts_vob_ns=2\r\nvts_c_adt_ea=67\r\n"
            "c_001_vob001_vts_vob_idn=1\r\nc_001_vob001_vts_c_idn=1\r\n"
            "c_001_vob001_vts_cp_sa=0\r\nc_001_vob001_vts_cp_ea=99\r\n"
            "c_002_vob001_vts_vob_idn=1\r\nc_002_vob001_vts_c_idn=2\r\n"
            "c_002_vob001_vts_cp_sa=100\r\nc_002_vob001_vts_cp_ea=199\r\n");
}

TEST(AdtDisassembleTest, KeysAreBuiltFromTheCellsOwnNumbers) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(1, {{7, 12, 1000, 2000}}), kVtsmCAdtSa);
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsmCAdt}),
            "[vtsm_c_adt]\r\nvtsm_vob_ns=1\r\nvtsm_c_adt_ea=19\r\n"
            "c_012_vob007_vts_vob_idn=7\r\nc_012_vob007_vts_c_idn=12\r\n"
            "c_012_vob007_vts_cp_sa=1000\r\nc_012_vob007_vts_cp_ea=2000\r\n");
}

TEST(AdtDisassembleTest, VideoManagerTableUsesItsOwnSectionAndKeys) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO",
                test::WithTables(test::MakeVmgImage(), {{216, test::MakeCAdt(1, {{1, 1, 0, 5}})}}));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgmCAdt}),
            "[vmgm_c_adt]\r\nvmgm_vob_ns=1\r\nvmgm_c_adt_ea=19\r\n"
            "c_001_vob001_vts_vob_idn=1\r\nc_001_vob001_vts_c_idn=1\r\n"
            "c_001_vob001_vts_cp_sa=0\r\nc_001_vob001_vts_cp_ea=5\r\n");
}

TEST(AdtDisassembleTest, HeaderValuesOfZeroStillWriteTheHeaderKeys) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(0, {}, 0));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsCAdt}),
            "[vts_c_adt]\r\nvts_vob_ns=0\r\nvts_c_adt_ea=0\r\n");
}

TEST(AdtDisassembleTest, MoreVobsThanCellsWritesTheCellsThereAre) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeCAdt(3, {{1, 1, 0, 5}}));
  std::string text = test::DisassembleTables(f, {TableId::kVtsCAdt});
  EXPECT_NE(text.find("c_001_vob001_vts_cp_ea=5\r\n"), std::string::npos);
  EXPECT_EQ(text.find("c_000"), std::string::npos);
}

const char* const kTwoVobSource =
    "[vts_c_adt]\nvts_vob_ns=2\nvts_c_adt_ea=0\n"
    "c_001_vob001_vts_vob_idn=1\nc_001_vob001_vts_c_idn=1\n"
    "c_001_vob001_vts_cp_sa=0\nc_001_vob001_vts_cp_ea=99\n"
    "c_002_vob001_vts_vob_idn=1\nc_002_vob001_vts_c_idn=2\n"
    "c_002_vob001_vts_cp_sa=100\nc_002_vob001_vts_cp_ea=199\n"
    "c_001_vob002_vts_vob_idn=2\nc_001_vob002_vts_c_idn=1\n"
    "c_001_vob002_vts_cp_sa=200\nc_001_vob002_vts_cp_ea=65636\n";

TEST(AdtAssembleTest, LoadedCellsAreWrittenBigEndianAndPadded) {
  Fixture f;
  TableSize size;
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsCAdt, kTwoVobSource, &size);
  // 3 cells: 8 + 36 = 44 bytes, end address 43, one sector.
  EXPECT_EQ(size.bytes, 44u);
  EXPECT_EQ(size.sectors, 1u);
  ASSERT_EQ(bytes.size(), 2048u);
  std::vector<std::uint8_t> expected = {
      0, 2, 0, 0, 0, 0, 0, 43,                  // 2 VOBs, end address 43
      0, 1, 1, 0, 0, 0, 0, 0,   0, 0, 0, 99,    // VOB 1 cell 1: 0-99
      0, 1, 2, 0, 0, 0, 0, 100, 0, 0, 0, 199,   // VOB 1 cell 2: 100-199
      0, 2, 1, 0, 0, 0, 0, 200, 0, 1, 0, 0x64,  // VOB 2 cell 1: 200-65636
  };
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 44), expected);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin() + 44, bytes.end()),
            std::vector<std::uint8_t>(2048 - 44, 0));
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AdtAssembleTest, EmitFreesTheCellsSoASecondEmitWritesNothing) {
  Fixture f;
  test::AssembleTable(f, TableId::kVtsCAdt, kTwoVobSource);
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsCAdt).bytes, 0u);
}

TEST(AdtAssembleTest, CellNumbersWithAGapLoadUpToTheGapThenTheNextVob) {
  Fixture f;
  // VOB 1 has cells 1, 2 and 4: cell 3 is missing, so cell 4 is never read; VOB 2 follows.
  std::string source =
      "[vtsm_c_adt]\nvtsm_vob_ns=2\n"
      "c_001_vob001_vts_vob_idn=1\nc_001_vob001_vts_c_idn=1\n"
      "c_001_vob001_vts_cp_sa=1\nc_001_vob001_vts_cp_ea=1\n"
      "c_002_vob001_vts_vob_idn=1\nc_002_vob001_vts_c_idn=2\n"
      "c_002_vob001_vts_cp_sa=2\nc_002_vob001_vts_cp_ea=2\n"
      "c_004_vob001_vts_vob_idn=1\nc_004_vob001_vts_c_idn=4\n"
      "c_004_vob001_vts_cp_sa=4\nc_004_vob001_vts_cp_ea=4\n"
      "c_001_vob002_vts_vob_idn=2\nc_001_vob002_vts_c_idn=1\n"
      "c_001_vob002_vts_cp_sa=5\nc_001_vob002_vts_cp_ea=5\n";
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsmCAdt, source);
  ByteView v(bytes);
  EXPECT_EQ(v.be32(4), 8u + 36u - 1u);  // 3 cells
  EXPECT_EQ(v.u8(8 + 2), 1u);
  EXPECT_EQ(v.u8(20 + 2), 2u);
  EXPECT_EQ(v.be16(32), 2u);  // the third cell is VOB 2's cell 1
  EXPECT_EQ(v.be32(32 + 4), 5u);
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AdtAssembleTest, MissingCountKeyLoadsNothingWithoutAMessage) {
  Fixture f;
  std::string source = std::string(kTwoVobSource).replace(0, 25, "[vts_c_adt]\n");
  ASSERT_EQ(source.find("vts_vob_ns"), std::string::npos);
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsCAdt, source, &size);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_TRUE(bytes.empty());
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AdtAssembleTest, CountWithoutAnyCellIsNothingLoaded) {
  Fixture f;
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVtsCAdt, "[vts_c_adt]\nvts_vob_ns=2\n", &size);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_TRUE(bytes.empty());
}

TEST(AdtAssembleTest, MissingCellFieldIsReportedAndTheNextVobIsTaken) {
  Fixture f;
  // VOB 1 cell 1 lacks its first sector: message, the entry stays with zeros from there on,
  // cell 2 of VOB 1 is skipped and VOB 2 is read.
  std::string source =
      "[vmgm_c_adt]\nvmgm_vob_ns=2\n"
      "c_001_vob001_vts_vob_idn=1\nc_001_vob001_vts_c_idn=1\n"
      "c_001_vob001_vts_cp_ea=9\n"
      "c_002_vob001_vts_vob_idn=1\nc_002_vob001_vts_c_idn=2\n"
      "c_002_vob001_vts_cp_sa=2\nc_002_vob001_vts_cp_ea=2\n"
      "c_001_vob002_vts_vob_idn=2\nc_001_vob002_vts_c_idn=1\n"
      "c_001_vob002_vts_cp_sa=5\nc_001_vob002_vts_cp_ea=5\n";
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVmgmCAdt, source);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vtsm_c_adt: c_001_vob001_vts_cp_sa"}));
  ByteView v(bytes);
  EXPECT_EQ(v.be32(4), 8u + 24u - 1u);  // 2 cells
  EXPECT_EQ(v.be16(8), 1u);
  EXPECT_EQ(v.u8(10), 1u);
  EXPECT_EQ(v.be32(12), 0u);
  EXPECT_EQ(v.be32(16), 0u);  // the last sector is not read after the missing first sector
  EXPECT_EQ(v.be16(20), 2u);
}

TEST(AdtAssembleTest, NoCellOneOfAVobEndsTheWalk) {
  Fixture f;
  // VOB 2 has no cell 1, so VOB 3 is never read.
  std::string source =
      "[vts_c_adt]\nvts_vob_ns=3\n"
      "c_001_vob001_vts_vob_idn=1\nc_001_vob001_vts_c_idn=1\n"
      "c_001_vob001_vts_cp_sa=0\nc_001_vob001_vts_cp_ea=0\n"
      "c_002_vob002_vts_vob_idn=2\nc_002_vob002_vts_c_idn=2\n"
      "c_002_vob002_vts_cp_sa=0\nc_002_vob002_vts_cp_ea=0\n"
      "c_001_vob003_vts_vob_idn=3\nc_001_vob003_vts_c_idn=1\n"
      "c_001_vob003_vts_cp_sa=0\nc_001_vob003_vts_cp_ea=0\n";
  TableSize size;
  test::AssembleTable(f, TableId::kVtsCAdt, source, &size);
  EXPECT_EQ(size.bytes, 20u);  // one cell
}

TEST(AdtAssembleTest, TheHeaderCountComesFromItsOwnKey) {
  Fixture f;
  // 70000 is truncated to 16 bits: 70000 - 65536 = 4464 = 0x1170.
  std::string source = std::string(kTwoVobSource);
  source.replace(source.find("vts_vob_ns=2"), 12, "vts_vob_ns=70000");
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsCAdt, source);
  EXPECT_EQ(ByteView(bytes).be16(0), 4464u);
}

TEST(AdtAssembleTest, ASourceWithoutTheSectionLeavesTheTableOutOfATitleSet) {
  Fixture f;
  test::UseSource(
      f,
      "[vtsi_mat]\nvts_id=DVDVIDEO-VTS\nvern=1.1\nvts_cat=00000000\n" + std::string(kTwoVobSource),
      "VTS_01_0.INI");
  for (TableId id : {TableId::kVtsCAdt, TableId::kVtsmCAdt}) LoadTableSource(*f.ctx, id);
  std::vector<std::uint8_t> bytes = test::AssembleTitleSetInto(f, "VTS_01_0.IFO");
  ByteView v(bytes);
  EXPECT_EQ(v.be32(kVtsmCAdtSa), 0u);  // no vtsm_c_adt section
  EXPECT_EQ(v.be32(kVtsCAdtSa), 1u);   // right after VTSI_MAT
  ASSERT_EQ(bytes.size(), 2u * 2048u);
  EXPECT_EQ(v.be16(2048), 2u);
}

}  // namespace
}  // namespace tarvex
