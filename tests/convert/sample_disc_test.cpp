// Golden tests on the sample disc's IFOs: the overview, the details of every table this
// system reads so far, and the disassembly/assembly round trip. Every expected value was read
// by hand from the IFO bytes.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "convert/drivers.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

const std::string kSampleDir = std::string(TARVEX_SAMPLES_DIR) + "/disc/VIDEO_TS/";

bool SampleAvailable() {
  return File::Exists(kSampleDir + "VIDEO_TS.IFO") && File::Exists(kSampleDir + "VTS_01_0.IFO");
}

void OpenSample(Fixture& f, const std::string& name) {
  f.OpenBytes(name, test::ReadFileBytes(kSampleDir + name), kFileIfo);
  ShowIfoOverview(*f.ctx);
}

void PressDetailsOn(Fixture& f, const std::string& prefix) {
  for (std::size_t i = 0; i < f.lines().size(); ++i) {
    if (f.lines()[i].starts_with(prefix)) {
      f.ctx->report.Select(i);
      ShowIfoDetails(*f.ctx);
      return;
    }
  }
  FAIL() << "no line begins with " << prefix;
}

TEST(IfoSampleDiscTest, VideoManagerOverview) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  // Identifier DVDVIDEO-VMG; vmgm_vobs_sa (bytes 192-195) = 6.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "VMGI_MAT IFO File: Video Manager Information Management Table",
                           "VMGM_VOB: VMG Menu VOB starts at sector address: 6"}));
}

TEST(IfoSampleDiscTest, TitleSetOverview) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // vtsm_vobs_sa (0xC0) = 9, vtstt_vobs_sa (0xC4) = 0x25.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "VTSI_MAT IFO File: Video Title Set Information Management Table",
                           "VTSM_VOB: VTS Menu VOB starts at sector address: 9",
                           "VTS_VOB: VTS VOB starts at sector address: 37"}));
}

TEST(IfoSampleDiscTest, VideoManagerDetails) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMGI_MAT");
  std::vector<std::string> expected = {
      "VMG Identifier: DVDVIDEO-VMG",  // byte 12 (first byte of vmg_ea) is 0
      "End address of VMG: 39",        // 0x00000027
      "End address of VMGI: 5",
      "Specification version number: 1.1",  // DVD-Video specification 1.1: byte 33 = 0x11
      "VMG Category: 0",
      "VMG Number of Vols: 1 This Vol: 1 Disk side ID: 1",  // 0001 0001 0100
      "VMG Number of Title Sets: 1",
      "VMG Provider ID: DVDAuthor 0.7.2",
      "VMG POS Code: 00000000",
      "End byte address of VMGI_MAT: 1275",  // 0x04FB
      "Start byte address of First Play PGC FP_PGC: 1024",
      "Start sector address of VMGM_VOBS: 6",
      "Start sector address of VMG_PTT_SRPT: 1",
      "Start sector address of VMGM_PGCI_UT: 2",
      "Start sector address of VMG_PTL_MAIT: 0",
      "Start sector address of VMG_VTS_ATRT: 3",
      "Start sector address of VMG_TXTDT_MG: 0",
      "Start sector address of VMGM_C_ADT: 4",
      "Start sector address of VMGM_VOBU_ADMAP: 5",
      "Video attributes of VMGM_VOBS: 4300",
      "Number of audio streams in VMGM_VOBS: 1",
      "  Audio 1 attributes: 0",  // byte 260
      "VMGM Number of subpicture streams: 1",
      "  Subpicture stream 1 attributes: 0",  // byte 342
      "VMG First Play PGC:",
      "  PGC: Number of Programs: 0",
      "  PGC: Number of Cells: 0",
      "  PGC: Play Back Time: 00:00:00.00",
      "  PGC: Prohibited user operations: 00000000",
  };
  for (int n = 1; n <= 8; ++n)
    expected.push_back(Format("  PGC: Audio stream %d status: 0000", {n}));
  for (int n = 1; n <= 32; ++n) {
    expected.push_back(Format("  PGC: Sub-Picture stream %d status: 00000000", {n}));
  }
  for (const char* l :
       {"  PGC: Next PGC number: 0", "  PGC: Previous PGC number: 0", "  PGC: Go Up PGC number: 0",
        "  PGC: PG Play back mode: 0", "  PGC: Still time in seconds (255 = infinite): 0",
        "  PGC: Sub-Picture palette as YCrCb:"}) {
    expected.push_back(l);
  }
  for (int c = 0; c < 16; ++c) expected.push_back(Format("    Color %d: 000-000-000", {c}));
  // Command table at 236 (bytes 0x4E4-0x4E5 = 00 EC): 1 pre, 0 post, 0 cell commands.
  expected.push_back("  PGC: Memory offset of PGC Command Table: 236");
  expected.push_back("      There are 1 Pre Commands");
  expected.push_back("        1: 3006000000420000");
  for (const char* l :
       {"      There are 0 Post Commands", "      There are 0 Cell Commands",
        "  PGC: Memory offset of PGC Program Map: 0", "      There is no PGC Program Map",
        "  PGC: Memory offset of Cell Playback Information Table: 0",
        "      There is no PGC Playback Information Table",
        "  PGC: Memory offset of Cell Position Information Table: 0",
        "      There is no Cell Position Information Table"}) {
    expected.push_back(l);
  }
  const auto& lines = f.lines();
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (expected[i].starts_with("        1: ")) {
      EXPECT_TRUE(lines[i].starts_with(expected[i])) << lines[i];  // the command text follows
    } else {
      EXPECT_EQ(lines[i], expected[i]) << "line " << i;
    }
  }
}

TEST(IfoSampleDiscTest, TitleSetDetails) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTSI_MAT");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           // vts_ea 0x0000050B swapped in place: 0B 05 00 00 follow the text.
                           std::string("VTS Identifier: DVDVIDEO-VTS\x0b\x05"),
                           "End address of VTS: 1291",
                           "End address of VTSI: 8",
                           "Specification version number: 1.1",  // DVD-Video specification
                           "VTS Category: 00000000",
                           "End byte address of VTSI_MAT: 2047",
                           "Start sector address of VTSM_VOBS: 9",
                           "Start sector address of VTSTT_VOBS: 37",
                           "Start sector address of VTS_PTT_SRPT: 1",
                           "Start sector address of VTS_PGCIT: 2",
                           "Start sector address of VTSM_PGCI_UT: 3",
                           "Start sector address of VTS_TMAPT: 4",
                           "Start sector address of VTSM_C_ADT: 5",
                           "Start sector address of VTSM_VOBU_ADMAP: 6",
                           "Start sector address of VTS_C_ADT: 7",
                           "Start sector address of VTS_VOBU_ADMAP: 8",
                           "Video attributes of VTSM_VOBS: 4300",
                           "Number of audio streams in VTSM_VOBS: 1",
                           "VTSM Audio attributes: 00c1000000000000",
                           "Number of VTSM subpicture streams: 1",
                           "VTSM subpicture attributes: 000000000000",
                           "Video attributes of VTSTT_VOBS: 4300",
                           "Number of audio streams in VTSTT_VOBS: 3",
                           "  Audio 1 attributes: 04c1656e00000000",  // "en"
                           "  Audio 2 attributes: 8401667200000000",  // "fr"
                           "  Audio 3 attributes: 4441646500000000",  // "de"
                           "Number of subpicture streams in VTSTT_VOBS: 1",
                           "  Subpicture stream 1 attributes: 0100656e0000",
                       }));
}

// The bytes of two files that differ, by offset: {original, assembled}.
std::map<std::size_t, std::pair<int, int>> Differences(const std::vector<std::uint8_t>& a,
                                                       const std::vector<std::uint8_t>& b) {
  std::map<std::size_t, std::pair<int, int>> out;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (a[i] != b[i]) out[i] = {a[i], b[i]};
  }
  return out;
}

struct RoundTrip {
  std::vector<std::uint8_t> original;
  std::vector<std::uint8_t> assembled;
  std::vector<std::string> messages;
};

// Disassembles the sample IFO and assembles the source next to copies of the sample's VOBs.
RoundTrip RunRoundTrip(const std::string& ifo, const std::string& ini) {
  Fixture f;
  OpenSample(f, ifo);
  std::string source = f.dir.file(ini);
  f.ui.chooser_answers.push_back(source);
  DisassembleIfo(*f.ctx);
  std::string out_dir = f.dir.file("out");
  std::filesystem::create_directory(out_dir);
  for (const char* vob : {"VIDEO_TS.VOB", "VTS_01_0.VOB", "VTS_01_1.VOB"}) {
    std::filesystem::copy_file(kSampleDir + vob, out_dir + "/" + vob);
  }
  f.ctx->batch.asm_path = source;
  f.ctx->batch.obj_path = out_dir + "/" + ifo;
  AssembleBatch(*f.ctx);
  return {test::ReadFileBytes(kSampleDir + ifo), test::ReadFileBytes(out_dir + "/" + ifo),
          f.ui.Messages()};
}

TEST(IfoSampleDiscTest, VideoManagerRoundTrip) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  RoundTrip rt = RunRoundTrip("VIDEO_TS.IFO", "VIDEO_TS.INI");
  EXPECT_TRUE(rt.messages.empty());
  // The title search pointer, menu PGCI unit, attribute, cell address and VOBU address map
  // tables (sectors 1-5 of the original) have no module yet, so nothing of them is loaded or
  // written: the assembled file is VMGI_MAT alone, one sector (vmgi_mat_ea 1275 is unchanged:
  // the first-play chain of 252 bytes is rebuilt as it was).
  ASSERT_EQ(rt.original.size(), 6u * 2048);
  ASSERT_EQ(rt.assembled.size(), 2048u);
  std::map<std::size_t, std::pair<int, int>> expected = {
      // vmg_ea = 2T + V - 1 with T = 1 (no table after VMGI_MAT) and V = 28 menu VOB sectors:
      // 29 instead of 2*6 + 28 - 1 = 39.
      {15, {39, 29}},
      // vmgi_ea = T - 1 = 0 instead of 5.
      {31, {5, 0}},
      // vmgm_vobs_sa = T = 1 instead of 6.
      {195, {6, 1}},
      // Start sectors of the tables that were not written are 0: tt_srpt_sa (1),
      // vmgm_pgci_ut_sa (2), vts_atrt_sa (3), vmgm_c_adt_sa (4), vmgm_vobu_admap_sa (5).
      {199, {1, 0}},
      {203, {2, 0}},
      {211, {3, 0}},
      {219, {4, 0}},
      {223, {5, 0}},
  };
  EXPECT_EQ(Differences(rt.original, rt.assembled), expected);
}

TEST(IfoSampleDiscTest, TitleSetRoundTrip) {
  if (!SampleAvailable()) GTEST_SKIP() << "sample disc not built";
  RoundTrip rt = RunRoundTrip("VTS_01_0.IFO", "VTS_01_0.INI");
  EXPECT_TRUE(rt.messages.empty());
  // The eight title set tables (sectors 1-8 of the original) have no module yet: the
  // assembled file is VTSI_MAT alone, one sector.
  ASSERT_EQ(rt.original.size(), 9u * 2048);
  ASSERT_EQ(rt.assembled.size(), 2048u);
  std::map<std::size_t, std::pair<int, int>> expected = {
      // vts_ea = vtsi_ea + counter = 0 + (1 + 28 menu + 1246 title sectors) = 1275 = 0x04FB
      // instead of 8 + 9 + 28 + 1246 = 1291 = 0x050B.
      {14, {0x05, 0x04}},
      {15, {0x0B, 0xFB}},
      // vtsi_ea = sum of the table sectors = 0 instead of 8.
      {31, {8, 0}},
      // vtsm_vobs_sa = vtsi_ea + 1 = 1 instead of 9; vtstt_vobs_sa = 1 + 28 = 29 instead of 37.
      {195, {9, 1}},
      {199, {37, 29}},
      // Start sectors of the eight tables that were not written: 0 instead of 1 .. 8.
      {203, {1, 0}},
      {207, {2, 0}},
      {211, {3, 0}},
      {215, {4, 0}},
      {219, {5, 0}},
      {223, {6, 0}},
      {227, {7, 0}},
      {231, {8, 0}},
  };
  EXPECT_EQ(Differences(rt.original, rt.assembled), expected);
}

}  // namespace
}  // namespace tarvex
