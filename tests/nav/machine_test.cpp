// The navigation machine on discs built in memory: what it plays, in which order, and why it
// stops, each expectation worked out from the chains' commands.
#include "nav/machine.h"

#include <gtest/gtest.h>

#include "nav/analysis.h"
#include "nav/nav_test_disc.h"

namespace tarvex::nav {
namespace {

using test::Chain;
using test::DiscBuilder;

// "vts1/1:2" per cell: domain, title set, chain and cell.
std::string Cells(const PlayResult& r) {
  std::string out;
  for (const CellEvent& c : r.cells) {
    if (!out.empty()) out += ' ';
    out += std::string(DomainName(c.chain.domain)) + std::to_string(c.chain.title_set) + "/" +
           std::to_string(c.chain.pgc) + ":" + std::to_string(c.cell);
  }
  return out;
}

PlayResult PlayKeys(const Disc& disc, std::vector<std::string> keys = {}) {
  PlayOptions options;
  options.keys = std::move(keys);
  return Play(disc, options);
}

constexpr std::uint8_t kLinkTopChain = 9;
constexpr std::uint8_t kLinkResume = 16;

TEST(NavMachine, FirstPlayJumpsToTheTitleWhichExits) {
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({Chain({}, 2, {test::Exit()})})
                  .Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(Cells(r), "vts1/1:1 vts1/1:2");
  EXPECT_EQ(r.end, "exit");
  ASSERT_TRUE(r.first_title);
  EXPECT_EQ(*r.first_title, 1u);
  ASSERT_TRUE(r.cells[0].title);
  EXPECT_EQ(*r.cells[0].title, 1u);
  EXPECT_EQ(*r.cells[0].chapter, 1u);
}

TEST(NavMachine, AChainThatEndsWithNowhereToGoStops) {
  Disc disc = DiscBuilder().FirstPlay({test::JumpTitle(1)}).TitleSet({Chain({}, 1, {})}).Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(Cells(r), "vts1/1:1");
  EXPECT_EQ(r.end, "stop");
}

TEST(NavMachine, CellLessChainsLinkingToEachOtherAreALoop) {
  Pgc menu = Chain({test::LinkChain(2)}, 0, {});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpVmgTitleMenu()})
                  .VmgMenu(test::Entry(menu, 2))
                  .VmgMenu(Chain({test::LinkChain(1)}, 0, {}))
                  .Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_TRUE(r.cells.empty());
  EXPECT_EQ(r.end, "loop");
  EXPECT_FALSE(r.first_title);
}

TEST(NavMachine, PostCommandsCountRoundsInAGprm) {
  // pre: add GPRM0, 1; one cell; post: if (GPRM0 < 3) LinkTopPGC; Exit.
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({Chain({test::AddImmediate(0, 1)}, 1,
                                   {test::IfLessLinkSub(0, 3, kLinkTopChain), test::Exit()})})
                  .Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(Cells(r), "vts1/1:1 vts1/1:1 vts1/1:1");
  EXPECT_EQ(r.end, "exit");
}

TEST(NavMachine, EndlessPlaybackWithChangingRegistersEndsAtTheCellLimit) {
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({Chain({test::AddImmediate(0, 1)}, 1, {test::LinkSub(kLinkTopChain)})})
                  .Build();
  PlayOptions options;
  options.max_cells = 5;
  PlayResult r = Play(disc, options);
  EXPECT_EQ(r.cells.size(), 5u);
  EXPECT_EQ(r.end, "limit");
}

TEST(NavMachine, PlaybackThatRepeatsItselfIsALoop) {
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({Chain({}, 1, {test::LinkSub(kLinkTopChain)})})
                  .Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(Cells(r), "vts1/1:1");
  EXPECT_EQ(r.end, "loop");
}

TEST(NavMachine, ALinkToAChainThatDoesNotExistIsAnError) {
  Disc disc = DiscBuilder().FirstPlay({test::LinkChain(9)}).VmgMenu(Chain({}, 1, {})).Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(r.end, "error");
  EXPECT_NE(r.end_reason.find("LinkPGCN 9"), std::string::npos) << r.end_reason;
}

TEST(NavMachine, ACallResumesAtTheCellItNames) {
  // Cell 1 of the title calls the root menu, to resume at cell 2; the menu resumes.
  Pgc title = Chain({}, 2, {test::Exit()});
  title.cells[0].category[3] = 1;
  title.cell_commands = {test::CallVtsRootMenu(2)};
  Pgc root = Chain({}, 1, {test::LinkSub(kLinkResume)});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({title})
                  .VtsMenu(1, test::Entry(root, 3))
                  .Build();
  PlayResult r = PlayKeys(disc);
  EXPECT_EQ(Cells(r), "vts1/1:1 vtsm1/1:1 vts1/1:2");
  EXPECT_EQ(r.end, "exit");
}

TEST(NavMachine, MenuKeyInATitleCallsTheRootMenuAndItResumes) {
  Pgc root = Chain({}, 1, {test::LinkSub(kLinkResume)});
  Disc disc = DiscBuilder()
                  .FirstPlay({test::JumpTitle(1)})
                  .TitleSet({Chain({}, 2, {test::Exit()})})
                  .VtsMenu(1, test::Entry(root, 3))
                  .Build();
  // The title's cells wait for no key: the menu key is never consumed.
  EXPECT_EQ(Cells(PlayKeys(disc, {"menu"})), "vts1/1:1 vts1/1:2");
}

Disc TwoButtonMenu(bool auto_action) {
  Pgc menu = Chain({}, 1, {});
  return DiscBuilder()
      .FirstPlay({test::JumpVmgTitleMenu()})
      .VmgMenu(test::Entry(menu, 2))
      .TitleSet({Chain({}, 1, {test::Exit()}), Chain({}, 1, {test::Exit()})})
      .VmgMenuButtons({{test::JumpTitle(1), 0, 2, false}, {test::JumpTitle(2), 1, 0, auto_action}},
                      true)
      .Build();
}

TEST(NavMachine, AMenuWithoutKeysActivatesItsHighlightedButton) {
  PlayResult r = PlayKeys(TwoButtonMenu(false));
  EXPECT_EQ(Cells(r), "vmgm0/1:1 vts1/1:1");
  EXPECT_EQ(r.cells[0].key, "enter");
  EXPECT_TRUE(r.cells[0].implicit);
  EXPECT_EQ(r.end, "exit");
}

TEST(NavMachine, MovingDownThenEnterActivatesTheSecondButtonAtTheStill) {
  PlayResult r = PlayKeys(TwoButtonMenu(false), {"down", "enter"});
  EXPECT_EQ(Cells(r), "vmgm0/1:1 vts1/2:1");
  EXPECT_EQ(r.cells[0].key, "enter");
  EXPECT_FALSE(r.cells[0].implicit);
  ASSERT_TRUE(r.first_title);
  EXPECT_EQ(*r.first_title, 2u);
}

TEST(NavMachine, AnAutoActionButtonActivatesWhenSelected) {
  PlayResult r = PlayKeys(TwoButtonMenu(true), {"down"});
  EXPECT_EQ(Cells(r), "vmgm0/1:1 vts1/2:1");
  EXPECT_EQ(r.cells[0].key, "down");
}

TEST(NavMachine, AButtonNumberSelectsAndActivates) {
  EXPECT_EQ(Cells(PlayKeys(TwoButtonMenu(false), {"2"})), "vmgm0/1:1 vts1/2:1");
  // A button the menu does not have does nothing: the still then takes the implied enter.
  EXPECT_EQ(Cells(PlayKeys(TwoButtonMenu(false), {"9"})), "vmgm0/1:1 vts1/1:1");
}

TEST(NavMachine, KeysAreChecked) {
  EXPECT_TRUE(IsKey("enter"));
  EXPECT_TRUE(IsKey("36"));
  EXPECT_FALSE(IsKey("37"));
  EXPECT_FALSE(IsKey("0"));
  EXPECT_FALSE(IsKey("jump"));
  EXPECT_FALSE(IsKey(""));
}

}  // namespace
}  // namespace tarvex::nav
