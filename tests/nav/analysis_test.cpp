// Reachability, hanging loops and their findings on discs built in memory.
#include "nav/analysis.h"

#include <gtest/gtest.h>

#include "nav/nav_test_disc.h"

namespace tarvex::nav {
namespace {

using test::Chain;
using test::DiscBuilder;

std::vector<std::string> Lines(const Disc& disc) {
  Findings out;
  AddNavigationFindings(disc, Analyze(disc), out);
  out.Finish();
  std::vector<std::string> lines;
  for (const Finding& f : out.all()) lines.push_back(FindingLine(f));
  return lines;
}

TEST(NavAnalysis, UnreachableTitleAndMenuChainAreNamedByTheirTables) {
  // First play goes to title 1; title 2 and VMGM chain 2 are reached by nothing.
  Pgc menu = Chain({}, 1, {});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({}, 1, {}))
                  .TitleSet({Chain({}, 1, {}), Chain({}, 1, {})})
                  .Build();
  NavAnalysis a = Analyze(disc);
  EXPECT_TRUE(TitleReachable(disc, a, 1));
  EXPECT_FALSE(TitleReachable(disc, a, 2));
  std::vector<std::string> lines = Lines(disc);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].rfind("info VIDEO_TS.IFO:TT_SRPT#2 nav.unreachable: title 2", 0), 0u)
      << lines[0];
  EXPECT_EQ(lines[1].rfind("info VIDEO_TS.IFO:VMGM_PGCI_UT#2 nav.unreachable: VMGM en PGC 2", 0),
            0u)
      << lines[1];
}

TEST(NavAnalysis, AnUnconditionalCycleOfCellLessChainsIsAnError) {
  Pgc menu = Chain({test::LinkChain(2)}, 0, {});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({test::LinkChain(1)}, 0, {}))
                  .Build();
  NavAnalysis a = Analyze(disc);
  ASSERT_EQ(a.loops.size(), 1u);
  EXPECT_TRUE(a.loops[0].unconditional);
  EXPECT_EQ(a.loops[0].chains.size(), 2u);
  std::vector<std::string> lines = Lines(disc);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("error VIDEO_TS.IFO:VMGM_PGCI_UT#1 nav.loop:", 0), 0u) << lines[0];
}

TEST(NavAnalysis, ACycleThatDependsOnAComparisonIsAWarning) {
  // Chain 1 links to its next chain 2 only while GPRM0 < 3 (else it stops); chain 2 links
  // back always.
  Pgc menu = Chain({test::IfLessLinkSub(0, 3, 10)}, 0, {});
  menu.next = 2;
  menu.post = {test::Exit()};
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({test::LinkChain(1)}, 0, {}))
                  .Build();
  std::vector<std::string> lines = Lines(disc);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("warning VIDEO_TS.IFO:VMGM_PGCI_UT#1 nav.loop:", 0), 0u) << lines[0];
}

TEST(NavAnalysis, BothWaysOfAComparisonLeadingOnIsAnError) {
  // Chain 1 links to its next chain 2 while GPRM0 < 3, and falls through to it otherwise.
  Pgc menu = Chain({test::IfLessLinkSub(0, 3, 10)}, 0, {});
  menu.next = 2;
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({test::LinkChain(1)}, 0, {}))
                  .Build();
  std::vector<std::string> lines = Lines(disc);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind("error VIDEO_TS.IFO:VMGM_PGCI_UT#1 nav.loop:", 0), 0u) << lines[0];
}

TEST(NavAnalysis, ACycleThatPlaysACellIsNoLoop) {
  Pgc menu = Chain({}, 1, {test::LinkChain(2)});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({test::LinkChain(1)}, 0, {}))
                  .Build();
  EXPECT_TRUE(Analyze(disc).loops.empty());
  EXPECT_TRUE(Lines(disc).empty());
}

TEST(NavAnalysis, ButtonsReachTheirTitles) {
  Pgc menu = Chain({}, 1, {});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .TitleSet({Chain({}, 1, {}), Chain({}, 1, {}), Chain({}, 1, {})})
                  .VmgMenuButtons({{test::JumpTitle(1)}, {test::JumpTitle(3)}}, true)
                  .Build();
  NavAnalysis a = Analyze(disc);
  EXPECT_TRUE(TitleReachable(disc, a, 1));
  EXPECT_FALSE(TitleReachable(disc, a, 2));
  EXPECT_TRUE(TitleReachable(disc, a, 3));
  NavGraph g = BuildGraph(disc, a);
  std::size_t button_edges = 0;
  for (const GraphEdge& e : g.edges) button_edges += e.button != 0;
  EXPECT_EQ(button_edges, 2u);
  EXPECT_EQ(g.nodes.size(), 5u);  // first play, the menu, three title chains
}

}  // namespace
}  // namespace tarvex::nav
