// The menu PGCI unit tables and their language units, on both instances (title set and video
// manager). Expected values are worked out by hand from the layout: an 8-byte table header,
// 8-byte unit search pointers (language code, zero, existence, offset), units with an 8-byte
// header and 8-byte chain pointers, and the sample chain of ifo_images.cpp (318 bytes).
#include "ifo/pgci_ut.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;
using test::PressDetailsOn;

constexpr std::size_t kVmgmPgciUtSa = 200;

// Two units: unit 1 "en", existence 80, at offset 24 (8 + 2 x 8); unit 2 "fr", existence 40,
// not defined (offset 0). Unit 1: one chain, its end address field 334 (8 + 8 + 318), chain
// category 82000000 at offset 16 of the unit (table offset 40). Table size 40 + 318 = 358,
// end address 357.
std::vector<std::uint8_t> TwoUnitTable() {
  std::vector<std::uint8_t> table(40, 0);
  ByteWriter w(table);
  w.put_be16(0, 2);
  w.put_be32(4, 357);
  w.put_u8(8, 'e');
  w.put_u8(9, 'n');
  w.put_u8(11, 0x80);
  w.put_be32(12, 24);
  w.put_u8(16, 'f');
  w.put_u8(17, 'r');
  w.put_u8(19, 0x40);
  w.put_be32(20, 0);
  w.put_be16(24, 1);
  w.put_be32(28, 334);
  w.put_be32(32, 0x82000000);
  w.put_be32(36, 16);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  table.insert(table.end(), pgc.begin(), pgc.end());
  return table;
}

// One unit "en" (existence 80) at offset 16 with one chain at offset 16 of the unit, in the
// form the assembler writes: unit end address 334 (its size), table end address 349.
std::vector<std::uint8_t> OneUnitTable() {
  std::vector<std::uint8_t> table(32, 0);
  ByteWriter w(table);
  w.put_be16(0, 1);
  w.put_be32(4, 349);
  w.put_u8(8, 'e');
  w.put_u8(9, 'n');
  w.put_u8(11, 0x80);
  w.put_be32(12, 16);
  w.put_be16(16, 1);
  w.put_be32(20, 334);
  w.put_be32(24, 0x82000000);
  w.put_be32(28, 16);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  table.insert(table.end(), pgc.begin(), pgc.end());
  return table;
}

std::vector<std::uint8_t> VtsWith(const std::vector<std::uint8_t>& table) {
  return test::WithTableAt(test::MakeVtsImage(), kVtsmPgciUtSa, 1, table);
}

std::vector<std::uint8_t> VmgWith(const std::vector<std::uint8_t>& table) {
  return test::WithTableAt(test::MakeVmgImage(), kVmgmPgciUtSa, 1, table);
}

void OpenVts(Fixture& f, const std::vector<std::uint8_t>& image) {
  test::OpenIfo(f, "VTS_01_0.IFO", image);
}

void OpenVmg(Fixture& f, const std::vector<std::uint8_t>& image) {
  test::OpenIfo(f, "VIDEO_TS.IFO", image);
}

std::size_t CountLines(const Fixture& f, const std::string& line) {
  return static_cast<std::size_t>(std::count(f.lines().begin(), f.lines().end(), line));
}

// The keys of an all-zero chain (every key present, no sub-tables): it assembles to the
// 236-byte header without any message.
std::string ZeroChainKeys(const std::string& prefix) {
  std::string s =
      prefix + "cnt=00000000\n" + prefix + "pb_tm=00000000\n" + prefix + "uop_ctl=00000000\n";
  for (int n = 1; n <= 8; ++n) s += prefix + Format("ast_ctlt%02d=0000\n", {n});
  for (int n = 1; n <= 32; ++n) s += prefix + Format("spst_ctlt%02d=00000000\n", {n});
  s += prefix + "nv_ctl=0000000000000000\n";
  for (int n = 1; n <= 16; ++n) s += prefix + Format("sp_plt%02d=00000000\n", {n});
  return s;
}

std::string UnitPointerKeys(int units) {
  std::string s = Format("[vtsm_pgci_ut]\nvtsm_lu_ns=%d\n", {units});
  for (int n = 1; n <= units; ++n) {
    s += Format("vtsm_lu_srp%02d_lcd=en\nvtsm_lu_srp%02d_exst=80\n", {n, n});
  }
  return s;
}

// ---- Open ----

TEST(PgciUtOpenTest, TitleSetWithoutTheTableGivesBothAbsenceLines) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  f.ctx->ClearReportList();
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVtsmPgciUt, f.ctx->open.file_handle), 0u);
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVtsmLu, f.ctx->open.file_handle), 0u);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{
                "** VTSM_PGCI_UT File: There is no Video Title Set Menu PGCI Unit Table",
                "** VTSM_LU File: There is no Video Title Set Menu Language Unit Table"}));
}

TEST(PgciUtOpenTest, VideoManagerWithoutTheTableGivesBothAbsenceLines) {
  Fixture f;
  OpenVmg(f, test::MakeVmgImage());
  EXPECT_EQ(CountLines(f, "** VMGM_PGCI_UT File: There is no Video Manager Menu PGCI Unit Table"),
            1u);
  EXPECT_EQ(CountLines(f, "** VMGM_LU File: There is no Video Manager Menu Language Unit Table"),
            1u);
}

TEST(PgciUtOpenTest, OverviewShowsBothHeadingsOfEachInstance) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  EXPECT_TRUE(HasLine(f, "VTSM_PGCI_UT File: Video Title Set Menu PGCI Unit Table"));
  EXPECT_TRUE(HasLine(f, "VTSM_LUI IFO File: Video Title Set Menu Language Unit Table"));
  Fixture g;
  OpenVmg(g, VmgWith(TwoUnitTable()));
  EXPECT_TRUE(HasLine(g, "VMGM_PGCI_UT File: Video Manager Menu PGCI Unit Table"));
  EXPECT_TRUE(HasLine(g, "VMGM_LUI IFO File: Video Manager Menu Language Unit Table"));
}

TEST(PgciUtOpenTest, TableWithoutDefinedUnitsHasNoLanguageUnitTable) {
  std::vector<std::uint8_t> table = TwoUnitTable();
  ByteWriter(table).put_be32(12, 0);  // unit 1 not defined either
  Fixture f;
  OpenVts(f, VtsWith(table));
  EXPECT_TRUE(HasLine(f, "VTSM_PGCI_UT File: Video Title Set Menu PGCI Unit Table"));
  EXPECT_TRUE(HasLine(f, "** VTSM_LU File: There is no Video Title Set Menu Language Unit Table"));
}

// ---- Report ----

TEST(PgciUtReportTest, TitleSetUnitTableLines) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  PressDetailsOn(f, "VTSM_PGCI_UT");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VTSM_PGCI_LUs: 2",
                           "End byte address of VTSM_PGCI_LUs table: 357",
                           "  Video Title Set Menu Language Code 1: en",
                           "  Video Title Set Menu Existence 1: 80",
                           "  Video Title Set Menu Language Start Address 1: 24",
                           "  Video Title Set Menu Language Code 2: fr",
                           "  Video Title Set Menu Existence 2: 40",
                           "  Video Title Set Menu Language Start Address 2: 0",
                       }));
}

TEST(PgciUtReportTest, VideoManagerUnitTableLines) {
  Fixture f;
  OpenVmg(f, VmgWith(TwoUnitTable()));
  PressDetailsOn(f, "VMGM_PGCI_UT");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VMGM_PGCI_LUs: 2",
                           "End byte address of VMGM_PGCI_LUs table: 357",
                           "  Video Manager Menu Language Code 1: en",
                           "  Video Manager Menu Existence 1: 80",
                           "  Video Manager Menu Language Start Address 1: 24",
                           "  Video Manager Menu Language Code 2: fr",
                           "  Video Manager Menu Existence 2: 40",
                           "  Video Manager Menu Language Start Address 2: 0",
                       }));
}

TEST(PgciUtReportTest, TitleSetLanguageUnitLinesAndAnUndefinedUnit) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  PressDetailsOn(f, "VTSM_LUI");
  const std::vector<std::string>& l = f.lines();
  // 4 unit lines, 91 chain lines, and the undefined unit's line.
  ASSERT_EQ(l.size(), 96u);
  EXPECT_EQ(l[0], "LU 1 Number of VTSM_PGCI_SRP: 1");
  EXPECT_EQ(l[1], "LU 1 End byte address of VTSM_LU_EA table: 334");
  EXPECT_EQ(l[2], "  VTSM_PGC Category 1: 82000000");
  EXPECT_EQ(l[3], "  VTSM_PGCI byte address 1: 16");
  EXPECT_EQ(l[4], "    PGC: Number of Programs: 2");
  EXPECT_EQ(l[6], "    PGC: Play Back Time: 01:23:45.19");
  EXPECT_EQ(l[94], "        VOB ID number 1 of this Cell 2");
  EXPECT_EQ(l[95], "Language Unit 2 is not define.");
}

TEST(PgciUtReportTest, VideoManagerCountsItsUnitsOnceAtTheTop) {
  std::vector<std::uint8_t> table = TwoUnitTable();
  ByteWriter(table).put_be32(20, 24);  // unit 2 is the same unit as unit 1
  Fixture f;
  OpenVmg(f, VmgWith(table));
  PressDetailsOn(f, "VMGM_LUI");
  const std::vector<std::string>& l = f.lines();
  // The total line, then twice 4 unit lines and 91 chain lines.
  ASSERT_EQ(l.size(), 1u + 2u * 95u);
  EXPECT_EQ(l[0], "There are 2 LU PGCs");
  EXPECT_EQ(CountLines(f, "There are 2 LU PGCs"), 1u);
  EXPECT_EQ(l[1], "LU 1 Number of VMGM_PGCI_SRP: 1");
  EXPECT_EQ(l[2], "LU 1 End byte address of VMGM_LU_EA table: 334");
  EXPECT_EQ(l[3], "  VMGM_PGC Category 1: 82000000");
  EXPECT_EQ(l[4], "  VMGM_PGCI byte address 1: 16");
  EXPECT_EQ(l[96], "LU 2 Number of VMGM_PGCI_SRP: 1");
}

TEST(PgciUtReportTest, OnlyTheFirst4096BytesOfAUnitAreRead) {
  // The chain lies at offset 3900 of the unit: its header runs past the unit's 4096-byte
  // block, so the sub-table offsets (0xE4 on, unit bytes 4128 on) read as 0 although the file
  // holds them.
  std::vector<std::uint8_t> table(16 + 3900, 0);
  ByteWriter w(table);
  w.put_be16(0, 1);
  w.put_be32(4, 16 + 3900 + 318 - 1);
  w.put_u8(8, 'e');
  w.put_u8(9, 'n');
  w.put_be32(12, 16);
  w.put_be16(16, 1);
  w.put_be32(20, 3900 + 318);
  w.put_be32(24, 0x82000000);
  w.put_be32(28, 3900);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  table.insert(table.end(), pgc.begin(), pgc.end());
  Fixture f;
  OpenVts(f, VtsWith(table));
  PressDetailsOn(f, "VTSM_LUI");
  EXPECT_TRUE(HasLine(f, "    PGC: Number of Programs: 2"));
  EXPECT_TRUE(HasLine(f, "    PGC: Memory offset of PGC Command Table: 0"));
  EXPECT_TRUE(HasLine(f, "        There is no PGC Command Table"));
  EXPECT_TRUE(HasLine(f, "          This is an ERROR as there are 2 cells"));
  ShowIfoDetails(*f.ctx);
  std::string text = test::DisassembleTables(f, {TableId::kVtsmLu});
  EXPECT_NE(text.find("vtsm_pgc_cmdt_sa=0\r\n"), std::string::npos);
  EXPECT_NE(text.find("vtsm_pgc_c_posit_sa=0\r\n"), std::string::npos);
}

TEST(PgciUtReportTest, ZeroLanguageCodeByteEndsTheLineAndTheValue) {
  std::vector<std::uint8_t> table = TwoUnitTable();
  ByteWriter(table).put_u8(8, 0);   // unit 1: 0, 'n'
  ByteWriter(table).put_u8(17, 0);  // unit 2: 'f', 0
  Fixture f;
  OpenVts(f, VtsWith(table));
  PressDetailsOn(f, "VTSM_PGCI_UT");
  EXPECT_EQ(f.lines()[2], "  Video Title Set Menu Language Code 1: ");
  EXPECT_EQ(f.lines()[5], "  Video Title Set Menu Language Code 2: f");
  std::string text = test::DisassembleTables(f, {TableId::kVtsmPgciUt});
  EXPECT_NE(text.find("vtsm_lu_srp01_lcd=\r\n"), std::string::npos);
  EXPECT_NE(text.find("vtsm_lu_srp02_lcd=f\r\n"), std::string::npos);
}

TEST(PgciUtReportTest, ReportingTwiceGivesTheSameLines) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  ReportTable(*f.ctx, TableId::kVtsmLu);
  std::vector<std::string> first = f.lines();
  ReportTable(*f.ctx, TableId::kVtsmLu);
  EXPECT_EQ(f.lines(), first);
  EXPECT_EQ(CountLines(f, "        There are 1 Pre Commands"), 1u);
  std::string text = test::DisassembleTables(f, {TableId::kVtsmLu});
  EXPECT_NE(text.find("vtsm_pgc_cmdt_pre_ns=1\r\nvtsm_pgc_cmdt_post_ns=1\r\n"), std::string::npos);
}

TEST(PgciUtReportTest, TableWithZeroHeaderStillGetsDetailsAndDisassembly) {
  Fixture f;
  OpenVts(f, VtsWith(std::vector<std::uint8_t>(8, 0)));
  PressDetailsOn(f, "VTSM_PGCI_UT");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of VTSM_PGCI_LUs: 0",
                                                 "End byte address of VTSM_PGCI_LUs table: 0"}));
  ShowIfoDetails(*f.ctx);
  EXPECT_TRUE(HasLine(f, "** VTSM_LU File: There is no Video Title Set Menu Language Unit Table"));
  std::string source = test::DisassembleIfoTo(f, "VTS_01_0.INI");
  std::string text = test::ReadFileText(source);
  EXPECT_NE(text.find("[vtsm_pgci_ut]\r\nvtsm_lu_ns=0\r\nvtsm_pgci_lu_ea=0\r\n"),
            std::string::npos);
  EXPECT_EQ(text.find("[vtsm_lu]"), std::string::npos);
}

TEST(PgciUtReportTest, UnitPointersBeyondTheFileReadAsZeros) {
  // Count and end address 65535, but the file ends after two unit pointers. Every unit the
  // header counts is listed: unit 1 lies beyond the end of the file and reads as zeros; the
  // pointers of units 2 on are 0 or lie beyond the end, so those units are not defined.
  std::vector<std::uint8_t> table(24, 0);
  ByteWriter w(table);
  w.put_be16(0, 0xFFFF);
  w.put_be32(4, 0xFFFF);
  w.put_be32(12, 24);
  std::vector<std::uint8_t> image = VtsWith(table);
  image.resize(2048 + 24);
  Fixture f;
  OpenVts(f, image);
  PressDetailsOn(f, "VTSM_PGCI_UT");
  ASSERT_EQ(f.lines().size(), 2u + 65535u * 3u);
  EXPECT_EQ(f.lines()[0], "Number of VTSM_PGCI_LUs: 65535");
  EXPECT_EQ(f.lines()[4], "  Video Title Set Menu Language Start Address 1: 24");
  EXPECT_EQ(f.lines().back(), "  Video Title Set Menu Language Start Address 65535: 0");
  ShowIfoDetails(*f.ctx);
  PressDetailsOn(f, "VTSM_LUI");
  ASSERT_EQ(f.lines().size(), 2u + 65534u);
  EXPECT_EQ(f.lines()[0], "LU 1 Number of VTSM_PGCI_SRP: 0");
  EXPECT_EQ(f.lines()[1], "LU 1 End byte address of VTSM_LU_EA table: 0");
  EXPECT_EQ(f.lines()[2], "Language Unit 2 is not define.");
  EXPECT_EQ(f.lines().back(), "Language Unit 65535 is not define.");
}

// A truncated table: one unit ("en", existence 80) at offset 16 whose header says 2 chains and
// end address 256, and the file ends right after that header. Both chains are listed: their
// search pointers lie beyond the end of the file and read 0, so each chain is read at offset 0
// of the unit block, whose bytes are the unit header (00 02 00 00 00 00 01 00) and zeros.
std::vector<std::uint8_t> TruncatedUnit() {
  std::vector<std::uint8_t> table(24, 0);
  ByteWriter w(table);
  w.put_be16(0, 1);
  w.put_be32(4, 1000);
  w.put_u8(8, 'e');
  w.put_u8(9, 'n');
  w.put_u8(11, 0x80);
  w.put_be32(12, 16);
  w.put_be16(16, 2);
  w.put_be32(20, 256);
  std::vector<std::uint8_t> image = VtsWith(table);
  image.resize(2048 + 24);
  return image;
}

TEST(PgciUtReportTest, TruncatedFileListsEveryChainOfAUnit) {
  Fixture f;
  OpenVts(f, TruncatedUnit());
  PressDetailsOn(f, "VTSM_LUI");
  // 2 unit lines, then per chain 2 pointer lines and the 74 lines of a chain without programs,
  // cells or sub-tables.
  ASSERT_EQ(f.lines().size(), 2u + 2u * (2u + 74u));
  EXPECT_EQ(f.lines()[0], "LU 1 Number of VTSM_PGCI_SRP: 2");
  EXPECT_EQ(f.lines()[1], "LU 1 End byte address of VTSM_LU_EA table: 256");
  EXPECT_EQ(f.lines()[2], "  VTSM_PGC Category 1: 0");
  EXPECT_EQ(f.lines()[3], "  VTSM_PGCI byte address 1: 0");
  // Bytes 4-7 of the chain, 00 00 01 00, are its playback time.
  EXPECT_EQ(f.lines()[6], "    PGC: Play Back Time: 00:00:01.00");
  EXPECT_EQ(f.lines()[2 + 76], "  VTSM_PGC Category 2: 0");
  EXPECT_EQ(f.lines()[2 + 76 + 1], "  VTSM_PGCI byte address 2: 0");
}

TEST(PgciUtDisassembleTest, TruncatedFileDisassemblesAndAssemblesEveryChain) {
  Fixture f;
  OpenVts(f, TruncatedUnit());
  std::string text = test::DisassembleTables(f, {TableId::kVtsmPgciUt, TableId::kVtsmLu});
  EXPECT_NE(text.find("[vtsm_lu]\r\nvtsm_lui01_pgci_srp_ns=2\r\nvtsm_lui01_lu_ea=256\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("[vtsm_lu01_02]\r\nvtsm_lui_pgc_cat=00000000\r\n"), std::string::npos);
  // Assembled back: two chains of a bare 236-byte header each. The unit: 8 + 2 x 8 + 2 x 236
  // = 496 bytes (its end address field holds that size); the table: 8 + 8 + 496 = 512 bytes,
  // end address 511; chain offsets 24 and 260 within the unit.
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsmPgciUt);
  EXPECT_EQ(t.bytes, 512u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 1u);
  EXPECT_EQ(v.be32(4), 511u);
  EXPECT_EQ(v.be32(12), 16u);
  EXPECT_EQ(v.be16(16), 2u);
  EXPECT_EQ(v.be32(20), 496u);
  EXPECT_EQ(v.be32(28), 24u);
  EXPECT_EQ(v.be32(36), 260u);
  // The playback time read from the unit header comes back in chain 1.
  EXPECT_EQ(v.be32(16 + 24 + 4), 0x00000100u);
}

TEST(PgciUtReportTest, OverlappingUnitsCannotMultiplyTheWork) {
  // 200 unit pointers all lead to one unit (table offset 1608) that claims 65535 chains, all
  // at offset 0. One pass reads at most as many chains as the file (3 sectors, 6144 bytes)
  // holds 8-byte pointers: 6144 / 8 = 768 chains in all, all of them in the first unit.
  std::vector<std::uint8_t> table(1608 + 8, 0);
  ByteWriter w(table);
  w.put_be16(0, 200);
  w.put_be32(4, 0xFFFF);
  for (std::size_t n = 0; n < 200; ++n) w.put_be32(8 + 8 * n + 4, 1608);
  w.put_be16(1608, 0xFFFF);
  std::vector<std::uint8_t> image = VtsWith(table);
  image.resize(3 * 2048, 0);
  Fixture f;
  OpenVts(f, image);
  PressDetailsOn(f, "VTSM_LUI");
  // 200 x 2 unit lines; 768 chains of 2 pointer lines and 74 lines of a chain whose
  // counts and offsets are all 0.
  EXPECT_EQ(f.lines().size(), 400u + 768u * 76u);
}

// ---- Disassembly ----

TEST(PgciUtDisassembleTest, UnitTableAndLanguageUnitSections) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  std::string text = test::DisassembleTables(f, {TableId::kVtsmPgciUt, TableId::kVtsmLu});
  EXPECT_TRUE(text.starts_with(
      "[vtsm_pgci_ut]\r\nvtsm_lu_ns=2\r\nvtsm_pgci_lu_ea=357\r\n"
      "vtsm_lu_srp01_lcd=en\r\nvtsm_lu_srp01_exst=80\r\nvtsm_lu_srp01_lu_sa=24\r\n"
      "vtsm_lu_srp02_lcd=fr\r\nvtsm_lu_srp02_exst=40\r\nvtsm_lu_srp02_lu_sa=0\r\n\r\n"
      "[vtsm_lu]\r\nvtsm_lui01_pgci_srp_ns=1\r\nvtsm_lui01_lu_ea=334\r\n\r\n"
      "[vtsm_lu01_01]\r\nvtsm_lui_pgc_cat=82000000\r\nvtsm_lui_pgc_pgci_sa=16\r\n"
      "vtsm_pgc_cnt=00000202\r\n"))
      << text;
  EXPECT_EQ(text.find("vtsm_lui02"), std::string::npos);  // the undefined unit is skipped
  EXPECT_NE(text.find("vtsm_pgc_c_posit_cell002_cellid=2\r\n"), std::string::npos);
}

TEST(PgciUtDisassembleTest, VideoManagerKeysAndPrefix) {
  Fixture f;
  OpenVmg(f, VmgWith(OneUnitTable()));
  std::string text = test::DisassembleTables(f, {TableId::kVmgmPgciUt, TableId::kVmgmLu});
  EXPECT_TRUE(text.starts_with(
      "[vmgm_pgci_ut]\r\nvmgm_lu_ns=1\r\nvmgm_pgci_lu_ea=349\r\n"
      "vmgm_lu_srp01_lcd=en\r\nvmgm_lu_srp01_exst=80\r\nvmgm_lu_srp01_lu_sa=16\r\n\r\n"
      "[vmgm_lu]\r\nvmgm_lui01_pgci_srp_ns=1\r\nvmgm_lui01_lu_ea=334\r\n\r\n"
      "[vmgm_lu01_01]\r\nvmgm_lui_pgc_cat=82000000\r\nvmgm_lui_pgc_pgci_sa=16\r\n"
      "vmgm_pgc_cnt=00000202\r\n"))
      << text;
}

// ---- Load, measure, emit ----

TEST(PgciUtAssembleTest, OneUnitWithChainsOf200And300Bytes) {
  Fixture f;
  PgciUtState& s = f.ctx->ifo.vtsm_pgci_ut;
  s.units.push_back({{'e', 'n'},
                     0x80,
                     {{0x82000000, std::vector<std::uint8_t>(200, 0xAA)},
                      {0x83000000, std::vector<std::uint8_t>(300, 0xBB)}}});
  // 8 + 16 + (8 + 200) + (8 + 300) = 540 bytes: end address 539, one sector.
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsmPgciUt);
  EXPECT_EQ(size.bytes, 540u);
  EXPECT_EQ(size.sectors, 1u);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVtsmPgciUt);
  ASSERT_EQ(out.size(), 2048u);
  ByteView v(out);
  EXPECT_EQ(v.be16(0), 1u);
  EXPECT_EQ(v.be32(4), 539u);
  EXPECT_EQ(v.be32(8), 0x656E0080u);  // "en", 0, existence 80
  EXPECT_EQ(v.be32(12), 16u);         // unit offset
  EXPECT_EQ(v.be16(16), 2u);
  EXPECT_EQ(v.be32(20), 524u);  // the unit's size: 8 + 16 + 500
  EXPECT_EQ(v.be32(24), 0x82000000u);
  EXPECT_EQ(v.be32(28), 24u);  // chain offsets within the unit
  EXPECT_EQ(v.be32(32), 0x83000000u);
  EXPECT_EQ(v.be32(36), 224u);
  EXPECT_EQ(v.u8(40), 0xAA);
  EXPECT_EQ(v.u8(239), 0xAA);
  EXPECT_EQ(v.u8(240), 0xBB);
  EXPECT_EQ(v.u8(539), 0xBB);
  EXPECT_EQ(v.u8(540), 0);
  EXPECT_TRUE(s.units.empty());
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsmPgciUt).bytes, 0u);
}

TEST(PgciUtAssembleTest, DisassembledTableAssemblesBackToTheSameBytes) {
  Fixture f;
  OpenVts(f, VtsWith(OneUnitTable()));
  std::string text =
      test::WithoutCr(test::DisassembleTables(f, {TableId::kVtsmPgciUt, TableId::kVtsmLu}));
  test::LoadSource(f, TableId::kVtsmPgciUt, text);
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsmPgciUt).bytes, 350u);
  std::vector<std::uint8_t> expected = OneUnitTable();
  expected.resize(2048, 0);
  EXPECT_EQ(test::EmitInto(f, TableId::kVtsmPgciUt), expected);
  EXPECT_TRUE(f.ui.Messages().empty());
}

// Loading, measuring and writing a table keep apart from the table of the open IFO: its
// details afterwards still show the file's header (2 units, end address 357), not the
// source's one unit.
TEST(PgciUtAssembleTest, AssemblyLeavesTheOpenTableAlone) {
  Fixture f;
  OpenVts(f, VtsWith(TwoUnitTable()));
  test::UseSource(f,
                  "[vtsm_pgci_ut]\nvtsm_lu_ns=1\nvtsm_lu_srp01_lcd=de\nvtsm_lu_srp01_exst=80\n"
                  "[vtsm_lu]\nvtsm_lui01_pgci_srp_ns=0\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsmPgciUt);
  EXPECT_EQ(ByteView(t.file).be16(0), 1u);
  ReportTable(*f.ctx, TableId::kVtsmPgciUt);
  ASSERT_GE(f.lines().size(), 2u);
  EXPECT_EQ(f.lines()[0], "Number of VTSM_PGCI_LUs: 2");
  EXPECT_EQ(f.lines()[1], "End byte address of VTSM_PGCI_LUs table: 357");
}

TEST(PgciUtAssembleTest, MissingExistenceOfUnit2StopsTheLoadWithNothingLoaded) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt,
                   "[vtsm_pgci_ut]\nvtsm_lu_ns=2\nvtsm_lu_srp01_lcd=en\nvtsm_lu_srp01_exst=80\n"
                   "vtsm_lu_srp02_lcd=fr\n[vtsm_lu]\nvtsm_lui01_pgci_srp_ns=0\n"
                   "vtsm_lui02_pgci_srp_ns=0\n");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Illegal source format!: VTSM_PGCI_UT is missing an "
                                      "vtsm_lu_srpnn_exst statuement"}));
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsmPgciUt).bytes, 0u);
  EXPECT_TRUE(test::EmitInto(f, TableId::kVtsmPgciUt).empty());
}

TEST(PgciUtAssembleTest, MissingLanguageCodeMessageOfEachInstance) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt, "[vtsm_pgci_ut]\nvtsm_lu_ns=1\n");
  test::LoadSource(f, TableId::kVmgmPgciUt, "[vmgm_pgci_ut]\nvmgm_lu_ns=1\n", "video_ts.ini");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{
                "Illegal source format!: VTSM_PGCI_UT is missing AN vtsm_lu_srpnn_lcd statuement",
                "Illegal source format!: VMGM_PGCI_UT is missing AN vmgm_lu_srpnn_lcd "
                "statuement"}));
}

TEST(PgciUtAssembleTest, MissingChainCountStopsTheLoadAndKeepsTheUnitsBeforeIt) {
  Fixture f;
  test::LoadSource(f, TableId::kVmgmPgciUt,
                   "[vmgm_pgci_ut]\nvmgm_lu_ns=2\nvmgm_lu_srp01_lcd=en\nvmgm_lu_srp01_exst=80\n"
                   "vmgm_lu_srp02_lcd=fr\nvmgm_lu_srp02_exst=40\n[vmgm_lu]\n"
                   "vmgm_lui01_pgci_srp_ns=0\n");
  EXPECT_EQ(
      f.ui.Messages(),
      (std::vector<std::string>{
          "Illegal source format!: VMGM_LU: is missing the vmgm_lui02_pgci_srp_ns statement"}));
  // Unit 1 alone: 8 + 8 + 8 = 24 bytes.
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVmgmPgciUt).bytes, 24u);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVmgmPgciUt);
  EXPECT_EQ(ByteView(out).be16(0), 1u);
  EXPECT_EQ(ByteView(out).be32(20), 8u);  // the unit's size
}

TEST(PgciUtAssembleTest, MissingCategoryStopsTheLoad) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt,
                   UnitPointerKeys(1) + "[vtsm_lu]\nvtsm_lui01_pgci_srp_ns=1\n[vtsm_lu01_01]\n" +
                       ZeroChainKeys("vtsm_pgc_"));
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"Illegal source format!: VTSM_LU: is "
                                                       "missing the vtsm_lui_pgc_cat statement"}));
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsmPgciUt).bytes, 0u);
}

TEST(PgciUtAssembleTest, MissingUnitCountLoadsNothingWithoutAMessage) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt, "[vtsm_pgci_ut]\nvtsm_pgci_lu_ea=7\n");
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsmPgciUt).sectors, 0u);
}

TEST(PgciUtAssembleTest, TableWithoutUnitsIsNothingLoaded) {
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt, "[vtsm_pgci_ut]\nvtsm_lu_ns=0\nvtsm_pgci_lu_ea=7\n");
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsmPgciUt);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(test::EmitInto(f, TableId::kVtsmPgciUt).empty());
}

TEST(PgciUtAssembleTest, MoreThan16UnitsAndMoreThan99ChainsAreLoaded) {
  std::string text = UnitPointerKeys(17) + "[vtsm_lu]\nvtsm_lui01_pgci_srp_ns=100\n";
  for (int n = 2; n <= 17; ++n) text += Format("vtsm_lui%02d_pgci_srp_ns=1\n", {n});
  for (int p = 1; p <= 100; ++p) {
    text +=
        Format("[vtsm_lu01_%02d]\nvtsm_lui_pgc_cat=%08x\n", {p, p}) + ZeroChainKeys("vtsm_pgc_");
  }
  for (int n = 2; n <= 17; ++n) {
    text +=
        Format("[vtsm_lu%02d_01]\nvtsm_lui_pgc_cat=00000000\n", {n}) + ZeroChainKeys("vtsm_pgc_");
  }
  Fixture f;
  test::LoadSource(f, TableId::kVtsmPgciUt, text);
  EXPECT_TRUE(f.ui.Messages().empty());
  // Unit 1: 8 + 100 x (8 + 236) = 24408; units 2-17: 8 + 8 + 236 = 252 each.
  // Table: 8 + 17 x 8 + 24408 + 16 x 252 = 28584 bytes, 14 sectors.
  TableSize size = MeasureTable(*f.ctx, TableId::kVtsmPgciUt);
  EXPECT_EQ(size.bytes, 28584u);
  EXPECT_EQ(size.sectors, 14u);
  std::vector<std::uint8_t> out = test::EmitInto(f, TableId::kVtsmPgciUt);
  ASSERT_EQ(out.size(), 14u * 2048);
  ByteView v(out);
  EXPECT_EQ(v.be16(0), 17u);
  EXPECT_EQ(v.be32(8 + 16 * 8 + 4), 28332u);        // unit 17: 144 + 24408 + 15 x 252
  EXPECT_EQ(v.be32(144 + 4), 24408u);               // unit 1's size
  EXPECT_EQ(v.be32(144 + 8 + 99 * 8), 100u);        // chain 100's category
  EXPECT_EQ(v.be32(144 + 8 + 99 * 8 + 4), 24172u);  // 8 + 800 + 99 x 236
}

// ---- The language-unit module's load and the drivers ----

TEST(PgciUtAssembleTest, LanguageUnitLoadIsTheEmptyStep) {
  ASSERT_NE(FindTableModule(TableId::kVtsmLu), nullptr);
  ASSERT_NE(FindTableModule(TableId::kVmgmLu), nullptr);
  EXPECT_EQ(FindTableModule(TableId::kVtsmLu)->LoadTableSource, nullptr);
  EXPECT_EQ(FindTableModule(TableId::kVmgmLu)->LoadTableSource, nullptr);
  EXPECT_EQ(FindTableModule(TableId::kVtsmLu)->MeasureTable, nullptr);
  EXPECT_EQ(FindTableModule(TableId::kVtsmLu)->EmitTable, nullptr);
}

TEST(PgciUtAssembleTest, TitleSetAssemblyShowsALoadMessageOnce) {
  Fixture f;
  OpenVts(f, VtsWith(OneUnitTable()));
  std::string text = test::WithoutCr(test::ReadFileText(test::DisassembleIfoTo(f, "VTS_01_0.INI")));
  std::size_t at = text.find("vtsm_lu_srp01_lcd=en\n");
  ASSERT_NE(at, std::string::npos);
  text.erase(at, 21);
  test::WriteText(f.dir.file("vts_01_0_edit.ini"), text);
  std::vector<std::uint8_t> out =
      test::AssembleBatchInto(f, f.dir.file("vts_01_0_edit.ini"), "VTS_01_0.IFO");
  // (The source has no title set PGCI table, whose load reports its missing count.)
  std::vector<std::string> messages = f.ui.Messages();
  EXPECT_EQ(std::count(messages.begin(), messages.end(),
                       "Illegal source format!: VTSM_PGCI_UT is missing AN vtsm_lu_srpnn_lcd "
                       "statuement"),
            1);
  EXPECT_EQ(ByteView(out).be32(kVtsmPgciUtSa), 0u);
}

TEST(PgciUtRoundTripTest, VideoManagerWithAMenuUnitTableAssemblesBackToTheSameTable) {
  std::vector<std::uint8_t> image = VmgWith(OneUnitTable());
  Fixture f;
  OpenVmg(f, image);
  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VIDEO_TS.IFO");
  // The image has neither an attribute table nor a title search pointer table, so their
  // counts are missing from the source.
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_atrt!: vts_ns",
                                      "Statement missing in vmg_ptt_srpt!: vts_ttu_ns"}));
  ASSERT_EQ(out.size(), 2u * 2048);
  EXPECT_EQ(ByteView(out).be32(kVmgmPgciUtSa), 1u);
  EXPECT_TRUE(std::equal(image.begin() + 2048, image.end(), out.begin() + 2048));
}

}  // namespace
}  // namespace tarvex
