// The title search pointer table of the video manager (VMG_PTT_SRPTI, section "vmg_ptt_srpt").
// Every expected value below is worked out by hand from the table layout: an 8-byte header
// (count, 2 zero bytes, end address) and 12-byte title entries.
#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/table.h"
#include "ifo/vmgi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

constexpr std::size_t kTtSrptSa = 196;

// Two titles: 3c/1 angle/3 PTTs/parental 0x0102/VTS 1/TTN 1/sector 5 and
// 1c/2 angles/12 PTTs/parental 0/VTS 2/TTN 3/sector 0x12345; end address 8 + 24 - 1 = 31.
std::vector<std::uint8_t> TwoTitles() {
  return {0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F,  // header
          0x3C, 0x01, 0x00, 0x03, 0x01, 0x02, 0x01, 0x01, 0x00, 0x00, 0x00, 0x05,
          0x1C, 0x02, 0x00, 0x0C, 0x00, 0x00, 0x02, 0x03, 0x00, 0x01, 0x23, 0x45};
}

void OpenVmg(Fixture& f, const std::vector<std::uint8_t>& table, std::uint32_t sector = 1) {
  test::OpenIfo(f, "VIDEO_TS.IFO",
                test::WithTableAt(test::MakeVmgImage(), kTtSrptSa, sector, table));
}

const std::vector<std::string> kTwoTitlesReport = {
    "Number of Title Unit Serch Pointers TTUs in the VTS: 2",
    "End byte address of PTT_SRPT table: 31",
    "    Title set 1: Title playback type: 3c",
    "    Title set 1: Number of angles: 1",
    "    Title set 1: Number of PTTs: 3",
    "    Title set 1: Parental ID field: 258",
    "    Title set 1: Title set number: 1",
    "    Title set 1: VTS_TTN: 1",
    "    Title set 1: Title set starting sector number: 5",
    "    Title set 2: Title playback type: 1c",
    "    Title set 2: Number of angles: 2",
    "    Title set 2: Number of PTTs: 12",
    "    Title set 2: Parental ID field: 0",
    "    Title set 2: Title set number: 2",
    "    Title set 2: VTS_TTN: 3",
    "    Title set 2: Title set starting sector number: 74565",
};

TEST(SrptTitleOpenTest, AbsentTableGivesOneLine) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  // The table's line comes right after the menu VOB line; the other tables' lines follow.
  ASSERT_GE(f.lines().size(), 3u);
  EXPECT_EQ(f.lines()[2],
            "** VMG_PTT_SRPTI IFO File: There is no Part of title search pointer table.");
  for (std::size_t i = 3; i < f.lines().size(); ++i) {
    EXPECT_EQ(f.lines()[i].find("VMG_PTT"), std::string::npos) << f.lines()[i];
  }
}

TEST(SrptTitleOpenTest, HeadingLineAndEndAddressReturned) {
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", test::WithTableAt(test::MakeVmgImage(), kTtSrptSa, 1, TwoTitles()),
              kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  f.ctx->ClearReportList();
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kVmgPttSrpt, f.ctx->open.file_handle), 31u);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"VMG_PTT_SRPTI IFO File: Part of title search pointer table "
                                      "information"}));
}

TEST(SrptTitleReportTest, DetailsListSevenLinesPerTitle) {
  Fixture f;
  OpenVmg(f, TwoTitles());
  EXPECT_EQ(test::DetailsOf(f, "VMG_PTT"), kTwoTitlesReport);
}

TEST(SrptTitleDisassembleTest, KeysInTableOrder) {
  Fixture f;
  OpenVmg(f, TwoTitles());
  EXPECT_EQ(test::SectionLines(test::DisassembleTables(f, {TableId::kVmgPttSrpt}), "vmg_ptt_srpt"),
            (std::vector<std::string>{"vts_ttu_ns=2", "vts_ptt_srpt_ea=31", "tt_pb_ty01=x3c",
                                      "tt_agl_ns01=1", "tt_ptt_ns01=3", "tt_ptl_id_fld01=258",
                                      "vtsn01=1", "vts_ttn01=1", "vts_sa01=5", "tt_pb_ty02=x1c",
                                      "tt_agl_ns02=2", "tt_ptt_ns02=12", "tt_ptl_id_fld02=0",
                                      "vtsn02=2", "vts_ttn02=3", "vts_sa02=74565"}));
}

std::string TitleSource(int count, int entries, const std::string& ptl = "258") {
  std::string s = Format("[vmg_ptt_srpt]\nvts_ttu_ns=%d\nvts_ptt_srpt_ea=99\n", {count});
  for (int i = 1; i <= entries; ++i) {
    s += Format("tt_pb_ty%02d=x3c\ntt_agl_ns%02d=1\ntt_ptt_ns%02d=3\n", {i, i, i});
    s += Format("tt_ptl_id_fld%02d=%s\nvtsn%02d=1\nvts_ttn%02d=1\nvts_sa%02d=5\n",
                {i, ptl, i, i, i});
  }
  return s;
}

TEST(SrptTitleAssembleTest, EntriesAreWrittenBigEndianAfterTheHeader) {
  Fixture f;
  test::UseSource(f,
                  "[vmg_ptt_srpt]\nvts_ttu_ns=2\nvts_ptt_srpt_ea=0\n"
                  "tt_pb_ty01=x3c\ntt_agl_ns01=1\ntt_ptt_ns01=3\ntt_ptl_id_fld01=258\n"
                  "vtsn01=1\nvts_ttn01=1\nvts_sa01=5\n"
                  "tt_pb_ty02=x1c\ntt_agl_ns02=2\ntt_ptt_ns02=12\ntt_ptl_id_fld02=0\n"
                  "vtsn02=2\nvts_ttn02=3\nvts_sa02=74565\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(t.bytes, 32u);
  EXPECT_EQ(t.sectors, 1u);
  ASSERT_EQ(t.file.size(), 2048u);
  // Parental ID 258 = 0x0102 is stored low byte first (02 01); VTS_TTN 3 is written as 1.
  std::vector<std::uint8_t> expected = {
      0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F,  // 2 titles, end address 31
      0x3C, 0x01, 0x00, 0x03, 0x02, 0x01, 0x01, 0x01, 0x00, 0x00, 0x00, 0x05,
      0x1C, 0x02, 0x00, 0x0C, 0x00, 0x00, 0x02, 0x01, 0x00, 0x01, 0x23, 0x45};
  expected.resize(2048, 0);
  EXPECT_EQ(t.file, expected);
}

TEST(SrptTitleAssembleTest, ZeroTitlesLoadNothingAndTheTableIsLeftOut) {
  Fixture f;
  test::UseSource(f, TitleSource(0, 1));
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.bytes, 0u);
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_TRUE(t.file.empty());
}

TEST(SrptTitleAssembleTest, ThreeTitlesGiveFortyFourBytesEndAddress43OneSector) {
  Fixture f;
  test::UseSource(f, TitleSource(3, 3));
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.bytes, 44u);  // 8 + 3 x 12
  EXPECT_EQ(t.sectors, 1u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 3u);
  EXPECT_EQ(v.be32(4), 43u);
  EXPECT_EQ(t.file.size(), 2048u);
  for (std::size_t i = 44; i < 2048; ++i) ASSERT_EQ(v.u8(i), 0) << i;
}

TEST(SrptTitleAssembleTest, ParentalIdOneIsWrittenAsBytes01_00) {
  Fixture f;
  test::UseSource(f, TitleSource(1, 1, "1"));
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.file[8 + 4], 0x01);
  EXPECT_EQ(t.file[8 + 5], 0x00);
}

TEST(SrptTitleAssembleTest, PlaybackTypeSkipsTheFirstCharacterWhateverItIs) {
  Fixture f;
  // "x1c" gives 1c; "1c" loses its first digit: "c" then the position beyond the end (0)
  // gives c0; "zg4" reads "g4", where g is not a hex digit and counts 0: 04.
  std::string source = TitleSource(3, 3);
  source.replace(source.find("tt_pb_ty01=x3c"), 14, "tt_pb_ty01=x1c");
  source.replace(source.find("tt_pb_ty02=x3c"), 14, "tt_pb_ty02=1c");
  source.replace(source.find("tt_pb_ty03=x3c"), 14, "tt_pb_ty03=zg4");
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.file[8], 0x1C);
  EXPECT_EQ(t.file[20], 0xC0);
  EXPECT_EQ(t.file[32], 0x04);
}

TEST(SrptTitleAssembleTest, TitleNumberValueIsIgnoredButTheKeyIsRequired) {
  Fixture f;
  std::string source = TitleSource(2, 2);
  source.replace(source.find("vts_ttn01=1"), 11, "vts_ttn01=77");
  source.erase(source.find("vts_ttn02=1\n"), 12);
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.file[8 + 7], 1);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vmg_ptt_srpt!: vts_ttn02"}));
  // The second entry was being read when its key was missing: it keeps the fields read
  // before (vtsn 1 at byte 6) and the fields after it stay 0.
  EXPECT_EQ(t.file[20 + 6], 1);
  EXPECT_EQ(t.file[20 + 7], 0);
  EXPECT_EQ(ByteView(t.file).be32(20 + 8), 0u);
}

TEST(SrptTitleAssembleTest, MissingCountShowsTheMessageAndLoadsNothing) {
  Fixture f;
  test::UseSource(f, "[vmg_ptt_srpt]\ntt_pb_ty01=x3c\n");
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vmg_ptt_srpt!: vts_ttu_ns"}));
  EXPECT_EQ(t.sectors, 0u);
  EXPECT_TRUE(t.file.empty());
}

TEST(SrptTitleAssembleTest, DollarValueCountsAsMissing) {
  Fixture f;
  std::string source = TitleSource(1, 1);
  source.replace(source.find("vtsn01=1"), 8, "vtsn01=$1");
  test::UseSource(f, source);
  test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vmg_ptt_srpt!: vtsn01"}));
}

// When the count says more titles than the source holds, loading stops at the first missing
// key; the header keeps the source's count and the table keeps the size measured from it,
// the titles not read being written as zero entries.
TEST(SrptTitleAssembleTest, CountAboveTheEntriesPresentKeepsTheCountAndTheMeasuredSize) {
  Fixture f;
  test::UseSource(f, TitleSource(3, 1));
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vmg_ptt_srpt!: tt_pb_ty02"}));
  EXPECT_EQ(t.bytes, 44u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 3u);   // header count as the source said
  EXPECT_EQ(v.be32(4), 43u);  // 12 x 3 + 7
  EXPECT_EQ(v.u8(8), 0x3C);   // title 1 as read
  EXPECT_EQ(v.be32(16), 5u);
  for (std::size_t i = 20; i < 44; ++i) EXPECT_EQ(v.u8(i), 0) << i;
}

TEST(SrptTitleAssembleTest, WriteFreesTheEntries) {
  Fixture f;
  test::UseSource(f, TitleSource(1, 1));
  test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(MeasureTable(*f.ctx, TableId::kVmgPttSrpt).bytes, 0u);
  EXPECT_TRUE(f.ctx->ifo.tt_srpt.entries.empty());
}

// Decimal values read like atol, truncated to the field: "65538" is 2 in the 16-bit
// count and the loop reads 2 titles; " +12x" is 12; "-1" in a byte is 255.
TEST(SrptTitleRulesTest, DecimalValuesAreTruncatedAndTheLoopUsesTheTruncatedCount) {
  Fixture f;
  std::string source = TitleSource(0, 3);
  source.replace(source.find("vts_ttu_ns=0"), 12, "vts_ttu_ns=65538");
  source.replace(source.find("tt_ptt_ns01=3"), 13, "tt_ptt_ns01= +12x");
  source.replace(source.find("tt_agl_ns01=1"), 13, "tt_agl_ns01=-1");
  test::UseSource(f, source);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(t.bytes, 32u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 2u);
  EXPECT_EQ(v.u8(9), 255u);
  EXPECT_EQ(v.be16(10), 12u);
}

// A truncated table: the header says 4 titles and end address 0xFFFFFFFF (a body of 0xFFFF
// bytes is asked), but the file ends 25 bytes into the table, after one full title and 5 bytes
// of a second. The entries read as zeros beyond the end of the file and the loop over the
// 16-bit count runs all 4 titles.
std::vector<std::uint8_t> TruncatedFourTitles() {
  return {0x00, 0x04, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x3C, 0x01, 0x00, 0x03, 0x00,
          0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x05, 0x1C, 0x02, 0x00, 0x0C, 0x00};
}

void OpenTruncatedVmg(Fixture& f) {
  std::vector<std::uint8_t> table = TruncatedFourTitles();
  std::vector<std::uint8_t> image = test::WithTables(test::MakeVmgImage(), {{kTtSrptSa, table}});
  test::OpenIfo(f, "VIDEO_TS.IFO", image);
}

TEST(SrptTitleRulesTest, TruncatedFileListsTheFullCountWithZerosBeyondItsEnd) {
  Fixture f;
  OpenTruncatedVmg(f);
  std::vector<std::string> lines = test::DetailsOf(f, "VMG_PTT");
  ASSERT_EQ(lines.size(), 2u + 7u * 4u);
  EXPECT_EQ(lines[0], "Number of Title Unit Serch Pointers TTUs in the VTS: 4");
  EXPECT_EQ(lines[1], "End byte address of PTT_SRPT table: -1");
  EXPECT_EQ(lines[8], "    Title set 1: Title set starting sector number: 5");
  EXPECT_EQ(lines[9], "    Title set 2: Title playback type: 1c");
  EXPECT_EQ(lines[11], "    Title set 2: Number of PTTs: 12");
  // 00 of the parental field is the last byte in the file; the next one reads 0.
  EXPECT_EQ(lines[12], "    Title set 2: Parental ID field: 0");
  EXPECT_EQ(lines[15], "    Title set 2: Title set starting sector number: 0");
  EXPECT_EQ(lines[16], "    Title set 3: Title playback type: 0");
  EXPECT_EQ(lines[22], "    Title set 3: Title set starting sector number: 0");
  EXPECT_EQ(lines[23], "    Title set 4: Title playback type: 0");
  EXPECT_EQ(lines[29], "    Title set 4: Title set starting sector number: 0");
}

TEST(SrptTitleRulesTest, TruncatedFileDisassemblesAndAssemblesTheFullCount) {
  Fixture f;
  OpenTruncatedVmg(f);
  std::string text = test::DisassembleTables(f, {TableId::kVmgPttSrpt});
  std::vector<std::string> keys = test::SectionLines(text, "vmg_ptt_srpt");
  ASSERT_EQ(keys.size(), 2u + 7u * 4u);
  EXPECT_EQ(keys[0], "vts_ttu_ns=4");
  EXPECT_EQ(keys[23], "tt_pb_ty04=x00");
  EXPECT_EQ(keys[29], "vts_sa04=0");
  // Assembled back: 8 + 4 x 12 = 56 bytes, end address 55; title 4 is zero but for its
  // VTS_TTN, which is always written as 1.
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.bytes, 56u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 4u);
  EXPECT_EQ(v.be32(4), 55u);
  EXPECT_EQ(v.be32(8 + 36 + 8), 0u);
  EXPECT_EQ(v.u8(8 + 36 + 6), 0u);
  EXPECT_EQ(v.u8(8 + 36 + 7), 1u);
}

// Every report and disassembly reads the table afresh from the file.
TEST(SrptTitleRulesTest, ReportReadsTheEntriesAfreshEachTime) {
  Fixture f;
  OpenVmg(f, TwoTitles());
  EXPECT_EQ(test::DetailsOf(f, "VMG_PTT"), kTwoTitlesReport);
  ReportTable(*f.ctx, TableId::kVmgPttSrpt);
  EXPECT_EQ(f.lines(), kTwoTitlesReport);
  // Change the first title's angle count in the file behind the open table.
  test::OverwriteOpenFile(f, 2048 + 8 + 1, {9});
  ReportTable(*f.ctx, TableId::kVmgPttSrpt);
  EXPECT_EQ(f.lines()[3], "    Title set 1: Number of angles: 9");
}

// A table whose heading is shown gets its details and disassembly even with a count and an
// end address of 0.
TEST(SrptTitleRulesTest, HeadingWithZeroHeaderStillHasDetailsAndDisassembly) {
  Fixture f;
  OpenVmg(f, std::vector<std::uint8_t>(8, 0));
  EXPECT_EQ(test::DetailsOf(f, "VMG_PTT"),
            (std::vector<std::string>{"Number of Title Unit Serch Pointers TTUs in the VTS: 0",
                                      "End byte address of PTT_SRPT table: 0"}));
  EXPECT_EQ(test::DisassembledSection(f, "VIDEO_TS.INI", "vmg_ptt_srpt"),
            (std::vector<std::string>{"vts_ttu_ns=0", "vts_ptt_srpt_ea=0"}));
}

// Lines and values end at a zero byte only where the formatting makes one; a zero field
// of this table formats as the digit 0, so no line or value is cut.
TEST(SrptTitleRulesTest, ZeroFieldsPrintAsDigitsAndCutNothing) {
  Fixture f;
  std::vector<std::uint8_t> table = {0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x13};
  table.resize(20, 0);
  OpenVmg(f, table);
  std::vector<std::string> lines = test::DetailsOf(f, "VMG_PTT");
  ASSERT_EQ(lines.size(), 9u);
  EXPECT_EQ(lines[2], "    Title set 1: Title playback type: 0");
  EXPECT_EQ(lines[8], "    Title set 1: Title set starting sector number: 0");
  std::vector<std::string> keys =
      test::SectionLines(test::DisassembleTables(f, {TableId::kVmgPttSrpt}), "vmg_ptt_srpt");
  ASSERT_EQ(keys.size(), 9u);
  EXPECT_EQ(keys[2], "tt_pb_ty01=x00");
}

// The table's size is measured from "vts_ttu_ns" and it is left out only when that count is
// 0: a count of 2 with no title keys at all is still measured and written.
TEST(SrptTitleRulesTest, MeasuredFromTheCountEvenWithoutEntries) {
  Fixture f;
  test::UseSource(f, TitleSource(2, 0));
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgPttSrpt);
  EXPECT_EQ(t.bytes, 32u);
  EXPECT_EQ(t.sectors, 1u);
  ASSERT_EQ(t.file.size(), 2048u);
  EXPECT_EQ(ByteView(t.file).be16(0), 2u);
  EXPECT_EQ(ByteView(t.file).be32(4), 31u);
}

// The video manager's assembly places the table right after VMGI_MAT, or gives it start
// sector 0 when nothing was loaded.
TEST(SrptTitleAssembleTest, VideoManagerAssemblyPlacesTheTable) {
  for (int count : {1, 0}) {
    Fixture f;
    f.OpenBytes("SRC.IFO", test::MakeVmgImage(), kFileIfo);
    OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
    f.ctx->convert.source_path = f.dir.file("VIDEO_TS.INI");
    DisassembleVideoManager(*f.ctx);
    f.ctx->profiles.Flush();
    std::string text = test::ReadFileText(f.ctx->convert.source_path) + TitleSource(count, 1);
    test::WriteText(f.ctx->convert.source_path, text);
    LoadTableSource(*f.ctx, TableId::kVmgPttSrpt);
    std::vector<std::uint8_t> bytes = test::AssembleVideoManagerInto(f, "VIDEO_TS.IFO");
    ByteView v(bytes);
    if (count == 1) {
      ASSERT_EQ(bytes.size(), 2u * 2048);
      EXPECT_EQ(v.be32(kTtSrptSa), 1u);
      EXPECT_EQ(v.be32(2048 + 4), 19u);  // 8 + 12 - 1
    } else {
      EXPECT_EQ(bytes.size(), 2048u);
      EXPECT_EQ(v.be32(kTtSrptSa), 0u);
    }
  }
}

// Disassembling and assembling a video manager with the table through the drivers gives the
// table back, with the two established changes: the parental ID's bytes exchanged and
// VTS_TTN written as 1.
TEST(SrptTitleRoundTripTest, DriversGiveTheTableBack) {
  Fixture f;
  OpenVmg(f, TwoTitles());
  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VIDEO_TS.IFO");
  // The image holds no other video manager table; none of their messages concern this one.
  for (const std::string& m : f.ui.Messages()) {
    EXPECT_EQ(m.find("vmg_ptt_srpt"), std::string::npos) << m;
  }
  ASSERT_EQ(out.size(), 2u * 2048);
  EXPECT_EQ(ByteView(out).be32(kTtSrptSa), 1u);
  std::vector<std::uint8_t> expected = TwoTitles();
  expected[8 + 4] = 0x02;  // 0x0102 comes back as 02 01
  expected[8 + 5] = 0x01;
  expected[20 + 7] = 0x01;  // VTS_TTN 3 comes back as 1
  expected.resize(2048, 0);
  EXPECT_EQ(std::vector<std::uint8_t>(out.begin() + 2048, out.end()), expected);
}

}  // namespace
}  // namespace tarvex
