// The navigation graph of a disc: one node per program chain (first play, menus, titles), one
// edge per place a command or a button can send playback. Written as Graphviz DOT, or drawn as
// SVG through Graphviz's own library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::nav {

struct GraphNode {
  std::string id;     // DOT node id: "fp", "vmgm_en_1", "vtsm1_en_2", "vts1_3"
  std::string label;  // shown text: "VMGM en 1\ntitle menu", "VTS 1 PGC 3\ntitle 2"
  bool reachable = true;
  bool on_loop = false;  // on a cycle that plays no cell and waits for no key
};

struct GraphEdge {
  std::size_t from = 0, to = 0;  // node indices
  bool conditional = false;      // taken only when a comparison holds
  std::uint32_t button = 0;      // the button whose command it is, 0 none
  std::string label;             // where it comes from: "pre 2", "post 1", "cell 3", "next"...
};

struct NavGraph {
  std::vector<GraphNode> nodes;
  std::vector<GraphEdge> edges;
};

}  // namespace tarvex::nav
