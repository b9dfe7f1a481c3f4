// Discs for the playback tests, authored once per test run with ffmpeg, spumux and dvdauthor
// (PAL, video only; clips of 1, 2 and 3 s; menus of 1 s with a still that never ends and a column
// of buttons b1, b2, b3 where b1 is above b2). Each disc's path is written below as a player
// takes it with the default keys (a menu gets `enter`, which activates the highlighted button,
// b1 at first; a still gets `skip`). Chains are named domain/title set/pgc, cells by number.
#pragma once

#include <string>

namespace tarvex::test {

struct NavDiscs {
  // Structure protection: one title set of 12 one-cell titles. Titles 1-6 and 8-11 are 1 s
  // decoys, title 12 the longest (3 s, a decoy too), title 7 the real one (2 s). Every decoy's
  // post commands call VMGM menu 1; title 7's exit. First play jumps to VMGM menu 1, whose
  // default button b1 jumps to title 7 (b2 to title 12).
  // Default path: vmgm/0/1 cell 1 (enter) -> vts/1/7 cell 1 (title 7) -> exit.
  // Keys "2": vmgm/0/1 (2) -> vts/1/12 (title 12) -> vmgm/0/1 (enter) -> vts/1/7 -> exit.
  std::string protection;
  // Registers in pre and post commands: first play sets g1 = g2 = 0 and jumps to title 1, whose
  // pre commands add 2 to g2 and whose post commands add 1 to g1 and jump to title 1 again while
  // g1 < 3, then call VMGM menu 1. Its b1 jumps to title 2 when g2 == 6, else to title 3; b2
  // sets g2 = 10 and jumps to VMGM menu 1 again. Titles 2 and 3 exit.
  // Default path: vts/1/1 cell 1 three times (g2 = 6) -> vmgm/0/1 (enter) -> vts/1/2 -> exit.
  // Keys "2": ... -> vmgm/0/1 (2) -> vmgm/0/1 (enter: g2 is 10) -> vts/1/3 -> exit.
  std::string registers;
  // A menu path into a loop of chains without cells: first play jumps to VMGM menu 1, whose b1
  // jumps to VMGM menu 2 (pre commands only: jump to menu 3), whose pre commands jump back to
  // menu 2; b2 jumps to title 1 (one cell, then exit).
  // Default path: vmgm/0/1 (enter) -> loop between menus 2 and 3, no cell ever again.
  // Keys "2": vmgm/0/1 (2) -> vts/1/1 -> exit.
  std::string chain_loop;
  // Calls with resume: first play jumps to title 1 (three cells of 1 s); cell 2's command calls
  // the title set's root menu with resume at cell 3; the root menu's b1 resumes, b2 jumps to
  // title 2. Title 1's post commands jump to title 2 (two cells of 1 s); cell 1's command calls
  // VMGM menu 1 with resume at cell 2; its b1 resumes, b2 exits. Title 2's post commands exit.
  // Default path: vts/1/1 cells 1, 2 -> vtsm/1/1 (enter: resume) -> vts/1/1 cell 3 ->
  // vts/1/2 cell 1 -> vmgm/0/1 (enter: resume) -> vts/1/2 cell 2 -> exit.
  std::string resume;
  // Two title sets with root and chapter menus. First play jumps to title set 1's root menu.
  // Title set 1: root menu b1 "jump title 1 chapter 2", b2 "jump menu 2" (its chapter menu),
  // b3 "g3 = 2; jump vmgm menu 1"; chapter menu b1/b2 jump to chapter 1/2 of its title 1 (two
  // cells, one chapter each; then exit). VMGM menu 1 has no cells: its pre commands jump to title
  // set 2's root menu when g3 == 2, else to title set 1's. Title set 2: root menu b1 "jump title
  // 1", b2 "jump menu 2" (chapter menu: b1 "jump title 2 chapter 2", b2 "jump title 1"); its
  // title 1 (disc title 2) has one cell, its title 2 (disc title 3) two chapters; both exit.
  // Default path: vtsm/1/1 (enter) -> vts/1/1 cell 2 (title 1 chapter 2) -> exit.
  // Keys "3,2": vtsm/1/1 (3) -> vtsm/2/1 (2) -> vtsm/2/2 (enter) -> vts/2/2 cell 2 (title 3
  // chapter 2) -> exit.
  std::string two_title_sets;
  // An Exit: first play jumps to VMGM menu 1, whose b1 jumps to title 1 and b2 exits. Title 1 is
  // one cell with a still that never ends, then exit.
  // Default path: vmgm/0/1 (enter) -> vts/1/1 (skip) -> exit. Keys "2": vmgm/0/1 (2) -> exit.
  std::string exit;
  // An auto-action button (dvdauthor makes none: the nav packs of the menu are patched after):
  // first play jumps to VMGM menu 1, whose b1 jumps to title 1, b2 (auto-action) to title 2, b3
  // exits; both titles (one cell each) exit.
  // Default path: vmgm/0/1 (enter) -> vts/1/1 -> exit. Keys "down": vmgm/0/1 (down: b2 is
  // highlighted and activates itself) -> vts/1/2 -> exit, the keys after `down` left over.
  std::string auto_action;
};

// The discs, authored at the first call (their folder lives until the run ends); a disc that
// cannot be authored is "" after a test failure with dvdauthor's output.
const NavDiscs& AuthoredNavDiscs();

}  // namespace tarvex::test
