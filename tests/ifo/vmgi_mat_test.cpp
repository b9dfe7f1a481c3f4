#include "ifo/vmgi_mat.h"

#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/pgc.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

TEST(VmgiMatOpenTest, OverviewShowsTheHeadingAndTheMenuVobLine) {
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", test::MakeVmgImage(), kFileIfo);
  EXPECT_EQ(OpenVideoManager(*f.ctx, f.ctx->open.file_handle), 1u);
  ASSERT_GE(f.lines().size(), 2u);  // the other tables' lines follow
  EXPECT_EQ(
      std::vector<std::string>(f.lines().begin(), f.lines().begin() + 2),
      (std::vector<std::string>{"VMGI_MAT IFO File: Video Manager Information Management Table",
                                "VMGM_VOB: VMG Menu VOB starts at sector address: 1"}));
}

TEST(VmgiMatOpenTest, NoMenuVobGivesItsAbsenceLine) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  ByteWriter(image).put_be32(192, 0);
  f.OpenBytes("VIDEO_TS.IFO", image, kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  ASSERT_GE(f.lines().size(), 2u);
  EXPECT_EQ(f.lines()[1], "** VMGM_VOB: There is no VMG Menu VOB");
}

TEST(VmgiMatOpenTest, WrongIdentifierGivesOneLineWithTheImageAsText) {
  Fixture f;
  std::vector<std::uint8_t> image(2048, 0);
  const char* text = "NOT-A-DVD-IFO file";
  for (std::size_t i = 0; text[i]; ++i) image[i] = static_cast<std::uint8_t>(text[i]);
  f.OpenBytes("VIDEO_TS.IFO", image, kFileIfo);
  EXPECT_EQ(OpenVideoManager(*f.ctx, f.ctx->open.file_handle), 0u);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"Illegal IFO file starte code NOT-A-DVD-IFO file"}));
}

TEST(VmgiMatOpenTest, FileShorterThanTheImageReadsZerosBeyondItsEnd) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  image.resize(64);
  f.OpenBytes("VIDEO_TS.IFO", image, kFileIfo);
  EXPECT_EQ(OpenVideoManager(*f.ctx, f.ctx->open.file_handle), 1u);
  ReportVideoManager(*f.ctx);
  EXPECT_EQ(f.lines()[7], "VMG No Provider ID available:");
  EXPECT_EQ(f.lines().back(), "VMG has no First Play PGC");
}

std::vector<std::string> ExpectedReportHead(std::uint32_t mat_ea, std::uint32_t fp_sa) {
  return {
      "VMG Identifier: DVDVIDEO-VMG",
      "End address of VMG: 2",
      "End address of VMGI: 0",
      "Specification version number: 1.1",  // the disc's version field, vern
      "VMG Category: 10000",
      "VMG Number of Vols: 1 This Vol: 1 Disk side ID: 1",
      "VMG Number of Title Sets: 1",
      "VMG Provider ID: TARVEX",
      "VMG POS Code: 1234abcd",
      Format("End byte address of VMGI_MAT: %d", {mat_ea}),
      Format("Start byte address of First Play PGC FP_PGC: %d", {fp_sa}),
      "Start sector address of VMGM_VOBS: 1",
      "Start sector address of VMG_PTT_SRPT: 0",
      "Start sector address of VMGM_PGCI_UT: 0",
      "Start sector address of VMG_PTL_MAIT: 0",
      "Start sector address of VMG_VTS_ATRT: 0",
      "Start sector address of VMG_TXTDT_MG: 0",
      "Start sector address of VMGM_C_ADT: 0",
      "Start sector address of VMGM_VOBU_ADMAP: 0",
      "Video attributes of VMGM_VOBS: 5010",
      "Number of audio streams in VMGM_VOBS: 2",
      "  Audio 1 attributes: 61",
      "  Audio 2 attributes: 62",
      "VMGM Number of subpicture streams: 1",
      "  Subpicture stream 1 attributes: 11",
  };
}

TEST(VmgiMatReportTest, ReportsEveryFieldAndTheFirstPlayChainWithIndentTwo) {
  Fixture f;
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  f.OpenBytes("VIDEO_TS.IFO", test::MakeVmgImage(pgc), kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  ReportVideoManager(*f.ctx);
  std::vector<std::string> expected = ExpectedReportHead(1341, 1024);
  expected.push_back("VMG First Play PGC:");
  const auto& l = f.lines();
  ASSERT_GT(l.size(), expected.size());
  EXPECT_EQ(std::vector<std::string>(l.begin(), l.begin() + expected.size()), expected);
  // The chain's own lines follow, indented by two blanks.
  EXPECT_EQ(l[expected.size()], "  PGC: Number of Programs: 2");
  EXPECT_EQ(l.back(), "      VOB ID number 1 of this Cell 2");
}

TEST(VmgiMatReportTest, WithoutFirstPlayChainTheLastLineSaysSo) {
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", test::MakeVmgImage(), kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  ReportVideoManager(*f.ctx);
  std::vector<std::string> expected = ExpectedReportHead(1023, 0);
  expected.push_back("VMG has no First Play PGC");
  EXPECT_EQ(f.lines(), expected);
}

TEST(VmgiMatReportTest, IdentifierRunsToTheFirstZeroByteOfTheImage) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  ByteWriter(image).put_be32(12, 0x41424300);  // vmg_ea whose bytes read "ABC"
  f.OpenBytes("VIDEO_TS.IFO", image, kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  ReportVideoManager(*f.ctx);
  EXPECT_EQ(f.lines()[0], "VMG Identifier: DVDVIDEO-VMGABC");
}

TEST(VmgiMatReportTest, ProviderOfThirtyTwoCharactersRunsOnIntoThePosCode) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  for (std::size_t i = 0; i < 32; ++i) image[64 + i] = 'P';
  f.OpenBytes("VIDEO_TS.IFO", image, kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  ReportVideoManager(*f.ctx);
  EXPECT_EQ(f.lines()[7],
            "VMG Provider ID: " + std::string(32, 'P') + "\x01\x02\x03\x04\n\x0b\x0c\x0d");
}

TEST(VmgiMatDisassembleTest, WritesSectionVmgiMatAndTheFirstPlayChain) {
  Fixture f;
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  f.OpenBytes("VIDEO_TS.IFO", test::MakeVmgImage(pgc), kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  test::UseSource(f, "[old]\nkey=1\n", "VIDEO_TS.INI");
  DisassembleVideoManager(*f.ctx);
  f.ctx->profiles.Flush();
  std::string text = test::ReadFileText(f.ctx->convert.source_path);
  std::string expected =
      "[vmgi_mat]\r\nvmg_id=DVDVIDEO-VMG\r\nvmg_ea=2\r\nvmgi_ea=0\r\nvern=1.1\r\n"
      "vmg_cat=x00010000\r\nvlms_id=x0001000101000000\r\nvmg_ns=1\r\npvr_id=TARVEX\r\n"
      "pos_cd=x010203040a0b0c0d\r\nvmgi_mat_ea=1341\r\nfp_pgci_sa=1024\r\nvmgm_vobs_sa=1\r\n"
      "tt_srpt_sa=0\r\nvmgm_pgci_ut_sa=0\r\nptl_mait_sa=0\r\nvts_atrt_sa=0\r\n"
      "txtdt_mg_sa=0\r\nvmgm_c_adt_sa=0\r\nvmgm_vobu_admap_sa=0\r\nvmgm_v_atr=x5010\r\n"
      "vmgm_ast_ns=2\r\nvmgm_ast_atr=x6162636400000000\r\nvmgm_spst_ns=1\r\n"
      "vmgm_spst_atr=x110000000000\r\n\r\n[fp_pgci]\r\npgc_cnt=00000202\r\n";
  EXPECT_EQ(text.substr(0, expected.size()), expected);
  EXPECT_EQ(text.find("[old]"), std::string::npos);
}

// A complete vmgi_mat section as the disassembly writes it (fp_pgci appended by callers).
std::string VmgSource() {
  return "[vmgi_mat]\nvmg_id=DVDVIDEO-VMG\nvmg_ea=99\nvmgi_ea=99\nvern=1.1\n"
         "vmg_cat=x00010000\nvlms_id=x0001000101000000\nvmg_ns=1\npvr_id=TARVEX\n"
         "pos_cd=x010203040a0b0c0d\nvmgi_mat_ea=99\nfp_pgci_sa=99\nvmgm_vobs_sa=99\n"
         "tt_srpt_sa=99\nvmgm_pgci_ut_sa=99\nptl_mait_sa=99\nvts_atrt_sa=99\n"
         "txtdt_mg_sa=99\nvmgm_c_adt_sa=99\nvmgm_vobu_admap_sa=99\nvmgm_v_atr=x5010\n"
         "vmgm_ast_ns=2\nvmgm_ast_atr=x6162636400000000\nvmgm_spst_ns=1\n"
         "vmgm_spst_atr=x110000000000\n";
}

struct Assembled {
  std::vector<std::uint8_t> bytes;
  std::vector<std::string> messages;
};

Assembled Assemble(Fixture& f, const std::string& source,
                   const std::string& out_name = "VIDEO_TS.IFO") {
  test::UseSource(f, source, "VIDEO_TS.INI");
  std::vector<std::uint8_t> bytes = test::AssembleVideoManagerInto(f, out_name);
  return {bytes, f.ui.Messages()};
}

TEST(VmgiMatAssembleTest, SourceWithoutFirstPlayChainGivesOneSectorTable) {
  Fixture f;
  Assembled a = Assemble(f, VmgSource());
  EXPECT_TRUE(a.messages.empty());
  ASSERT_EQ(a.bytes.size(), 2048u);
  ByteView v(a.bytes);
  EXPECT_EQ(v.be32(132), 0u);     // fp_pgci_sa
  EXPECT_EQ(v.be32(128), 1023u);  // vmgi_mat_ea
}

TEST(VmgiMatAssembleTest, OnlyTheTableItselfLeavesEveryStartSectorZero) {
  Fixture f;
  Assembled a = Assemble(f, VmgSource());
  ByteView v(a.bytes);
  for (std::size_t off = 192; off <= 220; off += 4) EXPECT_EQ(v.be32(off), 0u) << off;
  EXPECT_EQ(v.be32(28), 0u);  // vmgi_ea = T - 1 with T = 1
  EXPECT_EQ(v.be32(12), 1u);  // vmg_ea = 2T - 1 without a menu VOB
}

TEST(VmgiMatAssembleTest, FieldsAreReadBackAndComputedFieldsIgnored) {
  Fixture f;
  Assembled a = Assemble(f, VmgSource());
  std::vector<std::uint8_t> expected = test::MakeVmgImage();
  ByteWriter w(expected);
  w.put_be32(12, 1);   // vmg_ea: 2T - 1
  w.put_be32(192, 0);  // no menu VOB beside the output
  EXPECT_EQ(a.bytes, expected);
}

TEST(VmgiMatAssembleTest, MenuVobBesideTheOutputGivesItsStartAndSize) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("VIDEO_TS.vob"), std::vector<std::uint8_t>(4097, 0));
  Assembled a = Assemble(f, VmgSource());
  ByteView v(a.bytes);
  EXPECT_EQ(v.be32(192), 1u);             // vmgm_vobs_sa = T
  EXPECT_EQ(v.be32(12), 2u * 1 + 3 - 1);  // vmg_ea = 2T + V - 1, V = 3 sectors
}

TEST(VmgiMatAssembleTest, FirstPlayChainIsPlacedAtByte1024) {
  Fixture f;
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  f.OpenBytes("SRC.IFO", test::MakeVmgImage(pgc), kFileIfo);
  OpenVideoManager(*f.ctx, f.ctx->open.file_handle);
  f.ctx->convert.source_path = f.dir.file("VIDEO_TS.INI");
  DisassembleVideoManager(*f.ctx);
  f.ctx->profiles.Flush();
  std::vector<std::uint8_t> bytes = test::AssembleVideoManagerInto(f, "VIDEO_TS.IFO");
  std::vector<std::uint8_t> expected = test::MakeVmgImage(pgc);
  expected.resize(2048);
  ByteWriter w(expected);
  w.put_be32(12, 1);
  w.put_be32(192, 0);
  EXPECT_EQ(bytes, expected);
}

std::string Commands(int count) {
  std::string s = Format("pgc_cmdt_pre_ns=%d\n", {count});
  for (int n = 1; n <= count; ++n) s += Format("pgc_pre%d=0000000000000000\n", {n});
  return s;
}

std::string FirstPlayHeader(const char* cnt) {
  std::string s =
      std::string("[fp_pgci]\npgc_cnt=") + cnt + "\npgc_pb_tm=00000000\npgc_uop_ctl=0\n";
  for (int n = 1; n <= 8; ++n) s += Format("pgc_ast_ctlt%02d=0\n", {n});
  for (int n = 1; n <= 32; ++n) s += Format("pgc_spst_ctlt%02d=0\n", {n});
  s += "pgc_nv_ctl=0000000000000000\n";
  for (int n = 1; n <= 16; ++n) s += Format("pgc_sp_plt%02d=0\n", {n});
  return s;
}

TEST(VmgiMatAssembleTest, FirstPlayChainOf1268BytesIsAccepted) {
  Fixture f;
  Assembled a = Assemble(f, VmgSource() + FirstPlayHeader("00000000") + Commands(128));
  EXPECT_TRUE(a.messages.empty());
  ASSERT_EQ(a.bytes.size(), 4096u);
  EXPECT_EQ(ByteView(a.bytes).be32(128), 1023u + 1268u);
  EXPECT_EQ(ByteView(a.bytes).be32(132), 1024u);
}

TEST(VmgiMatAssembleTest, FirstPlayChainAbove1268BytesIsRefusedAndNothingWritten) {
  // Chains have even sizes; 1270 bytes is the smallest size above the limit.
  Fixture f;
  Assembled a = Assemble(f, VmgSource() + FirstPlayHeader("00000100") + Commands(128) +
                                "pgc_pgmap_prog_entry_cell01=1\n");
  EXPECT_EQ(a.messages, (std::vector<std::string>{
                            "Source code format error!: First Play PGC size exceeds maximum "
                            "size allowed"}));
  EXPECT_TRUE(a.bytes.empty());
}

TEST(VmgiMatAssembleTest, MissingIdentifierStopsBeforeAnythingIsWritten) {
  Fixture f;
  std::string source = VmgSource();
  source.erase(source.find("vmg_id=DVDVIDEO-VMG\n"), 20);
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"IFO assembler error!: VMG ID is missing"}));
  EXPECT_TRUE(a.bytes.empty());
}

TEST(VmgiMatAssembleTest, WrongIdentifierIsReportedAndCopied) {
  Fixture f;
  std::string source = VmgSource();
  source.replace(source.find("vmg_id=DVDVIDEO-VMG"), 19, "vmg_id=DVDVIDEO-VTS");
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"Syntax error!: Illegal VIDEO_TS field"}));
  EXPECT_EQ(ByteView(a.bytes).cstr(0, 12), "DVDVIDEO-VTS");
}

TEST(VmgiMatAssembleTest, MissingTitleSetCountIsReportedAsVtsNs) {
  Fixture f;
  std::string source = VmgSource();
  source.erase(source.find("vmg_ns=1\n"), 9);
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"Statement missing in vmgi_mat: vts_ns"}));
  EXPECT_EQ(ByteView(a.bytes).be16(62), 0);
}

TEST(VmgiMatAssembleTest, MissingFieldIsReportedAndLeftZero) {
  Fixture f;
  std::string source = VmgSource();
  source.erase(source.find("pos_cd=x010203040a0b0c0d\n"), 25);
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"Statement missing in vmgi_mat: pos_cd"}));
  EXPECT_EQ(ByteView(a.bytes).be32(96), 0u);
}

TEST(VmgiMatAssembleTest, DecimalCountIsTruncatedToItsWidth) {
  Fixture f;
  std::string source = VmgSource();
  source.replace(source.find("vmg_ns=1"), 8, "vmg_ns=65537");
  Assembled a = Assemble(f, source);
  EXPECT_EQ(ByteView(a.bytes).be16(62), 1);
}

TEST(VmgiMatAssembleTest, VersionTakesTheFirstCharacterAndTheTextFromTheThird) {
  Fixture f;
  std::string source = VmgSource();
  source.replace(source.find("vern=1.1"), 8, "vern=2.13");
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.bytes[33], 0x2D);
}

}  // namespace
}  // namespace tarvex
