#include "nav/graph_svg.h"

#include <graphviz/cgraph.h>
#include <graphviz/gvc.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "platform/file_io.h"

namespace tarvex::nav {
namespace {

struct ContextFree {
  void operator()(GVC_t* gvc) const { gvFreeContext(gvc); }
};
struct GraphClose {
  void operator()(Agraph_t* g) const { agclose(g); }
};
struct RenderDataFree {
  void operator()(char* data) const { gvFreeRenderData(data); }
};
using Context = std::unique_ptr<GVC_t, ContextFree>;
using Graph = std::unique_ptr<Agraph_t, GraphClose>;
using RenderData = std::unique_ptr<char, RenderDataFree>;

// The layout of one graph, freed before the graph is closed (declared after it).
class Layout {
 public:
  Layout(GVC_t* gvc, Agraph_t* g) : gvc_(gvc), g_(g), ok_(gvLayout(gvc, g, "dot") == 0) {}
  ~Layout() {
    if (ok_) gvFreeLayout(gvc_, g_);
  }
  Layout(const Layout&) = delete;
  Layout& operator=(const Layout&) = delete;
  bool ok() const { return ok_; }

 private:
  GVC_t* gvc_;
  Agraph_t* g_;
  bool ok_;
};

// Graphviz writes its own account of a failure on standard error (it keeps no copy of what it
// shows there); error gets the step that failed.
bool Fail(std::string& error, const std::string& sentence) {
  error = sentence;
  return false;
}

}  // namespace

bool RenderGraphSvg(const std::string& dot, std::string& svg, std::string& error) {
  const Context gvc(gvContext());
  if (!gvc) return Fail(error, "Graphviz could not start");
  const Graph g(agmemread(dot.c_str()));
  if (!g) return Fail(error, "Graphviz could not read the graph");
  const Layout layout(gvc.get(), g.get());
  if (!layout.ok()) {
    // Without its plugin configuration (written when libgvc6 is installed) Graphviz knows no
    // layout at all.
    return Fail(error,
                "Graphviz could not lay the graph out with \"dot\" (are its plugins installed "
                "and configured? the libgvc6 package does both)");
  }
  char* data = nullptr;
  unsigned int length = 0;
  const int rc = gvRenderData(gvc.get(), g.get(), "svg", &data, &length);
  const RenderData owned(data);
  if (rc != 0 || !data) return Fail(error, "Graphviz could not draw the graph as SVG");
  svg.assign(data, length);
  return true;
}

bool WriteGraphSvg(const std::string& dot, const std::string& path, std::string& error) {
  std::string svg;
  if (!RenderGraphSvg(dot, svg, error)) return false;
  File file = File::Create(path);
  if (!file.is_open()) {
    error = "cannot create " + path + ": " + std::strerror(errno);
    return false;
  }
  if (file.Write(svg.data(), svg.size()) != svg.size()) {
    error = "cannot write " + path + ": " + std::strerror(errno);
    return false;
  }
  file.Close();
  return true;
}

}  // namespace tarvex::nav
