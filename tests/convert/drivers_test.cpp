#include "convert/drivers.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "platform/bytes.h"
#include "platform/paths.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

using test::FirstLines;
using test::VmgImageOverviewHead;

TEST(IfoDetailsTest, HeadingLineShowsTheTableAndTheNextPressReturnsToTheOverview) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  std::vector<std::string> overview = f.lines();
  f.ctx->report.Select(0);
  ShowIfoDetails(*f.ctx);
  ASSERT_FALSE(f.lines().empty());
  EXPECT_EQ(f.lines()[0], "VMG Identifier: DVDVIDEO-VMG");
  EXPECT_EQ(f.lines().back(), "VMG has no First Play PGC");
  ShowIfoDetails(*f.ctx);
  EXPECT_EQ(f.lines(), overview);
  EXPECT_EQ(FirstLines(f, 2), VmgImageOverviewHead());
}

TEST(IfoDetailsTest, LineMatchingNoTableDoesNothing) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  ByteWriter(image).put_be32(192, 0);
  test::OpenIfo(f, "VIDEO_TS.IFO", image);
  ASSERT_EQ(f.lines()[1], "** VMGM_VOB: There is no VMG Menu VOB");
  std::vector<std::string> overview = f.lines();
  f.ctx->report.Select(1);
  ShowIfoDetails(*f.ctx);
  EXPECT_EQ(f.lines(), overview);
  EXPECT_EQ(f.lines()[1], "** VMGM_VOB: There is no VMG Menu VOB");
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
}

TEST(IfoDetailsTest, NoSelectedLineDoesNothing) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  std::vector<std::string> overview = f.lines();
  ShowIfoDetails(*f.ctx);
  EXPECT_EQ(f.lines(), overview);
}

TEST(IfoDetailsTest, PrefixIsComparedCaseSensitively) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  std::size_t overview = f.lines().size();
  f.ctx->AddReportLine("vmgi_mat IFO File: lower case");
  f.ctx->report.Select(overview);
  ShowIfoDetails(*f.ctx);
  EXPECT_EQ(f.lines().size(), overview + 1);
}

TEST(IfoDetailsTest, TableWithZeroHeaderValuesStillGetsItsDetails) {
  Fixture f;
  std::vector<std::uint8_t> image(2048, 0);
  for (std::size_t i = 0; i < 12; ++i) image[i] = static_cast<std::uint8_t>("DVDVIDEO-VTS"[i]);
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  f.ctx->report.Select(0);
  ShowIfoDetails(*f.ctx);
  ASSERT_GT(f.lines().size(), 3u);
  EXPECT_EQ(f.lines()[0], "VTS Identifier: DVDVIDEO-VTS");
  EXPECT_EQ(f.lines()[1], "End address of VTS: 0");
}

TEST(IfoDisassemblyTest, ChooserProposesTheIniBesideTheFileAndCancelWritesNothing) {
  Fixture f;
  std::string path = test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  DisassembleIfo(*f.ctx);
  std::vector<ChooserRequest> choosers = f.ui.Choosers();
  ASSERT_EQ(choosers.size(), 1u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kDisassemblySource);
  EXPECT_EQ(choosers[0].filter, "IFO List File(*.INI)|*.INI|");
  EXPECT_EQ(choosers[0].initial_dir, HomeDirectory());
  EXPECT_EQ(choosers[0].default_name, f.dir.file("VIDEO_TS.INI"));
  EXPECT_FALSE(File::Exists(f.dir.file("VIDEO_TS.INI")));
  EXPECT_EQ(path, f.ctx->open.file_path);
}

TEST(IfoDisassemblyTest, IfoWithEveryTableAbsentWritesOnlyTheInformationTable) {
  Fixture f;
  std::vector<std::uint8_t> image = test::MakeVmgImage();
  ByteWriter(image).put_be32(192, 0);
  test::OpenIfo(f, "VIDEO_TS.IFO", image);
  std::string source = test::DisassembleIfoTo(f, "out.ini");
  std::string text = test::ReadFileText(source);
  EXPECT_EQ(text.find('['), 0u);
  EXPECT_EQ(text.rfind('['), 0u);  // one section only
  EXPECT_TRUE(text.starts_with("[vmgi_mat]\r\nvmg_id=DVDVIDEO-VMG\r\n"));
  EXPECT_EQ(f.ctx->convert.source_path, source);
}

TEST(IfoDisassemblyTest, StartedWhileDetailsAreShownWritesNothing) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  f.ctx->report.Select(0);
  ShowIfoDetails(*f.ctx);
  std::string source = test::DisassembleIfoTo(f, "out.ini");
  EXPECT_FALSE(File::Exists(source));
}

TEST(IfoDisassemblyTest, TitleSetDisassemblyFollowsTheHeadingLines) {
  Fixture f;
  test::OpenIfo(f, "VTS_01_0.IFO", test::MakeVtsImage());
  std::string source = test::DisassembleIfoTo(f, "VTS_01_0.INI");
  EXPECT_TRUE(test::ReadFileText(source).starts_with("[vtsi_mat]\r\nvts_id=DVDVIDEO-VTS\r\n"));
}

const std::string kVmgSource =
    "[vmgi_mat]\nvmg_id=DVDVIDEO-VMG\nvern=1.0\nvmg_cat=x00000000\nvlms_id=x0001000100000000\n"
    "vmg_ns=1\npvr_id=\npos_cd=x0000000000000000\nvmgm_v_atr=x0000\nvmgm_ast_ns=0\n"
    "vmgm_ast_atr=x0000000000000000\nvmgm_spst_ns=0\nvmgm_spst_atr=x000000000000\n"
    "[vts_atrt]\nvts_ns=0\n"
    "[vmg_ptt_srpt]\nvts_ttu_ns=0\n";

const std::string kVtsSource =
    "[vtsi_mat]\nvts_id=DVDVIDEO-VTS\nvern=1.0\nvts_cat=00000000\nvtsm_v_atr=0000\n"
    "vtsm_ast_ns=0\nvtsm_ast_atr=0000000000000000\nvtsm_spst_ns=0\nvtsm_spst_atr=000000000000\n"
    "vts_v_atr=0000\nvts_ast_ns=0\nvts_spst_ns=0\n"
    "vts_mu_ast_atrt01=0\nvts_mu_ast_atrt02=0\nvts_mu_ast_atrt03=0\nvts_mu_ast_atrt04=0\n"
    "vts_mu_ast_atrt05=0\nvts_mu_ast_atrt06=0\nvts_mu_ast_atrt07=0\nvts_mu_ast_atrt08=0\n"
    "[vts_pgcit]\nvts_pgci_srp_ns=0\n"  // no title chains: the table is left out
    "[vts_ptt_srpt]\nvts_ttu_ns=0\n";

std::vector<std::uint8_t> AssembleInteractively(Fixture& f, const std::string& source_name,
                                                const std::string& text,
                                                const std::string& output_name) {
  std::string source = f.dir.file(source_name);
  test::WriteText(source, text);
  f.ui.chooser_answers.push_back(source);
  f.ui.chooser_answers.push_back(f.dir.file(output_name));
  AssembleInteractive(*f.ctx);
  return test::ReadFileBytes(f.dir.file(output_name));
}

TEST(IfoAssemblyTest, VideoTsIniAssemblesAsVideoManager) {
  Fixture f;
  std::vector<std::uint8_t> out =
      AssembleInteractively(f, "VIDEO_TS.INI", kVmgSource, "VIDEO_TS.IFO");
  EXPECT_TRUE(f.ui.Messages().empty());
  ASSERT_EQ(out.size(), 2048u);
  EXPECT_EQ(ByteView(out).cstr(0, 12), "DVDVIDEO-VMG");
  std::vector<ChooserRequest> choosers = f.ui.Choosers();
  ASSERT_EQ(choosers.size(), 2u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kAssemblySource);
  EXPECT_EQ(choosers[0].filter, "IFO List File(*.INI)|*.INI|");
  EXPECT_EQ(choosers[1].purpose, ChooserPurpose::kAssemblyOutput);
  EXPECT_EQ(choosers[1].filter, "IFO Object File(*.IFO)|*.IFO|");
  EXPECT_EQ(choosers[1].default_name, "VIDEO_TS.IFO");
  EXPECT_EQ(choosers[1].initial_dir, f.dir.path());
}

TEST(IfoAssemblyTest, LowerCaseVtsIniAssemblesAsTitleSet) {
  Fixture f;
  std::vector<std::uint8_t> out =
      AssembleInteractively(f, "vts_01_0.ini", kVtsSource, "vts_01_0.ifo");
  EXPECT_TRUE(f.ui.Messages().empty());
  ASSERT_EQ(out.size(), 2048u);
  EXPECT_EQ(ByteView(out).cstr(0, 12), "DVDVIDEO-VTS");
}

TEST(IfoAssemblyTest, MenuIniIsRefusedBeforeTheOutputIsAsked) {
  Fixture f;
  std::string source = f.dir.file("menu.ini");
  test::WriteText(source, kVmgSource);
  f.ui.chooser_answers.push_back(source);
  AssembleInteractive(*f.ctx);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Operations error!: The file " + source +
                                      " is not a legal DVD-Video file type name"}));
  EXPECT_EQ(f.ui.Choosers().size(), 1u);
}

TEST(IfoAssemblyTest, InteractiveCommandRefusesVtsxIni) {
  Fixture f;
  std::string source = f.dir.file("vtsx.ini");
  test::WriteText(source, kVtsSource);
  f.ui.chooser_answers.push_back(source);
  AssembleInteractive(*f.ctx);
  ASSERT_EQ(f.ui.Messages().size(), 1u);
  EXPECT_TRUE(f.ui.Messages()[0].starts_with("Operations error!"));
}

TEST(IfoAssemblyTest, CancelledSourceChooserDoesNothing) {
  Fixture f;
  AssembleInteractive(*f.ctx);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(f.ui.Choosers().size(), 1u);
}

TEST(IfoBatchAssemblyTest, VtsxIniCountsAsTitleSet) {
  Fixture f;
  f.ctx->batch.asm_path = f.dir.file("vtsx.ini");
  f.ctx->batch.obj_path = f.dir.file("VTS_01_0.IFO");
  test::WriteText(f.ctx->batch.asm_path, kVtsSource);
  AssembleBatch(*f.ctx);
  EXPECT_TRUE(f.ui.Messages().empty());
  std::vector<std::uint8_t> out = test::ReadFileBytes(f.ctx->batch.obj_path);
  EXPECT_EQ(ByteView(out).cstr(0, 12), "DVDVIDEO-VTS");
  EXPECT_TRUE(f.ctx->convert.close_main_dialog);
}

TEST(IfoBatchAssemblyTest, UndecidableKindLeavesAnEmptyOutputFile) {
  Fixture f;
  f.ctx->batch.asm_path = f.dir.file("menu.ini");
  f.ctx->batch.obj_path = f.dir.file("MENU.IFO");
  test::WriteText(f.ctx->batch.asm_path, kVmgSource);
  AssembleBatch(*f.ctx);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{
                "Unknown file type: Can not determin the type of IFO to assemble. File name "
                "should start with either VIDEO_TS or VTS_"}));
  EXPECT_TRUE(File::Exists(f.ctx->batch.obj_path));
  EXPECT_TRUE(test::ReadFileBytes(f.ctx->batch.obj_path).empty());
  EXPECT_TRUE(f.ctx->convert.close_main_dialog);
}

TEST(IfoBatchAssemblyTest, CreationFailureIsReportedAndTheWindowStaysOpen) {
  Fixture f;
  f.ctx->batch.asm_path = f.dir.file("VIDEO_TS.INI");
  f.ctx->batch.obj_path = f.dir.file("missing/VIDEO_TS.IFO");
  test::WriteText(f.ctx->batch.asm_path, kVmgSource);
  AssembleBatch(*f.ctx);
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"File system error!: Can not create " +
                                                       f.ctx->batch.obj_path}));
  EXPECT_FALSE(f.ctx->convert.close_main_dialog);
}

TEST(IfoBatchAssemblyTest, DisassembledIfoAssemblesBackToTheSameBytes) {
  Fixture f;
  test::OpenIfo(f, "VTS_02_0.IFO", test::MakeVtsImage());
  std::string source = test::DisassembleIfoTo(f, "VTS_02_0.INI");
  f.ctx->batch.asm_path = source;
  f.ctx->batch.obj_path = f.dir.file("new/VTS_02_0.IFO");
  std::filesystem::create_directory(f.dir.file("new"));
  test::WriteFileBytes(f.dir.file("new/VTS_02_1.VOB"), std::vector<std::uint8_t>(512 * 2048, 0));
  AssembleBatch(*f.ctx);
  // vts_ea of the image (513) is what the title VOB beside the output gives: 0 + 1 + 512.
  EXPECT_EQ(test::ReadFileBytes(f.ctx->batch.obj_path), test::MakeVtsImage());
  // The image has neither a title set PGCI table nor a part-of-title search pointer table, so
  // the source has no count for either.
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgciti: vts_pgci_srp_ns",
                                      "IFO assembler error!: vts_ttu_ns"}));
}

}  // namespace
}  // namespace tarvex
