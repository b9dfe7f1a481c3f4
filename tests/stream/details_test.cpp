#include "stream/details.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "stream/hex_view.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Concat;
using test::Fixture;
using test::MakePackHeader;
using test::MakePaddingPack;
using test::MakePesPack;
using test::PutBytes;
using test::PutTimeStamp;
using test::Record;

std::vector<std::string> Slice(const std::vector<std::string>& lines, std::size_t first,
                               std::size_t count) {
  if (first >= lines.size()) return {};
  std::size_t end = std::min(lines.size(), first + count);
  return {lines.begin() + static_cast<std::ptrdiff_t>(first),
          lines.begin() + static_cast<std::ptrdiff_t>(end)};
}

// Hex view -------------------------------------------------------------------------------

TEST(HexView, AlwaysTitleBlankAnd128RowsEndingAt2032) {
  Fixture f;
  Record r(2048, 0);
  for (std::size_t i = 0; i < r.size(); ++i) r[i] = static_cast<std::uint8_t>(i);
  f.OpenBytes("a.vob", Concat({MakePaddingPack(0), r}), kFileVob);
  f.ctx->open.page_end = 1;
  f.ctx->AddReportLine("old");
  ShowRecordHex(*f.ctx, false);
  ASSERT_EQ(f.lines().size(), 130u);
  EXPECT_EQ(f.lines()[0], "Hex display of record 1 at file address 2048");
  EXPECT_EQ(f.lines()[1], " ");
  EXPECT_EQ(f.lines()[2], "0000 -> 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ");
  EXPECT_EQ(f.lines()[129], "2032 -> F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF ");
}

TEST(HexView, RowsNeverHoldLowerCaseHexDigits) {
  Fixture f;
  Record r(2048, 0xab);
  f.OpenBytes("a.vob", r, kFileVob);
  ShowRecordHex(*f.ctx, false);
  for (std::size_t i = 2; i < f.lines().size(); ++i) {
    EXPECT_EQ(f.lines()[i].find_first_of("abcdef"), std::string::npos) << f.lines()[i];
  }
  EXPECT_EQ(f.lines()[2], "0000 -> AB AB AB AB AB AB AB AB AB AB AB AB AB AB AB AB ");
}

TEST(HexView, AppendModeKeepsTheList) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(0), kFileVob);
  f.ctx->AddReportLine("kept");
  ShowRecordHex(*f.ctx, true);
  ASSERT_EQ(f.lines().size(), 131u);
  EXPECT_EQ(f.lines()[0], "kept");
  EXPECT_EQ(f.lines()[1], "Hex display of record 0 at file address 0");
}

// The hex view reads into a zeroed buffer: what a short read did not get shows as zeros.
TEST(HexView, TruncatedRecordShowsZerosBeyondTheFileEnd) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(0);
  bytes.push_back(0x5A);
  f.OpenBytes("a.vob", bytes, kFileVob);
  ShowRecordHex(*f.ctx, false);  // record 0: fills the buffer with record 0
  f.ctx->open.page_end = 1;
  ShowRecordHex(*f.ctx, false);
  EXPECT_EQ(f.lines()[0], "Hex display of record 1 at file address 2048");
  EXPECT_EQ(f.lines()[2], "0000 -> 5A 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
  EXPECT_EQ(f.lines()[129], "2032 -> 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
}

TEST(HexView, FileAddressIsZeroForEveryTypeButVob) {
  Fixture f;
  Record first(2048, 0x11);
  Record second(2048, 0x22);
  f.OpenBytes("a.m2p", Concat({first, second}), kFileM2p);
  EXPECT_EQ(RecordFileOffset(*f.ctx, 1), 0);
  f.ctx->open.page_end = 1;
  ShowRecordHex(*f.ctx, false);
  EXPECT_EQ(f.lines()[0], "Hex display of record 1 at file address 0");
  EXPECT_EQ(f.lines()[2], "0000 -> 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 ");
}

TEST(HexView, FileOffsetsAreSixtyFourBit) {
  Fixture f;
  f.ctx->open.file_type = kFileVob;
  EXPECT_EQ(RecordFileOffset(*f.ctx, 0x200000), std::int64_t{1} << 32);
  EXPECT_EQ(RecordFileOffset(*f.ctx, 0xFFFFFFFF), std::int64_t{0xFFFFFFFF} * 2048);
}

// Details dispatcher ---------------------------------------------------------------------

TEST(Details, UnclassifiableRecordShowsErrorDumpAndAppendedHexView) {
  Fixture f;
  Record bad(2048, 0);
  PutBytes(bad, 0, {0x00, 0x00, 0x01, 0xBA});
  f.OpenBytes("a.vob", Concat({MakePaddingPack(0), MakePaddingPack(0), bad}), kFileVob);
  f.ctx->open.page_end = 2;
  f.ctx->AddReportLine("old");
  ShowRecordDetails(*f.ctx);
  ASSERT_EQ(f.lines().size(), 135u);
  EXPECT_EQ(Slice(f.lines(), 0, 8), (std::vector<std::string>{
                                        "Details display of record 2 at file address 4096",
                                        "Illegal sector type, no details available!",
                                        "Error at: offset 4096 sector number 2",
                                        "Sector type found by get_sector_type: 00 0",
                                        "Sector data:",
                                        "Hex display of record 2 at file address 4096",
                                        " ",
                                        "0000 -> 00 00 01 BA 00 00 00 00 00 00 00 00 00 00 00 00 ",
                                    }));
  EXPECT_EQ(f.lines()[134], "2032 -> 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
  EXPECT_EQ(f.ctx->open.page_end, 2u);
}

TEST(Details, ErrorDumpOfANonVobUsesAddressZero) {
  Fixture f;
  Record bad(2048, 0);
  f.OpenBytes("a.m2p", Concat({bad, bad, bad, bad}), kFileM2p);
  f.ctx->open.page_end = 3;
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(Slice(f.lines(), 0, 6), (std::vector<std::string>{
                                        "Details display of record 3 at file address 0",
                                        "Illegal sector type, no details available!",
                                        "Error at: offset 0 sector number 0",
                                        "Sector type found by get_sector_type: 00 0",
                                        "Sector data:",
                                        "Hex display of record 0 at file address 0",
                                    }));
  EXPECT_EQ(f.ctx->open.page_end, 0u);
}

// A short read ends at the end of the file: the error dump's offset is the position after the
// read minus 2048, so a truncated last record names the record before it.
TEST(Details, ErrorDumpOfATruncatedRecordUsesThePositionAfterTheShortRead) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(0);
  bytes.resize(2048 + 100, 0);
  f.OpenBytes("a.vob", bytes, kFileVob);
  f.ctx->open.page_end = 1;
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(Slice(f.lines(), 0, 6), (std::vector<std::string>{
                                        "Details display of record 1 at file address 2048",
                                        "Illegal sector type, no details available!",
                                        "Error at: offset 100 sector number 0",
                                        "Sector type found by get_sector_type: 00 0",
                                        "Sector data:",
                                        "Hex display of record 0 at file address 0",
                                    }));
}

// File positions are 64-bit: beyond 2 GB the offset prints as its low 32 bits, signed, while
// the sector number (and the record the hex view then shows) stays right.
TEST(Details, ErrorDumpBeyondTwoGigabytesKeepsTheSectorNumber) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(0), kFileVob);
  const std::int64_t offset = std::int64_t{3} << 30;
  ShowErrorDump(*f.ctx, "Illegal sector type, aborting extract operation!", offset + 2048, 0);
  ASSERT_EQ(f.lines().size(), 4u + 130u);
  EXPECT_EQ(Slice(f.lines(), 0, 5), (std::vector<std::string>{
                                        "Illegal sector type, aborting extract operation!",
                                        "Error at: offset -1073741824 sector number 1572864",
                                        "Sector type found by get_sector_type: 00 0",
                                        "Sector data:",
                                        "Hex display of record 1572864 at file address -1073741824",
                                    }));
  EXPECT_EQ(f.ctx->open.page_end, 1572864u);
  // Nothing lies there: the rows show zeros.
  EXPECT_EQ(f.lines()[6], "0000 -> 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
}

// Report lines are zero-terminated texts: a line ends at its first zero byte.
TEST(Details, ErrorDumpFirstLineEndsAtAZeroByte) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(0), kFileVob);
  using namespace std::string_view_literals;
  ShowErrorDump(*f.ctx, "Illegal\0 hidden"sv, 2048, 0);
  EXPECT_EQ(f.lines()[0], "Illegal");
}

// A record past the end of the file reads nothing: the details see a zeroed record.
TEST(Details, RecordBeyondTheFileEndIsAZeroRecord) {
  Fixture f;
  f.OpenBytes("a.vob", Concat({MakePaddingPack(0), MakePaddingPack(0)}), kFileVob);
  f.ctx->open.page_end = 5;
  ShowRecordDetails(*f.ctx);
  ASSERT_EQ(f.lines().size(), 135u);
  EXPECT_EQ(Slice(f.lines(), 0, 6),
            (std::vector<std::string>{"Details display of record 5 at file address 10240",
                                      "Illegal sector type, no details available!",
                                      "Error at: offset 8192 sector number 4",
                                      "Sector type found by get_sector_type: 00 0", "Sector data:",
                                      "Hex display of record 4 at file address 8192"}));
  EXPECT_EQ(f.lines()[7], "0000 -> 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
}

TEST(Details, PaddingEndsTheViewAfterTheFirstLine) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(0), kFileVob);
  f.ctx->AddReportLine("old");
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"Details display of record 0 at file address 0"}));
}

TEST(Details, DtsAndSddsAreNotSupported) {
  Fixture f;
  f.OpenBytes("a.vob", Concat({MakePesPack(0xBD, 0, {}, {0x88}), MakePesPack(0xBD, 0, {}, {0x90})}),
              kFileVob);
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"Details display of record 0 at file address 0",
                                      "  VOB DTS Audio Pack Details ** NOT SUPPORTED", " "}));
  f.ctx->open.page_end = 1;
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"Details display of record 1 at file address 2048",
                                      "  VOB SDDS Audio Pack Details ** NOT SUPPORTED", " "}));
}

TEST(Details, TitleLinesByPackKind) {
  Fixture f;
  Record nav = MakePackHeader();
  PutBytes(nav, 14, {0x00, 0x00, 0x01, 0xBF, 0x03, 0xD4, 0x00});
  f.OpenBytes("a.vob",
              Concat({MakePesPack(0xE0, 0, {}, {}), nav, MakePesPack(0xBD, 0, {}, {0x21}),
                      MakePesPack(0xBD, 0, {}, {0x81}), MakePesPack(0xBD, 0, {}, {0xA2}),
                      MakePesPack(0xC3, 0, {}, {})}),
              kFileVob);
  const std::vector<std::string> titles = {
      "  VOB Video Pack Details",       "  VOB Navigations Pack Details",
      "  VOB Sub-Picture Pack Details", "  VOB AC3 Audio Pack Details",
      "  VOB PCM Audio Pack Details",   "  VOB MPEG Audio Pack Details"};
  for (std::uint32_t r = 0; r < titles.size(); ++r) {
    f.ctx->open.page_end = r;
    ShowRecordDetails(*f.ctx);
    ASSERT_GE(f.lines().size(), 3u);
    EXPECT_EQ(f.lines()[1], titles[r]);
    EXPECT_EQ(f.lines()[2], " ");
  }
}

TEST(Details, StreamNumberIsLeftByTheClassification) {
  Fixture f;
  f.OpenBytes("a.vob", MakePesPack(0xBD, 0, {}, {0x83}), kFileVob);
  ShowRecordDetails(*f.ctx);
  EXPECT_EQ(f.ctx->stream.stream_number, 0x83u);
}

}  // namespace
}  // namespace tarvex
