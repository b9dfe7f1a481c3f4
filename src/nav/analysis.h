// Where playback can go on a disc, whatever the registers hold: every comparison taken as
// possibly true and possibly false, every button followed. Gives the chains any player can
// reach (from first play and from every entry menu through the menu keys), the loops of chains
// that play no cell and wait for no key (a player hangs there), and the navigation graph.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "disc/findings.h"
#include "disc/info.h"
#include "disc/model.h"
#include "nav/domains.h"
#include "nav/graph.h"

namespace tarvex::nav {

struct NavEdge {
  std::size_t to = 0;
  bool conditional = false;  // depends on a comparison
  std::uint32_t button = 0;  // a button's command, 0 none
  bool hangs = false;        // taken without a cell played or a key waited for
  std::string label;         // "pre 2", "post 1", "cell 3", "next", "button 2"
};

struct NavLoop {
  std::vector<std::size_t> chains;  // the chains of the cycle, in node order
  bool unconditional = false;       // no comparison lets a player out of the cycle
};

struct NavAnalysis {
  std::vector<ChainRef> chains;  // the nodes
  std::map<ChainRef, std::size_t> index;
  std::vector<std::vector<NavEdge>> edges;
  std::vector<bool> reachable;
  // Some path through the chain's commands plays a cell, waits, resumes, exits or stops.
  std::vector<bool> escapes;
  std::vector<NavLoop> loops;
  std::vector<bool> on_loop;
};

NavAnalysis Analyze(const Disc& disc);

// Whether any path reaches title (TT_SRPT number): one of its parts' chains is reachable.
bool TitleReachable(const Disc& disc, const NavAnalysis& analysis, std::uint32_t title);

// The graph of the analysis, with node labels for people.
NavGraph BuildGraph(const Disc& disc, const NavAnalysis& analysis);

// The first title played with the default keys and, per title, whether any path reaches it.
TitleNavigation NavigateTitles(const Disc& disc);

// nav.unreachable and nav.loop findings.
void AddNavigationFindings(const Disc& disc, const NavAnalysis& analysis, Findings& out);

}  // namespace tarvex::nav
