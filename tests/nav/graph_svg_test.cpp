#include "nav/graph_svg.h"

#include <gtest/gtest.h>

#include <string>

#include "nav/graph_dot.h"
#include "nav/graph_fixture.h"
#include "support/test_support.h"

namespace tarvex::nav {
namespace {

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++n;
  }
  return n;
}

TEST(GraphSvg, DrawsOneGroupPerChainAndPerPlace) {
  std::string svg, error;
  ASSERT_TRUE(RenderGraphSvg(GraphToDot(test::SampleNavGraph(), "DISC_1"), svg, error)) << error;
  EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
  EXPECT_EQ(Count(svg, "<svg "), 1u);
  EXPECT_NE(svg.find("</svg>"), std::string::npos);
  EXPECT_EQ(Count(svg, "<g id=\"node"), 4u);
  EXPECT_EQ(Count(svg, "<g id=\"edge"), 5u);
  // A label's line break makes two text lines; the legend is the graph's label.
  EXPECT_NE(svg.find(">VMGM en 1</text>"), std::string::npos);
  EXPECT_NE(svg.find(">title menu</text>"), std::string::npos);
  EXPECT_NE(svg.find(">DISC_1</text>"), std::string::npos);
  EXPECT_EQ(Count(svg, "stroke-dasharray"), 3u);  // the unreachable chain and two edges
}

TEST(GraphSvg, LabelIsDrawnAsItsOwnText) {
  NavGraph graph;
  graph.nodes = {{"a", "say \"hi\" \\N", true, false}};
  std::string svg, error;
  ASSERT_TRUE(RenderGraphSvg(GraphToDot(graph, "D"), svg, error)) << error;
  EXPECT_NE(svg.find(">say &quot;hi&quot; \\N</text>"), std::string::npos) << svg;
}

TEST(GraphSvg, WritesTheFile) {
  test::TempDir dir;
  const std::string path = dir.file("graph.svg");
  std::string error;
  ASSERT_TRUE(WriteGraphSvg(GraphToDot(test::SampleNavGraph(), "DISC_1"), path, error)) << error;
  const std::string svg = test::ReadFileText(path);
  EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
  EXPECT_EQ(Count(svg, "<g id=\"node"), 4u);
}

TEST(GraphSvg, UnwritablePathIsAnError) {
  test::TempDir dir;
  const std::string path = dir.file("missing/graph.svg");
  std::string error;
  EXPECT_FALSE(WriteGraphSvg(GraphToDot(test::SampleNavGraph(), "DISC_1"), path, error));
  EXPECT_EQ(error, "cannot create " + path + ": No such file or directory");
}

TEST(GraphSvg, TextThatIsNotDotIsAnError) {
  std::string svg, error;
  EXPECT_FALSE(RenderGraphSvg("digraph { a -> ", svg, error));
  EXPECT_EQ(error.rfind("Graphviz could not read the graph", 0), 0u) << error;
  EXPECT_TRUE(svg.empty());
}

}  // namespace
}  // namespace tarvex::nav
