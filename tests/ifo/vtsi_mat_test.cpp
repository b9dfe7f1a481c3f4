#include "ifo/vtsi_mat.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

TEST(VtsiMatOpenTest, OverviewShowsTheHeadingAndBothVobLines) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  EXPECT_EQ(OpenTitleSet(*f.ctx, f.ctx->open.file_handle), 1u);
  ASSERT_GE(f.lines().size(), 3u);  // the other tables' lines follow
  EXPECT_EQ(
      std::vector<std::string>(f.lines().begin(), f.lines().begin() + 3),
      (std::vector<std::string>{"VTSI_MAT IFO File: Video Title Set Information Management Table",
                                "** VTSM_VOB: There is no VTS Menu VOB",
                                "VTS_VOB: VTS VOB starts at sector address: 1"}));
}

TEST(VtsiMatOpenTest, MenuVobLineAndMissingTitleVobLine) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVtsImage();
  ByteWriter w(image);
  w.put_be32(0xC0, 5);
  w.put_be32(0xC4, 0);
  f.OpenBytes("VTS_01_0.IFO", image, kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  EXPECT_EQ(f.lines()[1], "VTSM_VOB: VTS Menu VOB starts at sector address: 5");
  EXPECT_EQ(f.lines()[2], "** VTS_VOB: There is no VTS VOB");
}

TEST(VtsiMatOpenTest, OtherFileGoesToTheVideoManagerReading) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  f.OpenBytes("VTS_01_0.IFO", image, kFileIfo);
  EXPECT_EQ(OpenTitleSet(*f.ctx, f.ctx->open.file_handle), 1u);
  EXPECT_EQ(f.lines()[0], "VMGI_MAT IFO File: Video Manager Information Management Table");
}

TEST(VtsiMatOpenTest, OpenStepAddsHeadingLinesOnlyNotFullReports) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  for (const std::string& line : f.lines()) {
    EXPECT_TRUE(line.find(" File: ") != std::string::npos || line.find("VOB") != std::string::npos)
        << line;
  }
}

std::vector<std::string> ExpectedReport() {
  std::vector<std::string> lines = {
      std::string("VTS Identifier: DVDVIDEO-VTS\x01\x02"),
      "End address of VTS: 513",
      "End address of VTSI: 0",
      "Specification version number: 1.1",  // the disc's version field, vern
      "VTS Category: 0000000f",
      "End byte address of VTSI_MAT: 2047",
      "Start sector address of VTSM_VOBS: 0",
      "Start sector address of VTSTT_VOBS: 1",
  };
  for (const char* t : {"VTS_PTT_SRPT", "VTS_PGCIT", "VTSM_PGCI_UT", "VTS_TMAPT", "VTSM_C_ADT",
                        "VTSM_VOBU_ADMAP", "VTS_C_ADT", "VTS_VOBU_ADMAP"}) {
    lines.push_back(Format("Start sector address of %s: 0", {t}));
  }
  for (const char* l :
       {"Video attributes of VTSM_VOBS: 5010", "Number of audio streams in VTSM_VOBS: 0",
        "VTSM Audio attributes: 0000000000000000", "Number of VTSM subpicture streams: 0",
        "VTSM subpicture attributes: 000000000000", "Video attributes of VTSTT_VOBS: 4d01",
        "Number of audio streams in VTSTT_VOBS: 1", "  Audio 1 attributes: 40000000656e0000",
        "Number of subpicture streams in VTSTT_VOBS: 1",
        "  Subpicture stream 1 attributes: 010064650000"}) {
    lines.push_back(l);
  }
  return lines;
}

TEST(VtsiMatReportTest, ReportsEveryFieldOfTheRecordInMemory) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  ReportTitleSet(*f.ctx);
  EXPECT_EQ(f.lines(), ExpectedReport());
}

TEST(VtsiMatReportTest, IdentifierRunsOnIntoTheSwappedEndAddress) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVtsImage();
  ByteWriter(image).put_be32(0x0C, 0x00434241);  // swapped in place: 41 42 43 00
  f.OpenBytes("VTS_01_0.IFO", image, kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  ReportTitleSet(*f.ctx);
  EXPECT_EQ(f.lines()[0], "VTS Identifier: DVDVIDEO-VTSABC");
  EXPECT_EQ(f.lines()[1], "End address of VTS: 4407873");
}

TEST(VtsiMatReportTest, ReportingTwiceGivesTheSameLines) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  ReportTitleSet(*f.ctx);
  std::vector<std::string> first = f.lines();
  ReportTitleSet(*f.ctx);
  EXPECT_EQ(f.lines(), first);
}

std::string ExpectedSource() {
  std::string s =
      "[vtsi_mat]\r\nvts_id=DVDVIDEO-VTS\r\nvts_ea=513\r\nvtsi_ea=0\r\nvern=1.1\r\n"
      "vts_cat=0000000f\r\nvtsi_mat_ea=2047\r\nvtsm_vobs_sa=0\r\nvtstt_vobs_sa=1\r\n"
      "vts_ptt_srpt_sa=0\r\nvts_pgcit_sa=0\r\nvtsm_pgci_ut_sa=0\r\nvts_tmapt_sa=0\r\n"
      "vtsm_c_adt_sa=0\r\nvtsm_vobu_admap_sa=0\r\nvts_c_adt_sa=0\r\nvts_vobu_admap_sa=0\r\n"
      "vtsm_v_atr=5010\r\nvtsm_ast_ns=0\r\nvtsm_ast_atr=0000000000000000\r\nvtsm_spst_ns=0\r\n"
      "vtsm_spst_atr=000000000000\r\nvts_v_atr=4d01\r\nvts_ast_ns=1\r\n"
      "vts_ast_atrt01=40000000656e0000\r\nvts_spst_ns=1\r\nvts_spst_atrt01=010064650000\r\n";
  for (int n = 1; n <= 8; ++n) {
    s += Format("vts_mu_ast_atrt%02d=", {n}) + std::string(48, '0') + "\r\n";
  }
  return s;
}

TEST(VtsiMatDisassembleTest, WritesSectionVtsiMatIntoAFreshSource) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", test::MakeVtsImage(), kFileIfo);
  OpenTitleSet(*f.ctx, f.ctx->open.file_handle);
  test::UseSource(f, "[old]\nkey=1\n", "VTS_01_0.INI");
  DisassembleTitleSet(*f.ctx);
  f.ctx->profiles.Flush();
  EXPECT_EQ(test::ReadFileText(f.ctx->convert.source_path), ExpectedSource());
}

struct Assembled {
  std::vector<std::uint8_t> bytes;
  std::vector<std::string> messages;
};

std::string VtsSource() {
  return test::WithoutCr(ExpectedSource());
}

Assembled Assemble(Fixture& f, const std::string& source) {
  test::UseSource(f, source, "VTS_01_0.INI");
  std::vector<std::uint8_t> bytes = test::AssembleTitleSetInto(f, "VTS_01_0.IFO");
  return {bytes, f.ui.Messages()};
}

TEST(VtsiMatAssembleTest, DisassembledRecordAssemblesBackWithComputedAddresses) {
  Fixture f;
  Assembled a = Assemble(f, VtsSource());
  EXPECT_TRUE(a.messages.empty());
  std::vector<std::uint8_t> expected = test::MakeVtsImage();
  ByteWriter(expected).put_be32(0x0C, 1);  // vts_ea: no VOB files beside the output
  EXPECT_EQ(a.bytes, expected);
}

TEST(VtsiMatAssembleTest, NoMenuVobGivesMenuStartZeroAndTitleStartAfterTheIfo) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_1.vob"), std::vector<std::uint8_t>(2048, 0));
  Assembled a = Assemble(f, VtsSource());
  ByteView v(a.bytes);
  EXPECT_EQ(v.be32(0xC0), 0u);
  EXPECT_EQ(v.be32(0xC4), v.be32(0x1C) + 1);
  EXPECT_EQ(v.be32(0x0C), 2u);  // vtsi_ea 0 + counter 2
}

TEST(VtsiMatAssembleTest, NoTitleVobsStillSetTheTitleStartAndTheEndAddress) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_0.vob"), std::vector<std::uint8_t>(3 * 2048, 0));
  Assembled a = Assemble(f, VtsSource());
  ByteView v(a.bytes);
  std::uint32_t vtsi_ea = v.be32(0x1C);
  EXPECT_EQ(v.be32(0xC0), vtsi_ea + 1);
  EXPECT_EQ(v.be32(0xC4), vtsi_ea + 1 + 3);
  EXPECT_EQ(v.be32(0x0C), vtsi_ea + vtsi_ea + 1 + 3);
}

TEST(VtsiMatAssembleTest, GapInTheTitleVobNumberingCountsOnlyTheFirstParts) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_1.vob"), std::vector<std::uint8_t>(2048, 0));
  test::WriteFileBytes(f.dir.file("vts_01_3.vob"), std::vector<std::uint8_t>(8192, 0));
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(ByteView(a.bytes).be32(0x0C), 0u + 1 + 1);
}

TEST(VtsiMatAssembleTest, MenuVobOf2049BytesAsksAndOnYesCountsTwoSectors) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_0.vob"), std::vector<std::uint8_t>(2049, 0));
  f.ui.yes_no_answers.push_back(true);
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.messages,
            (std::vector<std::string>{"Would you like to continue?: Warning! Menu file " +
                                      f.dir.file("vts_01_0.vob") +
                                      " is not divisble by 2048, a requirement of DVD-Video "
                                      "standards."}));
  ByteView v(a.bytes);
  EXPECT_EQ(v.be32(0xC0), 1u);
  EXPECT_EQ(v.be32(0xC4), 3u);
}

TEST(VtsiMatAssembleTest, NoToASizeQuestionStopsWithNothingWritten) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_0.vob"), std::vector<std::uint8_t>(2049, 0));
  f.ui.yes_no_answers.push_back(false);
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.messages.size(), 1u);
  EXPECT_TRUE(a.bytes.empty());
}

TEST(VtsiMatAssembleTest, TitleVobOddSizeUsesTheMenuFileWording) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("vts_01_1.vob"), std::vector<std::uint8_t>(100, 0));
  f.ui.yes_no_answers.push_back(true);
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.messages,
            (std::vector<std::string>{"Would you like to continue?: Warning! Menu file " +
                                      f.dir.file("vts_01_1.vob") +
                                      " is not divisble by 2048, a requirement of DVD-Video "
                                      "standards."}));
  EXPECT_EQ(ByteView(a.bytes).be32(0x0C), 2u);
}

void MakeSparseFile(const std::string& path, std::uintmax_t size) {
  test::WriteFileBytes(path, {});
  std::filesystem::resize_file(path, size);
}

TEST(VtsiMatAssembleTest, MenuAndTitleFilesHaveDifferentSizeLimits) {
  Fixture f;
  // 0x3FFF8800 bytes: above the title file limit, below the menu file limit.
  MakeSparseFile(f.dir.file("vts_01_0.vob"), 0x3FFF8800u);
  MakeSparseFile(f.dir.file("vts_01_1.vob"), 0x3FFF8800u);
  f.ui.yes_no_answers.push_back(true);
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.messages,
            (std::vector<std::string>{"Would you like to continue?: Warning! Menu file " +
                                      f.dir.file("vts_01_1.vob") +
                                      " exceeds maximum size allowed in DVD-Video standards."}));
}

TEST(VtsiMatAssembleTest, MenuFileAboveItsLimitIsAskedAbout) {
  Fixture f;
  MakeSparseFile(f.dir.file("vts_01_0.vob"), 0x40000000u);
  f.ui.yes_no_answers.push_back(false);
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.messages,
            (std::vector<std::string>{"Would you like to continue?: Warning! Menu file " +
                                      f.dir.file("vts_01_0.vob") +
                                      " exceeds maximum size allowed in DVD-Video standards."}));
  EXPECT_TRUE(a.bytes.empty());
}

TEST(VtsiMatAssembleTest, MessageQuotesThePathAsBuiltWhateverTheFoundSpelling) {
  Fixture f;
  test::WriteFileBytes(f.dir.file("VTS_01_0.VOB"), std::vector<std::uint8_t>(2049, 0));
  f.ui.yes_no_answers.push_back(true);
  Assembled a = Assemble(f, VtsSource());
  ASSERT_EQ(a.messages.size(), 1u);
  EXPECT_NE(a.messages[0].find(f.dir.file("vts_01_0.vob")), std::string::npos) << a.messages[0];
  EXPECT_EQ(ByteView(a.bytes).be32(0xC0), 1u);
}

TEST(VtsiMatAssembleTest, TableOfSizeZeroStartsAtZeroAndDoesNotMoveTheOthers) {
  EXPECT_EQ(LayOutTitleSetTables({1, 2, 0, 0, 1, 0, 3, 1}),
            (std::array<std::uint32_t, 8>{1, 2, 0, 0, 4, 0, 5, 8}));
  EXPECT_EQ(LayOutTitleSetTables({0, 0, 0, 0, 0, 0, 0, 0}), (std::array<std::uint32_t, 8>{}));
}

TEST(VtsiMatAssembleTest, VersionOnePointOneGivesByte0x11) {
  Fixture f;
  Assembled a = Assemble(f, VtsSource());
  EXPECT_EQ(a.bytes[0x21], 0x11);
}

TEST(VtsiMatAssembleTest, CategoryWithOrWithoutLeadingXGivesFifteen) {
  for (const char* cat : {"vts_cat=x0000000F", "vts_cat=0000000F"}) {
    Fixture f;
    std::string source = VtsSource();
    source.replace(source.find("vts_cat=0000000f"), 16, cat);
    Assembled a = Assemble(f, source);
    EXPECT_EQ(ByteView(a.bytes).be32(0x22), 15u) << cat;
  }
}

TEST(VtsiMatAssembleTest, MenuVideoAttributesAreOneHexNumberTitleOnesTwoPairs) {
  Fixture f;
  std::string source = VtsSource();
  source.replace(source.find("vtsm_v_atr=5010"), 15, "vtsm_v_atr=x10");
  source.replace(source.find("vts_v_atr=4d01"), 14, "vts_v_atr=x10");
  Assembled a = Assemble(f, source);
  ByteView v(a.bytes);
  EXPECT_EQ(v.be16(0x100), 0x0010);
  EXPECT_EQ(v.be16(0x200), 0x1000);
}

TEST(VtsiMatAssembleTest, AudioCountAboveTheTableRoomWritesOnAsTheOffsetsDictate) {
  Fixture f;
  std::string source = VtsSource();
  source.replace(source.find("vts_ast_ns=1"), 12, "vts_ast_ns=9");
  for (int n = 2; n <= 9; ++n) {
    source +=
        Format("vts_ast_atrt%02d=%02x%02x%02x%02x%02x%02x%02x%02x\n", {n, n, n, n, n, n, n, n, n});
  }
  Assembled a = Assemble(f, source);
  ByteView v(a.bytes);
  EXPECT_EQ(v.be32(0x204 + 8 * 8), 0x09090909u);  // entry 9 lies beyond the 8 entries
  EXPECT_EQ(v.u8(0x255), 1);
}

TEST(VtsiMatAssembleTest, MissingIdentifierStopsWithNothingWritten) {
  Fixture f;
  std::string source = VtsSource();
  source.erase(source.find("vts_id=DVDVIDEO-VTS\n"), 20);
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"IFO assembler error!: VTS ID is missing"}));
  EXPECT_TRUE(a.bytes.empty());
}

TEST(VtsiMatAssembleTest, WrongIdentifierIsReportedAndAssemblyGoesOn) {
  Fixture f;
  std::string source = VtsSource();
  source.replace(source.find("vts_id=DVDVIDEO-VTS"), 19, "vts_id=DVDVIDEO-VMG");
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages, (std::vector<std::string>{"Syntax error!: Illegal VTS_ID field"}));
  EXPECT_EQ(a.bytes.size(), 2048u);
}

TEST(VtsiMatAssembleTest, MissingKeyIsReportedWithTheVtsiMatCaption) {
  Fixture f;
  std::string source = VtsSource();
  source.erase(source.find("vts_spst_atrt01=010064650000\n"), 29);
  Assembled a = Assemble(f, source);
  EXPECT_EQ(a.messages,
            (std::vector<std::string>{"Statement missing in vtsi_mat: vts_spst_atrt01"}));
}

}  // namespace
}  // namespace tarvex
