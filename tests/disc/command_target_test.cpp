// Navigation command targets against the sample's model: one title (title set 1, title 1 of
// 3 parts, played by the set's only title chain of 3 programs and 3 cells, which names no
// next, previous or go-up chain), a first-play chain, one video manager menu chain (the title
// menu), two title set menu chains (the root and the chapter menu). Each problem below is
// worked out from those counts.
#include <gtest/gtest.h>

#include "disc/checks.h"
#include "disc/disc_test_support.h"

namespace tarvex {
namespace {

const Disc& Sample() {
  static const Disc disc = [] {
    std::string error;
    std::optional<Disc> d = LoadDisc(test::SampleDisc(), error);
    EXPECT_TRUE(d) << error;
    return d ? std::move(*d) : Disc{};
  }();
  return disc;
}

const TitleSet& Set() {
  return Sample().title_sets.at(0);
}

// The problem of a command of the title chain (or "" when there is none).
std::string InTitle(const NavCommand& command, const CommandPlace& place = {}) {
  const TitleSet& ts = Set();
  auto problem =
      CommandTargetProblem({Sample(), ts.pgcs.size(), &ts, true}, ts.pgcs.at(0), command, place);
  return problem.value_or("");
}

// The problem of a command of the video manager's menu chain.
std::string InVmgMenu(const NavCommand& command, const Disc& disc = Sample()) {
  const LanguageUnit& unit = disc.vmg.menus.at(0);
  auto problem =
      CommandTargetProblem({disc, unit.pgcs.size(), nullptr, false}, unit.pgcs.at(0), command);
  return problem.value_or("");
}

TEST(CommandTarget, SampleChainsHaveTheCountsTheCasesAssume) {
  const Pgc& title = Set().pgcs.at(0);
  EXPECT_EQ(Set().pgcs.size(), 1u);
  EXPECT_EQ(title.declared_programs, 3u);
  EXPECT_EQ(title.declared_cells, 3u);
  EXPECT_EQ(title.next + title.previous + title.go_up, 0);
  ASSERT_EQ(Set().parts.size(), 1u);
  EXPECT_EQ(Set().parts[0].size(), 3u);
  ASSERT_EQ(Sample().vmg.menus.size(), 1u);
  EXPECT_EQ(Sample().vmg.menus[0].pgcs.size(), 1u);
  EXPECT_TRUE(Sample().vmg.first_play.has_value());
}

TEST(CommandTarget, LinksCarriedBySetsAreFollowed) {
  // "g0 = 0; LinkPTTN 3" is the sample's own pre command 2; part 4 is beyond the title's 3.
  EXPECT_EQ(InTitle({0x71, 0x05, 0, 0, 0, 0, 0, 0x03}), "");
  EXPECT_EQ(InTitle({0x71, 0x05, 0, 0, 0, 0, 0, 0x04}), "links to part 4, the chain's title has 3");
  // SetSTN with LinkPGCN 2, and with LinkCN 4.
  EXPECT_EQ(InTitle({0x51, 0x04, 0, 0, 0, 0, 0, 0x02}), "links to program chain 2, there are 1");
  EXPECT_EQ(InTitle({0x51, 0x07, 0, 0, 0, 0, 0, 0x04}), "links to cell 4, the chain has 3");
  EXPECT_EQ(InTitle({0x71, 0x06, 0, 0, 0, 0, 0, 0x03}), "");
  EXPECT_EQ(InTitle({0x71, 0x06, 0, 0, 0, 0, 0, 0x04}), "links to program 4, the chain has 3");
}

TEST(CommandTarget, ConditionalLinksAndJumpsAreFollowed) {
  // "if (g3 == 5) LinkPGCN 2" and "if (g1 < g2) JumpTT 2".
  EXPECT_EQ(InTitle({0x20, 0xA4, 0x00, 0x03, 0x00, 0x05, 0x00, 0x02}),
            "links to program chain 2, there are 1");
  EXPECT_EQ(InTitle({0x30, 0x72, 0, 0, 0, 0x02, 0x01, 0x02}), "jumps to title 2, the disc has 1");
}

TEST(CommandTarget, LinksBySubInstruction) {
  EXPECT_EQ(InTitle({0x81, 0x20, 0, 0, 0, 0, 0, 0x01}), "");                 // LinkTopC
  EXPECT_EQ(InTitle({0x71, 0x01, 0x00, 0x0F, 0x00, 0x02, 0x00, 0x0D}), "");  // LinkTailPGC
  EXPECT_EQ(InTitle({0xC1, 0x00, 0, 0, 0, 0, 0, 0x0A}),
            "links to the next program chain, the chain names none");
  EXPECT_EQ(InTitle({0xA1, 0x20, 0, 0, 0, 0, 0, 0x0B}),
            "links to the previous program chain, the chain names none");
  EXPECT_EQ(InTitle({0x20, 0x01, 0, 0, 0, 0, 0, 0x0C}),
            "links to the go-up program chain, the chain names none");
  EXPECT_EQ(InTitle({0x81, 0x00, 0, 0, 0, 0, 0, 0x04}), "link sub-instruction 4 is not defined");
  // The first-play chain has no cell and no program to link to.
  const Pgc& first_play = *Sample().vmg.first_play;
  CommandScope vmg{Sample(), 1, nullptr, false};
  EXPECT_EQ(CommandTargetProblem(vmg, first_play, {0x20, 0x01, 0, 0, 0, 0, 0, 0x02}).value_or(""),
            "links to a cell of the chain, which has none");
  EXPECT_EQ(CommandTargetProblem(vmg, first_play, {0x20, 0x01, 0, 0, 0, 0, 0, 0x06}).value_or(""),
            "links to a program of the chain, which has none");
}

TEST(CommandTarget, HighlightedButtons) {
  // Type 6 LinkNoLink with button 40 (b6 = 40 << 2).
  EXPECT_EQ(InTitle({0xC1, 0x00, 0, 0, 0, 0, 0xA0, 0x00}), "highlights button 40, at most 36");
  EXPECT_EQ(InTitle({0x20, 0x06, 0, 0, 0, 0, 0x90, 0x01}), "");
  EXPECT_EQ(InTitle({0x20, 0x06, 0, 0, 0, 0, 0x94, 0x01}), "highlights button 37, at most 36");
  EXPECT_EQ(InTitle({0x56, 0x00, 0, 0, 0x94, 0x00, 0, 0}),
            "sets button 37 highlighted, at most 36");
  // A button command that stays in its menu of 2 buttons highlights one of them.
  CommandPlace button{.buttons = 2, .button_command = true};
  EXPECT_EQ(InTitle({0x56, 0x00, 0, 0, 0x08, 0x00, 0, 0}, button), "");
  EXPECT_EQ(InTitle({0x56, 0x00, 0, 0, 0x0C, 0x00, 0, 0}, button),
            "highlights button 3, the menu has 2");
  EXPECT_EQ(InTitle({0x20, 0x01, 0, 0, 0, 0, 0x0C, 0x00}, button),
            "highlights button 3, the menu has 2");
  // With a link elsewhere the button is one of the menu linked to.
  EXPECT_EQ(InTitle({0x56, 0x04, 0, 0, 0x0C, 0x00, 0, 0x01}, button), "");
}

TEST(CommandTarget, CallsAndTheirResumeCell) {
  // The sample's post command: CallSS VMGM title menu, resume at cell 1.
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0x01, 0x42, 0, 0}), "");
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0x04, 0x42, 0, 0}),
            "calls a menu to resume at cell 4, the chain has 3");
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0, 0x45, 0, 0}),
            "calls the video manager's audio menu, which no menu chain enters");
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0, 0x87, 0, 0}), "");  // the chapter menu
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0, 0x86, 0, 0}),
            "calls the title set's angle menu, which no menu chain enters");
  EXPECT_EQ(InTitle({0x30, 0x08, 0, 0, 0, 0x00, 0, 0}), "");  // first play
  EXPECT_EQ(InTitle({0x30, 0x08, 0x00, 0x02, 0, 0xC0, 0, 0}),
            "goes to video manager menu chain 2, there are 1");
}

TEST(CommandTarget, SystemSpaceJumpsFromTheVideoManager) {
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0x00, 0x01, 0x01, 0x83, 0, 0}), "");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0x00, 0x01, 0x01, 0x86, 0, 0}),
            "jumps to the angle menu of title set 1, which no menu chain enters");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0x00, 0x02, 0x01, 0x83, 0, 0}),
            "jumps to title 2 of title set 1, which has 1");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0x00, 0x01, 0x02, 0x83, 0, 0}),
            "jumps to title set 2, which the disc does not have");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0, 0, 0, 0x42, 0, 0}), "");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0, 0, 0, 0x43, 0, 0}),
            "jumps to the video manager's root menu, which no menu chain enters");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0, 0, 0, 0x41, 0, 0}),
            "jumps to the video manager's menu 1, which no menu chain enters");
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0, 0, 0, 0x00, 0, 0}), "");
  Disc without_first_play = Sample();
  without_first_play.vmg.first_play.reset();
  EXPECT_EQ(InVmgMenu({0x30, 0x06, 0, 0, 0, 0x00, 0, 0}, without_first_play),
            "jumps to the first-play chain, which the disc does not have");
}

TEST(CommandTarget, TitleSetJumpsAndPartLinksNeedATitleSet) {
  EXPECT_EQ(InVmgMenu({0x30, 0x03, 0, 0, 0, 0x01, 0, 0}),
            "jumps to title 1 of the current title set, outside any title set");
  EXPECT_EQ(InVmgMenu({0x20, 0x05, 0, 0, 0, 0, 0, 0x01}),
            "links to part 1, which only a title's chain can");
  EXPECT_EQ(InTitle({0x30, 0x05, 0x00, 0x03, 0x00, 0x01, 0, 0}), "");
  EXPECT_EQ(InTitle({0x30, 0x05, 0x00, 0x04, 0x00, 0x01, 0, 0}),
            "jumps to part 4 of title 1, which has 3");
}

TEST(CommandTarget, GotoStaysInItsTable) {
  CommandPlace pre{.lines = 3, .table = "pre"};
  EXPECT_EQ(InTitle({0x00, 0x01, 0, 0, 0, 0, 0, 0x03}, pre), "");
  EXPECT_EQ(InTitle({0x00, 0x01, 0, 0, 0, 0, 0, 0x04}, pre),
            "goes to command 4, the chain has 3 pre commands");
  EXPECT_EQ(InTitle({0x00, 0xA1, 0x00, 0x0E, 0x00, 0x02, 0x00, 0x00}, pre),
            "goes to command 0, the chain has 3 pre commands");
  EXPECT_EQ(InTitle({0x00, 0x01, 0, 0, 0, 0, 0, 0x09}), "");  // a cell command: no lines
}

TEST(CommandTarget, NavigationTimerChain) {
  EXPECT_EQ(InTitle({0x52, 0x00, 0, 0, 0x00, 0x3C, 0x00, 0x01}), "");
  EXPECT_EQ(InTitle({0x52, 0x00, 0, 0, 0x00, 0x3C, 0x00, 0x02}),
            "sets the navigation timer to program chain 2, there are 1");
}

}  // namespace
}  // namespace tarvex
