#include "ifo/pgc.h"

#include <gtest/gtest.h>

#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/source.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

// The report of the sample chain with indent 0, as read from its bytes by hand. Command lines
// are checked by their beginning (the decoded command text follows the hex digits).
std::vector<std::string> ExpectedSampleReport() {
  std::vector<std::string> lines = {
      "PGC: Number of Programs: 2",       "PGC: Number of Cells: 2",
      "PGC: Play Back Time: 01:23:45.19", "PGC: Prohibited user operations: 00000001",
      "PGC: Audio stream 1 status: 8000",
  };
  for (int n = 2; n <= 8; ++n) lines.push_back(Format("PGC: Audio stream %d status: 0000", {n}));
  lines.push_back("PGC: Sub-Picture stream 1 status: 80000000");
  for (int n = 2; n <= 32; ++n) {
    lines.push_back(Format("PGC: Sub-Picture stream %d status: 00000000", {n}));
  }
  for (const char* l :
       {"PGC: Next PGC number: 2", "PGC: Previous PGC number: 1", "PGC: Go Up PGC number: 3",
        "PGC: PG Play back mode: 1", "PGC: Still time in seconds (255 = infinite): 255",
        "PGC: Sub-Picture palette as YCrCb:", "  Color 0: 016-128-128"}) {
    lines.push_back(l);
  }
  for (int c = 1; c <= 14; ++c) lines.push_back(Format("  Color %d: 000-000-000", {c}));
  for (const char* l : {"  Color 15: 235-128-128",
                        "PGC: Memory offset of PGC Command Table: 236",
                        "    There are 1 Pre Commands",
                        "      1: 7100000f00010000",
                        "    There are 1 Post Commands",
                        "      1: 3002000000010000",
                        "    There are 0 Cell Commands",
                        "PGC: Memory offset of PGC Program Map: 260",
                        "    Entry cell number for Program 1: 1",
                        "    Entry cell number for Program 2: 2",
                        "PGC: Memory offset of Cell Playback Information Table: 262",
                        "    Cell 1 category: 2 0 5 6",
                        "    Cell 1 Play Back Time: 00:00:10.00",
                        "    Cell 1 entry point sector: 0",
                        "    Cell 1 first ILVU VOBU end sector: 0",
                        "    Cell 1 start sector of last VOUB: 100",
                        "    Cell 1 last sector of this cell: 150",
                        "    Cell 2 category: 0 0 0 0",
                        "    Cell 2 Play Back Time: 00:00:20.01",
                        "    Cell 2 entry point sector: 151",
                        "    Cell 2 first ILVU VOBU end sector: 160",
                        "    Cell 2 start sector of last VOUB: 300",
                        "    Cell 2 last sector of this cell: 301",
                        "PGC: Memory offset of Cell Position Information Table: 310",
                        "    VOB ID number 1 of this Cell 1",
                        "    VOB ID number 1 of this Cell 2"}) {
    lines.push_back(l);
  }
  return lines;
}

bool IsCommandLine(const std::string& expected) {
  return expected.starts_with("      1: ");
}

void ExpectReport(const std::vector<std::string>& actual, const std::vector<std::string>& expected,
                  const std::string& indent) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    std::string want = indent + expected[i];
    if (IsCommandLine(expected[i])) {
      EXPECT_TRUE(actual[i].starts_with(want)) << actual[i];
    } else {
      EXPECT_EQ(actual[i], want) << "line " << i;
    }
  }
}

TEST(PgcReportTest, ReportsEveryFieldOfTheChain) {
  Fixture f;
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  PgcReport(*f.ctx, 0, ByteView(pgc), 0);
  ExpectReport(f.lines(), ExpectedSampleReport(), "");
}

TEST(PgcReportTest, IndentOfThreePrefixesEveryLineWithThreeBlanks) {
  Fixture f;
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  PgcReport(*f.ctx, 3, ByteView(pgc), 0);
  ExpectReport(f.lines(), ExpectedSampleReport(), "   ");
  for (const std::string& line : f.lines()) EXPECT_TRUE(line.starts_with("   ")) << line;
}

TEST(PgcReportTest, ChainIsFoundAtTheOffsetWithinTheContainingBytes) {
  Fixture f;
  std::vector<std::uint8_t> base(100, 0xEE);
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  base.insert(base.end(), pgc.begin(), pgc.end());
  PgcReport(*f.ctx, 0, ByteView(base), 100);
  ExpectReport(f.lines(), ExpectedSampleReport(), "");
}

TEST(PgcReportTest, AbsentSubTablesAreReportedAsErrorsWhenCountsSayOtherwise) {
  Fixture f;
  std::vector<std::uint8_t> pgc(236, 0);
  pgc[2] = 0x83;  // bit 7 is not part of the program count
  pgc[3] = 2;
  PgcReport(*f.ctx, 0, ByteView(pgc), 0);
  const auto& l = f.lines();
  ASSERT_GE(l.size(), 13u);
  EXPECT_EQ(l[0], "PGC: Number of Programs: 3");
  std::vector<std::string> tail(l.end() - 11, l.end());
  EXPECT_EQ(tail, (std::vector<std::string>{
                      "PGC: Memory offset of PGC Command Table: 0",
                      "    There is no PGC Command Table",
                      "PGC: Memory offset of PGC Program Map: 0",
                      "    There is no PGC Program Map",
                      "      This is an ERROR as there are 3 programs",
                      "PGC: Memory offset of Cell Playback Information Table: 0",
                      "    There is no PGC Playback Information Table",
                      "      This is an ERROR as there are 2 cells in this program.",
                      "PGC: Memory offset of Cell Position Information Table: 0",
                      "    There is no Cell Position Information Table",
                      "      This is an ERROR as there are 2 cells",
                  }));
}

TEST(PgcReportTest, OffsetsBeyondTheDataReadZeros) {
  Fixture f;
  std::vector<std::uint8_t> pgc(236, 0);
  pgc[2] = 1;
  pgc[3] = 1;
  ByteWriter w(pgc);
  w.put_be16(0xE4, 0xFFF0);
  w.put_be16(0xE6, 0xFFF0);
  w.put_be16(0xE8, 0xFFF0);
  w.put_be16(0xEA, 0xFFF0);
  PgcReport(*f.ctx, 0, ByteView(pgc), 0);
  const auto& l = f.lines();
  EXPECT_EQ(l[l.size() - 1], "    VOB ID number 0 of this Cell 0");
  EXPECT_EQ(l[l.size() - 3], "    Cell 1 last sector of this cell: 0");
}

TEST(PgcDisassembleTest, WritesEveryKeyWithThePrefix) {
  Fixture f;
  f.ctx->convert.source_path = f.dir.file("VIDEO_TS.INI");
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  PgcDisassemble(*f.ctx, ByteView(pgc), 0, "pgc_", "fp_pgci");
  f.ctx->profiles.Flush();
  std::string text = test::ReadFileText(f.ctx->convert.source_path);
  std::string expected =
      "[fp_pgci]\r\npgc_cnt=00000202\r\npgc_pb_tm=012345d9\r\n"
      "pgc_uop_ctl=00000001\r\npgc_ast_ctlt01=8000\r\n";
  for (int n = 2; n <= 8; ++n) expected += Format("pgc_ast_ctlt%02d=0000\r\n", {n});
  expected += "pgc_spst_ctlt01=80000000\r\n";
  for (int n = 2; n <= 32; ++n) expected += Format("pgc_spst_ctlt%02d=00000000\r\n", {n});
  expected += "pgc_nv_ctl=000200010003ff01\r\npgc_sp_plt01=00108080\r\n";
  for (int n = 2; n <= 15; ++n) expected += Format("pgc_sp_plt%02d=00000000\r\n", {n});
  expected +=
      "pgc_sp_plt16=00eb8080\r\n"
      "pgc_cmdt_sa=236\r\npgc_cmdt_pre_ns=1\r\npgc_cmdt_post_ns=1\r\npgc_cmdt_cmds_ns=0\r\n"
      "pgc_pre1=7100000f00010000\r\npgc_post1=3002000000010000\r\n"
      "pgc_pgmap_sa=260\r\npgc_pgmap_prog_entry_cell01=1\r\npgc_pgmap_prog_entry_cell02=2\r\n"
      "pgc_c_pbit_sa=262\r\n"
      "pgc_c_pbit_cell001_cat=02000506\r\npgc_c_pbit_cell001_pbtm=000010c0\r\n"
      "pgc_c_pbit_cell001_fvobu_sa=0\r\npgc_c_pbit_cell001_filvu_ea=0\r\n"
      "pgc_c_pbit_cell001_lvobu_sa=100\r\npgc_c_pbit_cell001_lvobu_ea=150\r\n"
      "pgc_c_pbit_cell002_cat=00000000\r\npgc_c_pbit_cell002_pbtm=00002001\r\n"
      "pgc_c_pbit_cell002_fvobu_sa=151\r\npgc_c_pbit_cell002_filvu_ea=160\r\n"
      "pgc_c_pbit_cell002_lvobu_sa=300\r\npgc_c_pbit_cell002_lvobu_ea=301\r\n"
      "pgc_c_posit_sa=310\r\n"
      "pgc_c_posit_cell001_vobid=1\r\npgc_c_posit_cell001_cellid=1\r\n"
      "pgc_c_posit_cell002_vobid=1\r\npgc_c_posit_cell002_cellid=2\r\n";
  EXPECT_EQ(text, expected);
}

TEST(PgcAssembleTest, DisassembledChainAssemblesBackToTheSameBytes) {
  Fixture f;
  f.ctx->convert.source_path = f.dir.file("VIDEO_TS.INI");
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  PgcDisassemble(*f.ctx, ByteView(pgc), 0, "vts_pgc_", "vts_pgcit01");
  f.ctx->profiles.Flush();
  PgcAssemble(*f.ctx, "vts_pgcit01", "vts_pgc_");
  std::uint16_t size = PgcLayout(*f.ctx);
  ASSERT_EQ(size, pgc.size());
  std::vector<std::uint8_t> out(size, 0);
  EXPECT_EQ(PgcCopyOut(*f.ctx, out), size);
  EXPECT_EQ(out, pgc);
  EXPECT_TRUE(f.ui.Messages().empty());
}

// Writes a [s] section with the given key lines (prefix p_) and makes it the source.
void WriteChain(Fixture& f, const std::string& keys) {
  test::UseSource(f, "[s]\n" + keys, "VTS_01_0.INI");
}

const std::string kMinimalHeader =
    "p_cnt=00000000\np_pb_tm=00000000\np_uop_ctl=0\n"
    "p_ast_ctlt01=0\np_ast_ctlt02=0\np_ast_ctlt03=0\np_ast_ctlt04=0\n"
    "p_ast_ctlt05=0\np_ast_ctlt06=0\np_ast_ctlt07=0\np_ast_ctlt08=0\n"
    "p_nv_ctl=0000000000000000\n";

std::string SubpictureAndPalette() {
  std::string s;
  for (int n = 1; n <= 32; ++n) s += Format("p_spst_ctlt%02d=0\n", {n});
  for (int n = 1; n <= 16; ++n) s += Format("p_sp_plt%02d=0\n", {n});
  return s;
}

TEST(PgcAssembleTest, ChainWithoutCommandsHasCommandTableOffsetZero) {
  Fixture f;
  WriteChain(f, kMinimalHeader + SubpictureAndPalette() +
                    "p_cmdt_pre_ns=0\np_cmdt_post_ns=0\np_cmdt_cmds_ns=0\np_cmdt_sa=236\n");
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(PgcLayout(*f.ctx), 236);
  std::vector<std::uint8_t> out(236, 0xFF);
  EXPECT_EQ(PgcCopyOut(*f.ctx, out), 236u);
  EXPECT_EQ(ByteView(out).be16(0xE4), 0);
  EXPECT_TRUE(f.ui.Messages().empty());
}

TEST(PgcAssembleTest, MissingPreCommandIsReportedAndTheCountIsKept) {
  Fixture f;
  WriteChain(
      f, kMinimalHeader + SubpictureAndPalette() + "p_cmdt_pre_ns=2\np_pre1=7100000f00010000\n");
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(f.ui.Messages(), (std::vector<std::string>{"Statement missing in vts_pgcit: p_pre2"}));
  std::uint16_t size = PgcLayout(*f.ctx);
  EXPECT_EQ(size, 236 + 8 + 8);  // one command stored
  std::vector<std::uint8_t> out(size, 0);
  PgcCopyOut(*f.ctx, out);
  ByteView v(out);
  EXPECT_EQ(v.be16(0xE4), 236);
  EXPECT_EQ(v.be16(236), 2);          // pre commands
  EXPECT_EQ(v.be16(242), 8 * 2 + 7);  // end offset counts both
  EXPECT_EQ(v.be32(244), 0x7100000Fu);
}

TEST(PgcAssembleTest, ThreeProgramsGiveAFourByteProgramMapAndPassTheCheck) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette() +
                     "p_pgmap_prog_entry_cell01=1\np_pgmap_prog_entry_cell02=2\n"
                     "p_pgmap_prog_entry_cell03=3\n";
  keys.replace(keys.find("p_cnt=00000000"), 14, "p_cnt=00000300");
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_TRUE(f.ui.Messages().empty());
  std::uint16_t size = PgcLayout(*f.ctx);
  ASSERT_EQ(size, 240);
  std::vector<std::uint8_t> out(size, 0xFF);
  PgcCopyOut(*f.ctx, out);
  EXPECT_EQ(ByteView(out).be16(0xE6), 236);
  EXPECT_EQ(std::vector<std::uint8_t>(out.begin() + 236, out.end()),
            (std::vector<std::uint8_t>{1, 2, 3, 0}));
}

TEST(PgcAssembleTest, ProgramCountThatDiffersFromTheMapIsReported) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette() + "p_pgmap_prog_entry_cell01=1\n";
  keys.replace(keys.find("p_cnt=00000000"), 14, "p_cnt=00000500");
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{
                "Statement error vts_pgcit: Number of Programs in cnt not equal to number of "
                "programs defined in PGMAP_PROG "}));
}

std::string CellKeys(int n) {
  std::string c = Format("p_c_pbit_cell%03d", {n});
  return c + "_cat=00000000\n" + c + "_pbtm=00000000\n" + c + "_fvobu_sa=1\n" + c +
         "_filvu_ea=2\n" + c + "_lvobu_sa=3\n" + c + "_lvobu_ea=4\n";
}

TEST(PgcAssembleTest, CellsAfterAGapInTheNumberingAreNotRead) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette() + CellKeys(1) + CellKeys(2) +
                     CellKeys(3) + CellKeys(5);
  keys.replace(keys.find("p_cnt=00000000"), 14, "p_cnt=00000003");
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_EQ(PgcLayout(*f.ctx), 236 + 3 * 24);
}

TEST(PgcAssembleTest, CellCountThatDiffersFromThePlaybackTableIsReported) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette() + CellKeys(1);
  keys.replace(keys.find("p_cnt=00000000"), 14, "p_cnt=00000002");
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{
                "Statement error vts_pgcit: In [" + f.ctx->convert.source_path +
                "] at [s] the number of Cells in cnt not equal to number of cells defined in "
                "C_PBIT. Cell count = 2 and C_PBIT = 1 "}));
}

TEST(PgcAssembleTest, MissingNavigationControlIsReportedAndLeavesZeros) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette();
  keys.erase(keys.find("p_nv_ctl=0000000000000000\n"), 26);
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgcit: p_nv_ctl"}));
  std::vector<std::uint8_t> out(PgcLayout(*f.ctx), 0xFF);
  PgcCopyOut(*f.ctx, out);
  ByteView v(out);
  EXPECT_EQ(v.be16(0x9C), 0);
  EXPECT_EQ(v.be16(0x9E), 0);
  EXPECT_EQ(v.be16(0xA0), 0);
}

TEST(PgcAssembleTest, NavigationControlAcceptsALeadingX) {
  Fixture f;
  std::string keys = kMinimalHeader + SubpictureAndPalette();
  keys.replace(keys.find("p_nv_ctl=0000000000000000"), 25, "p_nv_ctl=x000200010003ff01");
  WriteChain(f, keys);
  PgcAssemble(*f.ctx, "s", "p_");
  std::vector<std::uint8_t> out(PgcLayout(*f.ctx), 0);
  PgcCopyOut(*f.ctx, out);
  ByteView v(out);
  EXPECT_EQ(v.be16(0x9C), 2);
  EXPECT_EQ(v.be16(0x9E), 1);
  EXPECT_EQ(v.be16(0xA0), 3);
  EXPECT_EQ(v.be16(0xA2), 0xFF01);
}

TEST(PgcAssembleTest, MissingCellIdIsReportedAndLeftZero) {
  Fixture f;
  WriteChain(f, kMinimalHeader + SubpictureAndPalette() + "p_c_posit_cell001_vobid=7\n");
  PgcAssemble(*f.ctx, "s", "p_");
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"Statement missing in vts_pgcit: p_c_posit_cell001_cellid"}));
  std::vector<std::uint8_t> out(PgcLayout(*f.ctx), 0);
  ASSERT_EQ(out.size(), 240u);
  PgcCopyOut(*f.ctx, out);
  EXPECT_EQ(ByteView(out).be32(236), 0x00070000u);
}

TEST(PgcAssembleTest, BufferSmallerThanTheLayoutGivesTheInternalError) {
  Fixture f;
  WriteChain(f, kMinimalHeader + SubpictureAndPalette() +
                    "p_c_posit_cell001_vobid=7\n"
                    "p_c_posit_cell001_cellid=1\n");
  PgcAssemble(*f.ctx, "s", "p_");
  std::uint16_t size = PgcLayout(*f.ctx);
  std::vector<std::uint8_t> out(size - 1u, 0);
  EXPECT_EQ(PgcCopyOut(*f.ctx, out), 236u);
  EXPECT_EQ(f.ui.Messages(),
            (std::vector<std::string>{"EC101: Internal error, data size exceeds buffer size"}));
  EXPECT_TRUE(f.ctx->ifo.pgc.cell_position.empty());
}

TEST(PgcAssembleTest, DecimalValuesAreTruncatedToTheFieldWidth) {
  Fixture f;
  WriteChain(f, kMinimalHeader + SubpictureAndPalette() +
                    "p_pgmap_prog_entry_cell01=257\np_pgmap_prog_entry_cell02=2\n");
  PgcAssemble(*f.ctx, "s", "p_");
  std::vector<std::uint8_t> out(PgcLayout(*f.ctx), 0);
  PgcCopyOut(*f.ctx, out);
  EXPECT_EQ(out[236], 1);
}

}  // namespace
}  // namespace tarvex

namespace tarvex {
namespace {

TEST(PgcReportTest, ReportAndDisassemblyOfTheSameBytesNeverAccumulateConversions) {
  test::Fixture f;
  f.ctx->convert.source_path = f.dir.file("VIDEO_TS.INI");
  std::vector<std::uint8_t> pgc = test::MakeSamplePgc();
  const std::vector<std::uint8_t> before = pgc;
  PgcReport(*f.ctx, 0, ByteView(pgc), 0);
  std::vector<std::string> first = f.lines();
  PgcDisassemble(*f.ctx, ByteView(pgc), 0, "pgc_", "fp_pgci");
  f.ctx->ClearReportList();
  PgcReport(*f.ctx, 0, ByteView(pgc), 0);
  EXPECT_EQ(f.lines(), first);
  EXPECT_EQ(pgc, before);
}

}  // namespace
}  // namespace tarvex
