// `tarvex-cli play` against libdvdnav's machine: on every authored disc and several key scripts
// both must enter the same cells (domain, title set, chain, cell, first sector) in the same order
// and play the same first title. A run of play that ends in a loop is compared up to its length:
// libdvdnav keeps going (or hangs) where play stops.
#include <gtest/gtest.h>

#include "disc/disc_test_support.h"
#include "nav/dvdnav_harness.h"
#include "nav/nav_discs.h"

namespace tarvex::test {
namespace {

// What both players must agree on about one cell entered.
std::string CellKey(const nlohmann::json& cell) {
  return cell.value("domain", "?") + " title set " + cell["title_set"].dump() + " pgc " +
         cell["pgc"].dump() + " cell " + cell["cell"].dump() + " first sector " +
         cell["first_sector"].dump();
}

std::vector<std::string> CellKeys(const nlohmann::json& run) {
  std::vector<std::string> keys;
  if (!run.is_object() || !run["cells"].is_array()) return keys;
  for (const nlohmann::json& cell : run["cells"]) keys.push_back(CellKey(cell));
  return keys;
}

// play's end as libdvdnav reports it: an Exit and a chain with nowhere to go both stop it.
std::string DvdnavEnd(const std::string& play_end) {
  return play_end == "exit" ? "stop" : play_end;
}

nlohmann::json RunPlay(const std::string& disc, const std::string& keys) {
  std::vector<std::string> args = {"play", disc, "--json"};
  if (!keys.empty()) args.insert(args.end(), {"--keys", keys});
  CliRun run = RunCli(args);
  EXPECT_EQ(run.status, 0) << run.err;
  return ParseJson(run.out);
}

void ComparePlayWithDvdnav(const std::string& disc, const std::string& keys) {
  ASSERT_FALSE(disc.empty());
  nlohmann::json play = RunPlay(disc, keys);
  nlohmann::json dvdnav = RunDvdnav(disc, keys, 1000);
  std::vector<std::string> ours = CellKeys(play), theirs = CellKeys(dvdnav);
  std::string context =
      "keys: \"" + keys + "\"\nplay:   " + CellPath(play) + "\ndvdnav: " + CellPath(dvdnav);
  std::string end = play.value("end", "");
  if (end == "loop") {
    // libdvdnav must have played at least what play did before it saw the loop.
    ASSERT_GE(theirs.size(), ours.size()) << context;
    theirs.resize(ours.size());
  } else {
    EXPECT_EQ(DvdnavEnd(end), dvdnav.value("end", "")) << context;
  }
  EXPECT_EQ(ours, theirs) << context;
  EXPECT_EQ(play["first_title"], dvdnav["first_title"]) << context;
}

TEST(PlayVsDvdnav, Protection) {
  for (const char* keys : {"", "1", "2", "down,enter", "down,up,enter"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().protection, keys);
  }
}

TEST(PlayVsDvdnav, Registers) {
  for (const char* keys : {"", "1", "2", "down,enter", "2,2"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().registers, keys);
  }
}

TEST(PlayVsDvdnav, ChainLoop) {
  for (const char* keys : {"", "1", "2", "down,enter"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().chain_loop, keys);
  }
}

TEST(PlayVsDvdnav, Resume) {
  for (const char* keys : {"", "1", "2", "1,2", "2,1"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().resume, keys);
  }
}

TEST(PlayVsDvdnav, TwoTitleSets) {
  for (const char* keys : {"", "2", "2,2", "3", "3,1", "3,2", "3,2,2", "down,down,enter"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().two_title_sets, keys);
  }
}

TEST(PlayVsDvdnav, Exit) {
  for (const char* keys : {"", "1", "2", "1,skip", "1,title,2", "1,title,1"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().exit, keys);
  }
}

TEST(PlayVsDvdnav, AutoAction) {
  for (const char* keys : {"", "1", "down", "down,enter", "3", "down,up"}) {
    ComparePlayWithDvdnav(AuthoredNavDiscs().auto_action, keys);
  }
}

}  // namespace
}  // namespace tarvex::test
