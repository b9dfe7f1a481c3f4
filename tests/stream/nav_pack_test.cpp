#include "stream/nav_pack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::Record;

// The nominal layout: PCI length 980, so the DSI start code lies at 1024 and its data at 1031.
constexpr std::size_t kPci = 45;
constexpr std::size_t kDsi = 1031;

void PutBe16(Record& r, std::size_t at, std::uint32_t v) {
  r[at] = static_cast<std::uint8_t>(v >> 8);
  r[at + 1] = static_cast<std::uint8_t>(v);
}

void PutBe32(Record& r, std::size_t at, std::uint32_t v) {
  PutBe16(r, at, v >> 16);
  PutBe16(r, at + 2, v);
}

void PutBytes(Record& r, std::size_t at, const std::vector<std::uint8_t>& bytes) {
  std::copy(bytes.begin(), bytes.end(), r.begin() + static_cast<std::ptrdiff_t>(at));
}

// A navigation pack with its system header, PCI and DSI packet headers and zero fields.
Record MakeNavPack(std::uint32_t pci_length = 980) {
  Record r = test::MakePackHeader(90000, 0, 25200);
  PutBytes(r, 14, {0x00, 0x00, 0x01, 0xBB, 0x00, 0x12, 0x80, 0xC4, 0xE1, 0x04, 0xE1, 0xFF,
                   0xE0, 0xE0, 0xE8, 0xC0, 0xC0, 0x20, 0xBD, 0xE0, 0x3A, 0xBF, 0xE0, 0x02});
  PutBytes(r, 38, {0x00, 0x00, 0x01, 0xBF});
  PutBe16(r, 42, pci_length);
  r[44] = 0x00;
  std::size_t dsi = 38 + pci_length + 6;
  if (dsi + 7 <= r.size()) {
    PutBytes(r, dsi, {0x00, 0x00, 0x01, 0xBF, 0x03, 0xFA, 0x01});
  }
  return r;
}

std::vector<std::string> Show(Fixture& f, const Record& r) {
  ShowNavPackDetails(*f.ctx, r);
  return f.lines();
}

// Index of the first line equal to text, or -1.
std::ptrdiff_t Find(const std::vector<std::string>& lines, const std::string& text) {
  auto it = std::find(lines.begin(), lines.end(), text);
  return it == lines.end() ? -1 : it - lines.begin();
}

std::vector<std::string> LinesStartingWith(const std::vector<std::string>& lines,
                                           const std::string& prefix) {
  std::vector<std::string> out;
  for (const auto& l : lines) {
    if (l.rfind(prefix, 0) == 0) out.push_back(l);
  }
  return out;
}

// ---- the whole view of one synthetic pack, every line written out by hand ----

Record MakeFullNavPack() {
  Record r = MakeNavPack();
  // PCI general information.
  PutBe32(r, kPci + 0, 0x00001234);                  // nv_pck_lbn 4660
  PutBe16(r, kPci + 4, 0xFFFF);                      // vobu_cat: still shows 0
  PutBe32(r, kPci + 8, 0x0001ABCD);                  // vobu_uop_ctl
  PutBe32(r, kPci + 12, 3003);                       // vobu_s_ptm
  PutBe32(r, kPci + 16, 0xFFFFFFFF);                 // vobu_e_ptm: -1 as a 32-bit %ld
  PutBe32(r, kPci + 20, 0);                          // vobu_se_e_ptm
  PutBytes(r, kPci + 24, {0x01, 0x23, 0x45, 0xD9});  // 01:23:45, frames 1*10+9, code 3
  // Non-seamless angles (raw little-endian words).
  PutBytes(r, kPci + 60, {0x01, 0x00, 0x00, 0x80});  // 0x80000001
  PutBytes(r, kPci + 64, {0x10, 0x20, 0x30, 0x40});  // 0x40302010 = 1076895760
  // Highlight information.
  PutBe16(r, kPci + 96, 0x0001);
  PutBe32(r, kPci + 98, 100);
  PutBe32(r, kPci + 102, 200);
  PutBe32(r, kPci + 106, 0xFFFFFFFE);
  PutBe16(r, kPci + 110, 0x2A5F);  // groups 2, types 2, 5, 7
  r[kPci + 112] = 0;
  r[kPci + 113] = 3;
  r[kPci + 114] = 3;
  r[kPci + 116] = 1;
  r[kPci + 117] = 0;
  // Colour table (raw little-endian words).
  PutBytes(r, kPci + 118, {0x11, 0x22, 0x33, 0x44, 0xAA, 0xBB, 0xCC, 0xDD});
  PutBytes(r, kPci + 126, {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
  // Buttons 1 and 2; 3..18 stay zero.
  PutBytes(r, kPci + 142,
           {0x45, 0x32, 0x5F, 0x81, 0xA1, 0x2C, 0, 2, 3, 2, 0x20, 0x06, 0x00, 0x00, 0x00, 0x00,
            0x04, 0x02});
  PutBytes(r, kPci + 160,
           {0xC0, 0x00, 0x0F, 0x40, 0x00, 0x0F, 1, 0, 3, 1, 0x30, 0x06, 0x00, 0x00, 0x00, 0x43,
            0x00, 0x00});
  // DSI general information.
  PutBe32(r, kDsi + 0, 120000);
  PutBe32(r, kDsi + 4, 4660);
  PutBe32(r, kDsi + 8, 255);
  PutBe32(r, kDsi + 12, 10);
  PutBe32(r, kDsi + 16, 20);
  PutBe32(r, kDsi + 20, 30);
  PutBe16(r, kDsi + 24, 0x0102);
  r[kDsi + 27] = 5;
  PutBytes(r, kDsi + 28, {0x00, 0x00, 0x10, 0xC0});  // 00:00:10.00, no suffix in the DSI
  PutBytes(r, kDsi + 32, {0xF0, 0xA0});              // flags from 0xA0: 1 0 1 0
  PutBe32(r, kDsi + 34, 0xFFFFFFFF);
  PutBe32(r, kDsi + 38, 256);
  PutBe16(r, kDsi + 42, 0x8001);
  PutBe32(r, kDsi + 44, 3003);
  PutBe32(r, kDsi + 48, 120000);
  PutBe32(r, kDsi + 52, 1);
  PutBe32(r, kDsi + 56, 2);
  PutBe32(r, kDsi + 52 + 56, 0x7FFFFFFF);
  PutBe32(r, kDsi + 56 + 56, 0x80000000);
  PutBe32(r, kDsi + 116, 3);
  PutBe32(r, kDsi + 120, 4);
  // Seamless angles 1 and 9.
  PutBe32(r, kDsi + 180, 0x80000010);
  PutBe16(r, kDsi + 184, 32);
  PutBe32(r, kDsi + 180 + 48, 0x7FFFFFFF);
  PutBe16(r, kDsi + 184 + 48, 0xFFFF);
  // VOBU search entries.
  PutBe32(r, kDsi + 234 + 4 * 0, 0xBFFFFFFF);   // next with video: none
  PutBe32(r, kDsi + 234 + 4 * 20, 0x3FFFFFFE);  // next with possible video
  PutBe32(r, kDsi + 234 + 4 * 1, 0xC0000005);   // next 120 s
  PutBe32(r, kDsi + 234 + 4 * 19, 0x3FFFFFFF);  // next 0.5 s: none
  PutBe32(r, kDsi + 234 + 4 * 21, 0x8000001F);  // previous with possible video (hex address)
  PutBe32(r, kDsi + 234 + 4 * 41, 0x40000002);  // previous with video
  PutBe32(r, kDsi + 234 + 4 * 40, 0x00000007);  // previous 120 s
  PutBe32(r, kDsi + 234 + 4 * 22, 0xFFFFFFFF);  // previous 0.5 s: none
  // Synchronous information.
  PutBe16(r, kDsi + 402, 0x8123);
  PutBe16(r, kDsi + 402 + 14, 0x7FFF);
  PutBe32(r, kDsi + 418, 0x80000010);
  PutBe32(r, kDsi + 418 + 124, 0xFFFFFFFF);
  return r;
}

std::vector<std::string> ExpectedFullNavPack() {
  std::vector<std::string> e = {
      "pack_start_code 1ba",
      "   SCR = 00090000.000",
      "    program_mux_rate = 25200, 1260000 BPS 10080000 bps",
      " ",
      "system_header_start_code 1bb",
      "    header_length 18",
      "    rate_bound = 25200, 1260000 BPS 10080000 bps",
      "    audio_bound = 1",
      "    fixed_flag = 0",
      "    CSPS_flag = 0",
      "    system_audio_lock_flag = 1",
      "    system_video_lock_flag = 1",
      "    video_bound = 1",
      "    packet_rate_restriction_flag = 1",
      "    video_stream_id = e0",
      "      PSTD_buf_bound = 232, 237568 bytes",
      "    audio_stream_id = c0",
      "      PSTD_buf_bound = 32, 4096 bytes",
      "    private_stream_1_id = bd",
      "      PSTD_buf_bound = 58, 59392 bytes",
      "    private_stream_2_id = bf",
      "      PSTD_buf_bound = 2, 2048 bytes",
      " ",
      "PCI packet_start_code_prefix 1bf",
      "    packete_length 980",
      "    PCI sub_stream_id 0",
      "  PCI General Information",
      "    nv_pck_lbn 4660 LBN of Nav pack",
      "    vobu_cat 0 Category of VOBU (analog prot. sys.)",
      "    vobu_uop_ctl 1abcd User Operation control of VOBU",
      "    vobu_s_ptm 3003 Start PTM of VOBU",
      "    vobu_e_ptm -1 End PTM of VOBU",
      "    vobu_se_e_ptm 0 End PTM ov VOBU if Seq_End_Code",
      "    c_eltm 01:23:45.19 Cell Elapsed Time at 30 FPS",
      "  Angle Information for non-seamless play",
      "    VOBU #1 Before/After 1 RLBN address 1",
      "    VOBU #2 Before/After 0 RLBN address 1076895760",
  };
  for (int n = 3; n <= 9; ++n) {
    e.push_back("    VOBU #" + std::to_string(n) + " Before/After 0 RLBN address 0");
  }
  for (const char* l : {
           "  Button Highlight Information",
           "    hli_ss 1 Status of Highlight",
           "    hli_s_ptm 100 Start PTM of Highlight",
           "    hli_e_ptm 200 End PTM of Highlight",
           "    hli_sl_e_ptm -2 End PTM of Button select",
           "    btn_md: 2a5f [Button Modes]",
           "      btngr_ns: 2 [Button Groups]",
           "      btngr1_dsp_ty: 2 [Button grp 1 display type]",
           "      btngr2_dsp_ty: 5 [Button grp 2 display type]",
           "      btngr3_dsp_ty: 7 [Button grp 3 display type]",
           "      btn_ofn: 0 [Button offset number]",
           "      btn_ns: 3 [Number of buttons]",
           "      nsl_btn_ns: 3 [Number of selectable buttons]",
           "      fosl_btnn: 1 [Default button at start PTM]",
           "      foac_btnn: 0 [Default button at termination PTM]",
           "  Button Color Information Table",
           "      btn_coli1: 44332211 [Selection Color Info.]",
           "      btn_coli1: ddccbbaa [Action Color Info.]",
           "      btn_coli2: 01 [Selection Color Info.]",
           "      btn_coli2: 00 [Action Color Info.]",
           "      btn_coli3: 00 [Selection Color Info.]",
           "      btn_coli3: 00 [Action Color Info.]",
           "  Button Navigational Commands",
           // Button 1: x 5*16+3 = 83, y 1*16+10 = 26, x end 2*256+0x50 = 592,
           // y end 1*256+0x20 = 288.
           "      btn_coln: 1 [Button 1 color number]",
           "      Auto action mode: 2 [Button 1 Selection/Action modes]",
           "      Location: 083x026 592x288 [Button 1 coordinates]",
           "      Adjacent buttons: 0 2 3 2 [to Button 1]",
           "      Nav cmd: 2006000000000402 Lnk  to Program 2 this PGC, Highlight: 1",
           " ",
           // Button 2: the low nibbles of the end coordinates' last bytes are dropped.
           "      btn_coln: 3 [Button 2 color number]",
           "      Auto action mode: 1 [Button 2 Selection/Action modes]",
           "      Location: 000x000 000x000 [Button 2 coordinates]",
           "      Adjacent buttons: 1 0 3 1 [to Button 2]",
           "      Nav cmd: 3006000000430000 JmpInSystemSpace To VMGM Menu Root Menu",
           " ",
       }) {
    e.push_back(l);
  }
  for (int n = 3; n <= 18; ++n) {
    std::string b = std::to_string(n);
    e.push_back("      btn_coln: 0 [Button " + b + " color number]");
    e.push_back("      Auto action mode: 0 [Button " + b + " Selection/Action modes]");
    e.push_back("      Location: 000x000 000x000 [Button " + b + " coordinates]");
    e.push_back("      Adjacent buttons: 0 0 0 0 [to Button " + b + "]");
    e.push_back("      Nav cmd: 0000000000000000 No Operation");
    e.push_back(" ");
  }
  for (const char* l : {
           "  Recording Information ISRC is skipped",
           " ",
           "DSI packet_start_code_prefix 1bf",
           "    packete_length 1018 Substream",
           "    DSI sub_stream_id 1",
           "  Data Search Information (DSI) General Information",
           "      nv_pck_scr 120000",
           "      nv_pck_lbn 4660 Logical Block Number",
           "      vobu_ea 255 End adr of VOBU",
           "      vobu_1stref_ea 10 First ref. picture",
           "      vobu_2ndref_ea 20 Second ref. picture",
           "      vobu_3rdref_ea 30 Third ref. picture",
           "      vobu_vob_idn 258 VOB ID number",
           "      vobu_c_idn 5 Cell ID number of VOBU",
           "      c_eltm 00:00:10.00 Cell elapse time",
           "  Seamless Playback Information SML_PBI",
           "    PREU flag 1 ",
           "    ILVU flag 0 ",
           "    Unit Start flag 1 ",
           "    Unit End flag 0 ",
           "    ilvu_ea -1 RLBN adr. of last pack in this ILVU",
           "    nxt_ilvu_sa 256 RLBN of Next ILVU pack in this chain",
           "    nxt_ilvu_sz 32769 Size of next ILVU in this chain",
           "    vob_v_s_ptm 3003 PTM of first video frame in first GOP in VOB",
           "    vob_v_e_ptm 120000 PTM of last video frame in last GOP in VOB",
           "    vob_a_stp_ptm 1: 1 2: 2 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 0 2: 0 ",
           "    vob_a_stp_ptm 1: 2147483647 2: -2147483648 ",
           "    vob_a_gap_len 1: 3 2: 4 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "    vob_a_gap_len 1: 0 2: 0 ",
           "  Angle Information for Seamless Jumps",
           "    agl_c 1 Location Befor/After nav pack",
           "    agl_c 1 RLBN 16 Next ILVU of this angle",
           "    agl_c 1 Size 32 Length of ILVU of this angle",
           " ",
       }) {
    e.push_back(l);
  }
  for (int n = 2; n <= 8; ++n) {
    std::string a = std::to_string(n);
    e.push_back("    agl_c " + a + " Location Befor/After nav pack");
    e.push_back("    agl_c " + a + " RLBN 0 Next ILVU of this angle");
    e.push_back("    agl_c " + a + " Size 0 Length of ILVU of this angle");
    e.push_back(" ");
  }
  for (const char* l : {
           "    agl_c 9 Location Befor/After nav pack",
           "    agl_c 9 RLBN 2147483647 Next ILVU of this angle",
           "    agl_c 9 Size 65535 Length of ILVU of this angle",
           " ",
           "  VOBU Search Information (VOBU_SRI)",
           "    Next VOBU with video - Does not exist bfffffff",
           "    Next VOBU with possible video 0 0 1073741822",
           "    Next VOBU 120.000000 seconds from present 1 1 5",
           "    Next VOBU 60.000000 seconds from present 0 0 0",
           "    Next VOBU 30.000000 seconds from present 0 0 0",
           "    Next VOBU 10.000000 seconds from present 0 0 0",
           "    Next VOBU 7.500000 seconds from present 0 0 0",
           "    Next VOBU 7.000000 seconds from present 0 0 0",
           "    Next VOBU 6.500000 seconds from present 0 0 0",
           "    Next VOBU 6.000000 seconds from present 0 0 0",
           "    Next VOBU 5.500000 seconds from present 0 0 0",
           "    Next VOBU 5.000000 seconds from present 0 0 0",
           "    Next VOBU 4.500000 seconds from present 0 0 0",
           "    Next VOBU 4.000000 seconds from present 0 0 0",
           "    Next VOBU 3.500000 seconds from present 0 0 0",
           "    Next VOBU 3.000000 seconds from present 0 0 0",
           "    Next VOBU 2.500000 seconds from present 0 0 0",
           "    Next VOBU 2.000000 seconds from present 0 0 0",
           "    Next VOBU 1.500000 seconds from present 0 0 0",
           "    Next VOBU 1.000000 seconds from present 0 0 0",
           "    Next VOBU 0.500000 seconds from present - Does not exist 3fffffff",
           "    Previous VOBU with possible video 1 0 1f",
           "    Previous VOBU with video 0 1 2",
           "    Previous VOBU 120.000000 seconds from present 0 0 7",
           "    Previous VOBU 60.000000 seconds from present 0 0 0",
           "    Previous VOBU 30.000000 seconds from present 0 0 0",
           "    Previous VOBU 10.000000 seconds from present 0 0 0",
           "    Previous VOBU 7.500000 seconds from present 0 0 0",
           "    Previous VOBU 7.000000 seconds from present 0 0 0",
           "    Previous VOBU 6.500000 seconds from present 0 0 0",
           "    Previous VOBU 6.000000 seconds from present 0 0 0",
           "    Previous VOBU 5.500000 seconds from present 0 0 0",
           "    Previous VOBU 5.000000 seconds from present 0 0 0",
           "    Previous VOBU 4.500000 seconds from present 0 0 0",
           "    Previous VOBU 4.000000 seconds from present 0 0 0",
           "    Previous VOBU 3.500000 seconds from present 0 0 0",
           "    Previous VOBU 3.000000 seconds from present 0 0 0",
           "    Previous VOBU 2.500000 seconds from present 0 0 0",
           "    Previous VOBU 2.000000 seconds from present 0 0 0",
           "    Previous VOBU 1.500000 seconds from present 0 0 0",
           "    Previous VOBU 1.000000 seconds from present 0 0 0",
           "    Previous VOBU 0.500000 seconds from present - Does not exist ffffffff",
           "  Synchronous Information (SYNCI)",
           "    Sync. Audio: Before/After flag 1, RLBN from this pack 0123",
       }) {
    e.push_back(l);
  }
  for (int k = 1; k <= 6; ++k)
    e.push_back("    Sync. Audio: Before/After flag 0, RLBN from this pack 0000");
  e.push_back("    Sync. Audio: Before/After flag 0, RLBN from this pack 7fff");
  e.push_back("    Sync. Subpicture: Before/After flag 1, RLBN from this pack 00000010");
  for (int k = 1; k <= 30; ++k) {
    e.push_back("    Sync. Subpicture: Before/After flag 0, RLBN from this pack 00000000");
  }
  e.push_back("    Sync. Subpicture: Before/After flag 1, RLBN from this pack 7fffffff");
  return e;
}

TEST(NavPackDetails, FullViewOfASyntheticPackLineByLine) {
  Fixture f;
  std::vector<std::string> got = Show(f, MakeFullNavPack());
  std::vector<std::string> want = ExpectedFullNavPack();
  // 3 pack header + 19 system header + 1 blank + 4 PCI packet + 7 general + 10 angles
  // + 15 highlight + 7 colours + 1 + 18 * 6 buttons + 2 ISRC + 4 DSI packet + 9 general
  // + 5 SML_PBI + 5 ILVU/video + 16 audio + 1 + 9 * 4 angles + 1 + 42 search + 1 + 8 + 32 sync.
  EXPECT_EQ(want.size(), 337u);
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < want.size(); ++i) EXPECT_EQ(got[i], want[i]) << "line " << i;
}

// ---- one behaviour each ----

TEST(NavPackDetails, SearchEntryWithAllOnesAddressDoesNotExistWhateverItsFlags) {
  for (std::uint32_t flags : {0x00000000u, 0x40000000u, 0x80000000u, 0xC0000000u}) {
    Fixture f;
    Record r = MakeNavPack();
    PutBe32(r, kDsi + 234, flags | 0x3FFFFFFF);
    auto lines = Show(f, r);
    char want[80];
    std::snprintf(want, sizeof want, "    Next VOBU with video - Does not exist %08x",
                  flags | 0x3FFFFFFF);
    EXPECT_GE(Find(lines, want), 0) << want;
  }
}

TEST(NavPackDetails, SearchEntryOneBelowAllOnesIsANormalLine) {
  Fixture f;
  Record r = MakeNavPack();
  PutBe32(r, kDsi + 234, 0xFFFFFFFE);
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "    Next VOBU with video 1 1 1073741822"), 0);
  EXPECT_TRUE(LinesStartingWith(lines, "    Next VOBU with video - Does not exist").empty());
}

TEST(NavPackDetails, ThreeButtonMenuStillListsEighteenButtonBlocks) {
  Fixture f;
  Record r = MakeNavPack();
  r[kPci + 113] = 3;  // btn_ns
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "      btn_ns: 3 [Number of buttons]"), 0);
  EXPECT_EQ(LinesStartingWith(lines, "      Nav cmd: ").size(), 18u);
  EXPECT_GE(Find(lines, "      btn_coln: 0 [Button 18 color number]"), 0);
  EXPECT_EQ(Find(lines, "      btn_coln: 0 [Button 19 color number]"), -1);
}

std::string PciCellTimeLine(std::uint8_t last_byte) {
  Fixture f;
  Record r = MakeNavPack();
  PutBytes(r, kPci + 24, {0x00, 0x00, 0x00, last_byte});
  auto lines = LinesStartingWith(Show(f, r), "    c_eltm ");
  return lines.empty() ? std::string() : lines.front();
}

TEST(NavPackDetails, PciCellTimeSuffixFollowsTheFrameRateCode) {
  // Frames: bits 5..4 are tens, bits 3..0 units.
  EXPECT_EQ(PciCellTimeLine(0xC0), "    c_eltm 00:00:00.00 Cell Elapsed Time at 30 FPS");
  EXPECT_EQ(PciCellTimeLine(0xFF), "    c_eltm 00:00:00.45 Cell Elapsed Time at 30 FPS");
  EXPECT_EQ(PciCellTimeLine(0x40), "    c_eltm 00:00:00.00 Cell Elapsed Time at 25 FPS");
  EXPECT_EQ(PciCellTimeLine(0x7F), "    c_eltm 00:00:00.45 Cell Elapsed Time at 25 FPS");
  EXPECT_EQ(PciCellTimeLine(0x24),
            "    c_eltm 00:00:00.24 Cell Elapsed Time Unknown or illegal VOB Mux frame rate");
  EXPECT_EQ(PciCellTimeLine(0x80),
            "    c_eltm 00:00:00.00 Cell Elapsed Time Unknown or illegal VOB Mux frame rate");
}

TEST(NavPackDetails, DsiCellTimeNeverHasASuffix) {
  for (std::uint8_t last : {0x00, 0x40, 0x80, 0xC0}) {
    Fixture f;
    Record r = MakeNavPack();
    PutBytes(r, kDsi + 28, {0x23, 0x59, 0x59, last});
    auto lines = LinesStartingWith(Show(f, r), "      c_eltm ");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "      c_eltm 23:59:59.00 Cell elapse time");
  }
}

TEST(NavPackDetails, VobuCategoryAlwaysPrintsZero) {
  for (std::uint32_t cat : {0x0000u, 0x00C0u, 0xC000u, 0xFFFFu}) {
    Fixture f;
    Record r = MakeNavPack();
    PutBe16(r, kPci + 4, cat);
    auto lines = Show(f, r);
    EXPECT_GE(Find(lines, "    vobu_cat 0 Category of VOBU (analog prot. sys.)"), 0) << cat;
  }
}

TEST(NavPackDetails, ForwardAndBackwardSeekLadders) {
  Fixture f;
  Record r = MakeNavPack();
  // Entry j holds address j, so each line shows which entry it was read from.
  for (std::uint32_t j = 0; j < 42; ++j) PutBe32(r, kDsi + 234 + 4 * j, j);
  auto lines = Show(f, r);
  const char* six[] = {"120.000000", "60.000000", "30.000000", "10.000000", "7.500000",
                       "7.000000",   "6.500000",  "6.000000",  "5.500000",  "5.000000",
                       "4.500000",   "4.000000",  "3.500000",  "3.000000",  "2.500000",
                       "2.000000",   "1.500000",  "1.000000",  "0.500000"};
  auto next = LinesStartingWith(lines, "    Next VOBU ");
  auto previous = LinesStartingWith(lines, "    Previous VOBU ");
  ASSERT_EQ(next.size(), 21u);
  ASSERT_EQ(previous.size(), 21u);
  EXPECT_EQ(next[0], "    Next VOBU with video 0 0 0");
  EXPECT_EQ(next[1], "    Next VOBU with possible video 0 0 20");
  EXPECT_EQ(previous[0], "    Previous VOBU with possible video 0 0 15");  // 21 in hex
  EXPECT_EQ(previous[1], "    Previous VOBU with video 0 0 41");
  for (int i = 0; i < 19; ++i) {
    EXPECT_EQ(next[2 + i], std::string("    Next VOBU ") + six[i] + " seconds from present 0 0 " +
                               std::to_string(1 + i));
    EXPECT_EQ(previous[2 + i], std::string("    Previous VOBU ") + six[i] +
                                   " seconds from present 0 0 " + std::to_string(40 - i));
  }
}

TEST(NavPackDetails, ColourTableAndNonSeamlessAnglesShowBytesReversed) {
  Fixture f;
  Record r = MakeNavPack();
  PutBytes(r, kPci + 118, {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0});
  PutBytes(r, kPci + 60, {0x00, 0x01, 0x00, 0x00});  // big-endian 65536, shown as 256
  PutBytes(r, kPci + 64, {0x00, 0x00, 0x00, 0x81});  // big-endian 0x81, shown as 0x81000000
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "      btn_coli1: 78563412 [Selection Color Info.]"), 0);
  EXPECT_GE(Find(lines, "      btn_coli1: f0debc9a [Action Color Info.]"), 0);
  EXPECT_GE(Find(lines, "    VOBU #1 Before/After 0 RLBN address 256"), 0);
  EXPECT_GE(Find(lines, "    VOBU #2 Before/After 1 RLBN address 16777216"), 0);
}

TEST(NavPackDetails, SeamlessFlagsPrintAsZeroOrOneFromTheSecondByte) {
  Fixture f;
  Record r = MakeNavPack();
  PutBytes(r, kDsi + 32, {0x00, 0xF0});
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "    PREU flag 1 "), 0);
  EXPECT_GE(Find(lines, "    ILVU flag 1 "), 0);
  EXPECT_GE(Find(lines, "    Unit Start flag 1 "), 0);
  EXPECT_GE(Find(lines, "    Unit End flag 1 "), 0);

  Fixture g;
  PutBytes(r, kDsi + 32, {0xF0, 0x50});  // first byte ignored; 0x50 = 0101
  lines = Show(g, r);
  EXPECT_GE(Find(lines, "    PREU flag 0 "), 0);
  EXPECT_GE(Find(lines, "    ILVU flag 1 "), 0);
  EXPECT_GE(Find(lines, "    Unit Start flag 0 "), 0);
  EXPECT_GE(Find(lines, "    Unit End flag 1 "), 0);
}

TEST(NavPackDetails, PciLengthMovesTheDsiBlock) {
  Fixture f;
  Record r = MakeNavPack(100);  // DSI start code at 144, data at 151
  PutBe32(r, 151, 777);
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "    packete_length 100"), 0);
  EXPECT_GE(Find(lines, "DSI packet_start_code_prefix 1bf"), 0);
  EXPECT_GE(Find(lines, "      nv_pck_scr 777"), 0);
}

TEST(NavPackDetails, DsiBlockPastTheRecordReadsZeros) {
  // A PCI length of 0xFFFF puts the DSI far beyond the record: every DSI field reads 0 and the
  // view still has all its lines.
  Fixture f;
  Record r = MakeNavPack(0xFFFF);
  std::fill(r.begin() + 1200, r.end(), 0xFF);
  auto lines = Show(f, r);
  EXPECT_EQ(lines.size(), 337u);
  EXPECT_GE(Find(lines, "    packete_length 65535"), 0);
  EXPECT_GE(Find(lines, "DSI packet_start_code_prefix 0"), 0);
  EXPECT_GE(Find(lines, "      nv_pck_scr 0"), 0);
  EXPECT_EQ(lines.back(),
            "    Sync. Subpicture: Before/After flag 0, RLBN from this pack 00000000");
}

TEST(NavPackDetails, DsiBlockStraddlingTheRecordEndReadsZerosBeyond2048) {
  // L = 1800: DSI data at 1851; sub-picture sync entry k lies at 1851 + 418 + 4k, all beyond
  // 2048; audio sync entry 0 lies at 2253. Seamless angle n lies at 1851 + 180 + 6(n - 1): angle 3
  // sits at 2043..2048, so its size word at 2047..2048 reads 0xFF then 0; angle 4 is all outside.
  Fixture f;
  Record r = MakeNavPack(1800);
  std::fill(r.begin() + 1858, r.end(), 0xFF);
  // Even a larger buffer is read as one record only.
  Record big = r;
  big.resize(4096, 0xFF);
  auto lines = Show(f, big);
  EXPECT_EQ(lines.size(), 337u);
  EXPECT_GE(Find(lines, "    agl_c 1 RLBN 2147483647 Next ILVU of this angle"), 0);
  EXPECT_GE(Find(lines, "    agl_c 3 RLBN 2147483647 Next ILVU of this angle"), 0);
  EXPECT_GE(Find(lines, "    agl_c 3 Size 65280 Length of ILVU of this angle"), 0);
  EXPECT_GE(Find(lines, "    agl_c 4 RLBN 0 Next ILVU of this angle"), 0);
  EXPECT_GE(Find(lines, "    agl_c 4 Size 0 Length of ILVU of this angle"), 0);
  EXPECT_EQ(lines.back(),
            "    Sync. Subpicture: Before/After flag 0, RLBN from this pack 00000000");
}

TEST(NavPackDetails, ButtonCommandsAreDecodedAfterTheirHexDigits) {
  Fixture f;
  Record r = MakeNavPack();
  PutBytes(r, kPci + 142 + 18 * 17 + 10, {0x30, 0x08, 0x00, 0x07, 0x00, 0xC0, 0x00, 0x00});
  auto lines = Show(f, r);
  EXPECT_GE(Find(lines, "      Nav cmd: 3008000700c00000 CallInSystemSpace VMGM_DOM PGC number 7 "),
            0);
}

}  // namespace
}  // namespace tarvex
