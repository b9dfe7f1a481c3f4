// Golden details of the address, attribute, parental and text data tables on the sample
// disc. Every expected value was read by hand from the IFO bytes (xxd), as the comments say.
#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/sample_disc.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;
using test::OpenSample;
using test::PressDetailsOn;
using test::SampleAvailable;

std::string Disassembled(Fixture& f) {
  return test::ReadFileText(test::DisassembleIfoTo(f, "SAMPLE.INI"));
}

TEST(AdtSampleTest, VideoManagerOverviewLines) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  // ptl_mait_sa (204) = 0, vts_atrt_sa (208) = 3, txtdt_mg_sa (212) = 0, vmgm_c_adt_sa (216)
  // = 4, vmgm_vobu_admap_sa (220) = 5.
  for (const char* line :
       {"** VMG_MAIT IFO File: There is no Parental Management Information Table.",
        "VMG_ATRT IFO File: Video Title Set Attribute Table",
        "** VMG_TXTDT_MGI IFO File: There is no Text Data Manager information.",
        "VMGM_C_ADT IFO File: VMGM Cell Address Table information",
        "VMGM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table"}) {
    EXPECT_TRUE(HasLine(f, line)) << line;
  }
}

TEST(AdtSampleTest, TitleSetOverviewLines) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  // 0xD8..0xE4: VTSM_C_ADT 5, VTSM_VOBU_ADMAP 6, VTS_C_ADT 7, VTS_VOBU_ADMAP 8.
  const auto& l = f.lines();
  ASSERT_GE(l.size(), 4u);
  EXPECT_EQ(std::vector<std::string>(l.end() - 4, l.end()),
            (std::vector<std::string>{
                "VTSM_C_ADT IFO File: Video Title Set Menu Cell Address Table",
                "VTSM_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table",
                "VTS_C_ADT IFO File: Video Title Set Cell Address Table",
                "VTS_VOBU_ADMAP IFO File: Video Title Set Menu VOBU Address Map Table"}));
}

TEST(AdtSampleTest, VideoManagerMenuCellAddressTable) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMGM_C_ADT");
  // Sector 4 (0x2000): 0001 0000 00000013 | 0001 01 00 00000000 0000001b.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VOBs in VMGM_VOBS 1",
                           "End byte address of VMGM_C_ADT table: 19",
                           "For table entry 1 VOB ID 1 Cell ID 1.",
                           "Start sector address is 0 and end sector addres is 27.",
                       }));
}

TEST(AdtSampleTest, VideoManagerMenuAddressMap) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMGM_VOBU_ADMAP");
  // Sector 5 (0x2800): end address 0x0f, then 0, 0x0a, 0x12.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "VMGM VOBU Address Map Information: 3 entries",
                           "  VOBU 1 starts at sector 0",
                           "  VOBU 2 starts at sector 10",
                           "  VOBU 3 starts at sector 18",
                       }));
}

TEST(AdtSampleTest, TitleSetAttributeTable) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  PressDetailsOn(f, "VMG_ATRT");
  // Sector 3 (0x1800): 1 title set, end address 0x313, record at 0x0c (file 0x180c).
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{
                "Number of Video Title Sets: 1", "End byte address of VTS_ATR table: 787",
                "  VTS 1 Attribute start byte address 12",
                "    VTS Attribute end byte address 775",             // 0x180c: 00000307
                "    VTS_CAT Application type 0",                     // 0x1810
                "    Attributes of VTSM_VOBS: 430",                   // 0x1814: 43 00
                "    Number of audio streams in VTSM_VOBS: 1",        // 0x1817
                "      Audio 1 attributes: 0",                        // 0x1818
                "    Number of subpicture streams: 1",                // 0x1869
                "      Subpicture stream 1 attributes: 0",            // 0x186a
                "    Video attributes of VTSTT_VOBS: 430",            // 0x1914: 43 00
                "    Number of audio streams in VTSTT_VOBS: 3",       // 0x1917
                "      Audio 1 attributes: 04c1656e00000000",         // 0x1918
                "      Audio 2 attributes: 8401667200000000",         // 0x1920
                "      Audio 3 attributes: 4441646500000000",         // 0x1928
                "    Number of subpicture streams in VTSTT_VOBS: 1",  // 0x1969
                "      Subpicture stream 1 attributes: 1",            // 0x196a
            }));
}

TEST(AdtSampleTest, TitleSetMenuTables) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTSM_C_ADT");
  // Sector 5 (0x2800): the same bytes as the video manager's menu table.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VOBs in VTSM_VOBS: 1",
                           "End byte address of VTSM_C_ADT table: 19",
                           "For table entry 1 VOB ID 1 Cell ID 1.",
                           "Start sector address is 0 and end sector addres is 27.",
                       }));
  ShowIfoDetails(*f.ctx);  // back to the overview
  PressDetailsOn(f, "VTSM_VOBU_ADMAP");
  // Sector 6 (0x3000): end address 0x0f, then 0, 0x0a, 0x12.
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"  VOBU 1 starts at sector 0", "  VOBU 2 starts at sector 10",
                                      "  VOBU 3 starts at sector 18"}));
}

TEST(AdtSampleTest, TitleSetCellAddressTable) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTS_C_ADT");
  // Sector 7 (0x3800): 1 VOB, end address 0x2b, cells 0-0x186, 0x187-0x35b, 0x35c-0x4dd.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of VOBs in VTS_VOBS: 1",
                           "End byte address of VTS_C_ADT table: 43",
                           "For table entry 1 VOB ID 1 Cell ID 1.",
                           "Start sector address is 0 and end sector addres is 390.",
                           "For table entry 2 VOB ID 1 Cell ID 2.",
                           "Start sector address is 391 and end sector addres is 859.",
                           "For table entry 3 VOB ID 1 Cell ID 3.",
                           "Start sector address is 860 and end sector addres is 1245.",
                       }));
}

TEST(AdtSampleTest, TitleSetAddressMap) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  PressDetailsOn(f, "VTS_VOBU_ADMAP");
  // Sector 8 (0x4000): end address 0x47 = 71, so 68 bytes = 17 start sectors.
  std::vector<std::string> expected;
  const int sectors[] = {0,     0x1e,  0x4d,  0x9b,  0xea,  0x139, 0x187, 0x1d6, 0x224,
                         0x271, 0x2c0, 0x30f, 0x35c, 0x3a7, 0x3f2, 0x43a, 0x482};
  for (int i = 0; i < 17; ++i) {
    expected.push_back("  VOBU " + std::to_string(i + 1) + " starts at sector " +
                       std::to_string(sectors[i]));
  }
  EXPECT_EQ(f.lines(), expected);
}

TEST(AdtSampleTest, TitleSetDisassemblyWritesOneCellForItsOneVob) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VTS_01_0.IFO");
  std::string text = Disassembled(f);
  EXPECT_NE(text.find("[vts_c_adt]\r\nvts_vob_ns=1\r\nvts_c_adt_ea=43\r\n"
                      "c_001_vob001_vts_vob_idn=1\r\nc_001_vob001_vts_c_idn=1\r\n"
                      "c_001_vob001_vts_cp_sa=0\r\nc_001_vob001_vts_cp_ea=390\r\n\r\n"),
            std::string::npos);
  EXPECT_EQ(text.find("c_002_vob001"), std::string::npos);
  EXPECT_NE(text.find("[vts_vobu_admap]\r\nvobu_sa0001=0\r\nvobu_sa0002=30\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("vobu_sa0017=1154\r\n"), std::string::npos);
}

TEST(AdtSampleTest, VideoManagerDisassemblyOfTheAttributeTable) {
  ASSERT_TRUE(SampleAvailable()) << "the sample disc is missing";
  Fixture f;
  OpenSample(f, "VIDEO_TS.IFO");
  std::string text = Disassembled(f);
  EXPECT_NE(text.find("[vts_atrt]\r\nvts_ns=1\r\nvts_atrt_ea=787\r\n"
                      "vts_atrt_srp001_vts_atr_sa=12\r\nvts_atrt_srp001_vts_atr_ea=775\r\n"
                      "vts_atrt_srp001_vts_cat=0\r\nvts_atrt_srp001_vtsm_v_atr=x4300\r\n"
                      "vts_atrt_srp001_vtsm_ast_ns=1\r\nvts_atrt_srp001_vtsm_ast_atr01=x00\r\n"
                      "vts_atrt_srp001_vtsm_spst_ns=1\r\nvts_atrt_srp001_vtsm_spst_atr01=x00\r\n"
                      "vts_atrt_srp001_vts_v_atr=x4300\r\nvts_atrt_srp001_vts_ast_ns=3\r\n"
                      "vts_atrt_srp001_vts_ast_atr01=x04c1656e00000000\r\n"
                      "vts_atrt_srp001_vts_ast_atr02=x8401667200000000\r\n"
                      "vts_atrt_srp001_vts_ast_atr03=x4441646500000000\r\n"
                      "vts_atrt_srp001_vts_spst_ns=1\r\n"
                      "vts_atrt_srp001_vts_spst_atr01=x0100656e0000\r\n"),
            std::string::npos);
  // The video manager's menu map goes to the title set map's section.
  EXPECT_NE(text.find("[vts_vobu_admap]\r\nvobu_sa0001=0\r\nvobu_sa0002=10\r\nvobu_sa0003=18\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("[vmgm_c_adt]\r\nvmgm_vob_ns=1\r\nvmgm_c_adt_ea=19\r\n"), std::string::npos);
}

}  // namespace
}  // namespace tarvex
