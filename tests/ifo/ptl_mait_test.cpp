// The parental management information table. Expected values are worked out by hand from the
// layout: countries (16 bits), title sets (16 bits), end address (32 bits), then 8 bytes per
// country: code (2 characters), 2 reserved, start byte (16 bits), 2 reserved.
#include "ifo/ptl_mait.h"

#include <gtest/gtest.h>

#include "convert/drivers.h"
#include "ifo/ifo_drivers.h"
#include "ifo/ifo_images.h"
#include "platform/bytes.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;
using test::HasLine;

constexpr std::size_t kPtlMaitSa = 204;

// Two countries ("us" at byte 24, then a code whose first byte is 0 at byte 0x0123) and one
// title set; end address 0x0200.
std::vector<std::uint8_t> TwoCountries() {
  std::vector<std::uint8_t> t(24, 0);
  ByteWriter w(t);
  w.put_be16(0, 2);
  w.put_be16(2, 1);
  w.put_be32(4, 0x200);
  w.put_u8(8, 'u');
  w.put_u8(9, 's');
  w.put_be16(10, 0xFFFF);  // reserved bytes are not read
  w.put_be16(12, 24);
  w.put_be16(14, 0xFFFF);
  w.put_u8(16, 0);
  w.put_u8(17, 'x');
  w.put_be16(20, 0x0123);
  return t;
}

void OpenWith(Fixture& f, const std::vector<std::uint8_t>& table) {
  test::OpenIfo(f, "VIDEO_TS.IFO", test::WithTables(test::MakeVmgImage(), {{kPtlMaitSa, table}}));
}

TEST(MaitOpenTest, AbsenceAndHeadingLines) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  EXPECT_TRUE(
      HasLine(f, "** VMG_MAIT IFO File: There is no Parental Management Information Table."));
  Fixture g;
  OpenWith(g, TwoCountries());
  EXPECT_TRUE(HasLine(g, "VMG_MAIT IFO File: Parental Management Information Table"));
}

TEST(MaitReportTest, EightBytesPerCountryAndAZeroCodeByteEndsTheLine) {
  Fixture f;
  OpenWith(f, TwoCountries());
  ReportTable(*f.ctx, TableId::kVmgMait);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "Number of Countries: 2",
                           "Number of Video Title Sets: 1",
                           "End byte address of PTL_MAIT table: 512",
                           "Country Code of 1: us",
                           "Start byte address of PTL_MAI of 1: 24",
                           "Country Code of 2: ",
                           "Start byte address of PTL_MAI of 2: 291",
                       }));
}

TEST(MaitReportTest, HeaderOfZerosStillGivesTheHeaderLines) {
  Fixture f;
  OpenWith(f, std::vector<std::uint8_t>(8, 0));
  ReportTable(*f.ctx, TableId::kVmgMait);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"Number of Countries: 0", "Number of Video Title Sets: 0",
                                      "End byte address of PTL_MAIT table: 0"}));
}

TEST(MaitReportTest, PointersBeyondTheEndOfTheFileReadAsZeros) {
  Fixture f;
  std::vector<std::uint8_t> t = TwoCountries();
  t.resize(16);
  OpenWith(f, t);
  ReportTable(*f.ctx, TableId::kVmgMait);
  ASSERT_EQ(f.lines().size(), 7u);
  EXPECT_EQ(f.lines()[6], "Start byte address of PTL_MAI of 2: 0");
}

TEST(MaitReportTest, ReportReadsTheTableAfresh) {
  Fixture f;
  OpenWith(f, TwoCountries());
  test::OverwriteOpenFile(f, 2048 + 9, {'k'});
  ReportTable(*f.ctx, TableId::kVmgMait);
  EXPECT_EQ(f.lines()[3], "Country Code of 1: uk");
}

TEST(MaitDisassembleTest, CountryKeysGoToTheTitleSearchPointerSection) {
  Fixture f;
  OpenWith(f, TwoCountries());
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgMait}),
            "[ptl_mait]\r\ncty_ns=2\r\nvts_ns=1\r\nptl_maait_ea=512\r\n\r\n"
            "[vmg_ptt_srpt]\r\nptl_mai_srp01_cty_cd=us\r\nptl_mai_srp01_ptl_mai_sa=24\r\n"
            "ptl_mai_srp02_cty_cd=\r\nptl_mai_srp02_ptl_mai_sa=291\r\n");
}

TEST(MaitAssembleTest, NothingIsLoadedMeasuredOrWritten) {
  Fixture f;
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgMait, "[ptl_mait]\ncty_ns=2\nvts_ns=1\n", &size);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_TRUE(bytes.empty());
  EXPECT_TRUE(f.ui.Messages().empty());
}

}  // namespace
}  // namespace tarvex
