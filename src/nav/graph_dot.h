// The navigation graph of a disc written as Graphviz DOT text.
#pragma once

#include <string>

#include "nav/graph.h"

namespace tarvex::nav {

// A DOT "digraph" with one node per chain and one edge per entry of graph.edges, both in the
// order of the graph (the same graph always gives the same text). The graph's label names the
// disc (disc_name) and, on a second line, explains the drawing:
//   nodes   shape=box, style=rounded; a chain on a loop: color=red, penwidth=2 and a red font;
//           an unreachable chain: style="rounded,dashed" and a grey font (fontcolor=grey50),
//           its outline grey (color=grey50) unless it is on a loop too;
//   edges   conditional: style=dashed; button: label "button N", then the edge's own label on
//           a second line; otherwise the edge's own label (no label attribute when empty).
// Every id and label is a quoted DOT string: '"' and '\' are escaped, so that a label shows
// exactly its text. A '\n' character in a label is a line break, written as DOT's "\n" escape
// (a centred line); any other control character is written as a space. An edge whose from or
// to is not the index of a node is left out.
std::string GraphToDot(const NavGraph& graph, const std::string& disc_name);

// text as a quoted DOT string, escaped as above: DotQuote("a\"b") is "\"a\\\"b\"".
std::string DotQuote(const std::string& text);

}  // namespace tarvex::nav
