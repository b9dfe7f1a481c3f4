// The time map table of a title set (VTS_TMAPTI, sections "vts_tmapt" and "vts_tmapti").
// Every expected value below is worked out by hand from the table layout: an 8-byte header,
// one 4-byte offset per map (from the table start), and per map a 4-byte head (time unit, 0,
// entry count) and 4-byte entries (bit 31 discontinuity, bits 30-0 sector address).
#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/table.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

// Map 1 at 16: time unit 1, entries 100, 200 (discontinuity), 300; map 2 at 32: time unit 2,
// entry 1000 (discontinuity). 8 + 8 + 16 + 8 = 40 bytes, end address 39.
std::vector<std::uint8_t> TwoMaps() {
  return {0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x27, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00,
          0x00, 0x20, 0x01, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x64, 0x80, 0x00, 0x00, 0xC8,
          0x00, 0x00, 0x01, 0x2C, 0x02, 0x00, 0x00, 0x01, 0x80, 0x00, 0x03, 0xE8};
}

void OpenVts(Fixture& f, const std::vector<std::uint8_t>& table) {
  test::OpenIfo(f, "VTS_01_0.IFO", test::WithTableAt(test::MakeVtsImage(), kVtsTmaptSa, 1, table));
}

const std::vector<std::string> kTwoMapsReport = {
    "Number of VTS_TMAPS: 2",
    "End byte address of VTS_TMAPT_EA table: 39",
    "  Time map 1 byte start address 16.",
    "  Time map 1 contains 3 entries using time unit of 1 seconds.",
    "    Entry 1 at sector address 100",
    "    Discontinuity Entry 2 at sector address 200",
    "    Entry 3 at sector address 300",
    "  Time map 2 byte start address 32.",
    "  Time map 2 contains 1 entries using time unit of 2 seconds.",
    "    Discontinuity Entry 1 at sector address 1000",
};

const char* const kTwoMapsSource =
    "[vts_tmapt]\nvts_tmap_ns=2\nvts_tmapt_ea=39\n"
    "[vts_tmapti]\nvts_tmap01_sa=16.\nvts_tmap01_tmu=1\nvts_tmap01_map_en_ns=3\n"
    "vts_tmap01_entry01_discon=0\nvts_tmap01_entry01_address=100\n"
    "vts_tmap01_entry02_discon=1\nvts_tmap01_entry02_address=200\n"
    "vts_tmap01_entry03_discon=0\nvts_tmap01_entry03_address=300\n"
    "vts_tmap02_sa=32.\nvts_tmap02_tmu=2\nvts_tmap02_map_en_ns=1\n"
    "vts_tmap02_entry01_discon=1\nvts_tmap02_entry01_address=1000\n";

std::vector<std::uint8_t> Padded(std::vector<std::uint8_t> bytes) {
  bytes.resize(2048, 0);
  return bytes;
}

TEST(TmaptOpenTest, AbsentTableGivesOneLineWithoutFullStop) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  // After the information table's three lines and the absence lines of the part-of-title,
  // title chain, menu unit and language unit tables.
  ASSERT_GT(f.lines().size(), 7u);
  EXPECT_EQ(f.lines()[7], "** VTS_TMAPTI IFO File: There is no Video Title Set Time Map Table");
}

TEST(TmaptOpenTest, HeadingLine) {
  Fixture f;
  OpenVts(f, TwoMaps());
  ASSERT_GT(f.lines().size(), 7u);
  EXPECT_EQ(f.lines()[7], "VTS_TMAPTI IFO File: Video title set Time Map Table");
}

TEST(TmaptReportTest, MapsAndEntriesWithDiscontinuities) {
  Fixture f;
  OpenVts(f, TwoMaps());
  EXPECT_EQ(test::DetailsOf(f, "VTS_TMAPT"), kTwoMapsReport);
}

TEST(TmaptDisassembleTest, HeaderAndMapSections) {
  Fixture f;
  OpenVts(f, TwoMaps());
  f.ctx->convert.source_path = f.dir.file("VTS_01_0.INI");
  DisassembleTable(*f.ctx, TableId::kVtsTmapt);
  f.ctx->profiles.Flush();
  std::string text = test::ReadFileText(f.ctx->convert.source_path);
  EXPECT_EQ(test::SectionLines(text, "vts_tmapt"),
            (std::vector<std::string>{"vts_tmap_ns=2", "vts_tmapt_ea=39"}));
  EXPECT_EQ(test::SectionLines(text, "vts_tmapti"),
            test::SectionLines(kTwoMapsSource, "vts_tmapti"));
}

TEST(TmaptAssembleTest, SourceGivesTheTableBack) {
  Fixture f;
  test::UseSource(f, kTwoMapsSource);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(t.bytes, 40u);
  EXPECT_EQ(t.sectors, 1u);
  EXPECT_EQ(t.file, Padded(TwoMaps()));
}

TEST(TmaptAssembleTest, ThreeAndFiveEntriesGiveOffsets16And32EndAddress55) {
  Fixture f;
  std::string source = "[vts_tmapt]\nvts_tmap_ns=2\n[vts_tmapti]\n";
  for (int n = 1; n <= 2; ++n) {
    int entries = n == 1 ? 3 : 5;
    source += Format("vts_tmap%02d_tmu=1\nvts_tmap%02d_map_en_ns=%d\n", {n, n, entries});
    for (int e = 1; e <= entries; ++e) {
      source += Format("vts_tmap%02d_entry%02d_discon=0\nvts_tmap%02d_entry%02d_address=%d\n",
                       {n, e, n, e, e});
    }
  }
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(t.bytes, 56u);  // 8 + 2 x 4 + (4 + 12) + (4 + 20)
  ByteView v(t.file);
  EXPECT_EQ(v.be32(4), 55u);
  EXPECT_EQ(v.be32(8), 16u);
  EXPECT_EQ(v.be32(12), 32u);
  EXPECT_EQ(v.be16(32 + 2), 5u);
}

TEST(TmaptAssembleTest, DiscontinuityOneAndAddress1000Is800003E8) {
  Fixture f;
  test::UseSource(f,
                  "[vts_tmapt]\nvts_tmap_ns=1\n[vts_tmapti]\nvts_tmap01_tmu=1\n"
                  "vts_tmap01_map_en_ns=1\nvts_tmap01_entry01_discon=1\n"
                  "vts_tmap01_entry01_address=1000\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(ByteView(t.file).be32(16), 0x800003E8u);
}

TEST(TmaptAssembleTest, OnlyAFirstCharacterOneSetsTheFlag) {
  Fixture f;
  std::string source =
      "[vts_tmapt]\nvts_tmap_ns=1\n[vts_tmapti]\nvts_tmap01_tmu=1\nvts_tmap01_map_en_ns=4\n";
  const char* values[] = {"10", "yes", "", "01"};
  for (int e = 1; e <= 4; ++e) {
    source += Format("vts_tmap01_entry%02d_discon=%s\nvts_tmap01_entry%02d_address=%d\n",
                     {e, values[e - 1], e, e});
  }
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  ByteView v(t.file);
  EXPECT_EQ(v.be32(16), 0x80000001u);
  EXPECT_EQ(v.be32(20), 2u);
  EXPECT_EQ(v.be32(24), 3u);
  EXPECT_EQ(v.be32(28), 4u);
}

TEST(TmaptAssembleTest, MissingCountLoadsNothingSilently) {
  Fixture f;
  test::UseSource(f, "[vts_tmapti]\nvts_tmap01_tmu=1\nvts_tmap01_map_en_ns=0\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_TRUE(t.file.empty());
}

TEST(TmaptAssembleTest, MissingCountGivesStartSectorZeroInTheTitleSet) {
  Fixture f;
  f.OpenBytes("SRC.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  f.ctx->convert.source_path = f.dir.file("VTS_01_0.INI");
  DisassembleTitleSet(*f.ctx);
  f.ctx->profiles.Flush();
  test::WriteText(f.ctx->convert.source_path,
                  test::ReadFileText(f.ctx->convert.source_path) +
                      "\n[vts_tmapti]\nvts_tmap01_tmu=1\nvts_tmap01_map_en_ns=0\n");
  LoadTableSource(*f.ctx, TableId::kVtsTmapt);
  std::vector<std::uint8_t> bytes = test::AssembleTitleSetInto(f, "VTS_01_0.IFO");
  EXPECT_EQ(bytes.size(), 2048u);
  EXPECT_EQ(ByteView(bytes).be32(kVtsTmaptSa), 0u);
}

TEST(TmaptAssembleTest, MissingTimeUnitStopsAndKeepsTheMapsRead) {
  Fixture f;
  std::string source = kTwoMapsSource;
  source.erase(source.find("vts_tmap02_tmu=2\n"), 17);
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_tmapti: vts_tmap02_tmu"}));
  // One map: 8 + 4 + 16 = 28 bytes; the header count stays 2 as read.
  EXPECT_EQ(t.bytes, 28u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 2u);
  EXPECT_EQ(v.be32(4), 27u);
  EXPECT_EQ(v.be32(8), 12u);
  EXPECT_EQ(v.be32(12), 0x01000003u);
}

TEST(TmaptAssembleTest, MissingEntryCountDropsThatMap) {
  Fixture f;
  std::string source = kTwoMapsSource;
  source.erase(source.find("vts_tmap02_map_en_ns=1\n"), 23);
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_tmapti: vts_tmap02_map_en_ns"}));
  EXPECT_EQ(t.bytes, 28u);
}

TEST(TmaptAssembleTest, MissingEntryKeyLeavesTheRestOfTheMapZero) {
  Fixture f;
  std::string source = kTwoMapsSource;
  source.erase(source.find("vts_tmap01_entry02_address=200\n"), 31);
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(
      f.ui.Messages(),
      (std::vector<std::string>{"Statement missing in vts_tmapti: vts_tmap01_entry02_address"}));
  // Map 1 keeps its 3 entries: 100, then 0 and 0; map 2 is read as before.
  std::vector<std::uint8_t> expected = TwoMaps();
  for (std::size_t i = 24; i < 32; ++i) expected[i] = 0;
  EXPECT_EQ(t.file, Padded(expected));
}

TEST(TmaptAssembleTest, WriteFreesTheMaps) {
  Fixture f;
  test::UseSource(f, kTwoMapsSource);
  test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_TRUE(f.ctx->ifo.vts_tmapt.maps.empty());
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsTmapt).sectors, 0u);
}

// With no map loaded the table is left out: both sizes 0.
TEST(TmaptRulesTest, NoMapLoadedLeavesTheTableOut) {
  Fixture f;
  test::UseSource(f, "[vts_tmapt]\nvts_tmap_ns=1\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_tmapti: vts_tmap01_tmu"}));
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_EQ(t.bytes, 0u);
  EXPECT_TRUE(t.file.empty());
}

// Decimal values as atol reads them, truncated to the field: time unit 257 is 1,
// entry count "2 entries" is 2, address "-1" is 0xFFFFFFFF (bit 31 set by the value itself).
TEST(TmaptRulesTest, DecimalValuesAreTruncated) {
  Fixture f;
  test::UseSource(f,
                  "[vts_tmapt]\nvts_tmap_ns=65537\n[vts_tmapti]\nvts_tmap01_tmu=257\n"
                  "vts_tmap01_map_en_ns=2 entries\nvts_tmap01_entry01_discon=0\n"
                  "vts_tmap01_entry01_address=-1\nvts_tmap01_entry02_discon=0\n"
                  "vts_tmap01_entry02_address=+7\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_TRUE(f.ui.Messages().empty());
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 1u);  // 65537 as a 16-bit count, and one map read
  EXPECT_EQ(v.u8(12), 1u);
  EXPECT_EQ(v.be16(14), 2u);
  EXPECT_EQ(v.be32(16), 0xFFFFFFFFu);
  EXPECT_EQ(v.be32(20), 7u);
}

// Body with zeros beyond the end of the file; the loops over the 16-bit counts run in full.
TEST(TmaptRulesTest, HostileCountsRunInFullOverZeros) {
  Fixture f;
  // 65535 maps and end address 0xFFFFFFFF; the file ends after 16 pointers, each 8: every
  // map's head is body position 0, the first pointer 00 00 00 08 (time unit 0, 8 entries).
  std::vector<std::uint8_t> table = {0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF};
  for (int n = 0; n < 16; ++n) {
    for (std::uint8_t b : {0x00, 0x00, 0x00, 0x08}) table.push_back(b);
  }
  std::vector<std::uint8_t> image = test::WithTables(test::MakeVtsImage(), {{kVtsTmaptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  std::vector<std::string> lines = test::DetailsOf(f, "VTS_TMAPT");
  // All 65535 maps are listed. Maps 1 to 16 have 8 entries each (body positions 4 .. 32, the
  // pointers 00 00 00 08 again: address 8); the pointers of maps 17 on lie beyond the end of
  // the file and read 0, an offset inside the header: no time unit, no entries.
  std::size_t entry_lines = 0;
  for (const std::string& line : lines) entry_lines += line.starts_with("    ") ? 1 : 0;
  EXPECT_EQ(lines.size(), 2u + 65535u * 2u + 16u * 8u);
  EXPECT_EQ(entry_lines, 16u * 8u);
  EXPECT_EQ(lines[1], "End byte address of VTS_TMAPT_EA table: -1");
  EXPECT_EQ(lines[3], "  Time map 1 contains 8 entries using time unit of 0 seconds.");
  EXPECT_EQ(lines[4], "    Entry 1 at sector address 8");
  EXPECT_EQ(lines[11], "    Entry 8 at sector address 8");
  EXPECT_EQ(lines.back(), "  Time map 65535 contains 0 entries using time unit of 0 seconds.");
}

// Maps that share their entries cannot multiply the work: three maps at offset 20 share the
// head 01 00 FF FF (65535 entries), and the file ends right after it. The entries of all maps
// together are bounded by one map's largest count (the file holds only 4 4-byte positions after
// the header), so map 1 lists its 65535 entries, all beyond the end of the file and 0, and the
// others none.
TEST(TmaptRulesTest, MapsSharingTheirEntriesCannotMultiplyTheWork) {
  Fixture f;
  std::vector<std::uint8_t> table = {0x00, 0x03, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF,
                                     0x00, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x14,
                                     0x00, 0x00, 0x00, 0x14, 0x01, 0x00, 0xFF, 0xFF};
  std::vector<std::uint8_t> image = test::WithTables(test::MakeVtsImage(), {{kVtsTmaptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  std::vector<std::string> lines = test::DetailsOf(f, "VTS_TMAPT");
  ASSERT_EQ(lines.size(), 2u + 3u * 2u + 65535u);
  EXPECT_EQ(lines[3], "  Time map 1 contains 65535 entries using time unit of 1 seconds.");
  EXPECT_EQ(lines[4], "    Entry 1 at sector address 0");
  EXPECT_EQ(lines[65538], "    Entry 65535 at sector address 0");
  EXPECT_EQ(lines[65539], "  Time map 2 byte start address 20.");
  EXPECT_EQ(lines[65540], "  Time map 2 contains 65535 entries using time unit of 1 seconds.");
  EXPECT_EQ(lines[65542], "  Time map 3 contains 65535 entries using time unit of 1 seconds.");
}

// A truncated table: one map at 12 with 3 declared entries; the file ends two bytes into entry
// 2. Entry 2 reads its missing bytes as 0 and entry 3 lies wholly beyond the end: 0.
std::vector<std::uint8_t> TruncatedMap() {
  return {0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1B, 0x00, 0x00, 0x00,
          0x0C, 0x01, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x05, 0x80, 0x01};
}

TEST(TmaptRulesTest, EntriesBeyondTheEndOfTheFileReadZero) {
  Fixture f;
  std::vector<std::uint8_t> table = TruncatedMap();
  std::vector<std::uint8_t> image = test::WithTables(test::MakeVtsImage(), {{kVtsTmaptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  EXPECT_EQ(
      test::DetailsOf(f, "VTS_TMAPT"),
      (std::vector<std::string>{
          "Number of VTS_TMAPS: 1", "End byte address of VTS_TMAPT_EA table: 27",
          "  Time map 1 byte start address 12.",
          "  Time map 1 contains 3 entries using time unit of 1 seconds.",
          "    Entry 1 at sector address 5",
          // 80 01 then two zero bytes: discontinuity, address 0x00010000.
          "    Discontinuity Entry 2 at sector address 65536", "    Entry 3 at sector address 0"}));
}

TEST(TmaptRulesTest, TruncatedFileDisassemblesAndAssemblesEveryEntry) {
  Fixture f;
  std::vector<std::uint8_t> table = TruncatedMap();
  std::vector<std::uint8_t> image = test::WithTables(test::MakeVtsImage(), {{kVtsTmaptSa, table}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  std::string text = test::DisassembleTables(f, {TableId::kVtsTmapt});
  std::vector<std::string> keys = test::SectionLines(text, "vts_tmapti");
  ASSERT_EQ(keys.size(), 3u + 2u * 3u);
  EXPECT_EQ(keys[7], "vts_tmap01_entry03_discon=0");
  EXPECT_EQ(keys[8], "vts_tmap01_entry03_address=0");
  // Assembled back: 8 + 4 + (4 + 4 x 3) = 28 bytes, end address 27, the map at 12.
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVtsTmapt);
  EXPECT_EQ(t.bytes, 28u);
  ByteView v(t.file);
  EXPECT_EQ(v.be32(4), 27u);
  EXPECT_EQ(v.be32(8), 12u);
  EXPECT_EQ(v.be32(12), 0x01000003u);
  EXPECT_EQ(v.be32(16), 5u);
  EXPECT_EQ(v.be32(20), 0x80010000u);
  EXPECT_EQ(v.be32(24), 0u);
}

// Every report and disassembly reads the table afresh from the file.
TEST(TmaptRulesTest, ReportReadsAfresh) {
  Fixture f;
  OpenVts(f, TwoMaps());
  EXPECT_EQ(test::DetailsOf(f, "VTS_TMAPT"), kTwoMapsReport);
  ReportTable(*f.ctx, TableId::kVtsTmapt);
  EXPECT_EQ(f.lines(), kTwoMapsReport);
  test::OverwriteOpenFile(f, 2048 + 20, {0x80});  // map 1 entry 1: set bit 31
  ReportTable(*f.ctx, TableId::kVtsTmapt);
  EXPECT_EQ(f.lines()[4], "    Discontinuity Entry 1 at sector address 100");
}

// A shown heading gets details and disassembly even with a zero header.
TEST(TmaptRulesTest, ZeroHeaderStillHasDetailsAndDisassembly) {
  Fixture f;
  OpenVts(f, std::vector<std::uint8_t>(8, 0));
  EXPECT_EQ(test::DetailsOf(f, "VTS_TMAPT"),
            (std::vector<std::string>{"Number of VTS_TMAPS: 0",
                                      "End byte address of VTS_TMAPT_EA table: 0"}));
  EXPECT_EQ(test::DisassembledSection(f, "VTS_01_0.INI", "vts_tmapt"),
            (std::vector<std::string>{"vts_tmap_ns=0", "vts_tmapt_ea=0"}));
}

// Disassembling and assembling a title set through the drivers gives the table back byte for
// byte.
TEST(TmaptRoundTripTest, DriversGiveTheTableBack) {
  Fixture f;
  OpenVts(f, TwoMaps());
  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VTS_01_0.IFO");
  // The image has neither a title chain table nor a part-of-title search pointer table, so
  // their counts are missing from the source; their two messages are the only ones.
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgciti: vts_pgci_srp_ns",
                                      "IFO assembler error!: vts_ttu_ns"}));
  ASSERT_EQ(out.size(), 2u * 2048);
  EXPECT_EQ(ByteView(out).be32(kVtsTmaptSa), 1u);
  EXPECT_EQ(std::vector<std::uint8_t>(out.begin() + 2048, out.end()), Padded(TwoMaps()));
}

}  // namespace
}  // namespace tarvex
