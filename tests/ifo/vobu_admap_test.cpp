// VOBU address maps. Expected values are worked out by hand from the layout: a 32-bit end
// address 4n + 3 followed by n 32-bit start sectors.
#include "ifo/vobu_admap.h"

#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/adt_test_tables.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

constexpr std::size_t kVmgmVobuAdmapSa = 220;

void OpenTitleSetWith(Fixture& f, const std::vector<std::uint8_t>& map, std::size_t offset) {
  test::OpenIfo(f, "VTS_01_0.IFO", test::WithTables(test::MakeVtsImage(), {{offset, map}}));
}

void OpenVideoManagerWith(Fixture& f, const std::vector<std::uint8_t>& map) {
  test::OpenIfo(f, "VIDEO_TS.IFO",
                test::WithTables(test::MakeVmgImage(), {{kVmgmVobuAdmapSa, map}}));
}

std::vector<std::string> Tail(const Fixture& f, std::size_t n) {
  const auto& l = f.lines();
  return {l.end() - static_cast<std::ptrdiff_t>(std::min(n, l.size())), l.end()};
}

TEST(AdmapOpenTest, AbsentMapsShareOneDescriptionWithoutAFullStop) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  EXPECT_EQ(Tail(f, 2), (std::vector<std::string>{
                            "** VTS_C_ADT IFO File: There is no Video Title Set Cell Address "
                            "Table.",
                            "** VTS_VOBU_ADMAP IFO File: There is no Video Title Set Menu VOBU "
                            "Address Map Table"}));
  EXPECT_EQ(f.lines()[f.lines().size() - 3],
            "** VTSM_VOBU_ADMAP IFO File: There is no Video Title Set Menu VOBU Address Map "
            "Table");
  Fixture g;
  test::OpenIfo(g, "VIDEO_TS.IFO", test::MakeVmgImage());
  EXPECT_EQ(g.lines().back(),
            "** VMGM_VOBU_ADMAP IFO File: There is no Video Title Set Menu VOBU Address Map "
            "Table");
}

TEST(AdmapOpenTest, HeadingLinesShareOneDescription) {
  Fixture f;
  std::vector<std::uint8_t> map = test::MakeVobuAdmap({0, 10});
  test::OpenIfo(
      f, "VTS_01_0.IFO",
      test::WithTables(test::MakeVtsImage(), {{kVtsmVobuAdmapSa, map}, {kVtsVobuAdmapSa, map}}));
  EXPECT_EQ(f.lines().back(),
            "VTS_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table");
  EXPECT_EQ(f.lines()[f.lines().size() - 3],
            "VTSM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table");
  Fixture g;
  OpenVideoManagerWith(g, map);
  EXPECT_EQ(g.lines().back(),
            "VMGM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table");
}

TEST(AdmapReportTest, VideoManagerMapCountsItsEntriesFirst) {
  Fixture f;
  OpenVideoManagerWith(f, test::MakeVobuAdmap({0, 10, 0x12345}));
  ReportTable(*f.ctx, TableId::kVmgmVobuAdmap);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"VMGM VOBU Address Map Information: 3 entries",
                                      "  VOBU 1 starts at sector 0", "  VOBU 2 starts at sector 10",
                                      "  VOBU 3 starts at sector 74565"}));
}

TEST(AdmapReportTest, TitleSetMapsListTheirEntriesOnly) {
  for (auto [offset, id] : {std::pair{kVtsVobuAdmapSa, TableId::kVtsVobuAdmap},
                            std::pair{kVtsmVobuAdmapSa, TableId::kVtsmVobuAdmap}}) {
    Fixture f;
    OpenTitleSetWith(f, test::MakeVobuAdmap({5, 6}), offset);
    ReportTable(*f.ctx, id);
    EXPECT_EQ(f.lines(), (std::vector<std::string>{"  VOBU 1 starts at sector 5",
                                                   "  VOBU 2 starts at sector 6"}));
  }
}

TEST(AdmapReportTest, EndAddressBelowThreeMeansNoEntries) {
  Fixture f;
  OpenVideoManagerWith(f, test::MakeVobuAdmap({7}, 0));
  ReportTable(*f.ctx, TableId::kVmgmVobuAdmap);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"VMGM VOBU Address Map Information: 0 entries"}));
}

TEST(AdmapReportTest, NegativeEntryByteCountMeansNoEntriesNotAFailure) {
  Fixture f;
  // 0xFFFFFFFF - 3 = 0xFFFFFFFC, taken as a signed 32-bit number, is -4.
  OpenVideoManagerWith(f, test::MakeVobuAdmap({7}, 0xFFFFFFFF));
  ReportTable(*f.ctx, TableId::kVmgmVobuAdmap);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"VMGM VOBU Address Map Information: 0 entries"}));
}

TEST(AdmapReportTest, EntryBytesThatEndExactlyAtTheEndOfTheFileAreRead) {
  Fixture f;
  OpenVideoManagerWith(f, test::MakeVobuAdmap({1, 2}));  // the file ends after the map
  ReportTable(*f.ctx, TableId::kVmgmVobuAdmap);
  EXPECT_EQ(f.lines().size(), 3u);
}

TEST(AdmapReportTest, VideoManagerMapLargerThanTheFileIsAnAllocationFailure) {
  Fixture f;
  // End address 11 asks for 8 entry bytes; the file holds 4 after the end address.
  OpenVideoManagerWith(f, test::MakeVobuAdmap({1}, 11));
  ReportTable(*f.ctx, TableId::kVmgmVobuAdmap);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"ERROR: Could not aquire memory for VMGM_VOBU_ADMAP"}));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgmVobuAdmap}), "");
}

TEST(AdmapReportTest, TitleSetMapLargerThanTheFileNamesTheMenuMap) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeVobuAdmap({1}, 0x7FFFFFFF), kVtsVobuAdmapSa);
  // The overview shows only the heading.
  EXPECT_EQ(f.lines().back(),
            "VTS_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table");
  ReportTable(*f.ctx, TableId::kVtsVobuAdmap);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"ERROR: Could not aquire memory for VTSM_VOBU_ADMAP"}));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsVobuAdmap}), "");
}

TEST(AdmapOpenTest, TitleSetMenuMapLargerThanTheFileFailsInTheOverview) {
  Fixture f;
  std::vector<std::uint8_t> map = test::MakeVobuAdmap({1}, 11);
  test::OpenIfo(f, "VTS_01_0.IFO",
                test::WithTables(test::MakeVtsImage(), {{kVtsmVobuAdmapSa, map}}));
  const auto& l = f.lines();
  std::size_t heading = 0;
  while (heading < l.size() && !l[heading].starts_with("VTSM_VOBU_ADMAP")) ++heading;
  ASSERT_LT(heading + 1, l.size());
  EXPECT_EQ(l[heading + 1], "ERROR: Could not aquire memory for VTSM_VOBU_ADMAP");
  // Nothing more of the map: its details are empty and nothing is disassembled.
  ReportTable(*f.ctx, TableId::kVtsmVobuAdmap);
  EXPECT_TRUE(f.lines().empty());
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsmVobuAdmap}), "");
}

TEST(AdmapReportTest, TitleSetMenuMapKeepsTheEntriesReadWhenOpened) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeVobuAdmap({5, 6}), kVtsmVobuAdmapSa);
  test::OverwriteOpenFile(f, 2048 + 4, {0, 0, 0, 42});
  ReportTable(*f.ctx, TableId::kVtsmVobuAdmap);
  EXPECT_EQ(f.lines()[0], "  VOBU 1 starts at sector 5");
  ReportTable(*f.ctx, TableId::kVtsmVobuAdmap);
  EXPECT_EQ(f.lines()[0], "  VOBU 1 starts at sector 5");
}

TEST(AdmapReportTest, TitleSetMapIsReadAfreshForEveryReport) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeVobuAdmap({5, 6}), kVtsVobuAdmapSa);
  ReportTable(*f.ctx, TableId::kVtsVobuAdmap);
  EXPECT_EQ(f.lines()[0], "  VOBU 1 starts at sector 5");
  test::OverwriteOpenFile(f, 2048 + 4, {0, 0, 0, 42});
  ReportTable(*f.ctx, TableId::kVtsVobuAdmap);
  EXPECT_EQ(f.lines()[0], "  VOBU 1 starts at sector 42");
}

TEST(AdmapDisassembleTest, OneKeyPerEntryNumberedFromOne) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeVobuAdmap({0, 30, 0xFFFFFFFF}), kVtsmVobuAdmapSa);
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsmVobuAdmap}),
            "[vtsm_vobu_admap]\r\nvobu_sa0001=0\r\nvobu_sa0002=30\r\nvobu_sa0003=-1\r\n");
}

TEST(AdmapDisassembleTest, MapWithoutEntriesWritesNoKeysAndReportsNoLines) {
  Fixture f;
  OpenTitleSetWith(f, test::MakeVobuAdmap({}, 3), kVtsVobuAdmapSa);
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVtsVobuAdmap}), "");
  ReportTable(*f.ctx, TableId::kVtsVobuAdmap);
  EXPECT_TRUE(f.lines().empty());
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AdmapDisassembleTest, VideoManagerMapIsWrittenToTheTitleSetMapSection) {
  Fixture f;
  OpenVideoManagerWith(f, test::MakeVobuAdmap({9}));
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgmVobuAdmap}),
            "[vts_vobu_admap]\r\nvobu_sa0001=9\r\n");
}

TEST(AdmapAssembleTest, EntriesAreWrittenAfterTheirEndAddress) {
  Fixture f;
  TableSize size;
  std::vector<std::uint8_t> bytes = test::AssembleTable(
      f, TableId::kVtsVobuAdmap,
      "[vts_vobu_admap]\nvobu_sa0001=0\nvobu_sa0002=300\nvobu_sa0004=9\n", &size);
  // Two entries (0003 is missing): end address 4 * 2 + 3 = 11, 12 bytes.
  EXPECT_EQ(size.bytes, 12u);
  EXPECT_EQ(size.sectors, 1u);
  ASSERT_EQ(bytes.size(), 2048u);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 12),
            (std::vector<std::uint8_t>{0, 0, 0, 11, 0, 0, 0, 0, 0, 0, 1, 44}));
}

TEST(AdmapAssembleTest, VideoManagerMapIsReadFromTheTitleSetMapSection) {
  Fixture f;
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgmVobuAdmap,
                          "[vmgm_vobu_admap]\nvobu_sa0001=1\n[vts_vobu_admap]\nvobu_sa0001=2\n");
  EXPECT_EQ(ByteView(bytes).be32(4), 2u);
}

TEST(AdmapAssembleTest, AThousandEntriesTakeTwoSectors) {
  Fixture f;
  std::string source = "[vtsm_vobu_admap]\n";
  for (int i = 1; i <= 1000; ++i) source += Format("vobu_sa%04d=%d\n", {i, i * 3});
  TableSize size;
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsmVobuAdmap, source, &size);
  EXPECT_EQ(size.bytes, 4004u);
  EXPECT_EQ(size.sectors, 2u);
  ASSERT_EQ(bytes.size(), 4096u);
  ByteView v(bytes);
  EXPECT_EQ(v.be32(0), 4003u);
  EXPECT_EQ(v.be32(4 * 1000), 3000u);
  EXPECT_EQ(v.be32(4004), 0u);  // padding
}

TEST(AdmapAssembleTest, MapOfExactlyOneSectorGetsNoPadding) {
  Fixture f;
  std::string source = "[vts_vobu_admap]\n";
  for (int i = 1; i <= 511; ++i) source += Format("vobu_sa%04d=1\n", {i});  // 4 + 2044 bytes
  TableSize size;
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsVobuAdmap, source, &size);
  EXPECT_EQ(size.sectors, 1u);
  EXPECT_EQ(bytes.size(), 2048u);
  EXPECT_EQ(ByteView(bytes).be32(0), 2047u);
}

TEST(AdmapAssembleTest, OneByteMoreThanASectorIsPaddedToTwo) {
  Fixture f;
  std::string source = "[vts_vobu_admap]\n";
  for (int i = 1; i <= 512; ++i) source += Format("vobu_sa%04d=1\n", {i});  // 2052 bytes
  TableSize size;
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVtsVobuAdmap, source, &size);
  EXPECT_EQ(size.sectors, 2u);
  EXPECT_EQ(size.bytes, 2052u);
  EXPECT_EQ(bytes.size(), 4096u);
}

TEST(AdmapAssembleTest, EmptySectionGivesNoMapAndStartSectorZero) {
  Fixture f;
  test::UseSource(f,
                  "[vtsi_mat]\nvts_id=DVDVIDEO-VTS\n[vts_vobu_admap]\n[vtsm_vobu_admap]\n"
                  "vobu_sa0001=4\n",
                  "VTS_01_0.INI");
  for (TableId id : {TableId::kVtsVobuAdmap, TableId::kVtsmVobuAdmap}) {
    LoadTableSource(*f.ctx, id);
  }
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsVobuAdmap).sectors, 0u);
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVtsVobuAdmap).bytes, 0u);
  std::vector<std::uint8_t> bytes = test::AssembleTitleSetInto(f, "VTS_01_0.IFO");
  ByteView v(bytes);
  EXPECT_EQ(v.be32(kVtsVobuAdmapSa), 0u);
  EXPECT_EQ(v.be32(kVtsmVobuAdmapSa), 1u);
  EXPECT_EQ(bytes.size(), 4096u);
}

}  // namespace
}  // namespace tarvex
