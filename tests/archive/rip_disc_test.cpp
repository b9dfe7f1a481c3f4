// rip on discs authored at test time, against an independent ripper over libdvdread
// (tarvex_dvdread_rip): the NTSC two-title disc with its title VOB split by hand into two
// files, the same with title 1's chain reordered (cells 3, 2, 1: not in file order), from the
// folders and from their ISO images. Chapter files are read back by mkvmerge and ffmpeg.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"

namespace tarvex {
namespace {

using test::ShellQuote;

constexpr std::size_t kSector = 2048;

// dir/name: the NTSC two-title disc with VTS_01_1.VOB cut after its first `first` sectors, the
// rest moved to VTS_01_2.VOB (the set's sectors and so the IFOs stay as they are).
std::string SplitDisc(const test::TempDir& dir, const std::string& name, std::size_t first) {
  std::string disc = test::CopyDisc(test::NtscTwoTitleDisc(), dir, name);
  std::string vob = disc + "/VIDEO_TS/VTS_01_1.VOB";
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(vob);
  EXPECT_GT(bytes.size(), first * kSector);
  test::WriteFileBytes(vob, {bytes.begin(), bytes.begin() + first * kSector});
  test::WriteFileBytes(disc + "/VIDEO_TS/VTS_01_2.VOB",
                       {bytes.begin() + first * kSector, bytes.end()});
  return disc;
}

std::uint32_t Be32(const std::vector<std::uint8_t>& b, std::size_t at) {
  return (std::uint32_t{b[at]} << 24) | (std::uint32_t{b[at + 1]} << 16) |
         (std::uint32_t{b[at + 2]} << 8) | b[at + 3];
}
std::uint16_t Be16(const std::vector<std::uint8_t>& b, std::size_t at) {
  return static_cast<std::uint16_t>((b[at] << 8) | b[at + 1]);
}

// Swaps the playback and position entries of cells 1 and 3 of VTS_PGCIT's first chain (title
// 1), read straight from the IFO bytes: VTSI_MAT 0xCC gives VTS_PGCIT's sector, its first
// search pointer (at 8) the chain's offset, the chain's 0xE8 / 0xEA its cell tables. The BUP
// becomes the same copy.
void ReverseFirstChain(const std::string& disc) {
  std::string ifo = disc + "/VIDEO_TS/VTS_01_0.IFO";
  std::vector<std::uint8_t> b = test::ReadFileBytes(ifo);
  std::size_t pgcit = std::size_t{Be32(b, 0xCC)} * kSector;
  std::size_t pgc = pgcit + Be32(b, pgcit + 8 + 4);
  ASSERT_EQ(b[pgc + 3], 3) << "title 1 has 3 cells";
  std::size_t playback = pgc + Be16(b, pgc + 0xE8), position = pgc + Be16(b, pgc + 0xEA);
  std::swap_ranges(b.begin() + playback, b.begin() + playback + 24, b.begin() + playback + 48);
  std::swap_ranges(b.begin() + position, b.begin() + position + 4, b.begin() + position + 8);
  test::WriteFileBytes(ifo, b);
  test::WriteFileBytes(disc + "/VIDEO_TS/VTS_01_0.BUP", b);
}

std::string MakeIso(const std::string& disc) {
  std::string iso = disc + ".iso";
  test::CaptureCommand("genisoimage -quiet -dvd-video -V RIP -o " + ShellQuote(iso) + " " +
                       ShellQuote(disc) + " 2>&1");
  return iso;
}

std::vector<std::uint8_t> DvdreadRip(const std::string& disc, int title, const std::string& out) {
  std::string command = ShellQuote(TARVEX_DVDREAD_RIP_PATH) + " " + ShellQuote(disc) + " " +
                        std::to_string(title) + " 1 " + ShellQuote(out) + " 2>&1";
  std::string said = test::CaptureCommand(command);
  EXPECT_TRUE(std::filesystem::exists(out)) << command << "\n" << said;
  return std::filesystem::exists(out) ? test::ReadFileBytes(out) : std::vector<std::uint8_t>{};
}

std::vector<std::uint8_t> CliRip(const std::string& disc, int title, const std::string& out) {
  test::CliRun run = test::RunCli({"rip", disc, "--title", std::to_string(title), "-o", out});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "");
  return std::filesystem::exists(out) ? test::ReadFileBytes(out) : std::vector<std::uint8_t>{};
}

bool HaveTools() {
  return test::HaveAuthoringTools() && test::HaveTool("genisoimage");
}

TEST(RipDisc, EqualsLibdvdreadOnSplitVobsFromFoldersAndImages) {
  ASSERT_TRUE(HaveTools()) << "tools/install-deps.sh test";
  test::TempDir dir;
  std::string split = SplitDisc(dir, "split", 301);
  std::string reordered = SplitDisc(dir, "reordered", 301);
  ReverseFirstChain(reordered);
  for (const std::string& folder : {split, reordered}) {
    for (const std::string& disc : {folder, MakeIso(folder)}) {
      for (int title : {1, 2}) {
        SCOPED_TRACE(disc + " title " + std::to_string(title));
        std::string base = dir.file("t" + std::to_string(title));
        std::vector<std::uint8_t> ours = CliRip(disc, title, base + ".ours");
        std::vector<std::uint8_t> theirs = DvdreadRip(disc, title, base + ".dvdread");
        ASSERT_GT(theirs.size(), 0u);
        EXPECT_EQ(ours.size(), theirs.size());
        EXPECT_TRUE(ours == theirs);
      }
    }
  }
}

// The reordered chain plays cell 3 first: the rip starts with the sectors the split disc's rip
// has at its end, and holds the same bytes in another order.
TEST(RipDisc, ChainOrderIsNotFileOrder) {
  ASSERT_TRUE(HaveTools()) << "tools/install-deps.sh test";
  test::TempDir dir;
  std::string split = SplitDisc(dir, "split", 301);
  std::string reordered = SplitDisc(dir, "reordered", 301);
  ReverseFirstChain(reordered);
  std::vector<std::uint8_t> in_order = CliRip(split, 1, dir.file("a"));
  std::vector<std::uint8_t> played = CliRip(reordered, 1, dir.file("b"));
  ASSERT_EQ(in_order.size(), played.size());
  EXPECT_FALSE(in_order == played);
  // Cell 3 (the last second) is the first thing played: the split rip's last record is
  // somewhere before the end of the reordered one, and its first record is not first.
  std::vector<std::uint8_t> last(in_order.end() - kSector, in_order.end());
  EXPECT_FALSE(std::equal(last.begin(), last.end(), played.end() - kSector));
  std::sort(in_order.begin(), in_order.end());
  std::sort(played.begin(), played.end());
  EXPECT_TRUE(in_order == played);
}

TEST(RipDisc, StandardOutputCarriesTheBytesAlone) {
  ASSERT_TRUE(HaveTools()) << "tools/install-deps.sh test";
  test::TempDir dir;
  std::string disc = SplitDisc(dir, "split", 301);
  std::vector<std::uint8_t> file = CliRip(disc, 2, dir.file("t2"));
  test::CliRun run = test::RunCli({"rip", disc, "--title", "2", "-o", "-"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(std::vector<std::uint8_t>(run.out.begin(), run.out.end()) == file);
}

TEST(RipDisc, UsageErrors) {
  ASSERT_TRUE(HaveTools()) << "tools/install-deps.sh test";
  const std::string& disc = test::NtscTwoTitleDisc();
  test::TempDir dir;
  EXPECT_EQ(test::RunCli({"rip", disc, "--title", "1", "--angle", "2", "-o", dir.file("x")}).status,
            2);
  EXPECT_EQ(test::RunCli({"rip", disc, "--title", "1"}).status, 2);
  EXPECT_EQ(test::RunCli({"rip", disc, "--title", "3", "-o", dir.file("x")}).status, 2);
  EXPECT_EQ(
      test::RunCli({"rip", disc, "--title", "1", "--chapter-format", "ogm", "-o", dir.file("x")})
          .status,
      2);
}

// The second VOB file lost its last 10 sectors: exit 1, the message names that file and the
// first sector missing, and what came before is in the output.
TEST(RipDisc, ShrunkVobFileEndsWithTheFileAndSector) {
  ASSERT_TRUE(HaveTools()) << "tools/install-deps.sh test";
  test::TempDir dir;
  std::string disc = SplitDisc(dir, "split", 301);
  std::string second = disc + "/VIDEO_TS/VTS_01_2.VOB";
  std::uintmax_t size = std::filesystem::file_size(second);
  std::uintmax_t records = size / kSector;
  std::filesystem::resize_file(second, size - 10 * kSector);
  // Title 2 follows title 1 in the set: its last cell ends at the end of the set.
  test::CliRun run = test::RunCli({"rip", disc, "--title", "2", "-o", dir.file("out")});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("VTS_01_2.VOB: sector " + std::to_string(records - 10)), std::string::npos)
      << run.err;
  EXPECT_GT(std::filesystem::file_size(dir.file("out")), 0u);
}

// Title 1 of the NTSC disc: chapters at cells 1 and 3. The expected times are the cells' time
// codes read from the IFO bytes as frames of 1001/30000 s.
std::vector<double> ExpectedChapterStarts(const std::string& disc) {
  std::vector<std::uint8_t> b = test::ReadFileBytes(disc + "/VIDEO_TS/VTS_01_0.IFO");
  std::size_t pgcit = std::size_t{Be32(b, 0xCC)} * kSector;
  std::size_t pgc = pgcit + Be32(b, pgcit + 8 + 4);
  std::size_t playback = pgc + Be16(b, pgc + 0xE8);
  auto bcd = [](std::uint8_t v) { return (v >> 4) * 10 + (v & 15); };
  std::vector<double> ends;
  double t = 0;
  for (int c = 0; c < 3; ++c) {
    const std::uint8_t* time = &b[playback + 24 * c + 4];
    EXPECT_EQ(time[3] >> 6, 3) << "30 fps time code";
    int frames =
        ((bcd(time[0]) * 60 + bcd(time[1])) * 60 + bcd(time[2])) * 30 + bcd(time[3] & 0x3F);
    t += frames * 1001.0 / 30000.0;
    ends.push_back(std::round(t * 1000) / 1000);
  }
  return {0.0, ends[1], ends[2]};  // chapter 1, chapter 2 (cell 3), the end
}

std::vector<double> Times(const std::string& text, const std::string& pattern) {
  std::vector<double> times;
  std::regex re(pattern);
  for (auto it = std::sregex_iterator(text.begin(), text.end(), re); it != std::sregex_iterator();
       ++it) {
    times.push_back(std::stod((*it)[1]) * 3600 + std::stod((*it)[2]) * 60 + std::stod((*it)[3]));
  }
  return times;
}

TEST(RipDisc, ChapterFilesReadBackByMkvmergeAndFfmpeg) {
  ASSERT_TRUE(HaveTools() && test::HaveTool("mkvmerge") && test::HaveTool("mkvinfo"))
      << "tools/install-deps.sh test";
  const std::string& disc = test::NtscTwoTitleDisc();
  std::vector<double> want = ExpectedChapterStarts(disc);
  test::TempDir dir;
  std::string vob = dir.file("t1.vob");
  for (const char* format : {"ogm", "matroska"}) {
    SCOPED_TRACE(format);
    std::string chapters = dir.file(std::string("ch-") + format);
    test::CliRun run = test::RunCli({"rip", disc, "--title", "1", "-o", vob, "--chapters", chapters,
                                     "--chapter-format", format});
    ASSERT_EQ(run.status, 0) << run.err;
    std::string mkv = dir.file(std::string(format) + ".mkv");
    std::string said = test::CaptureCommand("mkvmerge -q -o " + ShellQuote(mkv) + " --chapters " +
                                            ShellQuote(chapters) + " " + ShellQuote(vob) + " 2>&1");
    std::string info = test::CaptureCommand("mkvinfo " + ShellQuote(mkv) + " 2>&1");
    std::vector<double> starts = Times(info, R"(Chapter time start: (\d+):(\d+):(\d+\.\d+))");
    ASSERT_EQ(starts.size(), 2u) << said << info;
    EXPECT_NEAR(starts[0], want[0], 1e-9);
    EXPECT_NEAR(starts[1], want[1], 1e-9);
    if (std::string(format) == "matroska") {
      std::vector<double> ends = Times(info, R"(Chapter time end: (\d+):(\d+):(\d+\.\d+))");
      ASSERT_EQ(ends.size(), 2u) << info;
      EXPECT_NEAR(ends[1], want[2], 1e-9);
    }
  }
  std::string meta = dir.file("ch.ffmeta");
  ASSERT_EQ(test::RunCli(
                {"rip", disc, "--title", "1", "--chapters", meta, "--chapter-format", "ffmetadata"})
                .status,
            0);
  std::string mkv = dir.file("ff.mkv");
  test::CaptureCommand("ffmpeg -v error -y -fflags +genpts -i " + ShellQuote(vob) + " -i " +
                       ShellQuote(meta) + " -map 0:v -map_metadata 1 -map_chapters 1 -codec copy " +
                       ShellQuote(mkv) + " 2>&1");
  std::string probe = test::CaptureCommand("ffprobe -v error -show_chapters -of compact " +
                                           ShellQuote(mkv) + " 2>&1");
  std::vector<double> starts, ends;
  std::regex re(R"(start_time=([0-9.]+)\|end=\d+\|end_time=([0-9.]+))");
  for (auto it = std::sregex_iterator(probe.begin(), probe.end(), re); it != std::sregex_iterator();
       ++it) {
    starts.push_back(std::stod((*it)[1]));
    ends.push_back(std::stod((*it)[2]));
  }
  ASSERT_EQ(starts.size(), 2u) << probe;
  EXPECT_NEAR(starts[1], want[1], 1e-9);
  EXPECT_NEAR(ends[1], want[2], 1e-9);
}

}  // namespace
}  // namespace tarvex
