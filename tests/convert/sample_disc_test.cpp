// Golden tests on the sample disc's IFOs: the overview, the details of the information tables
// (the other tables' details are pinned beside their modules in tests/ifo), and the
// disassembly/assembly round trip. Every expected value was read
// by hand from the IFO bytes.
#include "ifo/sample_disc.h"

#include <gtest/gtest.h>

#include <map>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Differences;
using test::Fixture;
using test::OpenSample;
using test::PressDetailsOn;
using test::SampleAvailable;

TEST(IfoSampleDiscTest, VideoManagerOverview) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  // Identifier DVDVIDEO-VMG; vmgm_vobs_sa (bytes 192-195) = 6; the table start sectors at
  // 196-223 are 1 (title search pointers), 2 (menu PGCI units), 0 (parental), 3 (attributes),
  // 0 (text data), 4 (cell addresses), 5 (VOBU addresses); the one language unit has its
  // search pointer offset 16 (bytes 0x100C-0x100F).
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{
                "VMGI_MAT IFO File: Video Manager Information Management Table",
                "VMGM_VOB: VMG Menu VOB starts at sector address: 6",
                "VMG_PTT_SRPTI IFO File: Part of title search pointer table information",
                "VMGM_PGCI_UT File: Video Manager Menu PGCI Unit Table",
                "VMGM_LUI IFO File: Video Manager Menu Language Unit Table",
                "** VMG_MAIT IFO File: There is no Parental Management Information Table.",
                "VMG_ATRT IFO File: Video Title Set Attribute Table",
                "** VMG_TXTDT_MGI IFO File: There is no Text Data Manager information.",
                "VMGM_C_ADT IFO File: VMGM Cell Address Table information",
                "VMGM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table",
            }));
}

TEST(IfoSampleDiscTest, TitleSetOverview) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // vtsm_vobs_sa (0xC0) = 9, vtstt_vobs_sa (0xC4) = 0x25; the eight table start sectors at
  // 0xC8-0xE4 are 1 to 8; the menu language unit's offset (bytes 0x180C-0x180F) is 16.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "VTSI_MAT IFO File: Video Title Set Information Management Table",
                           "VTSM_VOB: VTS Menu VOB starts at sector address: 9",
                           "VTS_VOB: VTS VOB starts at sector address: 37",
                           "PTT_SRPTI IFO File: Part of title search pointer table information",
                           "VTS_PGCITI IFO File: Video title set Program Chain Information Table",
                           "VTSM_PGCI_UT File: Video Title Set Menu PGCI Unit Table",
                           "VTSM_LUI IFO File: Video Title Set Menu Language Unit Table",
                           "VTS_TMAPTI IFO File: Video title set Time Map Table",
                           "VTSM_C_ADT IFO File: Video Title Set Menu Cell Address Table",
                           "VTSM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table",
                           "VTS_C_ADT IFO File: Video Title Set Cell Address Table",
                           "VTS_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table",
                       }));
}

TEST(IfoSampleDiscTest, VideoManagerDetails) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMGI_MAT");
  std::vector<std::string> expected = {
      "VMG Identifier: DVDVIDEO-VMG",  // byte 12 (first byte of vmg_ea) is 0
      "End address of VMG: 39",        // 0x00000027
      "End address of VMGI: 5",
      "Specification version number: 1.1",  // version 1.1: byte 33 = 0x11
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
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTSI_MAT");
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           // vts_ea 0x0000050B swapped in place: 0B 05 00 00 follow the text.
                           std::string("VTS Identifier: DVDVIDEO-VTS\x0b\x05"),
                           "End address of VTS: 1291",
                           "End address of VTSI: 8",
                           "Specification version number: 1.1",  // the disc's version field, vern
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

TEST(IfoSampleDiscTest, VideoManagerRoundTrip) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VIDEO_TS.IFO", "VIDEO_TS.INI");
  EXPECT_TRUE(rt.messages.empty());
  // Every table is written again in the same sectors (1 to 5 after VMGI_MAT), so the sizes,
  // start sectors and end addresses of the information table come out as they were.
  ASSERT_EQ(rt.original.size(), 6u * 2048);
  ASSERT_EQ(rt.assembled.size(), 6u * 2048);
  std::map<std::size_t, std::pair<int, int>> expected = {
      // Menu PGCI unit table (sector 2): the language unit's end address (unit offset 16,
      // bytes 20-23) is written as the unit's size, 346, where the disc holds size - 1 = 345.
      {2 * 2048 + 23, {0x59, 0x5A}},
      // Attribute table (sector 3): the record starts at 12; its menu audio attribute area
      // starts at record offset 12 and the source carries one byte per menu audio stream, so
      // the stream's second attribute byte (0xC1, table offset 25) is not written.
      {3 * 2048 + 25, {0xC1, 0x00}},
  };
  EXPECT_EQ(Differences(rt.original, rt.assembled), expected);
}

TEST(IfoSampleDiscTest, TitleSetRoundTrip) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  test::SampleRoundTrip rt = test::RunSampleRoundTrip("VTS_01_0.IFO", "VTS_01_0.INI");
  EXPECT_TRUE(rt.messages.empty());
  ASSERT_EQ(rt.original.size(), 9u * 2048);
  ASSERT_EQ(rt.assembled.size(), 9u * 2048);
  constexpr std::size_t kPtt = 1 * 2048;   // VTS_PTT_SRPT
  constexpr std::size_t kLu = 3 * 2048;    // VTSM_PGCI_UT
  constexpr std::size_t kCAdt = 7 * 2048;  // VTS_C_ADT
  std::map<std::size_t, std::pair<int, int>> expected = {
      // Part-of-title table: one title of three parts. The disc has one search pointer per
      // title (12) and the parts (1,1) (1,2) (1,3) at 12-23, end address 23; the table is
      // rebuilt with one pointer per part (20, 24, 28), the parts at 20-31, end address 31.
      {kPtt + 7, {23, 31}},
      {kPtt + 11, {12, 20}},
      {kPtt + 13, {1, 0}},
      {kPtt + 15, {1, 24}},
      {kPtt + 17, {1, 0}},
      {kPtt + 19, {2, 28}},
      {kPtt + 23, {3, 1}},
      {kPtt + 25, {0, 1}},
      {kPtt + 27, {0, 2}},
      {kPtt + 29, {0, 1}},
      {kPtt + 31, {0, 3}},
      // Menu PGCI unit table: the unit's end address is its size (0x236), not size - 1.
      {kLu + 23, {0x35, 0x36}},
      // Title cell address table: the header counts 1 VOB, so only the first of its three
      // cells is disassembled; the end address becomes 8 + 12 - 1 = 19 instead of 43 and
      // cells 2 (VOB 1, cell 2, sectors 0x187-0x35B) and 3 (cell 3, 0x35C-0x4DD) are gone.
      {kCAdt + 7, {43, 19}},
      {kCAdt + 21, {1, 0}},
      {kCAdt + 22, {2, 0}},
      {kCAdt + 26, {1, 0}},
      {kCAdt + 27, {0x87, 0}},
      {kCAdt + 30, {3, 0}},
      {kCAdt + 31, {0x5B, 0}},
      {kCAdt + 33, {1, 0}},
      {kCAdt + 34, {3, 0}},
      {kCAdt + 38, {3, 0}},
      {kCAdt + 39, {0x5C, 0}},
      {kCAdt + 42, {4, 0}},
      {kCAdt + 43, {0xDD, 0}},
  };
  EXPECT_EQ(Differences(rt.original, rt.assembled), expected);
}

}  // namespace
}  // namespace tarvex
