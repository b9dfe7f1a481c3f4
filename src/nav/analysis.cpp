#include "nav/analysis.h"

#include <algorithm>
#include <functional>
#include <set>
#include <span>

#include "nav/cell_buttons.h"
#include "nav/instruction.h"
#include "nav/machine.h"
#include "platform/format.h"

namespace tarvex::nav {

namespace {

// A link found in a list of commands, with whether reaching it depends on a comparison.
struct FoundLink {
  Link link;
  bool conditional = false;
  std::uint32_t line = 0;
};

struct Walk {
  std::vector<FoundLink> links;
  bool falls_through = false;               // some path runs past the last command
  bool falls_always = false;                // a path without a comparison does
  std::vector<std::uint16_t> timer_chains;  // SetNVTMR chains
};

// Follows every path through a list of commands (every comparison both ways).
Walk WalkCommands(std::span<const NavCommand> list) {
  Walk w;
  std::set<std::pair<std::size_t, bool>> seen;
  std::vector<std::pair<std::size_t, bool>> todo{{0, false}};
  auto falls = [&w](bool conditional) {
    w.falls_through = true;
    w.falls_always = w.falls_always || !conditional;
  };
  while (!todo.empty()) {
    auto [i, cond] = todo.back();
    todo.pop_back();
    if (!seen.insert({i, cond}).second) continue;
    if (i >= list.size()) {
      falls(cond);
      continue;
    }
    Instruction in = Decode(list[i]);
    if (in.unknown) continue;
    bool compares = in.condition.op != CompareOp::kNone;
    if (in.type == 2 && in.system.kind == SystemSet::Kind::kNavigationTimer) {
      w.timer_chains.push_back(in.system.timer_pgc);
    }
    if (in.type == 0 && in.special != Special::kNop) {
      std::size_t target = in.special == Special::kBreak ? list.size()
                           : in.line                     ? std::size_t{in.line} - 1
                                                         : i + 1;
      todo.push_back({target, cond || compares});
      if (compares) todo.push_back({i + 1, true});
      continue;
    }
    if (in.link.kind == LinkKind::kNone) {
      todo.push_back({i + 1, cond});
      continue;
    }
    bool always = !compares || in.link_always;
    if (in.link.kind == LinkKind::kNoLink) {
      falls(cond || !always);  // a link that only highlights ends the list
    } else {
      w.links.push_back({in.link, cond || !always, static_cast<std::uint32_t>(i + 1)});
    }
    if (!always) todo.push_back({i + 1, true});
  }
  return w;
}

bool PlaysCell(const Pgc& pgc) {
  return !pgc.program_map.empty() && pgc.program_map[0] >= 1 &&
         pgc.program_map[0] <= pgc.cells.size();
}

class Analyzer {
 public:
  explicit Analyzer(const Disc& disc) : disc_(disc), buttons_(disc) {}

  NavAnalysis Run() {
    a_.chains = AllChains(disc_);
    for (std::size_t i = 0; i < a_.chains.size(); ++i) a_.index[a_.chains[i]] = i;
    a_.edges.resize(a_.chains.size());
    a_.escapes.assign(a_.chains.size(), false);
    for (std::size_t i = 0; i < a_.chains.size(); ++i) AddEdges(i);
    Reach();
    FindLoops();
    return std::move(a_);
  }

 private:
  std::optional<std::size_t> Node(const ChainRef& chain) const {
    auto it = a_.index.find(chain);
    if (it == a_.index.end()) return std::nullopt;
    return it->second;
  }

  // The chain of part `part` of title ttn of title set vts.
  std::optional<std::size_t> PartNode(std::uint32_t vts, std::uint32_t ttn, std::uint32_t part) {
    const TitleSet* ts = disc_.FindTitleSet(vts);
    if (!ts || ttn < 1 || ttn > ts->parts.size()) return std::nullopt;
    const std::vector<PartOfTitle>& parts = ts->parts[ttn - 1];
    if (part < 1 || part > parts.size()) return std::nullopt;
    return Node({Domain::kVtsTitle, vts, 0, parts[part - 1].pgcn});
  }

  // The entry chain of menu in every language unit of a menu domain.
  std::vector<std::size_t> MenuNodes(Domain domain, std::uint32_t vts, std::uint8_t menu) {
    std::vector<std::size_t> nodes;
    const std::vector<LanguageUnit>* units = UnitsOf(disc_, domain, vts);
    if (!units) return nodes;
    for (std::uint32_t u = 0; u < units->size(); ++u) {
      if (std::uint32_t n = EntryChain((*units)[u].pgcs, menu)) {
        if (auto node = Node({domain, vts, u, n})) nodes.push_back(*node);
      }
    }
    return nodes;
  }

  // Chain n of the video manager's menus in every language unit.
  std::vector<std::size_t> VmgChainNodes(std::uint32_t n) {
    std::vector<std::size_t> nodes;
    for (std::uint32_t u = 0; u < disc_.vmg.menus.size(); ++u) {
      if (auto node = Node({Domain::kVmgMenu, 0, u, n})) nodes.push_back(*node);
    }
    return nodes;
  }

  std::vector<std::size_t> FirstPlayNodes() {
    if (auto node = Node({Domain::kFirstPlay, 0, 0, 0})) return {*node};
    return VmgChainNodes(1);
  }

  // A chain of the same table or language unit as `from` (first play: the video manager's).
  std::vector<std::size_t> SameDomain(const ChainRef& from, std::uint32_t n) {
    if (n == 0) return {};
    if (from.domain == Domain::kFirstPlay) return VmgChainNodes(n);
    if (auto node = Node({from.domain, from.title_set, from.unit, n})) return {*node};
    return {};
  }

  std::vector<std::size_t> PartTargets(const ChainRef& from, std::uint32_t part) {
    std::vector<std::size_t> nodes;
    const TitleSet* ts = disc_.FindTitleSet(from.title_set);
    if (from.domain != Domain::kVtsTitle || !ts) return nodes;
    for (std::uint32_t t = 0; t < ts->parts.size(); ++t) {
      bool plays = std::any_of(ts->parts[t].begin(), ts->parts[t].end(),
                               [&](const PartOfTitle& p) { return p.pgcn == from.pgc; });
      if (!plays) continue;
      if (auto node = PartNode(from.title_set, t + 1, part)) nodes.push_back(*node);
    }
    return nodes;
  }

  std::vector<std::size_t> Targets(const ChainRef& from, const Pgc& pgc, const Link& l) {
    std::uint32_t vts = from.title_set;
    auto one = [](std::optional<std::size_t> n) {
      return n ? std::vector<std::size_t>{*n} : std::vector<std::size_t>{};
    };
    switch (l.kind) {
      case LinkKind::kChain:
        return SameDomain(from, l.number);
      case LinkKind::kNextChain:
        return SameDomain(from, pgc.next);
      case LinkKind::kPrevChain:
        return SameDomain(from, pgc.previous);
      case LinkKind::kGoUpChain:
        return SameDomain(from, pgc.go_up);
      case LinkKind::kTopChain:
        return one(Node(from));
      case LinkKind::kPart:
        return PartTargets(from, l.number);
      case LinkKind::kJumpTitle: {
        if (l.number < 1 || l.number > disc_.vmg.titles.size()) return {};
        const TitleEntry& t = disc_.vmg.titles[l.number - 1];
        return one(PartNode(t.title_set, t.title_in_set, 1));
      }
      case LinkKind::kJumpVtsTitle:
        return vts ? one(PartNode(vts, l.number, 1)) : std::vector<std::size_t>{};
      case LinkKind::kJumpVtsPart:
        return vts ? one(PartNode(vts, l.title, l.number)) : std::vector<std::size_t>{};
      case LinkKind::kJumpFirstPlay:
      case LinkKind::kCallFirstPlay:
        return FirstPlayNodes();
      case LinkKind::kJumpVmgMenu:
      case LinkKind::kCallVmgMenu:
        return MenuNodes(Domain::kVmgMenu, 0, l.menu);
      case LinkKind::kJumpVtsMenu:
        return MenuNodes(Domain::kVtsMenu, l.title_set ? l.title_set : vts, l.menu);
      case LinkKind::kCallVtsMenu:
        return MenuNodes(Domain::kVtsMenu, vts, l.menu);
      case LinkKind::kJumpVmgChain:
      case LinkKind::kCallVmgChain:
        return VmgChainNodes(l.number);
      default:
        return {};  // cells, programs, resume, exit, the tail of the chain
    }
  }

  // Whether a link goes to another chain's commands (or this one's again) rather than to a cell,
  // a program, a resume point or the end of playback.
  static bool ToChain(const Link& l) {
    switch (l.kind) {
      case LinkKind::kChain:
      case LinkKind::kTopChain:
      case LinkKind::kNextChain:
      case LinkKind::kPrevChain:
      case LinkKind::kGoUpChain:
        return true;
      default:
        return l.kind > LinkKind::kExit;
    }
  }

  // Whether some path through the commands leaves without linking to a chain: it plays a cell,
  // resumes, exits, or links to a chain that does not exist (a player stops there).
  bool Escapes(std::size_t from, const Pgc& pgc, const Walk& walk) {
    for (const FoundLink& f : walk.links) {
      if (f.link.kind == LinkKind::kTailChain) continue;
      if (!ToChain(f.link) || Targets(a_.chains[from], pgc, f.link).empty()) return true;
    }
    return false;
  }

  // after_comparison: reaching the commands at all depends on a comparison.
  void AddLinks(std::size_t from, const Pgc& pgc, const Walk& walk, const std::string& where,
                bool hangs, std::uint32_t button, bool after_comparison = false) {
    for (const FoundLink& f : walk.links) {
      // A link to a cell or program of the chain plays a cell: it cannot hang.
      bool to_chain = ToChain(f.link);
      // A button edge is labelled with its button by the graph itself.
      std::string label = button ? std::string() : Format("%s %d", {where, f.line});
      for (std::size_t to : Targets(a_.chains[from], pgc, f.link)) {
        a_.edges[from].push_back(
            {to, f.conditional || after_comparison, button, hangs && to_chain, label});
      }
    }
    if (a_.chains[from].domain == Domain::kVtsTitle) {
      for (std::uint16_t n : walk.timer_chains) {
        for (std::size_t to : SameDomain(a_.chains[from], n)) {
          a_.edges[from].push_back({to, true, 0, false, "timer"});
        }
      }
    }
  }

  void AddButtonEdges(std::size_t from, const Pgc& pgc) {
    const ChainRef& chain = a_.chains[from];
    if (chain.domain == Domain::kVtsTitle) return;  // only menu cells are read
    const VobSet* vobs = VobsOf(disc_, chain.domain, chain.title_set);
    if (!vobs) return;
    std::set<std::pair<std::uint32_t, NavCommand>> seen;
    for (const Cell& cell : pgc.cells) {
      for (const HighlightInfo& info : buttons_.All(*vobs, cell)) {
        for (const NavButton& b : info.buttons) {
          if (!seen.insert({b.number, b.command}).second) continue;
          NavCommand command = b.command;
          AddLinks(from, pgc, WalkCommands(std::span<const NavCommand>(&command, 1)), "button",
                   false, b.number);
        }
      }
    }
  }

  void AddEdges(std::size_t from) {
    const Pgc* pgc = FindChain(disc_, a_.chains[from]);
    if (!pgc) return;
    bool plays = PlaysCell(*pgc);
    Walk pre = WalkCommands(pgc->pre);
    AddLinks(from, *pgc, pre, "pre", true, 0);
    bool tail = std::any_of(pre.links.begin(), pre.links.end(),
                            [](const FoundLink& f) { return f.link.kind == LinkKind::kTailChain; });
    bool post_hangs = !plays || tail;
    std::set<std::uint8_t> cell_commands;
    for (const Cell& cell : pgc->cells) {
      if (cell.command() != 0 && cell.command() <= pgc->cell_commands.size()) {
        cell_commands.insert(cell.command());
      }
    }
    for (std::uint8_t n : cell_commands) {
      Walk walk = WalkCommands(std::span<const NavCommand>(&pgc->cell_commands[n - 1], 1));
      for (FoundLink& f : walk.links) f.line = n;
      AddLinks(from, *pgc, walk, "cell", false, 0);
    }
    // Without a cell to play, the post commands run only where the pre commands fall through.
    bool after_comparison = !plays && !tail && !pre.falls_always;
    Walk post = WalkCommands(pgc->post);
    AddLinks(from, *pgc, post, "post", post_hangs, 0, after_comparison);
    bool reaches_post = tail || (!plays && pre.falls_through);
    bool stops = post.falls_through && SameDomain(a_.chains[from], pgc->next).empty();
    a_.escapes[from] = Escapes(from, *pgc, pre) || (pre.falls_through && plays) ||
                       (reaches_post && (Escapes(from, *pgc, post) || stops));
    if (post.falls_through) {
      for (std::size_t to : SameDomain(a_.chains[from], pgc->next)) {
        a_.edges[from].push_back(
            {to, !post.falls_always || after_comparison, 0, post_hangs, "next"});
      }
    }
    AddButtonEdges(from, *pgc);
  }

  // Everything reachable from first play and the entry menus.
  void Reach() {
    a_.reachable.assign(a_.chains.size(), false);
    std::vector<std::size_t> todo = FirstPlayNodes();
    for (std::size_t i = 0; i < a_.chains.size(); ++i) {
      const ChainRef& c = a_.chains[i];
      if (c.domain != Domain::kVmgMenu && c.domain != Domain::kVtsMenu) continue;
      const Pgc* pgc = FindChain(disc_, c);
      if (pgc && pgc->entry()) todo.push_back(i);
    }
    while (!todo.empty()) {
      std::size_t n = todo.back();
      todo.pop_back();
      if (a_.reachable[n]) continue;
      a_.reachable[n] = true;
      for (const NavEdge& e : a_.edges[n]) todo.push_back(e.to);
    }
  }

  // Strongly connected components of the hanging edges among the nodes keep admits.
  std::vector<std::vector<std::size_t>> Components(const std::function<bool(const NavEdge&)>& keep,
                                                   const std::vector<bool>& nodes) const {
    std::size_t n = a_.chains.size();
    std::vector<int> order(n, -1), low(n, 0);
    std::vector<bool> on_stack(n, false);
    std::vector<std::size_t> stack;
    std::vector<std::vector<std::size_t>> out;
    int counter = 0;
    std::function<void(std::size_t)> visit = [&](std::size_t v) {
      order[v] = low[v] = counter++;
      stack.push_back(v);
      on_stack[v] = true;
      for (const NavEdge& e : a_.edges[v]) {
        if (!keep(e) || !nodes[e.to]) continue;
        if (order[e.to] < 0) {
          visit(e.to);
          low[v] = std::min(low[v], low[e.to]);
        } else if (on_stack[e.to]) {
          low[v] = std::min(low[v], order[e.to]);
        }
      }
      if (low[v] != order[v]) return;
      std::vector<std::size_t> component;
      std::size_t w;
      do {
        w = stack.back();
        stack.pop_back();
        on_stack[w] = false;
        component.push_back(w);
      } while (w != v);
      out.push_back(std::move(component));
    };
    for (std::size_t v = 0; v < n; ++v) {
      if (nodes[v] && order[v] < 0) visit(v);
    }
    return out;
  }

  bool IsCycle(const std::vector<std::size_t>& component,
               const std::function<bool(const NavEdge&)>& keep) const {
    if (component.size() > 1) return true;
    for (const NavEdge& e : a_.edges[component[0]]) {
      if (keep(e) && e.to == component[0]) return true;
    }
    return false;
  }

  void FindLoops() {
    a_.on_loop.assign(a_.chains.size(), false);
    auto hangs = [](const NavEdge& e) { return e.hangs; };
    for (std::vector<std::size_t>& c : Components(hangs, a_.reachable)) {
      if (!IsCycle(c, hangs)) continue;
      std::sort(c.begin(), c.end());
      std::vector<bool> inside(a_.chains.size(), false);
      for (std::size_t v : c) inside[v] = true;
      // Every way out of the cycle's chains stays in it: a player that enters never leaves.
      bool closed = true;
      for (std::size_t v : c) {
        closed = closed && !a_.escapes[v];
        for (const NavEdge& e : a_.edges[v]) closed = closed && (!e.hangs || inside[e.to]);
      }
      NavLoop loop{c, closed};
      for (std::size_t v : c) a_.on_loop[v] = true;
      a_.loops.push_back(std::move(loop));
    }
    std::sort(a_.loops.begin(), a_.loops.end(),
              [](const NavLoop& x, const NavLoop& y) { return x.chains < y.chains; });
  }

  const Disc& disc_;
  CellButtons buttons_;
  NavAnalysis a_;
};

// The table and entry that name a chain in a finding.
struct ChainPlace {
  std::string file, table;
  std::uint32_t entry = 0;
};

ChainPlace PlaceOf(const Disc& disc, const ChainRef& c) {
  switch (c.domain) {
    case Domain::kFirstPlay:
      return {"VIDEO_TS.IFO", "FP_PGC", 0};
    case Domain::kVmgMenu:
      return {"VIDEO_TS.IFO", "VMGM_PGCI_UT", c.pgc};
    default: {
      const TitleSet* ts = disc.FindTitleSet(c.title_set);
      std::string file = ts ? ts->ifo_name : Format("VTS_%02d_0.IFO", {c.title_set});
      return {file, c.domain == Domain::kVtsMenu ? "VTSM_PGCI_UT" : "VTS_PGCIT", c.pgc};
    }
  }
}

bool BelongsToTitle(const Disc& disc, const ChainRef& c) {
  const TitleSet* ts = disc.FindTitleSet(c.title_set);
  if (!ts) return false;
  for (const std::vector<PartOfTitle>& parts : ts->parts) {
    for (const PartOfTitle& p : parts) {
      if (p.pgcn == c.pgc) return true;
    }
  }
  return false;
}

std::string MenuRole(const Pgc& pgc) {
  return pgc.entry() ? MenuName(static_cast<std::uint8_t>(pgc.menu_id())) : "";
}

}  // namespace

NavAnalysis Analyze(const Disc& disc) {
  return Analyzer(disc).Run();
}

bool TitleReachable(const Disc& disc, const NavAnalysis& analysis, std::uint32_t title) {
  if (title < 1 || title > disc.vmg.titles.size()) return false;
  const TitleEntry& t = disc.vmg.titles[title - 1];
  const TitleSet* ts = disc.FindTitleSet(t.title_set);
  if (!ts || t.title_in_set < 1 || t.title_in_set > ts->parts.size()) return false;
  for (const PartOfTitle& p : ts->parts[t.title_in_set - 1]) {
    auto it = analysis.index.find({Domain::kVtsTitle, t.title_set, 0, p.pgcn});
    if (it != analysis.index.end() && analysis.reachable[it->second]) return true;
  }
  return false;
}

namespace {

std::string NodeId(const ChainRef& c) {
  switch (c.domain) {
    case Domain::kFirstPlay:
      return "fp";
    case Domain::kVmgMenu:
      return Format("vmgm_u%d_p%d", {c.unit + 1, c.pgc});
    case Domain::kVtsMenu:
      return Format("vtsm%d_u%d_p%d", {c.title_set, c.unit + 1, c.pgc});
    default:
      return Format("vts%d_p%d", {c.title_set, c.pgc});
  }
}

std::string TitlesOfChain(const Disc& disc, const ChainRef& c) {
  std::string out;
  const TitleSet* ts = disc.FindTitleSet(c.title_set);
  if (!ts) return out;
  for (std::uint32_t t = 0; t < ts->parts.size(); ++t) {
    for (const PartOfTitle& p : ts->parts[t]) {
      if (p.pgcn != c.pgc) continue;
      std::uint32_t title = DiscTitle(disc, c.title_set, t + 1);
      out += (out.empty() ? "title " : ", ") + std::to_string(title);
      break;
    }
  }
  return out;
}

}  // namespace

TitleNavigation NavigateTitles(const Disc& disc) {
  TitleNavigation navigation;
  PlayOptions options;
  options.max_cells = 200;  // enough to reach the first title through any menu path
  navigation.first_title = Play(disc, options).first_title;
  NavAnalysis analysis = Analyze(disc);
  for (const TitleEntry& t : disc.vmg.titles) {
    navigation.reachable.push_back(TitleReachable(disc, analysis, t.number));
  }
  return navigation;
}

NavGraph BuildGraph(const Disc& disc, const NavAnalysis& analysis) {
  NavGraph graph;
  for (std::size_t i = 0; i < analysis.chains.size(); ++i) {
    const ChainRef& c = analysis.chains[i];
    GraphNode node{NodeId(c), ChainName(disc, c), analysis.reachable[i], analysis.on_loop[i]};
    const Pgc* pgc = FindChain(disc, c);
    std::string role = c.domain == Domain::kVtsTitle ? TitlesOfChain(disc, c)
                       : pgc                         ? MenuRole(*pgc)
                                                     : "";
    if (!role.empty()) node.label += "\n" + role;
    graph.nodes.push_back(std::move(node));
  }
  for (std::size_t i = 0; i < analysis.edges.size(); ++i) {
    for (const NavEdge& e : analysis.edges[i]) {
      graph.edges.push_back({i, e.to, e.conditional, e.button, e.label});
    }
  }
  return graph;
}

void AddNavigationFindings(const Disc& disc, const NavAnalysis& analysis, Findings& out) {
  for (const TitleEntry& t : disc.vmg.titles) {
    if (TitleReachable(disc, analysis, t.number)) continue;
    out.AtTable("nav.unreachable", "VIDEO_TS.IFO", "TT_SRPT", t.number,
                Format("title %d (title %d of VTS %d) is reached by no path from first play, a "
                       "menu or a button",
                       {t.number, t.title_in_set, t.title_set}));
  }
  for (std::size_t i = 0; i < analysis.chains.size(); ++i) {
    const ChainRef& c = analysis.chains[i];
    if (analysis.reachable[i] || c.domain == Domain::kFirstPlay) continue;
    if (c.domain == Domain::kVtsTitle && BelongsToTitle(disc, c)) continue;  // its title says it
    ChainPlace place = PlaceOf(disc, c);
    out.AtTable("nav.unreachable", place.file, place.table, place.entry,
                ChainName(disc, c) + " is reached by no path from first play, a menu or a button");
  }
  for (const NavLoop& loop : analysis.loops) {
    std::string names;
    for (std::size_t v : loop.chains)
      names += (names.empty() ? "" : ", ") + ChainName(disc, analysis.chains[v]);
    ChainPlace place = PlaceOf(disc, analysis.chains[loop.chains.front()]);
    std::string message =
        "a player hangs in a loop of " + names +
        (loop.unconditional
             ? ": their commands link on without playing a cell or waiting for a key"
             : ": depending on comparisons, their commands link on without playing a cell or "
               "waiting for a key");
    out.AtTable("nav.loop", place.file, place.table, place.entry, message,
                loop.unconditional ? Severity::kError : Severity::kWarning);
  }
}

}  // namespace tarvex::nav
