// GNU ddrescue mapfiles read and mapped onto an ISO image of an authored disc. Where the files
// lie in the image comes from isoinfo's listing (an ISO 9660 reader of its own), the cells'
// sectors from the disc model; expected records are the damaged image sector less the file's
// first sector.
#include "archive/mapfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>

#include "archive/damage.h"
#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"

namespace tarvex {
namespace {

using test::ShellQuote;

TEST(Mapfile, ReadsCommentsStatusLineAndBlocks) {
  std::string error;
  std::optional<Mapfile> map = ParseMapfile(
      "# Mapfile. Created by GNU ddrescue version 1.27\n"
      "# current_pos  current_status  current_pass\n"
      "0x00120000     +               1\n"
      "#      pos        size  status\n"
      "0x00000000  0x00010000  +\n"
      "65536  2048  -\n"
      "0x00010800  0x00000800  ?\n"
      "0x00011000  0x00001000  /\n"
      "0x00012000  0x00000000  *\n",
      error);
  ASSERT_TRUE(map) << error;
  EXPECT_EQ(map->current_pos, 0x120000u);
  EXPECT_EQ(map->current_status, '+');
  ASSERT_EQ(map->blocks.size(), 5u);
  EXPECT_EQ(map->blocks[1].pos, 65536u);
  EXPECT_EQ(map->blocks[1].status, '-');
  std::vector<MapBlock> damaged = DamagedBlocks(*map);
  ASSERT_EQ(damaged.size(), 3u);  // the finished block and the empty one are not damage
  EXPECT_EQ(damaged[1].pos, 0x10800u);
  EXPECT_EQ(damaged[2].size, 0x1000u);
}

TEST(Mapfile, MalformedLinesAreNamed) {
  std::string error;
  EXPECT_FALSE(ParseMapfile("# only comments\n", error));
  EXPECT_EQ(error, "line 2: no status line");
  EXPECT_FALSE(ParseMapfile("0 +\n0 100 +\n100 zz -\n", error));
  EXPECT_EQ(error, "line 3: \"zz\" is not a size");
  EXPECT_FALSE(ParseMapfile("0 +\n0 100 F\n", error));
  EXPECT_EQ(error, "line 2: \"F\" is not a block status");
  EXPECT_FALSE(ParseMapfile("0 +\n\n# c\n0 100\n", error));
  EXPECT_EQ(error, "line 4: expected \"pos size status\"");
  EXPECT_FALSE(ParseMapfile("0x +\n", error));
  EXPECT_EQ(error, "line 1: \"0x\" is not a position");
}

// The image sector of each file of the image, as isoinfo lists them ("[ LBA 00] NAME;1").
std::map<std::string, std::uint64_t> IsoLayout(const std::string& iso) {
  std::string listing = test::CaptureCommand("isoinfo -l -i " + ShellQuote(iso) + " 2>/dev/null");
  std::map<std::string, std::uint64_t> lba;
  std::regex re(R"(\[\s*(\d+) 00\]\s+([A-Z0-9_]+\.[A-Z]+);1)");
  for (auto it = std::sregex_iterator(listing.begin(), listing.end(), re);
       it != std::sregex_iterator(); ++it) {
    lba[(*it)[2]] = std::stoull((*it)[1]);
  }
  return lba;
}

struct Image {
  test::TempDir dir;
  std::string iso;
  std::map<std::string, std::uint64_t> lba;
  Image() {
    iso = dir.file("disc.iso");
    test::CaptureCommand("genisoimage -quiet -dvd-video -V MAP -o " + ShellQuote(iso) + " " +
                         ShellQuote(test::NtscTwoTitleDisc()) + " 2>&1");
    lba = IsoLayout(iso);
  }
};

std::vector<Finding> Damage(const std::string& iso, const std::string& map_text) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(iso, error);
  EXPECT_TRUE(disc) << error;
  std::optional<Mapfile> map = ParseMapfile(map_text, error);
  EXPECT_TRUE(map) << error;
  Findings out;
  if (disc && map) AddDamageFindings(*disc, DamagedBlocks(*map), out);
  return out.all();
}

std::string Block(std::uint64_t sector, std::uint64_t sectors, char status = '-') {
  return std::to_string(sector * 2048) + " " + std::to_string(sectors * 2048) + " " + status + "\n";
}

TEST(Mapfile, DamageMapsOntoFilesRecordsTitlesAndCells) {
  ASSERT_TRUE(test::HaveAuthoringTools() && test::HaveTool("genisoimage") &&
              test::HaveTool("isoinfo"))
      << "tools/install-deps.sh test";
  Image image;
  ASSERT_TRUE(image.lba.count("VTS_01_1.VOB") && image.lba.count("VTS_01_0.IFO")) << image.iso;
  std::string error;
  std::optional<Disc> disc = LoadDisc(image.iso, error);
  ASSERT_TRUE(disc) << error;
  const Pgc& title1 = disc->title_sets[0].pgcs[0];
  ASSERT_EQ(title1.cells.size(), 3u);
  std::uint64_t cell2 = title1.cells[1].first_sector;
  std::uint64_t vob = image.lba["VTS_01_1.VOB"], ifo = image.lba["VTS_01_0.IFO"];

  // Three sectors from the second sector of title 1's cell 2.
  std::vector<Finding> f = Damage(image.iso, "0 ?\n" + Block(vob + cell2 + 1, 3));
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].check, "image.damaged");
  EXPECT_EQ(f[0].file, "VTS_01_1.VOB");
  EXPECT_EQ(f[0].sector, cell2 + 1);
  EXPECT_NE(f[0].message.find("title set 1: title 1 cell 2 ("), std::string::npos) << f[0].message;
  EXPECT_EQ(f[0].message.find("cell 3"), std::string::npos) << f[0].message;

  // Inside the title set's IFO: its record 1.
  f = Damage(image.iso, "0 ?\n" + Block(ifo + 1, 1, '/'));
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].file, "VTS_01_0.IFO");
  EXPECT_EQ(f[0].sector, 1u);
  EXPECT_NE(f[0].message.find("information file"), std::string::npos) << f[0].message;

  // The first sectors of the image hold no file: one finding of the image itself.
  f = Damage(image.iso, "0 ?\n" + Block(0, 16, '?') + Block(16, 100, '+'));
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].file, "");
  EXPECT_EQ(f[0].sector, 0u);
  EXPECT_NE(f[0].message.find("outside every file"), std::string::npos);

  // Nothing damaged: no finding.
  EXPECT_TRUE(Damage(image.iso, "0 +\n" + Block(0, 100, '+')).empty());
}

TEST(Mapfile, RangeAcrossTwoFilesIsAFindingInEach) {
  ASSERT_TRUE(test::HaveAuthoringTools() && test::HaveTool("genisoimage") &&
              test::HaveTool("isoinfo"))
      << "tools/install-deps.sh test";
  Image image;
  // The files next to each other in the image: the IFO's last record and the next file's first.
  std::uint64_t ifo = image.lba["VTS_01_0.IFO"];
  std::uint64_t ifo_records =
      std::filesystem::file_size(test::NtscTwoTitleDisc() + "/VIDEO_TS/VTS_01_0.IFO") / 2048;
  std::string next;
  for (const auto& [name, lba] : image.lba) {
    if (lba == ifo + ifo_records) next = name;
  }
  ASSERT_FALSE(next.empty()) << "a file right after VTS_01_0.IFO";
  std::vector<Finding> f = Damage(image.iso, "0 -\n" + Block(ifo + ifo_records - 1, 2));
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[0].file, "VTS_01_0.IFO");
  EXPECT_EQ(f[0].sector, ifo_records - 1);
  EXPECT_EQ(f[1].file, next);
  EXPECT_EQ(f[1].sector, 0u);
}

TEST(Mapfile, VerifyReportsTruncatedImagesAndUsageErrors) {
  ASSERT_TRUE(test::HaveAuthoringTools() && test::HaveTool("genisoimage"))
      << "tools/install-deps.sh test";
  Image image;
  std::uintmax_t size = std::filesystem::file_size(image.iso);
  std::string cut = image.dir.file("cut.iso");
  std::filesystem::copy_file(image.iso, cut);
  std::filesystem::resize_file(cut, size - 5 * 2048 - 100);
  test::CliRun run = test::RunCli({"verify", cut, "--json", "--ifo-only"});
  EXPECT_EQ(run.status, 1);
  nlohmann::json j = test::ParseJson(run.out);
  bool found = false;
  for (const auto& f : j["findings"]) {
    if (f["check"] != "image.truncated") continue;
    found = true;
    EXPECT_TRUE(f["file"].is_null());
    EXPECT_EQ(f["sector"], (size - 5 * 2048 - 100) / 2048);  // the partial sector is missing
  }
  EXPECT_TRUE(found) << run.out;
  run = test::RunCli({"verify", image.iso, "--ifo-only", "--json"});
  EXPECT_EQ(run.out.find("image.truncated"), std::string::npos) << run.out;

  std::string map = image.dir.file("map");
  test::WriteFileBytes(map, {'0', ' ', '+', '\n', '0', ' ', 'x', ' ', '-', '\n'});
  run = test::RunCli({"verify", image.iso, "--mapfile", map});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("line 2"), std::string::npos) << run.err;
  EXPECT_EQ(test::RunCli({"verify", image.iso, "--mapfile", image.dir.path()}).status, 2);
  test::WriteFileBytes(map, {'0', ' ', '+', '\n'});
  EXPECT_EQ(test::RunCli({"verify", test::NtscTwoTitleDisc(), "--mapfile", map}).status, 2);
  run = test::RunCli({"verify", image.iso, "--mapfile", map, "--json"});
  EXPECT_EQ(run.status, 0) << run.out;
}

}  // namespace
}  // namespace tarvex
