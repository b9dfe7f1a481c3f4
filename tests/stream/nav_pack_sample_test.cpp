// The details of the first navigation pack of the sample disc's two menus, every line derived
// by hand from the pack's bytes (the menus differ only in their two button commands).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/commands.h"
#include "stream/details.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

std::vector<std::string> ExpectedMenuNavPack(const std::string& button1_command,
                                             const std::string& button2_command) {
  std::vector<std::string> e = {
      "Details display of record 0 at file address 0",
      "  VOB Navigations Pack Details",
      " ",
      // 00 00 01 BA 44 00 04 00 04 01 | 01 89 C3 F8: SCR 0.0, mux rate 0x0189C3F8 >> 10 = 25200.
      "pack_start_code 1ba",
      "   SCR = 00000000.000",
      "    program_mux_rate = 25200, 1260000 BPS 10080000 bps",
      " ",
      // 00 00 01 BB 00 12 80 C4 E1 04 E1 7F B9 E0 E6 B8 C0 20 BD C0 00 BF E0 02
      "system_header_start_code 1bb",
      "    header_length 18",
      "    rate_bound = 25200, 1260000 BPS 10080000 bps",
      "    audio_bound = 1",
      "    fixed_flag = 0",
      "    CSPS_flag = 0",
      "    system_audio_lock_flag = 1",
      "    system_video_lock_flag = 1",
      "    video_bound = 1",
      "    packet_rate_restriction_flag = 0",
      "    video_stream_id = b9",
      "      PSTD_buf_bound = 230, 235520 bytes",
      "    audio_stream_id = b8",
      "      PSTD_buf_bound = 32, 4096 bytes",
      "    private_stream_1_id = bd",
      "      PSTD_buf_bound = 0, 0 bytes",
      "    private_stream_2_id = bf",
      "      PSTD_buf_bound = 2, 2048 bytes",
      " ",
      "PCI packet_start_code_prefix 1bf",
      "    packete_length 980",
      "    PCI sub_stream_id 0",
      "  PCI General Information",
      "    nv_pck_lbn 0 LBN of Nav pack",
      "    vobu_cat 0 Category of VOBU (analog prot. sys.)",
      "    vobu_uop_ctl 0 User Operation control of VOBU",
      "    vobu_s_ptm 48003 Start PTM of VOBU",  // 0x0000BB83
      "    vobu_e_ptm 87042 End PTM of VOBU",    // 0x00015402
      "    vobu_se_e_ptm 0 End PTM ov VOBU if Seq_End_Code",
      "    c_eltm 00:00:00.00 Cell Elapsed Time at 30 FPS",  // 00 00 00 C0
      "  Angle Information for non-seamless play",
  };
  for (int n = 1; n <= 9; ++n) {
    e.push_back("    VOBU #" + std::to_string(n) + " Before/After 0 RLBN address 0");
  }
  for (const char* l : {
           "  Button Highlight Information",
           "    hli_ss 1 Status of Highlight",
           "    hli_s_ptm 48003 Start PTM of Highlight",
           "    hli_e_ptm -1 End PTM of Highlight",  // FF FF FF FF
           "    hli_sl_e_ptm -1 End PTM of Button select",
           "    btn_md: 1000 [Button Modes]",
           "      btngr_ns: 1 [Button Groups]",
           "      btngr1_dsp_ty: 0 [Button grp 1 display type]",
           "      btngr2_dsp_ty: 0 [Button grp 2 display type]",
           "      btngr3_dsp_ty: 0 [Button grp 3 display type]",
           "      btn_ofn: 0 [Button offset number]",
           "      btn_ns: 2 [Number of buttons]",
           "      nsl_btn_ns: 2 [Number of selectable buttons]",
           "      fosl_btnn: 0 [Default button at start PTM]",
           "      foac_btnn: 0 [Default button at termination PTM]",
           "  Button Color Information Table",
           "      btn_coli1: f0000000 [Selection Color Info.]",  // 00 00 00 F0
           "      btn_coli1: f0001000 [Action Color Info.]",     // 00 10 00 F0
           "      btn_coli2: 00 [Selection Color Info.]",
           "      btn_coli2: 00 [Action Color Info.]",
           "      btn_coli3: 00 [Selection Color Info.]",
           "      btn_coli3: 00 [Action Color Info.]",
           "  Button Navigational Commands",
           // 4C 02 10 09 80 E4: colour 1, x 12*16+0 = 192 to 2*256+0x10 = 528,
           // y 9*16+8 = 152 to 0*256+(0xE4 & 0xF0) = 224.
           "      btn_coln: 1 [Button 1 color number]",
           "      Auto action mode: 0 [Button 1 Selection/Action modes]",
           "      Location: 192x152 528x224 [Button 1 coordinates]",
           "      Adjacent buttons: 1 2 1 1 [to Button 1]",
       }) {
    e.push_back(l);
  }
  e.push_back(button1_command);
  e.push_back(" ");
  // 4C 02 10 11 01 5C: y 17*16+0 = 272 to 1*256+(0x5C & 0xF0) = 336.
  for (const char* l : {
           "      btn_coln: 1 [Button 2 color number]",
           "      Auto action mode: 0 [Button 2 Selection/Action modes]",
           "      Location: 192x272 528x336 [Button 2 coordinates]",
           "      Adjacent buttons: 1 2 2 2 [to Button 2]",
       }) {
    e.push_back(l);
  }
  e.push_back(button2_command);
  e.push_back(" ");
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
           "      nv_pck_scr 0",
           "      nv_pck_lbn 0 Logical Block Number",
           "      vobu_ea 9 End adr of VOBU",
           "      vobu_1stref_ea 5 First ref. picture",
           "      vobu_2ndref_ea 6 Second ref. picture",
           "      vobu_3rdref_ea 6 Third ref. picture",
           "      vobu_vob_idn 1 VOB ID number",
           "      vobu_c_idn 1 Cell ID number of VOBU",
           "      c_eltm 00:00:00.00 Cell elapse time",
           "  Seamless Playback Information SML_PBI",
           "    PREU flag 0 ",
           "    ILVU flag 0 ",
           "    Unit Start flag 0 ",
           "    Unit End flag 0 ",
           "    ilvu_ea 0 RLBN adr. of last pack in this ILVU",
           "    nxt_ilvu_sa 0 RLBN of Next ILVU pack in this chain",
           "    nxt_ilvu_sz 0 Size of next ILVU in this chain",
           "    vob_v_s_ptm 48003 PTM of first video frame in first GOP in VOB",
           "    vob_v_e_ptm 139683 PTM of last video frame in last GOP in VOB",  // 0x000221A3
       }) {
    e.push_back(l);
  }
  for (int k = 0; k < 8; ++k) e.push_back("    vob_a_stp_ptm 1: 0 2: 0 ");
  for (int k = 0; k < 8; ++k) e.push_back("    vob_a_gap_len 1: 0 2: 0 ");
  e.push_back("  Angle Information for Seamless Jumps");
  for (int n = 1; n <= 9; ++n) {
    std::string a = std::to_string(n);
    e.push_back("    agl_c " + a + " Location Befor/After nav pack");
    e.push_back("    agl_c " + a + " RLBN 0 Next ILVU of this angle");
    e.push_back("    agl_c " + a + " Size 0 Length of ILVU of this angle");
    e.push_back(" ");
  }
  // Search entries: 0, 19 and 20 hold 8000000A, 18 holds 80000012, 41 holds BFFFFFFF, every
  // other entry 3FFFFFFF.
  e.push_back("  VOBU Search Information (VOBU_SRI)");
  e.push_back("    Next VOBU with video 1 0 10");
  e.push_back("    Next VOBU with possible video 1 0 10");
  for (const char* s : {"120.000000", "60.000000", "30.000000", "10.000000", "7.500000", "7.000000",
                        "6.500000", "6.000000", "5.500000", "5.000000", "4.500000", "4.000000",
                        "3.500000", "3.000000", "2.500000", "2.000000", "1.500000"}) {
    e.push_back(std::string("    Next VOBU ") + s +
                " seconds from present - Does not exist 3fffffff");
  }
  e.push_back("    Next VOBU 1.000000 seconds from present 1 0 18");
  e.push_back("    Next VOBU 0.500000 seconds from present 1 0 10");
  e.push_back("    Previous VOBU with possible video - Does not exist 3fffffff");
  e.push_back("    Previous VOBU with video - Does not exist bfffffff");
  for (const char* s :
       {"120.000000", "60.000000", "30.000000", "10.000000", "7.500000", "7.000000", "6.500000",
        "6.000000", "5.500000", "5.000000", "4.500000", "4.000000", "3.500000", "3.000000",
        "2.500000", "2.000000", "1.500000", "1.000000", "0.500000"}) {
    e.push_back(std::string("    Previous VOBU ") + s +
                " seconds from present - Does not exist 3fffffff");
  }
  e.push_back("  Synchronous Information (SYNCI)");
  e.push_back("    Sync. Audio: Before/After flag 0, RLBN from this pack 0002");
  for (int k = 1; k < 8; ++k) {
    e.push_back("    Sync. Audio: Before/After flag 0, RLBN from this pack 0000");
  }
  e.push_back("    Sync. Subpicture: Before/After flag 0, RLBN from this pack 7fffffff");
  for (int k = 1; k < 32; ++k) {
    e.push_back("    Sync. Subpicture: Before/After flag 0, RLBN from this pack 00000000");
  }
  return e;
}

std::vector<std::string> DetailsOfRecordZero(Fixture& f, const std::string& vob) {
  std::vector<std::uint8_t> bytes =
      test::ReadFileBytes(std::string(TARVEX_SAMPLES_DIR) + "/disc/VIDEO_TS/" + vob);
  EXPECT_EQ(bytes.size() % 2048, 0u);
  f.OpenBytes(vob, bytes, kFileVob);
  f.ctx->AddReportLine("000000 Navigations  SCR 0.000");
  f.ctx->report.Select(0);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 1);
  return f.lines();
}

void ExpectLines(const std::vector<std::string>& got, const std::vector<std::string>& want) {
  EXPECT_EQ(want.size(), 3u + 337u);
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < want.size(); ++i) EXPECT_EQ(got[i], want[i]) << "line " << i;
}

TEST(NavPackSample, VideoManagerMenuFirstNavigationPack) {
  Fixture f;
  // Button 1 "play": 30 02 00 00 00 01 00 00, jump subtype 2 with b5 = 1.
  // Button 2 "chap3": 71 01 ..., a set-group command the reading does not decode.
  ExpectLines(DetailsOfRecordZero(f, "VIDEO_TS.VOB"),
              ExpectedMenuNavPack("      Nav cmd: 3002000000010000 Jmp to VTS 1",
                                  "      Nav cmd: 7101000f0002000d Unsupported by Kelvane at this "
                                  "time"));
}

TEST(NavPackSample, TitleSetMenuFirstNavigationPack) {
  Fixture f;
  // Button 1: 30 03 00 00 00 01 00 00, this title set's title 1.
  // Button 2: 30 05 00 03 00 01 00 00, title 1, part of title (0 << 10) | 3.
  ExpectLines(DetailsOfRecordZero(f, "VTS_01_0.VOB"),
              ExpectedMenuNavPack("      Nav cmd: 3003000000010000 Jmp to This VTS Title 1",
                                  "      Nav cmd: 3005000300010000 Jmp to This VTS Title 1 Part "
                                  "of Title 3"));
}

}  // namespace
}  // namespace tarvex
