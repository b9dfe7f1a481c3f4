// info's "duration" (exact cell times) beside lsdvd's "length", and the rip size of its text,
// on the NTSC two-title disc. Expected durations: the cells' time codes read from the IFO bytes
// as frames of 1001/30000 s; the expected rip size: the bytes libdvdread's ripper writes.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"

namespace tarvex {
namespace {

using test::ShellQuote;

std::uint32_t Be32(const std::vector<std::uint8_t>& b, std::size_t at) {
  return (std::uint32_t{b[at]} << 24) | (std::uint32_t{b[at + 1]} << 16) |
         (std::uint32_t{b[at + 2]} << 8) | b[at + 3];
}

// The time codes of the first chain's cells (title 1) in seconds, by frame count.
std::vector<double> CellSeconds(const std::string& disc) {
  std::vector<std::uint8_t> b = test::ReadFileBytes(disc + "/VIDEO_TS/VTS_01_0.IFO");
  std::size_t pgcit = std::size_t{Be32(b, 0xCC)} * 2048;
  std::size_t pgc = pgcit + Be32(b, pgcit + 12);
  std::size_t playback = pgc + ((b[pgc + 0xE8] << 8) | b[pgc + 0xE9]);
  auto bcd = [](std::uint8_t v) { return (v >> 4) * 10 + (v & 15); };
  std::vector<double> seconds;
  for (int c = 0; c < b[pgc + 3]; ++c) {
    const std::uint8_t* t = &b[playback + 24 * c + 4];
    int frames = ((bcd(t[0]) * 60 + bcd(t[1])) * 60 + bcd(t[2])) * 30 + bcd(t[3] & 0x3F);
    seconds.push_back(frames * 1001.0 / 30000.0);
  }
  return seconds;
}

double Ms(double seconds) {
  return std::round(seconds * 1000) / 1000;
}

TEST(InfoDuration, ExactCellTimesBesideTheLengths) {
  ASSERT_TRUE(test::HaveAuthoringTools()) << "tools/install-deps.sh test";
  const std::string& disc = test::NtscTwoTitleDisc();
  std::vector<double> cells = CellSeconds(disc);
  ASSERT_EQ(cells.size(), 3u);
  test::CliRun run = test::RunCli({"info", disc, "--json"});
  ASSERT_EQ(run.status, 0) << run.err;
  nlohmann::json t = test::ParseJson(run.out)["titles"][0];
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(t["cells"][c]["duration"].get<double>(), Ms(cells[c]), 1e-9) << c;
    // lsdvd's length counts the frames at 29.97 and cuts to the millisecond.
    EXPECT_TRUE(t["cells"][c]["length"].is_number());
  }
  EXPECT_NEAR(t["duration"].get<double>(), Ms(cells[0] + cells[1] + cells[2]), 1e-9);
  // Chapter 1 is cells 1 and 2 (cell 2 starts a program, not a chapter), chapter 2 cell 3.
  EXPECT_NEAR(t["chapters"][0]["duration"].get<double>(), Ms(cells[0] + cells[1]), 1e-9);
  EXPECT_NEAR(t["chapters"][1]["duration"].get<double>(), Ms(cells[2]), 1e-9);
}

TEST(InfoDuration, TextGivesTheRipSize) {
  ASSERT_TRUE(test::HaveAuthoringTools()) << "tools/install-deps.sh test";
  const std::string& disc = test::NtscTwoTitleDisc();
  test::TempDir dir;
  test::CliRun run = test::RunCli({"info", disc});
  ASSERT_EQ(run.status, 0) << run.err;
  for (int title : {1, 2}) {
    std::string out = dir.file("t" + std::to_string(title));
    test::CaptureCommand(ShellQuote(TARVEX_DVDREAD_RIP_PATH) + " " + ShellQuote(disc) + " " +
                         std::to_string(title) + " 1 " + ShellQuote(out));
    std::string line = "  Rip: " + std::to_string(std::filesystem::file_size(out)) + " bytes (";
    std::size_t at = run.out.find("Title " + std::to_string(title) + ":");
    ASSERT_NE(at, std::string::npos) << run.out;
    EXPECT_EQ(run.out.find(line, at), run.out.find('\n', at) + 1) << run.out;
  }
}

}  // namespace
}  // namespace tarvex
