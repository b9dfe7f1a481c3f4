// The text data manager. Expected values are worked out by hand from its first 20 bytes: a
// 12-character identifier, 2 unused bytes, the language unit count (16 bits) and the end
// address (32 bits).
#include "ifo/txtdt_mg.h"

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

constexpr std::size_t kTxtdtMgSa = 212;

// Identifier "DVDVIDEO-TXT" followed by the unused bytes "ZZ", 3 units, end address 0x1234.
std::vector<std::uint8_t> TextManager() {
  std::vector<std::uint8_t> t(20, 0);
  ByteWriter w(t);
  const char* id = "DVDVIDEO-TXTZZ";
  for (std::size_t i = 0; i < 14; ++i) w.put_u8(i, static_cast<std::uint8_t>(id[i]));
  w.put_be16(14, 3);
  w.put_be32(16, 0x1234);
  return t;
}

void OpenWith(Fixture& f, const std::vector<std::uint8_t>& table) {
  test::OpenIfo(f, "VIDEO_TS.IFO", test::WithTables(test::MakeVmgImage(), {{kTxtdtMgSa, table}}));
}

TEST(TxtdtOpenTest, AbsenceAndHeadingLines) {
  Fixture f;
  test::OpenIfo(f, "VIDEO_TS.IFO", test::MakeVmgImage());
  EXPECT_TRUE(HasLine(f, "** VMG_TXTDT_MGI IFO File: There is no Text Data Manager information."));
  Fixture g;
  OpenWith(g, TextManager());
  EXPECT_TRUE(HasLine(g, "VMG_TXTDT_MGI IFO File: Text Dataa Manager information"));
}

TEST(TxtdtReportTest, LinesAreAppendedBelowTheOverview) {
  Fixture f;
  OpenWith(f, TextManager());
  std::vector<std::string> expected = f.lines();
  expected.push_back("Number of Text Language Units 3");
  expected.push_back("End byte address of VMG_TXTDT_MGI table: 4660");
  ReportTable(*f.ctx, TableId::kVmgTxtdt);
  EXPECT_EQ(f.lines(), expected);
}

TEST(TxtdtReportTest, DetailsOfTheHeadingLineKeepTheOverview) {
  Fixture f;
  OpenWith(f, TextManager());
  std::size_t overview = f.lines().size();
  for (std::size_t i = 0; i < overview; ++i) {
    if (f.lines()[i].starts_with("VMG_TXTDT")) f.ctx->report.Select(i);
  }
  ShowIfoDetails(*f.ctx);
  EXPECT_EQ(f.lines().size(), overview + 2);
}

TEST(TxtdtReportTest, HeaderOfZerosStillGivesBothLines) {
  Fixture f;
  OpenWith(f, std::vector<std::uint8_t>(20, 0));
  f.ctx->ClearReportList();
  ReportTable(*f.ctx, TableId::kVmgTxtdt);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Number of Text Language Units 0",
                                                 "End byte address of VMG_TXTDT_MGI table: 0"}));
}

TEST(TxtdtDisassembleTest, IdentifierIsWrittenAsItsTwelveCharacters) {
  Fixture f;
  OpenWith(f, TextManager());
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgTxtdt}),
            "[txtdt_mg]\r\ntxtdt_id=DVDVIDEO-TXT\r\ntxtdt_lu_ns=3\r\ntxtdt_mg_ea=4660\r\n");
}

TEST(TxtdtDisassembleTest, IdentifierEndsAtItsFirstZeroByte) {
  Fixture f;
  std::vector<std::uint8_t> t = TextManager();
  t[5] = 0;
  OpenWith(f, t);
  EXPECT_EQ(test::DisassembleTables(f, {TableId::kVmgTxtdt}),
            "[txtdt_mg]\r\ntxtdt_id=DVDVI\r\ntxtdt_lu_ns=3\r\ntxtdt_mg_ea=4660\r\n");
}

TEST(TxtdtAssembleTest, NothingIsLoadedMeasuredOrWritten) {
  Fixture f;
  TableSize size{1, 1};
  std::vector<std::uint8_t> bytes =
      test::AssembleTable(f, TableId::kVmgTxtdt, "[txtdt_mg]\ntxtdt_lu_ns=3\n", &size);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_TRUE(bytes.empty());
}

}  // namespace
}  // namespace tarvex
