#include "disc/title_cells.h"

#include <set>

namespace tarvex {

std::vector<const Pgc*> TitleChains(const TitleView& view) {
  std::vector<const Pgc*> chains;
  std::set<std::uint16_t> seen;
  if (view.parts == nullptr) return chains;
  for (const PartOfTitle& part : *view.parts) {
    if (part.pgcn < 1 || part.pgcn > view.title_set->pgcs.size()) continue;
    if (seen.insert(part.pgcn).second) chains.push_back(&view.title_set->pgcs[part.pgcn - 1]);
  }
  return chains;
}

namespace {

// Title time at each cell of a chain (and one past the last) when the chain starts at base.
std::vector<std::uint64_t> CellStarts(const Pgc& pgc, std::uint32_t angle, std::uint64_t base,
                                      std::vector<PlayedCell>& played) {
  std::vector<int> in_block = AngleIndices(pgc);
  std::vector<std::uint64_t> starts;
  std::uint64_t t = base;
  for (std::size_t i = 0; i < pgc.cells.size(); ++i) {
    starts.push_back(t);
    if (in_block[i] >= 0 && in_block[i] != static_cast<int>(angle) - 1) continue;
    played.push_back({&pgc, &pgc.cells[i], t});
    t += pgc.cells[i].time.Ticks();
  }
  starts.push_back(t);
  return starts;
}

}  // namespace

std::vector<int> AngleIndices(const Pgc& pgc) {
  std::vector<int> indices;
  int run = -1;
  for (const Cell& c : pgc.cells) {
    bool first = (c.category[0] >> 6) == 1;
    run = c.block_type() != 1 ? -1 : (first || run < 0 ? 0 : run + 1);
    indices.push_back(run);
  }
  return indices;
}

TitleCells PlanTitleCells(const Disc& disc, const TitleEntry& entry, std::uint32_t angle) {
  TitleCells plan;
  TitleView view = ViewTitle(disc, entry);
  plan.title_set = view.title_set;
  std::vector<std::pair<const Pgc*, std::vector<std::uint64_t>>> starts;
  for (const Pgc* pgc : TitleChains(view)) {
    starts.emplace_back(pgc, CellStarts(*pgc, angle, plan.total_ticks, plan.cells));
    plan.total_ticks = starts.back().second.back();
  }
  if (view.parts == nullptr) return plan;
  for (std::size_t k = 0; k < view.parts->size(); ++k) {
    const PartOfTitle& part = (*view.parts)[k];
    ChapterSpan& chapter = plan.chapters.emplace_back();
    chapter.number = static_cast<std::uint32_t>(k + 1);
    for (const auto& [pgc, times] : starts) {
      if (pgc->number != part.pgcn || part.pgn < 1 || part.pgn > pgc->program_map.size()) continue;
      std::size_t cell = pgc->program_map[part.pgn - 1];
      if (cell >= 1 && cell < times.size()) chapter.start_ticks = times[cell - 1];
    }
  }
  for (std::size_t k = 0; k < plan.chapters.size(); ++k) {
    plan.chapters[k].end_ticks =
        k + 1 < plan.chapters.size() ? plan.chapters[k + 1].start_ticks : plan.total_ticks;
  }
  return plan;
}

std::uint64_t TicksToMilliseconds(std::uint64_t ticks) {
  return (ticks + 45) / 90;
}

}  // namespace tarvex
