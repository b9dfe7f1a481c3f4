// tarvex-cli's ifo, disasm and asm commands and the -asm=/-obj= form, run as a process.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "ifo/ifo_images.h"
#include "platform/bytes.h"
#include "support/test_support.h"

#ifdef TARVEX_CLI_PATH

namespace tarvex {
namespace {

struct CliRun {
  int status = -1;
  std::string out;
  std::string err;
};

CliRun RunCli(const test::TempDir& dir, const std::string& args) {
  std::string out = dir.file("stdout.txt"), err = dir.file("stderr.txt");
  std::string command = std::string("cd '") + dir.path() + "' && XDG_CONFIG_HOME='" + dir.path() +
                        "' '" + TARVEX_CLI_PATH + "' " + args + " >'" + out + "' 2>'" + err +
                        "' </dev/null";
  int raw = std::system(command.c_str());
  CliRun run;
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.out = test::ReadFileText(out);
  run.err = test::ReadFileText(err);
  return run;
}

const std::string kVtsSource =
    "[vtsi_mat]\nvts_id=DVDVIDEO-VTS\nvern=1.0\nvts_cat=00000000\nvtsm_v_atr=0000\n"
    "vtsm_ast_ns=0\nvtsm_ast_atr=0000000000000000\nvtsm_spst_ns=0\nvtsm_spst_atr=000000000000\n"
    "vts_v_atr=0000\nvts_ast_ns=0\nvts_spst_ns=0\n"
    "vts_mu_ast_atrt01=0\nvts_mu_ast_atrt02=0\nvts_mu_ast_atrt03=0\nvts_mu_ast_atrt04=0\n"
    "vts_mu_ast_atrt05=0\nvts_mu_ast_atrt06=0\nvts_mu_ast_atrt07=0\nvts_mu_ast_atrt08=0\n"
    "[vts_pgcit]\nvts_pgci_srp_ns=0\n"  // no title chains: the table is left out
    "[vts_ptt_srpt]\nvts_ttu_ns=0\n";

TEST(CliAsmTest, AsmCommandAssemblesTheSourceIntoTheOutput) {
  test::TempDir dir;
  test::WriteText(dir.file("VTS_01_0.INI"), kVtsSource);
  CliRun run = RunCli(dir, "asm VTS_01_0.INI VTS_01_0.IFO");
  EXPECT_EQ(run.status, 0) << run.err;
  std::vector<std::uint8_t> out = test::ReadFileBytes(dir.file("VTS_01_0.IFO"));
  ASSERT_EQ(out.size(), 2048u);
  EXPECT_EQ(ByteView(out).cstr(0, 12), "DVDVIDEO-VTS");
}

TEST(CliAsmTest, BatchArgumentsAssembleOnce) {
  test::TempDir dir;
  test::WriteText(dir.file("VTS_01_0.INI"), kVtsSource);
  CliRun run = RunCli(dir, "-asm=VTS_01_0.INI -obj=VTS_01_0.IFO");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(test::ReadFileBytes(dir.file("VTS_01_0.IFO")).size(), 2048u);
}

TEST(CliAsmTest, OneBatchArgumentAloneIsAUsageError) {
  test::TempDir dir;
  test::WriteText(dir.file("a.ini"), kVtsSource);
  CliRun run = RunCli(dir, "-asm=a.ini");
  EXPECT_EQ(run.status, 2);
}

TEST(CliAsmTest, ThreeBatchArgumentsAreAUsageError) {
  test::TempDir dir;
  CliRun run = RunCli(dir, "-asm=a.ini -obj=b.ifo -obj=c.ifo");
  EXPECT_EQ(run.status, 2);
  EXPECT_FALSE(File::Exists(dir.file("b.ifo")));
  EXPECT_FALSE(File::Exists(dir.file("c.ifo")));
}

TEST(CliAsmTest, RepeatedAsmArgumentCountsTwiceAndLeavesTheOutputPathEmpty) {
  test::TempDir dir;
  test::WriteText(dir.file("vts_01_0.ini"), kVtsSource);
  CliRun run = RunCli(dir, "-asm=a.ini -asm=vts_01_0.ini");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "File system error!: Can not create \n");
}

TEST(CliAsmTest, UpperCaseOptionIsNotRecognised) {
  test::TempDir dir;
  test::WriteText(dir.file("VTS_01_0.INI"), kVtsSource);
  CliRun run = RunCli(dir, "-ASM=VTS_01_0.INI -OBJ=VTS_01_0.IFO");
  EXPECT_EQ(run.status, 2);
  EXPECT_FALSE(File::Exists(dir.file("VTS_01_0.IFO")));
}

TEST(CliAsmTest, NoAnswersTheSizeQuestionAndNothingIsWritten) {
  test::TempDir dir;
  test::WriteText(dir.file("VTS_01_0.INI"), kVtsSource);
  test::WriteFileBytes(dir.file("vts_01_0.vob"), std::vector<std::uint8_t>(2049, 0));
  CliRun run = RunCli(dir, "--no asm VTS_01_0.INI VTS_01_0.IFO");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "Would you like to continue?: Warning! Menu file vts_01_0.vob is not "
            "divisble by 2048, a requirement of DVD-Video standards.\n");
  EXPECT_TRUE(test::ReadFileBytes(dir.file("VTS_01_0.IFO")).empty());
}

TEST(CliAsmTest, YesAnswersTheSizeQuestionInTheBatchForm) {
  test::TempDir dir;
  test::WriteText(dir.file("VTS_01_0.INI"), kVtsSource);
  test::WriteFileBytes(dir.file("vts_01_0.vob"), std::vector<std::uint8_t>(2049, 0));
  CliRun run = RunCli(dir, "--yes -asm=VTS_01_0.INI -obj=./VTS_01_0.IFO");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(test::ReadFileBytes(dir.file("VTS_01_0.IFO")).size(), 2048u);
}

TEST(CliAsmTest, MissingArgumentIsAUsageError) {
  test::TempDir dir;
  EXPECT_EQ(RunCli(dir, "asm only.ini").status, 2);
}

TEST(CliIfoTest, IfoCommandPrintsTheOverview) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.IFO"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "ifo VTS_01_0.IFO");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(
      run.out.starts_with("VTSI_MAT IFO File: Video Title Set Information Management Table\n"
                          "** VTSM_VOB: There is no VTS Menu VOB\n"
                          "VTS_VOB: VTS VOB starts at sector address: 1\n"))
      << run.out;
  EXPECT_TRUE(run.out.ends_with(
      "** VTS_VOBU_ADMAP IFO File: There is no Video Title Set Menu VOBU Address Map Table\n"))
      << run.out;
}

TEST(CliIfoTest, IfoCommandTreatsAnyNameAsAnIfo) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("title.bin"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "ifo title.bin");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(
      run.out.starts_with("VTSI_MAT IFO File: Video Title Set Information Management Table\n"
                          "** VTSM_VOB: There is no VTS Menu VOB\n"
                          "VTS_VOB: VTS VOB starts at sector address: 1\n"))
      << run.out;
  EXPECT_TRUE(run.out.ends_with(
      "** VTS_VOBU_ADMAP IFO File: There is no Video Title Set Menu VOBU Address Map Table\n"))
      << run.out;
}

TEST(CliIfoTest, IfoCommandOnAVobNamedFileListsNoRecords) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.BUP.vob"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "ifo VTS_01_0.BUP.vob");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with("VTSI_MAT IFO File: ")) << run.out;
}

TEST(CliIfoTest, DisasmTreatsAnyNameAsAnIfo) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.BUP"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "disasm VTS_01_0.BUP");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(test::ReadFileText(dir.file("VTS_01_0.INI")).starts_with("[vtsi_mat]\r\n"));
}

TEST(CliIfoTest, PrefixPressesDetailsOnTheFirstMatchingLine) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.IFO"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "ifo VTS_01_0.IFO VTSI");
  EXPECT_TRUE(run.out.starts_with(std::string("VTS Identifier: DVDVIDEO-VTS\x01\x02\n")))
      << run.out;
}

TEST(CliIfoTest, UnopenableFileStopsTheCommand) {
  test::TempDir dir;
  CliRun run = RunCli(dir, "ifo missing.IFO");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
}

TEST(CliIfoTest, DisasmWritesTheSourceBesideTheFileByDefault) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.IFO"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "disasm VTS_01_0.IFO");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(test::ReadFileText(dir.file("VTS_01_0.INI")).starts_with("[vtsi_mat]\r\n"));
}

TEST(CliIfoTest, DisasmWritesTheGivenSource) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_0.IFO"), test::MakeVtsImage());
  CliRun run = RunCli(dir, "disasm VTS_01_0.IFO other.ini");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(test::ReadFileText(dir.file("other.ini")).starts_with("[vtsi_mat]\r\n"));
}

}  // namespace
}  // namespace tarvex

#endif  // TARVEX_CLI_PATH
