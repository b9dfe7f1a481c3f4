#include "nav/graph_dot.h"

#include <string_view>

namespace tarvex::nav {
namespace {

constexpr std::string_view kLegend =
    "dashed edge: taken on a condition; grey chain: unreachable; red chain: on a loop";

// A chain on a loop has a red outline; an unreachable one a grey font and a dashed outline,
// grey unless it is on a loop too.
std::string NodeAttributes(const GraphNode& node) {
  std::string attrs = "label=" + DotQuote(node.label);
  if (!node.reachable) attrs += ", style=\"rounded,dashed\"";
  if (node.on_loop) {
    attrs += ", color=red";
  } else if (!node.reachable) {
    attrs += ", color=grey50";
  }
  attrs += !node.reachable ? ", fontcolor=grey50" : node.on_loop ? ", fontcolor=red" : "";
  if (node.on_loop) attrs += ", penwidth=2";
  return attrs;
}

std::string EdgeLabel(const GraphEdge& edge) {
  if (edge.button == 0) return edge.label;
  std::string label = "button " + std::to_string(edge.button);
  if (!edge.label.empty()) label += "\n" + edge.label;
  return label;
}

std::string EdgeAttributes(const GraphEdge& edge) {
  std::string attrs;
  const std::string label = EdgeLabel(edge);
  if (!label.empty()) attrs = "label=" + DotQuote(label);
  if (edge.conditional) attrs += std::string(attrs.empty() ? "" : ", ") + "style=dashed";
  return attrs.empty() ? std::string() : " [" + attrs + "]";
}

void AppendEdges(const NavGraph& graph, std::string& out) {
  const std::size_t n = graph.nodes.size();
  for (const GraphEdge& edge : graph.edges) {
    if (edge.from >= n || edge.to >= n) continue;
    out += "  " + DotQuote(graph.nodes[edge.from].id) + " -> " + DotQuote(graph.nodes[edge.to].id) +
           EdgeAttributes(edge) + ";\n";
  }
}

}  // namespace

std::string DotQuote(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      out += ' ';
    } else {
      out += c;
    }
  }
  return out + '"';
}

std::string GraphToDot(const NavGraph& graph, const std::string& disc_name) {
  std::string out = "digraph navigation {\n";
  out += "  graph [label=" + DotQuote(disc_name + "\n" + std::string(kLegend)) + ", labelloc=t];\n";
  out += "  node [shape=box, style=rounded];\n";
  for (const GraphNode& node : graph.nodes) {
    out += "  " + DotQuote(node.id) + " [" + NodeAttributes(node) + "];\n";
  }
  AppendEdges(graph, out);
  return out + "}\n";
}

}  // namespace tarvex::nav
