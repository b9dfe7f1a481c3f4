// verify's navigation checks and info's first title and reachable titles on the authored
// playback discs, each expectation read off the disc's description (nav/nav_discs.h).
#include <gtest/gtest.h>

#include "disc/disc_test_support.h"
#include "nav/nav_discs.h"

namespace tarvex::test {
namespace {

// "SEVERITY CHECK FILE:TABLE#ENTRY" of every navigation finding of verify --ifo-only.
std::vector<std::string> NavFindings(const std::string& disc) {
  CliRun run = RunCli({"verify", disc, "--json", "--ifo-only"});
  nlohmann::json json = ParseJson(run.out);
  std::vector<std::string> out;
  for (const nlohmann::json& f : json["findings"]) {
    std::string check = f["check"];
    if (check != "nav.loop" && check != "nav.unreachable") continue;
    out.push_back(f["severity"].get<std::string>() + " " + check + " " +
                  f["file"].get<std::string>() + ":" + f["table"].get<std::string>() + "#" +
                  (f["entry"].is_null() ? std::string("-") : f["entry"].dump()));
  }
  return out;
}

TEST(NavVerify, TheLoopOfMenusWithoutCellsIsAnErrorAtItsFirstChain) {
  std::vector<std::string> expected = {"error nav.loop VIDEO_TS.IFO:VMGM_PGCI_UT#2"};
  EXPECT_EQ(NavFindings(AuthoredNavDiscs().chain_loop), expected);
  CliRun run = RunCli({"verify", AuthoredNavDiscs().chain_loop, "--ifo-only"});
  EXPECT_EQ(run.status, 1);
}

TEST(NavVerify, StructureProtectionDecoysNoPathReachesAreNamedByTitle) {
  // Buttons reach titles 7 and 12; the other ten decoys only exist in the title table.
  std::vector<std::string> expected;
  for (int t : {1, 2, 3, 4, 5, 6, 8, 9, 10, 11}) {
    expected.push_back("info nav.unreachable VIDEO_TS.IFO:TT_SRPT#" + std::to_string(t));
  }
  EXPECT_EQ(NavFindings(AuthoredNavDiscs().protection), expected);
}

TEST(NavVerify, DiscsWhoseEveryChainIsReachedHaveNoNavigationFindings) {
  for (const std::string* disc : {&AuthoredNavDiscs().registers, &AuthoredNavDiscs().resume,
                                  &AuthoredNavDiscs().two_title_sets, &AuthoredNavDiscs().exit}) {
    EXPECT_EQ(NavFindings(*disc), std::vector<std::string>{}) << *disc;
  }
}

TEST(NavInfo, FirstTitleAndReachableTitlesOfTheProtectedDisc) {
  CliRun run = RunCli({"info", AuthoredNavDiscs().protection, "--json"});
  nlohmann::json json = ParseJson(run.out);
  EXPECT_EQ(json["first_title"], 7);
  EXPECT_EQ(json["longest_title"], 12);  // lsdvd's meaning is kept: the longest decoy
  ASSERT_EQ(json["titles"].size(), 12u);
  for (const nlohmann::json& title : json["titles"]) {
    int n = title["number"];
    EXPECT_EQ(title["reachable"], n == 7 || n == 12) << "title " << n;
  }
}

TEST(NavInfo, TextNamesTheFirstTitleAndTheTitlesNoPathReaches) {
  CliRun run = RunCli({"info", AuthoredNavDiscs().protection});
  EXPECT_NE(run.out.find("First title played: 7\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("Titles no path reaches: 1, 2, 3, 4, 5, 6, 8, 9, 10, 11\n"),
            std::string::npos)
      << run.out;
}

TEST(NavGraphCli, OneNodePerChainAndButtonEdgesLabelled) {
  CliRun run = RunCli({"graph", AuthoredNavDiscs().protection});
  EXPECT_EQ(run.status, 0) << run.err;
  // First play, VMGM menu 1 and the 12 title chains.
  std::size_t nodes = 0, at = 0;
  while ((at = run.out.find("\n  \"", at)) != std::string::npos) {
    ++at;
    if (run.out.find("->", at) > run.out.find('\n', at)) ++nodes;
  }
  EXPECT_EQ(nodes, 14u) << run.out;
  EXPECT_NE(run.out.find("button 2"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace tarvex::test
