#include "nav/graph_dot.h"

#include <graphviz/cgraph.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "nav/graph_fixture.h"
#include "support/test_support.h"

namespace tarvex::nav {
namespace {

struct GraphClose {
  void operator()(Agraph_t* g) const { agclose(g); }
};
using ParsedGraph = std::unique_ptr<Agraph_t, GraphClose>;

ParsedGraph Parse(const std::string& dot) {
  return ParsedGraph(agmemread(dot.c_str()));
}

std::string Attr(void* object, const char* name) {
  const char* value = agget(object, const_cast<char*>(name));
  return value ? value : "";
}

Agnode_t* Node(Agraph_t* g, const char* id) {
  return agnode(g, const_cast<char*>(id), 0);
}

TEST(GraphDot, WritesEveryChainAndEveryPlaceInGraphOrder) {
  const std::string expected =
      "digraph navigation {\n"
      "  graph [label=\"DISC_1\\ndashed edge: taken on a condition; grey chain: unreachable; "
      "red chain: on a loop\", labelloc=t];\n"
      "  node [shape=box, style=rounded];\n"
      "  \"fp\" [label=\"First play\"];\n"
      "  \"vmgm_en_1\" [label=\"VMGM en 1\\ntitle menu\", color=red, fontcolor=red, "
      "penwidth=2];\n"
      "  \"vts1_1\" [label=\"VTS 1 PGC 1\\ntitle 1\", color=red, fontcolor=red, penwidth=2];\n"
      "  \"vts1_2\" [label=\"VTS 1 PGC 2\", style=\"rounded,dashed\", color=grey50, "
      "fontcolor=grey50];\n"
      "  \"fp\" -> \"vmgm_en_1\" [label=\"post 1\"];\n"
      "  \"vmgm_en_1\" -> \"vts1_1\" [label=\"button 2\\ncmd 1\"];\n"
      "  \"vts1_1\" -> \"vmgm_en_1\" [label=\"post 1\", style=dashed];\n"
      "  \"vts1_2\" -> \"vts1_1\" [label=\"next\"];\n"
      "  \"fp\" -> \"vts1_1\" [style=dashed];\n"
      "}\n";
  EXPECT_EQ(GraphToDot(test::SampleNavGraph(), "DISC_1"), expected);
}

TEST(GraphDot, GraphvizReadsOneNodePerChainAndOneEdgePerPlace) {
  const ParsedGraph g = Parse(GraphToDot(test::SampleNavGraph(), "DISC_1"));
  ASSERT_TRUE(g);
  EXPECT_TRUE(agisdirected(g.get()));
  EXPECT_EQ(agnnodes(g.get()), 4);
  EXPECT_EQ(agnedges(g.get()), 5);
  EXPECT_EQ(Attr(g.get(), "label"),
            "DISC_1\\ndashed edge: taken on a condition; grey chain: unreachable; red chain: on "
            "a loop");
  Agnode_t* menu = Node(g.get(), "vmgm_en_1");
  Agnode_t* title = Node(g.get(), "vts1_1");
  ASSERT_TRUE(menu && title);
  EXPECT_EQ(Attr(menu, "shape"), "box");
  EXPECT_EQ(Attr(menu, "color"), "red");
  EXPECT_EQ(Attr(Node(g.get(), "vts1_2"), "color"), "grey50");
  EXPECT_EQ(Attr(Node(g.get(), "vts1_2"), "style"), "rounded,dashed");
  EXPECT_EQ(Attr(Node(g.get(), "fp"), "style"), "rounded");
  Agedge_t* button = agedge(g.get(), menu, title, nullptr, 0);
  Agedge_t* back = agedge(g.get(), title, menu, nullptr, 0);
  ASSERT_TRUE(button && back);
  EXPECT_EQ(Attr(button, "label"), "button 2\\ncmd 1");
  EXPECT_EQ(Attr(button, "style"), "");
  EXPECT_EQ(Attr(back, "style"), "dashed");
}

TEST(GraphDot, GraphvizCommandCountsOneNodePerChain) {
  ASSERT_TRUE(test::HaveTool("gc")) << "Graphviz's gc missing (tools/install-deps.sh test)";
  test::TempDir dir;
  const std::string path = dir.file("nav.dot");
  const std::string dot = GraphToDot(test::SampleNavGraph(), "DISC_1");
  test::WriteFileBytes(path, std::vector<std::uint8_t>(dot.begin(), dot.end()));
  // gc -n -e: "<nodes> <edges> <graph name> (<file>)"
  std::istringstream counts(test::CaptureCommand("gc -n -e " + test::ShellQuote(path)));
  int nodes = 0, edges = 0;
  std::string name;
  counts >> nodes >> edges >> name;
  EXPECT_EQ(nodes, 4);
  EXPECT_EQ(edges, 5);
  EXPECT_EQ(name, "navigation");
}

TEST(GraphDot, QuotesAndBackslashesOfALabelAreEscaped) {
  NavGraph graph;
  graph.nodes = {{"a", "say \"hi\" \\N\\", true, false}};
  const std::string dot = GraphToDot(graph, "C:\\\"DISC\"");
  EXPECT_NE(dot.find("[label=\"say \\\"hi\\\" \\\\N\\\\\"];"), std::string::npos) << dot;
  const ParsedGraph g = Parse(dot);
  ASSERT_TRUE(g);
  EXPECT_EQ(agnnodes(g.get()), 1);
  // Graphviz keeps the label as escString: the quote plain, the backslashes doubled.
  EXPECT_EQ(Attr(Node(g.get(), "a"), "label"), "say \"hi\" \\\\N\\\\");
  EXPECT_EQ(Attr(g.get(), "label").substr(0, 12), "C:\\\\\"DISC\"\\n");
}

TEST(GraphDot, QuoteWritesLineBreaksAsEscapesAndOtherControlsAsSpaces) {
  EXPECT_EQ(DotQuote(""), "\"\"");
  EXPECT_EQ(DotQuote("a\nb"), "\"a\\nb\"");
  EXPECT_EQ(DotQuote("a\tb\rc"), "\"a b c\"");
  EXPECT_EQ(DotQuote("\xc3\xa9t\xc3\xa9"), "\"\xc3\xa9t\xc3\xa9\"");  // UTF-8 kept
}

TEST(GraphDot, EdgeToAMissingChainIsLeftOut) {
  NavGraph graph;
  graph.nodes = {{"a", "A", true, false}};
  graph.edges = {{0, 1, false, 0, "post 1"}, {0, 0, false, 1, ""}};
  const std::string dot = GraphToDot(graph, "D");
  EXPECT_EQ(dot.find("post 1"), std::string::npos);
  EXPECT_NE(dot.find("  \"a\" -> \"a\" [label=\"button 1\"];\n"), std::string::npos) << dot;
}

TEST(GraphDot, UnreachableChainOnALoopIsRedWithAGreyFont) {
  NavGraph graph;
  graph.nodes = {{"a", "A", false, true}};
  const std::string dot = GraphToDot(graph, "D");
  EXPECT_NE(dot.find("  \"a\" [label=\"A\", style=\"rounded,dashed\", color=red, "
                     "fontcolor=grey50, penwidth=2];\n"),
            std::string::npos)
      << dot;
  const ParsedGraph g = Parse(dot);
  ASSERT_TRUE(g);
  EXPECT_EQ(Attr(Node(g.get(), "a"), "color"), "red");
  EXPECT_EQ(Attr(Node(g.get(), "a"), "fontcolor"), "grey50");
}

}  // namespace
}  // namespace tarvex::nav
