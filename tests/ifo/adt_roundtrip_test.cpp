// Disassembly and assembly round trips of synthetic IFOs holding address, attribute, parental
// and text data tables: the assembled tables report exactly as the originals did.
#include <gtest/gtest.h>

#include "ifo/adt_test_tables.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/overview.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

std::vector<std::string> DetailsOf(Fixture& f, TableId id) {
  ReportTable(*f.ctx, id);
  std::vector<std::string> lines = f.lines();
  ShowIfoOverview(*f.ctx);
  return lines;
}

TEST(AdtRoundTripTest, TitleSetAddressTablesComeBackUnchanged) {
  Fixture f;
  std::vector<std::uint8_t> image = test::WithTables(
      test::MakeVtsImage(),
      {{kVtsmCAdtSa, test::MakeCAdt(2, {{1, 1, 0, 9}, {2, 1, 10, 19}})},
       {kVtsmVobuAdmapSa, test::MakeVobuAdmap({0, 5, 10, 15})},
       {kVtsCAdtSa, test::MakeCAdt(3, {{1, 1, 0, 99}, {1, 2, 100, 199}, {2, 1, 200, 299}})},
       {kVtsVobuAdmapSa, test::MakeVobuAdmap({0, 50, 100, 150, 200, 250})}});
  test::OpenIfo(f, "VTS_01_0.IFO", image);
  const TableId ids[] = {TableId::kVtsmCAdt, TableId::kVtsmVobuAdmap, TableId::kVtsCAdt,
                         TableId::kVtsVobuAdmap};
  std::vector<std::vector<std::string>> before;
  for (TableId id : ids) before.push_back(DetailsOf(f, id));

  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VTS_01_0.IFO");
  ASSERT_FALSE(out.empty());
  // VTSI_MAT, then one sector per table in file order: VTSM_C_ADT 1, VTSM_VOBU_ADMAP 2,
  // VTS_C_ADT 3, VTS_VOBU_ADMAP 4.
  ByteView v(out);
  EXPECT_EQ(v.be32(kVtsmCAdtSa), 1u);
  EXPECT_EQ(v.be32(kVtsmVobuAdmapSa), 2u);
  EXPECT_EQ(v.be32(kVtsCAdtSa), 3u);
  EXPECT_EQ(v.be32(kVtsVobuAdmapSa), 4u);
  EXPECT_EQ(out.size(), 5u * 2048u);

  Fixture g;
  test::OpenIfo(g, "VTS_01_0.IFO", out);
  for (std::size_t k = 0; k < std::size(ids); ++k) EXPECT_EQ(DetailsOf(g, ids[k]), before[k]);
}

TEST(AdtRoundTripTest, VideoManagerKeepsItsAttributeAndAddressTablesButNotTheOthers) {
  Fixture f;
  // One title set whose menu stream bytes are below 10, so their decimal reading keeps them.
  std::vector<std::uint8_t> atrt(8 + 4 + 776, 0);
  ByteWriter w(atrt);
  w.put_be16(0, 1);
  w.put_be32(4, 787);
  w.put_be32(8, 12);
  w.put_be32(12, 775);
  w.put_be32(16, 0x00000001);
  w.put_be16(20, 0x4300);
  w.put_u8(23, 2);
  w.put_u8(24, 3);
  w.put_u8(25, 9);
  w.put_u8(12 + 93, 1);
  w.put_u8(12 + 94, 7);
  w.put_be16(12 + 264, 0x5901);
  w.put_u8(12 + 267, 1);
  w.put_be32(12 + 268, 0xC0000000);
  w.put_u8(12 + 349, 1);
  w.put_be32(12 + 350, 0x01006672);
  std::vector<std::uint8_t> ptl = {0, 1, 0, 1, 0, 0, 0, 15, 'd', 'e', 0, 0, 0, 16, 0, 0};
  std::vector<std::uint8_t> txt(20, 'T');
  std::vector<std::uint8_t> image =
      test::WithTables(test::MakeVmgImage(), {{204, ptl},
                                              {208, atrt},
                                              {212, txt},
                                              {216, test::MakeCAdt(1, {{1, 1, 0, 27}})},
                                              {220, test::MakeVobuAdmap({0, 10, 18})}});
  test::OpenIfo(f, "VIDEO_TS.IFO", image);
  const TableId ids[] = {TableId::kVmgAtrt, TableId::kVmgmCAdt, TableId::kVmgmVobuAdmap};
  std::vector<std::vector<std::string>> before;
  for (TableId id : ids) before.push_back(DetailsOf(f, id));

  std::vector<std::uint8_t> out = test::RoundTripThroughDrivers(f, "VIDEO_TS.IFO");
  ASSERT_FALSE(out.empty());
  ByteView v(out);
  // VMGI_MAT (one sector), then VTS_ATRT 1, VMGM_C_ADT 2, VMGM_VOBU_ADMAP 3.
  EXPECT_EQ(v.be32(204), 0u);  // parental table gone
  EXPECT_EQ(v.be32(208), 1u);
  EXPECT_EQ(v.be32(212), 0u);  // text data manager gone
  EXPECT_EQ(v.be32(216), 2u);
  EXPECT_EQ(v.be32(220), 3u);
  EXPECT_EQ(out.size(), 4u * 2048u);

  Fixture g;
  test::OpenIfo(g, "VIDEO_TS.IFO", out);
  for (std::size_t k = 0; k < std::size(ids); ++k) EXPECT_EQ(DetailsOf(g, ids[k]), before[k]);
}

}  // namespace
}  // namespace tarvex
