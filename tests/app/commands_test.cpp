#include "app/commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "convert/drivers.h"
#include "extract/extract.h"
#include "ifo/overview.h"
#include "stream/listing.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

// A VOB of n packs (pack headers with zero bytes behind them).
std::vector<std::uint8_t> MakeVob(int records) {
  std::vector<test::Record> packs;
  for (int i = 0; i < records; ++i) packs.push_back(test::MakePackHeader(1000u * i));
  return test::Concat(packs);
}

// Puts lines into the list and selects one of them.
void ShowLines(AppContext& ctx, const std::vector<std::string>& lines, std::size_t selected) {
  ctx.ClearReportList();
  for (const auto& l : lines) ctx.AddReportLine(l);
  ASSERT_TRUE(ctx.report.Select(selected));
}

// ---- Details ----

TEST(DetailsCommand, DoesNothingWhileTheHexViewIsShown) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {"000005 x"}, 0);
  f.ctx->stream.hex_mode = 1;
  f.ctx->open.page_end = 9;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 9u);
  EXPECT_EQ(f.lines(), std::vector<std::string>{"000005 x"});
}

TEST(DetailsCommand, DoesNothingWithoutASelectedLine) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  f.ctx->AddReportLine("000005 x");
  f.ctx->open.page_end = 16;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 16u);
  EXPECT_EQ(f.lines(), std::vector<std::string>{"000005 x"});
}

TEST(DetailsCommand, ShowsTheRecordNamedByTheSelectedLine) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {"000004 a", "000017 Padding SCR", "000006 c"}, 1);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->open.page_end, 17u);
  EXPECT_EQ(f.ctx->stream.details_mode, 1);
  ASSERT_FALSE(f.lines().empty());
  EXPECT_EQ(f.lines().front(), "Details display of record 17 at file address 34816");
}

TEST(DetailsCommand, SecondPressBeforeRecord16GoesBackToTheFirstPage) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(40), kFileVob);
  ShowLines(*f.ctx, {"000003 a"}, 0);
  DetailsCommand(*f.ctx);
  ASSERT_EQ(f.ctx->stream.details_mode, 1);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 16u);
  // Records 0 to 15, one line each (these packs carry no video, so no second lines).
  ASSERT_EQ(f.lines().size(), 16u);
  EXPECT_EQ(f.lines().front().substr(0, 6), "000000");
  EXPECT_EQ(f.lines().back().substr(0, 6), "000015");
}

TEST(DetailsCommand, SecondPressFromRecord16OnListsOneRecordFurther) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(40), kFileVob);
  ShowLines(*f.ctx, {"000020 a"}, 0);
  DetailsCommand(*f.ctx);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 21u);
  ASSERT_EQ(f.lines().size(), 16u);
  EXPECT_EQ(f.lines().front().substr(0, 6), "000005");
  EXPECT_EQ(f.lines().back().substr(0, 6), "000020");

  ShowLines(*f.ctx, {"000016 a"}, 0);
  DetailsCommand(*f.ctx);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->open.page_end, 17u);
}

TEST(DetailsCommand, SecondPressOnAnM2pListsNothing) {
  Fixture f;
  f.OpenBytes("a.m2p", MakeVob(4), kFileM2p);
  ShowLines(*f.ctx, {"000002 a"}, 0);
  f.ctx->stream.details_mode = 1;
  f.ctx->open.page_end = 2;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 2u);
  EXPECT_EQ(f.lines(), std::vector<std::string>{"000002 a"});
}

TEST(DetailsCommand, SecondPressOnAnIfoGoesBackToTheOverviewFromTheStart) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", std::vector<std::uint8_t>(2048, 0), kFileIfo);
  f.ctx->stream.details_mode = 1;
  f.ctx->open.page_end = 16;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 0u);
}

TEST(DetailsCommand, IfoLineOfAnAbsentTableShowsNothing) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO", std::vector<std::uint8_t>(2048, 0), kFileIfo);
  ShowLines(*f.ctx,
            {"** VTSM_C_ADT IFO File: There is no Video Title Set Menu Cell Address Table."}, 0);
  f.ctx->open.page_end = 16;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 16u);  // an IFO line is not read as a record number
}

TEST(DetailsCommand, IfoHeadingLineTogglesBetweenTableAndOverview) {
  Fixture f;
  f.OpenBytes("VTS_01_0.IFO",
              test::ReadFileBytes(std::string(TARVEX_SAMPLES_DIR) + "/disc/VIDEO_TS/VTS_01_0.IFO"),
              kFileIfo);
  ShowIfoOverview(*f.ctx);
  const std::vector<std::string> overview = f.lines();
  std::size_t heading = overview.size();
  for (std::size_t i = 0; i < overview.size(); ++i) {
    if (overview[i].rfind("VTSI_MAT", 0) == 0) {
      heading = i;
      break;
    }
  }
  ASSERT_LT(heading, overview.size());
  f.ctx->report.Select(heading);
  f.ctx->open.page_end = 16;
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 1);
  EXPECT_NE(f.lines(), overview);
  DetailsCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.details_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 0u);
  EXPECT_EQ(f.lines(), overview);
}

// ---- HEX and Clear ----

TEST(HexCommand, DoesNothingWhileDetailsAreShown) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {"000005 x"}, 0);
  f.ctx->stream.details_mode = 1;
  f.ctx->open.page_end = 5;
  HexCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.hex_mode, 0);
  EXPECT_EQ(f.ctx->open.page_end, 5u);
  EXPECT_EQ(f.lines(), std::vector<std::string>{"000005 x"});
}

TEST(HexCommand, ShowsTheHexViewOfTheSelectedRecord) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {"000004 a", "000005 b"}, 1);
  HexCommand(*f.ctx);
  EXPECT_EQ(f.ctx->stream.hex_mode, 1);
  EXPECT_EQ(f.ctx->open.page_end, 5u);
  ASSERT_FALSE(f.lines().empty());
  EXPECT_EQ(f.lines().front(), "Hex display of record 5 at file address 10240");
}

// Details and HEX take the record from the selected line alike: " +12x5" is record 12 (blank,
// sign, digits up to the first non-digit, within the first 6 characters).
TEST(HexCommand, TakesTheRecordNumberAsDetailsDoes) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {" +12x5 b"}, 0);
  HexCommand(*f.ctx);
  EXPECT_EQ(f.ctx->open.page_end, 12u);
  EXPECT_EQ(f.lines().front(), "Hex display of record 12 at file address 24576");
  EXPECT_EQ(RecordNumberOfLine(" +12x5 b"), 12u);
}

TEST(ClearCommand, EmptiesTheListAndChangesNothingElse) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(20), kFileVob);
  ShowLines(*f.ctx, {"a", "b"}, 1);
  f.ctx->stream.details_mode = 1;
  f.ctx->open.page_end = 7;
  ClearCommand(*f.ctx);
  EXPECT_TRUE(f.lines().empty());
  EXPECT_EQ(f.ctx->stream.details_mode, 1);
  EXPECT_EQ(f.ctx->open.page_end, 7u);
  EXPECT_TRUE(f.ctx->open.file_handle.is_open());
}

// ---- Extract ----

// Stand-ins for the extraction routines: each leaves its name in the report list.
ExtractActions RecordingActions() {
  return {[](AppContext& c) { c.AddReportLine("audio"); },
          [](AppContext& c) { c.AddReportLine("video"); },
          [](AppContext& c) { c.AddReportLine("stills"); },
          [](AppContext& c) { c.AddReportLine("subpictures"); },
          [](AppContext& c) { c.AddReportLine("disassemble"); }};
}

TEST(ExtractCommand, RunsTickedActionsInTheFixedOrder) {
  Fixture f;
  ExtractRequest all{1, 1, 1, 1, 1};
  ExtractCommand(*f.ctx, all, RecordingActions());
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"audio", "video", "stills", "subpictures", "disassemble"}));
}

TEST(ExtractCommand, RunsOnlyTheTickedActions) {
  Fixture f;
  ExtractRequest some;
  some.disassemble_ifo = 1;
  some.extract_video = 1;
  ExtractCommand(*f.ctx, some, RecordingActions());
  EXPECT_EQ(f.lines(), (std::vector<std::string>{"video", "disassemble"}));
  EXPECT_EQ(f.ctx->extract.extract_audio, 0);
  EXPECT_EQ(f.ctx->extract.extract_video, 1);
  EXPECT_EQ(f.ctx->extract.disassemble_ifo, 1);
}

TEST(ExtractCommand, FlagsOfAnEarlierRequestAreClearedFirst) {
  Fixture f;
  f.ctx->extract = ExtractRequest{1, 1, 1, 1, 1};
  ExtractRequest stills;
  stills.extract_stills = 7;  // any non-zero value is a ticked box
  ExtractCommand(*f.ctx, stills, RecordingActions());
  EXPECT_EQ(f.lines(), std::vector<std::string>{"stills"});
  EXPECT_EQ(f.ctx->extract.extract_audio, 0);
  EXPECT_EQ(f.ctx->extract.extract_stills, 1);
  EXPECT_EQ(f.ctx->extract.disassemble_ifo, 0);
}

TEST(ExtractCommand, NothingTickedRunsNothing) {
  Fixture f;
  ExtractCommand(*f.ctx, ExtractRequest{}, RecordingActions());
  EXPECT_TRUE(f.lines().empty());
}

TEST(ExtractCommand, CancelledDialogClearsTheFlagsAndRunsNothing) {
  Fixture f;
  f.ctx->extract = ExtractRequest{1, 1, 1, 1, 1};
  ExtractCancelled(*f.ctx);
  EXPECT_EQ(f.ctx->extract.extract_audio, 0);
  EXPECT_EQ(f.ctx->extract.extract_video, 0);
  EXPECT_EQ(f.ctx->extract.extract_stills, 0);
  EXPECT_EQ(f.ctx->extract.extract_subpictures, 0);
  EXPECT_EQ(f.ctx->extract.disassemble_ifo, 0);
  EXPECT_TRUE(f.ui.events.empty());
}

TEST(ExtractCommand, DefaultActionsAreTheToolsRoutines) {
  ExtractActions a = DefaultExtractActions();
  EXPECT_EQ(a.audio, &ExtractAudio);
  EXPECT_EQ(a.video, &ExtractVideo);
  EXPECT_EQ(a.stills, &ExtractStills);
  EXPECT_EQ(a.subpictures, &ExtractSubPictures);
  EXPECT_EQ(a.disassemble, &DisassembleIfo);
}

// ---- close query ----

TEST(CloseQuery, ClosesTheOpenFileAndClearsTheList) {
  Fixture f;
  f.OpenBytes("a.vob", MakeVob(2), kFileVob);
  ShowLines(*f.ctx, {"000000 x"}, 0);
  EXPECT_TRUE(CloseQuery(*f.ctx));
  EXPECT_FALSE(f.ctx->open.file_handle.is_open());
  EXPECT_TRUE(f.lines().empty());
}

TEST(CloseQuery, WithoutAnOpenFileAllowsTheCloseAndKeepsTheList) {
  Fixture f;
  f.ctx->AddReportLine("kept");
  EXPECT_TRUE(CloseQuery(*f.ctx));
  EXPECT_EQ(f.lines(), std::vector<std::string>{"kept"});
}

}  // namespace
}  // namespace tarvex
