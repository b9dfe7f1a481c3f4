#include "stream/listing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/open_file.h"
#include "ifo/overview.h"
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

// n padding packs whose SCR base is 10 x their record number.
std::vector<std::uint8_t> PaddingStream(std::uint32_t n) {
  std::vector<Record> records;
  for (std::uint32_t r = 0; r < n; ++r) records.push_back(MakePaddingPack(r * 10));
  return Concat(records);
}

std::string PaddingLine(std::uint32_t r) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%06u SCR %u.000", r, r * 10);
  return buf;
}

// The lines a page of padding packs first .. end-1 gives.
std::vector<std::string> PaddingPage(std::uint32_t first, std::uint32_t end) {
  std::vector<std::string> lines;
  for (std::uint32_t r = first; r < end; ++r) lines.push_back(PaddingLine(r));
  return lines;
}

// A video pack with a PTS of 90000 and the given payload at offset 28.
Record VideoPack(const std::vector<std::uint8_t>& payload) {
  Record r = MakePesPack(0xE0, 0x80, {0, 0, 0, 0, 0}, payload);
  PutTimeStamp(r, 23, 0x2, 90000);
  return r;
}

TEST(ListPage, RecordWithoutPackStartCodeGivesNumberAndIllegalCodeWithoutBlank) {
  Fixture f;
  Record r(2048, 0);
  PutBytes(r, 0, {0x00, 0x00, 0x01, 0xE0});
  f.OpenBytes("a.vob", r, kFileVob);
  ListPage(*f.ctx, 0, 16);
  ASSERT_EQ(f.lines().size(), 2u);  // records 0 and 1 (record_count itself is listed)
  EXPECT_EQ(f.lines()[0], "000000Illegal pack_start_code 1e0");
}

TEST(ListPage, ScrExtension300PassesSilently) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(1000, 300), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 SCR 1000.300"}));
}

TEST(ListPage, ScrExtension301AddsClockErrorLineBeforeTheRecordLine) {
  Fixture f;
  f.OpenBytes("a.vob", MakePaddingPack(1000, 301), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"****** SCR Clock Error on next, SCR remainder error!",
                                      "000000 SCR 1000.301"}));
}

TEST(ListPage, PaddingPackInDetailedListingHasNoLabel) {
  Fixture f;
  f.OpenBytes("a.vob", Concat({MakePaddingPack(0), MakePaddingPack(4567, 12)}), kFileVob);
  ListPage(*f.ctx, 1, 2);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000001 SCR 4567.012"}));
}

TEST(ListPage, DetailedLabelsAndTimeStamps) {
  Fixture f;
  Record nav = MakePackHeader(100);
  PutBytes(nav, 14, {0x00, 0x00, 0x01, 0xBF, 0x03, 0xD4, 0x00});
  Record video = MakePesPack(0xE0, 0xC0, std::vector<std::uint8_t>(10, 0), {}, 200);
  PutTimeStamp(video, 23, 0x3, 93003);
  PutTimeStamp(video, 28, 0x1, 90000);
  Record ac3 = MakePesPack(0xBD, 0x80, {0, 0, 0, 0, 0}, {0x80}, 300);
  PutTimeStamp(ac3, 23, 0x2, 91000);
  Record mpeg = MakePesPack(0xC0, 0x80, {0, 0, 0, 0, 0}, {}, 400);
  PutTimeStamp(mpeg, 23, 0x2, 92000);
  Record lpcm = MakePesPack(0xBD, 0x00, {}, {0xA1}, 500);
  Record spu = MakePesPack(0xBD, 0x00, {}, {0x20}, 600);
  Record dts = MakePesPack(0xBD, 0x00, {}, {0x88}, 700);
  Record sdds = MakePesPack(0xBD, 0x00, {}, {0x90}, 800);
  Record bad = MakePesPack(0xBD, 0x00, {}, {0x89}, 900);
  f.OpenBytes("a.vob", Concat({nav, video, ac3, mpeg, lpcm, spu, dts, sdds, bad}), kFileVob);
  ListPage(*f.ctx, 0, 9);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "000000 Navigations  SCR 100.000",
                           "000001 Video  SCR 200.000 PTS 93003 DTS 90000",
                           "000002 AC-3 Audio  SCR 300.000 PTS 91000",
                           "000003 MPEG Audio channel 0 Pack SCR 400.000 PTS 92000",
                           "000004 PCM Audio  SCR 500.000",
                           "000005 Subpicture  SCR 600.000",
                           "000006 DTS Audio  SCR 700.000",
                           "000007 SDDS Audio  SCR 800.000",
                           "000008 Illegal  SCR 900.000",
                       }));
}

TEST(ListPage, UnknownSubStreamIsListedIllegalAndClearsStreamNumber) {
  Fixture f;
  f.OpenBytes("a.vob", MakePesPack(0xBD, 0x00, {}, {0x89}), kFileVob);
  f.ctx->stream.stream_number = 0x80;
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Illegal  SCR 0.000"}));
  EXPECT_EQ(f.ctx->stream.stream_number, 0u);
}

TEST(ListPage, NavigationPackBehindSystemHeaderIsListedAndClearsStreamNumber) {
  Fixture f;
  Record r = MakePackHeader(55);
  PutBytes(r, 14, {0x00, 0x00, 0x01, 0xBB});
  PutBytes(r, 38, {0x00, 0x00, 0x01, 0xBF, 0x03, 0xD4, 0x01});
  f.OpenBytes("a.vob", r, kFileVob);
  f.ctx->stream.stream_number = 0xE0;
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Navigations  SCR 55.000"}));
  EXPECT_EQ(f.ctx->stream.stream_number, 0u);
}

TEST(ListPage, VideoRecordGetsFrameLineWithGop) {
  Fixture f;
  // GOP header, then a picture with temporal reference 1 (frame number 1) of type I.
  f.OpenBytes("a.vob",
              VideoPack({0x00, 0x00, 0x01, 0xB8, 0x00, 0x08, 0x00, 0x40, 0x00, 0x00, 0x01, 0x00,
                         0x00, 0x48}),
              kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Video  SCR 0.000 PTS 90000",
                                                 " -> Video: Frame number 1 Frame type 1 GOP"}));
}

TEST(ListPage, VideoRecordWithOnlyGopGetsGopAlone) {
  Fixture f;
  f.OpenBytes("a.vob", VideoPack({0x00, 0x00, 0x01, 0xB8, 0x00, 0x08, 0x00, 0x40}), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Video  SCR 0.000 PTS 90000", " GOP"}));
}

TEST(ListPage, VideoRecordWithNeitherGetsNoSecondLine) {
  Fixture f;
  f.OpenBytes("a.vob", VideoPack({0x12, 0x34}), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Video  SCR 0.000 PTS 90000"}));
}

// A frame number that computes to -1 counts as no frame number found.
TEST(ListPage, FrameNumberMinusOneCountsAsNotFound) {
  Fixture f;
  f.OpenBytes("a.vob", VideoPack({0x00, 0x00, 0x01, 0x00, 0xFF, 0xC8}), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Video  SCR 0.000 PTS 90000"}));
}

TEST(ListPage, PictureHeaderReadsIntoTheNextRecord) {
  Fixture f;
  Record video = VideoPack({});
  PutBytes(video, 2044, {0x00, 0x00, 0x01, 0x00});
  Record next = MakePaddingPack(0);  // its first bytes 00 00 are the picture fields
  f.OpenBytes("a.vob", Concat({video, next}), kFileVob);
  ListPage(*f.ctx, 0, 1);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 Video  SCR 0.000 PTS 90000",
                                                 " -> Video: Frame number 0 Frame type 0"}));
}

TEST(ListPage, NegativeFrameNumberIsPrintedSigned) {
  Fixture f;
  f.OpenBytes("a.vob", VideoPack({0x00, 0x00, 0x01, 0x00, 0xFF, 0x50}), kFileVob);
  ListPage(*f.ctx, 0, 1);
  ASSERT_EQ(f.lines().size(), 2u);
  EXPECT_EQ(f.lines()[1], " -> Video: Frame number -3 Frame type 2");
}

TEST(ListPage, BasicListingShowsScrDeltaAndBasicLabels) {
  Fixture f;
  Record nav = MakePackHeader(1500);
  PutBytes(nav, 14, {0x00, 0x00, 0x01, 0xBF, 0x03, 0xD4, 0x00});
  Record mpeg = MakePesPack(0xC2, 0x00, {}, {}, 1200);
  Record bad(2048, 0);
  Record video = MakePesPack(0xE0, 0x00, {}, {}, 1300);
  f.OpenBytes("a.vob", Concat({MakePaddingPack(1000, 5), nav, mpeg, bad, video}), kFileVob);
  f.ctx->stream.listing_mode = 0;
  ListPage(*f.ctx, 0, 5);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "000000 SCR = 00001000.005 SCR Delta = 1000 Padding Pack",
                           "000001 SCR = 00001500.000 SCR Delta = 500 Navigations Pack - Start of "
                           "VOBU",
                           "000002 SCR = 00001200.000 SCR Delta = -300 MPEG Audio channel ?? Pack",
                           "000003Illegal pack_start_code 0",
                           "000004 SCR = 00001300.000 SCR Delta = 100 Video Pack",
                       }));
  // The previous SCR starts at 0 again on every page.
  ListPage(*f.ctx, 2, 3);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{
                "000002 SCR = 00001200.000 SCR Delta = 1200 MPEG Audio channel ?? Pack"}));
}

TEST(ListPage, BasicListingLabelsOfPrivateStreams) {
  Fixture f;
  f.OpenBytes("a.vob",
              Concat({MakePesPack(0xBD, 0, {}, {0x20}), MakePesPack(0xBD, 0, {}, {0x80}),
                      MakePesPack(0xBD, 0, {}, {0x88}), MakePesPack(0xBD, 0, {}, {0x90}),
                      MakePesPack(0xBD, 0, {}, {0xA0}), MakePesPack(0xBD, 0, {}, {0x48})}),
              kFileVob);
  f.ctx->stream.listing_mode = 0;
  ListPage(*f.ctx, 0, 6);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "000000 SCR = 00000000.000 SCR Delta = 000 Subpicture Pack",
                           "000001 SCR = 00000000.000 SCR Delta = 000 AC-3 Audio Pack",
                           "000002 SCR = 00000000.000 SCR Delta = 000 DTS Audio Pack",
                           "000003 SCR = 00000000.000 SCR Delta = 000 SDDS Audio Pack",
                           "000004 SCR = 00000000.000 SCR Delta = 000 PCM Audio Pack",
                           "000005 SCR = 00000000.000 SCR Delta = 000 Illegal sector type",
                       }));
}

TEST(ListPage, SeventeenRecordVobFirstPageThenLineDown) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(17), kFileVob);
  AppContext& ctx = *f.ctx;
  // As the Open command leaves it.
  ctx.open.page_end = 16;
  ctx.open.scroll_page = 16;
  ListPage(ctx, 0, 16);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));

  ScrollLineDown(ctx, 16);
  EXPECT_EQ(ctx.open.page_end, 17u);
  EXPECT_EQ(f.lines(), PaddingPage(1, 17));

  f.ctx->ClearReportList();
  ScrollLineDown(ctx, 16);  // page_end has reached record_count
  EXPECT_EQ(ctx.open.page_end, 17u);
  EXPECT_TRUE(f.lines().empty());
}

// A VOB of 2049 bytes has record_count 1; the page lists records 0 and 1, record 1 from a short
// read that keeps record 0's bytes behind the one byte it got.
TEST(ListPage, VobOf2049BytesListsRecordsZeroAndOne) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(1000);
  bytes.push_back(0x00);
  f.OpenBytes("a.vob", bytes, kFileVob);
  ASSERT_EQ(f.ctx->open.record_count, 1u);
  ListPage(*f.ctx, 0, 16);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 SCR 1000.000", "000001 SCR 1000.000"}));
}

TEST(ListPage, ShortReadKeepsThePreviousRecordsBytesBehindTheBytesItGot) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(1000);
  bytes.push_back(0xFF);
  f.OpenBytes("a.vob", bytes, kFileVob);
  ListPage(*f.ctx, 0, 16);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 SCR 1000.000",
                                                 "000001Illegal pack_start_code ff0001ba"}));
}

TEST(ListPage, EachCallStartsFromZeroedBuffers) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(1000);
  bytes.push_back(0xFF);
  f.OpenBytes("a.vob", bytes, kFileVob);
  ListPage(*f.ctx, 0, 1);
  ListPage(*f.ctx, 1, 2);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000001Illegal pack_start_code ff000000"}));
}

TEST(ListPage, ShortReadOfTheVideoPairKeepsTheEarlierPairsBytes) {
  Fixture f;
  // Records 0 and 2 are video packs whose last four bytes are a picture start code, so the
  // picture fields are the first two bytes of the record after them. Record 1 is no pack and
  // starts with 7F 48. Nothing follows record 2: its pair read gets one record, and the second
  // half still holds record 1 from record 0's pair read.
  Record v0 = VideoPack({});
  PutBytes(v0, 2044, {0x00, 0x00, 0x01, 0x00});
  Record other(2048, 0);
  PutBytes(other, 0, {0x7F, 0x48});
  f.OpenBytes("a.vob", Concat({v0, other, v0}), kFileVob);
  ListPage(*f.ctx, 0, 3);
  // Frame number (0x7F << 2) | (0x48 >> 6) = 509, frame type (0x48 & 0x38) >> 3 = 1.
  EXPECT_EQ(f.lines(), (std::vector<std::string>{
                           "000000 Video  SCR 0.000 PTS 90000",
                           " -> Video: Frame number 509 Frame type 1",
                           "000001Illegal pack_start_code 7f480000",
                           "000002 Video  SCR 0.000 PTS 90000",
                           " -> Video: Frame number 509 Frame type 1",
                       }));
}

TEST(ListPage, IfoFileClearsTheListAndRunsTheOverview) {
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", std::vector<std::uint8_t>(4096, 0), kFileIfo);
  f.ctx->AddReportLine("old line");
  ListPage(*f.ctx, 5, 5);
  EXPECT_TRUE(f.lines().empty());
  EXPECT_EQ(f.ctx->open.file_handle.Tell(), 0);
}

TEST(ListPage, IfoFileShowsTheOverviewWhenTheRangeIsNotEmpty) {
  Fixture reference;
  reference.OpenBytes("VIDEO_TS.IFO", std::vector<std::uint8_t>(4096, 0), kFileIfo);
  ShowIfoOverview(*reference.ctx);
  Fixture f;
  f.OpenBytes("VIDEO_TS.IFO", std::vector<std::uint8_t>(4096, 0), kFileIfo);
  f.ctx->AddReportLine("old line");
  ListPage(*f.ctx, 0, 16);
  EXPECT_FALSE(f.lines().empty());
  EXPECT_EQ(f.lines(), reference.lines());
}

TEST(ListPage, ListingLeavesTheFilePositionWhereRecordByRecordReadingWould) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  ListPage(*f.ctx, 3, 19);
  EXPECT_EQ(f.ctx->open.file_handle.Tell(), 19 * 2048);
  ListPage(*f.ctx, 30, 60);  // runs to record 40 = record_count, a read of nothing
  EXPECT_EQ(f.lines().size(), 11u);
  EXPECT_EQ(f.lines().back(), PaddingLine(39).replace(0, 6, "000040"));
  EXPECT_EQ(f.ctx->open.file_handle.Tell(), 40 * 2048);
}

TEST(ListPage, LargeRangeMatchesPageByPageListing) {
  Fixture f;
  std::vector<Record> records;
  for (std::uint32_t r = 0; r < 700; ++r) {
    Record v = VideoPack({0x00, 0x00, 0x01, 0x00, static_cast<std::uint8_t>(r), 0x48});
    records.push_back(r % 3 == 0 ? MakePaddingPack(r) : v);
  }
  f.OpenBytes("a.vob", Concat(records), kFileVob);
  ListPage(*f.ctx, 0, 701);
  std::vector<std::string> whole = f.lines();
  std::vector<std::string> paged;
  for (std::uint32_t first = 0; first <= 700; first += 16) {
    ListPage(*f.ctx, first, first + 16);
    paged.insert(paged.end(), f.lines().begin(), f.lines().end());
  }
  EXPECT_EQ(whole, paged);
  EXPECT_EQ(whole.front(), "000000 SCR 0.000");
  EXPECT_EQ(whole[1], "000001 Video  SCR 0.000 PTS 90000");
  EXPECT_EQ(whole[2], " -> Video: Frame number 5 Frame type 1");
}

// Through the Open command: the first page of a 2049-byte VOB holds records 0 and 1.
TEST(ListPage, OpeningA2049ByteVobListsRecordsZeroAndOne) {
  Fixture f;
  std::vector<std::uint8_t> bytes = MakePaddingPack(1000);
  bytes.push_back(0x00);
  std::string path = f.dir.file("short.vob");
  test::WriteFileBytes(path, bytes);
  f.ctx->open.file_path = path;
  OpenSelectedFile(*f.ctx);
  EXPECT_EQ(f.ctx->open.record_count, 1u);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"000000 SCR 1000.000", "000001 SCR 1000.000"}));
}

TEST(ListPage, OpeningASeventeenRecordVobThenLineDown) {
  Fixture f;
  std::string path = f.dir.file("seventeen.vob");
  test::WriteFileBytes(path, PaddingStream(17));
  f.ctx->open.file_path = path;
  OpenSelectedFile(*f.ctx);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
  ScrollLineDown(*f.ctx, f.ctx->open.scroll_page);
  EXPECT_EQ(f.lines(), PaddingPage(1, 17));
  ScrollLineDown(*f.ctx, f.ctx->open.scroll_page);
  EXPECT_EQ(f.ctx->open.page_end, 17u);
  EXPECT_EQ(f.lines(), PaddingPage(1, 17));
}

// Paging ---------------------------------------------------------------------------------

TEST(Paging, PageDownAndUp) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(100), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 16;
  ScrollPageDown(ctx, 1);
  EXPECT_EQ(ctx.open.scroll_page, 2);
  EXPECT_EQ(ctx.open.page_end, 32u);
  EXPECT_EQ(f.lines(), PaddingPage(16, 32));
  ScrollPageUp(ctx, 2);
  EXPECT_EQ(ctx.open.scroll_page, 1);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
}

TEST(Paging, PageDownRefusedWhenTheNextPageWouldReachRecordCount) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(32), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 16;
  ctx.open.scroll_page = 7;
  ScrollPageDown(ctx, 1);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_EQ(ctx.open.scroll_page, 7);
  EXPECT_TRUE(f.lines().empty());
}

TEST(Paging, PageUpAndLineUpRefusedOnTheFirstPage) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 16;
  ScrollPageUp(ctx, 1);
  ScrollLineUp(ctx, 1);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_TRUE(f.lines().empty());
}

TEST(Paging, LineUpOntoAPageBoundaryStepsTheScrollPageBack) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 17;
  ScrollLineUp(ctx, 2);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_EQ(ctx.open.scroll_page, 1);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
}

TEST(Paging, LineDownOntoAPageBoundaryStepsTheScrollPageOn) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 31;
  ScrollLineDown(ctx, 1);
  EXPECT_EQ(ctx.open.page_end, 32u);
  EXPECT_EQ(ctx.open.scroll_page, 2);
  EXPECT_EQ(f.lines(), PaddingPage(16, 32));
}

TEST(Paging, LineDownInHexModeShowsTheHexViewOfPageEnd) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 20;
  ctx.stream.hex_mode = 1;
  ScrollLineDown(ctx, 1);
  ASSERT_EQ(f.lines().size(), 130u);
  EXPECT_EQ(f.lines()[0], "Hex display of record 21 at file address 43008");
}

TEST(Paging, LineDownInDetailsModeShowsTheDetailsOfPageEnd) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 20;
  ctx.stream.details_mode = 1;
  ScrollLineDown(ctx, 1);
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"Details display of record 21 at file address 43008"}));
}

TEST(Paging, ThumbThenEndOfScrollListsThatPage) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(330), kFileVob);
  AppContext& ctx = *f.ctx;
  ScrollThumbReleased(ctx, 20);
  EXPECT_EQ(ctx.open.scroll_page, 20);
  EXPECT_EQ(ctx.stream.thumb_moved, 1);
  EXPECT_TRUE(f.lines().empty());
  ScrollEnded(ctx);
  EXPECT_EQ(ctx.stream.thumb_moved, 0);
  EXPECT_EQ(ctx.open.page_end, 320u);
  EXPECT_EQ(f.lines(), PaddingPage(304, 320));
}

TEST(Paging, EndOfScrollBelowSixteenPagesListsTheFirstPage) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(330), kFileVob);
  AppContext& ctx = *f.ctx;
  ScrollThumbReleased(ctx, 16);
  ScrollEnded(ctx);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
}

TEST(Paging, EndOfScrollWithoutThumbDoesNothing) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 32;
  ScrollEnded(ctx);
  EXPECT_EQ(ctx.open.page_end, 32u);
  EXPECT_TRUE(f.lines().empty());
}

TEST(Paging, EndOfScrollInHexModeShowsTheFirstRecordOfThatPage) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(100), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.stream.hex_mode = 1;
  ctx.stream.details_mode = 1;  // not consulted here
  ScrollThumbReleased(ctx, 3);
  ScrollEnded(ctx);
  EXPECT_EQ(ctx.open.page_end, 48u);
  ASSERT_EQ(f.lines().size(), 130u);
  EXPECT_EQ(f.lines()[0], "Hex display of record 48 at file address 98304");
}

// Record selection (HEX) -----------------------------------------------------------------

TEST(SelectRecordForHex, SelectedLineShowsItsRecordAndLeavingListsOneFurther) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.open.page_end = 26;
  ListPage(ctx, 10, 26);
  ASSERT_TRUE(ctx.report.Select(10));  // "000020 ..."
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.stream.hex_mode, 1);
  EXPECT_EQ(ctx.open.page_end, 20u);
  ASSERT_EQ(f.lines().size(), 130u);
  EXPECT_EQ(f.lines()[0], "Hex display of record 20 at file address 40960");

  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.stream.hex_mode, 0);
  EXPECT_EQ(ctx.open.page_end, 21u);
  EXPECT_EQ(f.lines(), PaddingPage(5, 21));
}

TEST(SelectRecordForHex, LeavingBelowRecordSixteenListsTheFirstPage) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(40), kFileVob);
  AppContext& ctx = *f.ctx;
  ListPage(ctx, 0, 16);
  ASSERT_TRUE(ctx.report.Select(5));
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.open.page_end, 5u);
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.open.page_end, 16u);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
}

TEST(SelectRecordForHex, LeavingTheHexViewOfANonVobListsNothing) {
  Fixture f;
  f.OpenBytes("a.m2p", PaddingStream(4), kFileM2p);
  AppContext& ctx = *f.ctx;
  ctx.stream.hex_mode = 1;
  ctx.open.page_end = 3;
  ctx.AddReportLine("kept");
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.stream.hex_mode, 0);
  EXPECT_EQ(ctx.open.page_end, 3u);
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"kept"}));
}

TEST(SelectRecordForHex, NothingHappensInDetailsModeOrWithoutSelection) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(20), kFileVob);
  AppContext& ctx = *f.ctx;
  ListPage(ctx, 0, 16);
  SelectRecordForHex(ctx);  // no selection
  EXPECT_EQ(ctx.stream.hex_mode, 0);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
  ctx.report.Select(3);
  ctx.stream.details_mode = 1;
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.stream.hex_mode, 0);
  EXPECT_EQ(f.lines(), PaddingPage(0, 16));
}

TEST(SelectRecordForHex, NumberIsReadFromTheFirstSixCharactersOnly) {
  Fixture f;
  f.OpenBytes("a.vob", PaddingStream(20), kFileVob);
  AppContext& ctx = *f.ctx;
  ctx.AddReportLine("0012345678 more");
  ctx.report.Select(0);
  SelectRecordForHex(ctx);
  EXPECT_EQ(ctx.open.page_end, 1234u);
  EXPECT_EQ(f.lines()[0], "Hex display of record 1234 at file address 2527232");
}

// ---- record number of a line ----

TEST(RecordNumberOfLine, ReadsTheFirstSixCharactersAsADecimalNumber) {
  EXPECT_EQ(RecordNumberOfLine("000123 Navigations  SCR 0.000"), 123u);
  EXPECT_EQ(RecordNumberOfLine("0000123"), 12u);  // the seventh digit is cut off
  EXPECT_EQ(RecordNumberOfLine("  42xy"), 42u);
  EXPECT_EQ(RecordNumberOfLine("Hex display of record 5"), 0u);
  EXPECT_EQ(RecordNumberOfLine(""), 0u);
  EXPECT_EQ(RecordNumberOfLine("-1"), 0xFFFFFFFFu);  // wraps like a 32-bit long
}

}  // namespace
}  // namespace tarvex
