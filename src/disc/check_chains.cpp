// Program chains: structure, program map, cells against the VOBs and the cell address table,
// links, navigation command targets, playback time, stream control.
#include "disc/checks.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// Where a chain lies and what its commands can reach.
struct ChainScope {
  const Disc& disc;
  std::string file;
  const char* table;
  std::string prefix;  // "" or "language unit 2 (fr): "
  const VobSet& set;
  std::size_t chains_in_block = 0;  // chains a link can name
  const TitleSet* title_set = nullptr;
  const StreamDeclarations* streams = nullptr;
  bool titles = false;  // the title chains of a title set
};

}  // namespace

std::string LanguageUnitPrefix(const std::vector<LanguageUnit>& units, std::size_t u) {
  if (units.size() <= 1 || u >= units.size()) return {};
  return Format("language unit %d (%s): ", {u + 1, units[u].code().value_or("no language")});
}

namespace {

class ChainChecker {
 public:
  ChainChecker(const ChainScope& scope, const Pgc& pgc, Findings& out)
      : s_(scope), pgc_(pgc), out_(out) {}

  void Run() {
    Structure();
    ProgramMap();
    Cells();
    Links();
    Commands();
    Time();
    StreamControl();
  }

 private:
  void Report(const char* check, const std::string& message) {
    out_.AtTable(check, s_.file, s_.table, pgc_.number, s_.prefix + message);
  }

  void Structure() {
    if (pgc_.declared_programs > pgc_.declared_cells) {
      Report("pgc.structure",
             Format("%d programs but %d cells", {pgc_.declared_programs, pgc_.declared_cells}));
    }
    if (pgc_.declared_programs > 0 && pgc_.program_map_at == 0) {
      Report("pgc.structure", Format("%d programs but no program map", {pgc_.declared_programs}));
    }
    if (pgc_.declared_cells > 0 && (pgc_.cell_playback_at == 0 || pgc_.cell_position_at == 0)) {
      Report("pgc.structure",
             Format("%d cells but no cell playback or cell position table", {pgc_.declared_cells}));
    } else if (pgc_.cells.size() < pgc_.declared_cells) {
      Report("pgc.structure", Format("the cell tables hold %d of the %d cells",
                                     {pgc_.cells.size(), pgc_.declared_cells}));
    }
    std::size_t commands = pgc_.pre.size() + pgc_.post.size() + pgc_.cell_commands.size();
    if (commands > 128) {
      Report("pgc.structure", Format("%d navigation commands, at most 128", {commands}));
    }
  }

  void ProgramMap() {
    const auto& map = pgc_.program_map;
    for (std::size_t p = 0; p < map.size(); ++p) {
      std::uint32_t cell = map[p];
      bool bad = cell == 0 || cell > pgc_.declared_cells || (p == 0 && cell != 1) ||
                 (p > 0 && cell <= map[p - 1]);
      if (bad) {
        Report("pgc.program-map",
               Format("program %d starts at cell %d (cells: %d, previous program at %d)",
                      {p + 1, cell, pgc_.declared_cells, p > 0 ? map[p - 1] : 0}));
      }
    }
  }

  void Cells() {
    for (const Cell& c : pgc_.cells) {
      std::string where = Format("cell %d: ", {c.number});
      if (!(c.first_sector <= c.last_vobu_start && c.last_vobu_start <= c.last_sector)) {
        Report("pgc.cell-sectors",
               where + Format("entry %d, last VOBU %d, last sector %d are not in order",
                              {c.first_sector, c.last_vobu_start, c.last_sector}));
      } else if (s_.set.PastEnd(c.last_sector)) {
        Report("pgc.cell-sectors", where + Format("last sector %d, the VOBs have %s sectors",
                                                  {c.last_sector, std::to_string(s_.set.sectors)}));
      } else if (!s_.set.vobu_starts.empty() &&
                 (!s_.set.IsVobuStart(c.first_sector) || !s_.set.IsVobuStart(c.last_vobu_start))) {
        Report("pgc.cell-sectors",
               where + Format("entry %d or last VOBU %d is not a VOBU start in the address map",
                              {c.first_sector, c.last_vobu_start}));
      }
      if (!s_.set.has_cell_table) continue;
      const CellAddress* a = s_.set.FindCell(c.vob_id, c.cell_id);
      if (a == nullptr) {
        Report("pgc.cell-position",
               where + Format("VOB %d cell %d is not in the cell address table",
                              {c.vob_id, c.cell_id}));
      } else if (a->first != c.first_sector || a->last != c.last_sector) {
        Report("pgc.cell-position",
               where +
                   Format("sectors %d to %d, the cell address table has %d to %d for VOB %d "
                          "cell %d",
                          {c.first_sector, c.last_sector, a->first, a->last, c.vob_id, c.cell_id}));
      }
    }
  }

  void Links() {
    struct Link {
      const char* name;
      std::uint16_t value;
    };
    for (Link l :
         {Link{"next", pgc_.next}, Link{"previous", pgc_.previous}, Link{"go-up", pgc_.go_up}}) {
      if (l.value != 0 && l.value > s_.chains_in_block) {
        Report("pgc.links",
               Format("%s program chain %d, there are %d", {l.name, l.value, s_.chains_in_block}));
      }
    }
  }

  void Command(const char* kind, std::size_t n, const NavCommand& b, std::size_t lines) {
    auto problem = CommandTargetProblem({s_.disc, s_.chains_in_block, s_.title_set, s_.titles},
                                        pgc_, b, {lines, kind});
    if (problem) Report("pgc.command", Format("%s command %d: ", {kind, n}) + *problem);
  }

  void Commands() {
    // A goto goes to a line of its own table: pre and post commands have lines to go to.
    for (std::size_t i = 0; i < pgc_.pre.size(); ++i) {
      Command("pre", i + 1, pgc_.pre[i], pgc_.pre.size());
    }
    for (std::size_t i = 0; i < pgc_.post.size(); ++i) {
      Command("post", i + 1, pgc_.post[i], pgc_.post.size());
    }
    for (std::size_t i = 0; i < pgc_.cell_commands.size(); ++i) {
      Command("cell", i + 1, pgc_.cell_commands[i], 0);
    }
    for (const Cell& c : pgc_.cells) {
      if (c.command() > pgc_.cell_commands.size()) {
        Report("pgc.command", Format("cell %d runs cell command %d, the chain has %d",
                                     {c.number, c.command(), pgc_.cell_commands.size()}));
      }
    }
  }

  void Time() {
    if (pgc_.cells.empty()) return;
    std::uint64_t frames = 0;
    for (const Cell& c : pgc_.cells) frames += c.time.Frames();
    if (frames != pgc_.time.Frames()) {
      std::uint64_t ms = 0;
      for (const Cell& c : pgc_.cells) ms += c.time.Milliseconds();
      Report("pgc.time", Format("playback time %s, its cells add up to %s",
                                {pgc_.time.Text(), MillisecondsText(ms)}));
    }
  }

  void StreamControl() {
    if (s_.streams == nullptr) return;
    for (std::uint32_t i = 0; i < 8; ++i) {
      auto n = AudioControlNumber(pgc_.audio_control[i]);
      if (!n) continue;
      if (i >= s_.streams->audio_count) {
        Report("pgc.stream-control", Format("audio stream %d is made available, %d are declared",
                                            {i + 1, s_.streams->audio_count}));
      } else if (*n > 7) {
        Report("pgc.stream-control",
               Format("audio stream %d maps to stream number %d (0 to 7)", {i + 1, *n}));
      }
    }
    for (std::uint32_t i = 0; i < 32; ++i) {
      if (!DecodeSubpictureControl(pgc_.subpicture_control[i]).available) continue;
      if (i >= s_.streams->subpicture_count) {
        Report("pgc.stream-control",
               Format("sub-picture stream %d is made available, %d are declared",
                      {i + 1, s_.streams->subpicture_count}));
      }
    }
  }

  const ChainScope& s_;
  const Pgc& pgc_;
  Findings& out_;
};

void CheckUnits(const ChainScope& base, const std::vector<LanguageUnit>& units, Findings& out) {
  for (std::size_t u = 0; u < units.size(); ++u) {
    ChainScope scope = base;
    scope.prefix = LanguageUnitPrefix(units, u);
    scope.chains_in_block = units[u].pgcs.size();
    for (const Pgc& pgc : units[u].pgcs) ChainChecker(scope, pgc, out).Run();
  }
}

}  // namespace

void CheckChains(const Disc& disc, Findings& out) {
  const VideoManager& vmg = disc.vmg;
  std::size_t vmgm_chains = vmg.menus.empty() ? 0 : vmg.menus.front().pgcs.size();
  if (vmg.first_play) {
    ChainScope scope{disc,          "VIDEO_TS.IFO", "FP_PGC", "",
                     vmg.menu_vobs, vmgm_chains,    nullptr,  nullptr};
    ChainChecker(scope, *vmg.first_play, out).Run();
  }
  CheckUnits({disc, "VIDEO_TS.IFO", "VMGM_PGCI_UT", "", vmg.menu_vobs, 0, nullptr, &vmg.menu},
             vmg.menus, out);
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    ChainScope titles{disc,           ts.ifo_name, "VTS_PGCIT", "",  ts.title_vobs,
                      ts.pgcs.size(), &ts,         &ts.title,   true};
    for (const Pgc& pgc : ts.pgcs) ChainChecker(titles, pgc, out).Run();
    CheckUnits({disc, ts.ifo_name, "VTSM_PGCI_UT", "", ts.menu_vobs, 0, &ts, &ts.menu}, ts.menus,
               out);
  }
}

}  // namespace tarvex
