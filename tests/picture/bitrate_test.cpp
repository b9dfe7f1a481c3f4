// bitrate: the byte totals of every interval against the packs `list --json` counts on the same
// cells, placed in intervals by the test's own reading of the title time formula; and the
// interval arithmetic on values worked out by hand.
#include "picture/bitrate.h"

#include <gtest/gtest.h>

#include <map>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/model.h"

namespace tarvex::picture {
namespace {

TEST(BitrateInterval, APackAtAnIntervalBoundaryBelongsToTheIntervalItStarts) {
  const std::uint64_t second = 27000000;
  EXPECT_EQ(IntervalOf(0, 0, second), 0u);
  EXPECT_EQ(IntervalOf(26999999, 0, second), 0u);
  EXPECT_EQ(IntervalOf(27000000, 0, second), 1u);
  // A cell starting at 1001 frames of 1001/30000 s: 33.3667 s -> 33 for S = 1, 66 for S = 0.5.
  EXPECT_EQ(IntervalOf(0, 1001 * 3003, second), 33u);
  EXPECT_EQ(IntervalOf(0, 1001 * 3003, second / 2), 66u);
  // 90,000 ticks into a cell that starts after 2 s of cells: 3 s, exactly on interval 3.
  EXPECT_EQ(IntervalOf(27000000, 180000, second), 3u);
  // 2048 bytes a second: 16,384 bits = 0.016384 Mbit/s.
  EXPECT_DOUBLE_EQ(Mbps(2048, 1.0), 0.016384);
  EXPECT_DOUBLE_EQ(Mbps(1260000, 1.0), 10.08);
}

#ifdef TARVEX_CLI_PATH

// 27 MHz units of a cell time read as the contract's frame count.
std::int64_t CellClock(const PlaybackTime& t) {
  std::int64_t seconds = (t.hours * 60 + t.minutes) * 60 + t.seconds;
  if (t.rate_code == 1) return (seconds * 25 + t.frames) * 1080000;  // frames of 1/25 s
  return (seconds * 30 + t.frames) * 900900;                         // frames of 1001/30000 s
}

std::string KeyOf(const nlohmann::json& pack) {
  std::string id = pack.value("stream_id", "");
  if (id == "0xe0") return "video";
  if (id == "0xbd") return pack["sub_stream_id"];
  if (id == "0xbf") return "nav";
  if (id == "0xbe") return "padding";
  return id;
}

// The expected intervals of title 1 (its first chain, one VOB file) at S seconds.
std::vector<std::map<std::string, std::uint64_t>> FromList(const std::string& path, double s) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << error;
  std::vector<std::map<std::string, std::uint64_t>> intervals;
  if (!disc) return intervals;
  const TitleSet& ts = disc->title_sets.at(0);
  std::int64_t before = 0;
  auto step = static_cast<std::int64_t>(s * 27000000);
  for (const Cell& cell : ts.pgcs.at(0).cells) {
    test::CliRun run =
        test::RunCli({"list", path + "/VIDEO_TS/VTS_01_1.VOB", std::to_string(cell.first_sector),
                      std::to_string(cell.last_sector + 1), "--json"});
    nlohmann::json packs = test::ParseJson(run.out)["packets"];
    EXPECT_EQ(packs.size(), cell.last_sector - cell.first_sector + 1);
    std::int64_t first = packs.at(0)["scr"];
    for (const nlohmann::json& p : packs) {
      std::int64_t t = p["scr"].get<std::int64_t>() - first + before;
      auto k = static_cast<std::size_t>(t / step);
      if (k >= intervals.size()) intervals.resize(k + 1);
      intervals[k][KeyOf(p)] += 2048;
    }
    before += CellClock(cell.time);
  }
  return intervals;
}

void ExpectSameIntervals(const std::string& disc, double s, const std::string& interval) {
  test::CliRun run =
      test::RunCli({"bitrate", disc, "--title", "1", "--interval", interval, "--json"});
  ASSERT_EQ(run.status, 0) << run.err;
  nlohmann::json j = test::ParseJson(run.out);
  auto want = FromList(disc, s);
  ASSERT_EQ(j["intervals"].size(), want.size());
  for (std::size_t k = 0; k < want.size(); ++k) {
    const nlohmann::json& got = j["intervals"][k];
    EXPECT_NEAR(got["start"].get<double>(), k * s, 1e-9);
    std::map<std::string, std::uint64_t> bytes = got["bytes"];
    EXPECT_EQ(bytes, want[k]) << "interval " << k;
    std::uint64_t total = 0;
    for (const auto& [key, n] : want[k]) total += n;
    EXPECT_NEAR(got["mux_mbps"].get<double>(), total * 8 / s / 1e6, 0.0005);
  }
}

TEST(BitrateCli, SampleDiscIntervalsEqualThePacksListCounts) {
  ExpectSameIntervals(test::SampleDisc(), 1.0, "1");
  ExpectSameIntervals(test::SampleDisc(), 0.5, "0.5");
}

TEST(BitrateCli, ThreeCellTitleCountsEachCellAfterTheCellsBefore) {
  if (!test::HaveAuthoringTools()) GTEST_SKIP() << "ffmpeg, spumux or dvdauthor missing";
  const std::string& disc = test::NtscTwoTitleDisc();
  ASSERT_FALSE(disc.empty());
  ExpectSameIntervals(disc, 1.0, "1");
  ExpectSameIntervals(disc, 0.25, "0.25");
  test::TempDir dir;
  test::CliRun run = test::RunCli({"bitrate", disc, "--title", "1", "--svg", dir.file("rate.svg")});
  EXPECT_EQ(run.status, 0) << run.err;
  std::string svg = test::ReadFileText(dir.file("rate.svg"));
  EXPECT_NE(svg.find("mux limit 10.08"), std::string::npos);
  EXPECT_NE(svg.find("video limit 9.8"), std::string::npos);
  EXPECT_NE(svg.find("title time (minutes)"), std::string::npos);
  EXPECT_NE(svg.find("Mbit/s"), std::string::npos);
  EXPECT_EQ(test::RunCli({"bitrate", disc, "--title", "9"}).status, 1);
}

#endif  // TARVEX_CLI_PATH

}  // namespace
}  // namespace tarvex::picture
