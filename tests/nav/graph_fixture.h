// A small navigation graph built by hand for the DOT and SVG tests: first play, a title menu and
// two titles, one of them unreachable; the menu and the first title send playback to each other.
#pragma once

#include "nav/graph.h"

namespace tarvex::test {

inline nav::NavGraph SampleNavGraph() {
  nav::NavGraph g;
  g.nodes = {{"fp", "First play", true, false},
             {"vmgm_en_1", "VMGM en 1\ntitle menu", true, true},
             {"vts1_1", "VTS 1 PGC 1\ntitle 1", true, true},
             {"vts1_2", "VTS 1 PGC 2", false, false}};
  g.edges = {{0, 1, false, 0, "post 1"},
             {1, 2, false, 2, "cmd 1"},
             {2, 1, true, 0, "post 1"},
             {3, 2, false, 0, "next"},
             {0, 2, true, 0, ""}};
  return g;
}

}  // namespace tarvex::test
