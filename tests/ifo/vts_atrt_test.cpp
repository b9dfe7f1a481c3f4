// The title set attribute table. Expected values are worked out by hand from the layout: an
// 8-byte header (count, reserved, end address 8 + 4n + 776n - 1), n 32-bit record offsets
// from the table start, then the 776-byte records.
#include "ifo/vts_atrt.h"

#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;

constexpr std::size_t kVtsAtrtSa = 208;

// Two title sets: end address 8 + 8 + 1552 - 1 = 1567, records at 16 and 792. Title set 1
// has category 1, video 4d01, three menu audio bytes 1f 80 05, one menu sub-picture byte 01,
// title video 4d01, one title audio stream and one title sub-picture stream; title set 2 is
// all zeros but its record end address.
std::vector<std::uint8_t> TwoTitleSets() {
  std::vector<std::uint8_t> t(1568, 0);
  ByteWriter w(t);
  w.put_be16(0, 2);
  w.put_be32(4, 1567);
  w.put_be32(8, 16);
  w.put_be32(12, 792);
  std::size_t r = 16;
  w.put_be32(r + 0, 775);
  w.put_be32(r + 4, 1);
  w.put_be16(r + 8, 0x4D01);
  w.put_u8(r + 11, 3);
  w.put_u8(r + 12, 0x1F);
  w.put_u8(r + 13, 0x80);
  w.put_u8(r + 14, 0x05);
  w.put_u8(r + 93, 1);
  w.put_u8(r + 94, 0x01);
  w.put_be16(r + 264, 0x4D01);
  w.put_u8(r + 267, 1);
  w.put_be32(r + 268, 0x40000000);
  w.put_be32(r + 272, 0x656E0000);
  w.put_u8(r + 349, 1);
  w.put_be32(r + 350, 0x01006465);
  w.put_be32(792, 775);
  return t;
}

void OpenWith(Fixture& f, const std::vector<std::uint8_t>& table) {
  test::OpenIfo(f, "VIDEO_TS.IFO", test::WithTables(test::MakeVmgImage(), {{kVtsAtrtSa, table}}));
}

TEST(AtrtOpenTest, AbsenceAndHeadingLines) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  EXPECT_TRUE(HasLine(f, "** VMG_ATRT IFO File: There is no Video Title Set Attribute Table."));
  Fixture g;
  OpenWith(g, TwoTitleSets());
  EXPECT_TRUE(HasLine(g, "VMG_ATRT IFO File: Video Title Set Attribute Table"));
  EXPECT_EQ(OpenTable(*g.ctx, TableId::kVmgAtrt, g.ctx->open.file_handle), 2u);  // the count
}

TEST(AtrtReportTest, ReportsEveryTitleSetsRecord) {
  Fixture f;
  OpenWith(f, TwoTitleSets());
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of Video Title Sets: 2",
                           "End byte address of VTS_ATR table: 1567",
                           "  VTS 1 Attribute start byte address 16",
                           "    VTS Attribute end byte address 775",
                           "    VTS_CAT Application type 1",
                           "    Attributes of VTSM_VOBS: 4d1",
                           "    Number of audio streams in VTSM_VOBS: 3",
                           "      Audio 1 attributes: 1f",
                           "      Audio 2 attributes: 80",
                           "      Audio 3 attributes: 5",
                           "    Number of subpicture streams: 1",
                           "      Subpicture stream 1 attributes: 1",
                           "    Video attributes of VTSTT_VOBS: 4d1",
                           "    Number of audio streams in VTSTT_VOBS: 1",
                           "      Audio 1 attributes: 40000000656e0000",
                           "    Number of subpicture streams in VTSTT_VOBS: 1",
                           "      Subpicture stream 1 attributes: 1",
                           "  VTS 2 Attribute start byte address 792",
                           "    VTS Attribute end byte address 775",
                           "    VTS_CAT Application type 0",
                           "    Attributes of VTSM_VOBS: 00",
                           "    Number of audio streams in VTSM_VOBS: 0",
                           "    Number of subpicture streams: 0",
                           "    Video attributes of VTSTT_VOBS: 00",
                           "    Number of audio streams in VTSTT_VOBS: 0",
                           "    Number of subpicture streams in VTSTT_VOBS: 0",
                       }));
}

TEST(AtrtReportTest, HeaderOfZerosStillGivesTheHeaderLines) {
  Fixture f;
  OpenWith(f, std::vector<std::uint8_t>(8, 0));
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of Video Title Sets: 0",
                                                 "End byte address of VTS_ATR table: 0"}));
}

TEST(AtrtReportTest, RecordsBeyondTheEndOfTheFileReadAsZeros) {
  Fixture f;
  std::vector<std::uint8_t> table = TwoTitleSets();
  table.resize(794);  // the file ends inside the second record's end address
  OpenWith(f, table);
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines()[17], "  VTS 2 Attribute start byte address 792");
  EXPECT_EQ(f.lines()[18], "    VTS Attribute end byte address 0");
}

TEST(AtrtReportTest, HugeEndAddressReadsOnlyWhatTheFileHolds) {
  Fixture f;
  std::vector<std::uint8_t> table = TwoTitleSets();
  ByteWriter(table).put_be32(4, 0xFFFFFFF0);
  OpenWith(f, table);
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines()[1], "End byte address of VTS_ATR table: -16");
  EXPECT_EQ(f.lines().size(), 26u);
}

TEST(AtrtReportTest, EveryTitleSetIsListedOverZerosBeyondTheFile) {
  Fixture f;
  // 4096 title sets claimed, end address 0; the file ends 8 bytes after the header. Every
  // title set is listed: its pointer line (0) and 8 lines of a record read as zeros.
  std::vector<std::uint8_t> table(16, 0);
  ByteWriter(table).put_be16(0, 4096);
  OpenWith(f, table);
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  ASSERT_EQ(f.lines().size(), 2u + 4096u * 9u);
  EXPECT_EQ(f.lines()[0], "Number of Video Title Sets: 4096");
  EXPECT_EQ(f.lines()[11], "  VTS 2 Attribute start byte address 0");
  EXPECT_EQ(f.lines()[19], "    Number of subpicture streams in VTSTT_VOBS: 0");
  EXPECT_EQ(f.lines().back(), "    Number of subpicture streams in VTSTT_VOBS: 0");
  std::string text = test::DisassembleTables(f, {TableId::kVmgAtrt});
  EXPECT_NE(text.find("vts_atrt_srp002_vts_spst_ns=0"), std::string::npos);
  EXPECT_NE(text.find("vts_atrt_srp4096_vts_spst_ns=0"), std::string::npos);
}

TEST(AtrtReportTest, TruncatedFileListsTheFullCountWithZerosBeyondItsEnd) {
  Fixture f;
  std::vector<std::uint8_t> table = TwoTitleSets();
  table.resize(12);  // the file ends after the first search pointer
  OpenWith(f, table);
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  // Title set 1's record (at 16) and title set 2's pointer lie beyond the end: zeros.
  ASSERT_EQ(f.lines().size(), 2u + 2u * 9u);
  EXPECT_EQ(f.lines()[2], "  VTS 1 Attribute start byte address 16");
  EXPECT_EQ(f.lines()[3], "    VTS Attribute end byte address 0");
  EXPECT_EQ(f.lines()[5], "    Attributes of VTSM_VOBS: 00");
  EXPECT_EQ(f.lines()[11], "  VTS 2 Attribute start byte address 0");
  EXPECT_EQ(f.lines()[12], "    VTS Attribute end byte address 0");
  // Disassembled and assembled back: both title sets, 8 + 2 x (4 + 776) = 1568 bytes.
  std::string text = test::DisassembleTables(f, {TableId::kVmgAtrt});
  EXPECT_NE(text.find("vts_ns=2\r\n"), std::string::npos);
  EXPECT_NE(text.find("vts_atrt_srp002_vts_spst_ns=0"), std::string::npos);
  test::EmittedTable t = test::LoadAndEmit(f, TableId::kVmgAtrt);
  EXPECT_EQ(t.bytes, 1568u);
  ByteView v(t.file);
  EXPECT_EQ(v.be16(0), 2u);
  EXPECT_EQ(v.be32(12), 792u);
  EXPECT_EQ(v.be32(792), 775u);
  EXPECT_EQ(v.be32(792 + 4), 0u);
}

TEST(AtrtReportTest, ReportReadsTheRecordsAfresh) {
  Fixture f;
  OpenWith(f, TwoTitleSets());
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  std::vector<std::string> first = f.lines();
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines(), first);
  test::OverwriteOpenFile(f, 2048 + 16 + 7, {7});  // title set 1's category, last byte
  ReportTable(*f.ctx, TableId::kVmgAtrt);
  EXPECT_EQ(f.lines()[4], "    VTS_CAT Application type 7");
}

const char* const kDisassembled =
    "[vts_atrt]\r\nvts_ns=2\r\nvts_atrt_ea=1567\r\n"
    "vts_atrt_srp001_vts_atr_sa=16\r\nvts_atrt_srp001_vts_atr_ea=775\r\n"
    "vts_atrt_srp001_vts_cat=1\r\nvts_atrt_srp001_vtsm_v_atr=x4d01\r\n"
    "vts_atrt_srp001_vtsm_ast_ns=3\r\nvts_atrt_srp001_vtsm_ast_atr01=x1f\r\n"
    "vts_atrt_srp001_vtsm_ast_atr02=x80\r\nvts_atrt_srp001_vtsm_ast_atr03=x05\r\n"
    "vts_atrt_srp001_vtsm_spst_ns=1\r\nvts_atrt_srp001_vtsm_spst_atr01=x01\r\n"
    "vts_atrt_srp001_vts_v_atr=x4d01\r\nvts_atrt_srp001_vts_ast_ns=1\r\n"
    "vts_atrt_srp001_vts_ast_atr01=x40000000656e0000\r\nvts_atrt_srp001_vts_spst_ns=1\r\n"
    "vts_atrt_srp001_vts_spst_atr01=x010064650000\r\n"
    "vts_atrt_srp002_vts_atr_sa=792\r\nvts_atrt_srp002_vts_atr_ea=775\r\n"
    "vts_atrt_srp002_vts_cat=0\r\nvts_atrt_srp002_vtsm_v_atr=x0000\r\n"
    "vts_atrt_srp002_vtsm_ast_ns=0\r\nvts_atrt_srp002_vtsm_spst_ns=0\r\n"
    "vts_atrt_srp002_vts_v_atr=x0000\r\nvts_atrt_srp002_vts_ast_ns=0\r\n"
    "vts_atrt_srp002_vts_spst_ns=0\r\n";

TEST(AtrtDisassembleTest, ThreeMenuAudioStreamsGiveThreeOneByteKeys) {
  Fixture f;
  OpenWith(f, TwoTitleSets());
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgAtrt}), kDisassembled);
}

TEST(AtrtAssembleTest, TwoTitleSetsAre1568BytesWithRecordsAt16And792) {
  Fixture f;
  TableSize size;
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgAtrt, test::WithoutCr(kDisassembled), &size);
  EXPECT_EQ(size.bytes, 1568u);
  EXPECT_EQ(size.sectors, 1u);
  ASSERT_EQ(bytes.size(), 2048u);
  std::vector<std::uint8_t> expected = TwoTitleSets();
  // The menu stream bytes come back as decimal numbers after the "x": x1f reads 1, x80 reads
  // 80 (0x50), x05 reads 5, x01 reads 1.
  ByteWriter w(expected);
  w.put_u8(16 + 12, 1);
  w.put_u8(16 + 13, 80);
  expected.resize(2048, 0);
  EXPECT_EQ(bytes, expected);
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AtrtAssembleTest, AddressKeysAreComputedNotRead) {
  Fixture f;
  std::string source = test::WithoutCr(kDisassembled);
  source.replace(source.find("srp001_vts_atr_sa=16"), 20, "srp001_vts_atr_sa=99");
  source.replace(source.find("srp001_vts_atr_ea=775"), 21, "srp001_vts_atr_ea=99");
  source.replace(source.find("vts_atrt_ea=1567"), 16, "vts_atrt_ea=9");
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVmgAtrt, source);
  ByteView v(bytes);
  EXPECT_EQ(v.be32(4), 1567u);
  EXPECT_EQ(v.be32(8), 16u);
  EXPECT_EQ(v.be32(16), 775u);
}

TEST(AtrtAssembleTest, MissingCountIsReportedAndNothingIsLoaded) {
  Fixture f;
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgAtrt, "[vts_atrt]\nvts_atrt_ea=1567\n", &size);
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"Statement missing in vts_atrt!: vts_ns"}));
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(bytes.empty());
}

TEST(AtrtAssembleTest, CountOfZeroIsNothingLoaded) {
  Fixture f;
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgAtrt, "[vts_atrt]\nvts_ns=0\n", &size);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(bytes.empty());
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(AtrtAssembleTest, EveryMissingKeyIsReportedAndLoadingGoesOn) {
  Fixture f;
  std::string source =
      "[vts_atrt]\nvts_ns=1\nvts_atrt_srp001_vtsm_ast_ns=1\n"
      "vts_atrt_srp001_vts_ast_ns=1\nvts_atrt_srp001_vts_ast_atr01=x0102030405060708\n";
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVmgAtrt, source);
  const std::string c = "Statement missing in vts_atrt!: vts_atrt_srp001_";
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{c + "vts_cat", c + "vtsm_v_atr", c + "vtsm_ast_atr01",
                                      c + "vtsm_spst_ns", c + "vts_v_atr", c + "vts_spst_ns"}));
  ByteView v(bytes);
  EXPECT_EQ(v.be32(8), 12u);  // one record after one offset
  EXPECT_EQ(v.u8(12 + 11), 1u);
  EXPECT_EQ(v.be32(12 + 268), 0x01020304u);
}

TEST(AtrtAssembleTest, MenuStreamByteWithoutXIsReadAsDecimalToo) {
  Fixture f;
  std::string source =
      "[vts_atrt]\nvts_ns=1\nvts_atrt_srp001_vts_cat=0\nvts_atrt_srp001_vtsm_v_atr=0000\n"
      "vts_atrt_srp001_vtsm_ast_ns=2\nvts_atrt_srp001_vtsm_ast_atr01=42\n"
      "vts_atrt_srp001_vtsm_ast_atr02=x300\n"
      "vts_atrt_srp001_vtsm_spst_ns=0\nvts_atrt_srp001_vts_v_atr=x0000\n"
      "vts_atrt_srp001_vts_ast_ns=0\nvts_atrt_srp001_vts_spst_ns=0\n";
  std::vector<std::uint8_t> bytes = test::AssembleTable(f, TableId::kVmgAtrt, source);
  ByteView v(bytes);
  EXPECT_EQ(v.u8(12 + 12), 42u);
  EXPECT_EQ(v.u8(12 + 13), 300u - 256u);  // truncated to the byte
  EXPECT_TRUE(f.ui.Messages().empty());
}

}  // namespace
}  // namespace tarvex
