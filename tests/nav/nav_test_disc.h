// Discs built in memory for the navigation machine's tests: chains with the commands and cells
// a test gives them, a menu VOB whose one navigation pack holds buttons.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex::nav::test {

using Commands = std::vector<NavCommand>;

// Commands by their bytes, as the command set encodes them.
NavCommand JumpTitle(std::uint8_t title);                       // JumpTT
NavCommand JumpVmgTitleMenu();                                  // JumpSS VMGM title menu
NavCommand CallVtsRootMenu(std::uint8_t resume_cell);           // CallSS VTSM root menu
NavCommand LinkChain(std::uint16_t pgc);                        // LinkPGCN
NavCommand LinkSub(std::uint8_t sub, std::uint8_t button = 0);  // link by sub-instruction
NavCommand Exit();
NavCommand AddImmediate(std::uint8_t gprm, std::uint16_t value);  // add GPRMn, value
// if (GPRMn < value) link by sub-instruction sub
NavCommand IfLessLinkSub(std::uint8_t gprm, std::uint16_t value, std::uint8_t sub);

// A chain of `cells` cells of 1 s (25 fps), one program, at sectors 0, 10, 20...
Pgc Chain(Commands pre, std::uint32_t cells, Commands post);
// Marks a menu chain as the entry of menu (2 title, 3 root).
Pgc& Entry(Pgc& pgc, std::uint8_t menu);

struct TestButton {
  NavCommand command;
  std::uint8_t up = 0, down = 0;
  bool auto_action = false;
};

// A disc with a video manager (first play, one "en" menu unit) and title sets; titles are
// numbered in the order given, each the chain of its own part 1.
struct DiscBuilder {
  Disc disc;
  DiscBuilder();
  DiscBuilder& FirstPlay(Commands pre);
  DiscBuilder& VmgMenu(Pgc pgc);
  // A title set of chains (each a title of one part unless titles says otherwise).
  DiscBuilder& TitleSet(std::vector<Pgc> chains, std::vector<std::uint16_t> titles = {});
  DiscBuilder& VtsMenu(std::uint32_t title_set, Pgc pgc);
  // VIDEO_TS.VOB of one navigation pack holding these buttons, played by the first cell of
  // every video manager menu chain; the cells get an infinite still when still is set.
  DiscBuilder& VmgMenuButtons(const std::vector<TestButton>& buttons, bool still);
  Disc Build();
};

}  // namespace tarvex::nav::test
