#include "picture/title_cells.h"

#include <map>

namespace tarvex::picture {

namespace {

constexpr std::uint8_t kAngleBlock = 1;

// Cells 2.. of an angle block play in place of the first one.
bool OtherAngle(const Cell& cell) {
  std::uint8_t mode = cell.category[0] >> 6;
  return cell.block_type() == kAngleBlock && mode != 1;
}

// The chain numbers of a title's parts in play order, each once.
std::vector<std::uint16_t> PartChains(const std::vector<PartOfTitle>& parts) {
  std::vector<std::uint16_t> chains;
  for (const PartOfTitle& part : parts) {
    if (chains.empty() || chains.back() != part.pgcn) chains.push_back(part.pgcn);
  }
  return chains;
}

// Adds a chain's cells; remembers where each of its programs starts.
void AddChain(const Pgc& pgc, TitleCells& out, std::map<std::uint8_t, std::uint64_t>& programs) {
  for (const Cell& cell : pgc.cells) {
    if (OtherAngle(cell)) continue;
    for (std::size_t p = 0; p < pgc.program_map.size(); ++p) {
      if (pgc.program_map[p] == cell.number && !programs.contains(static_cast<std::uint8_t>(p + 1)))
        programs[static_cast<std::uint8_t>(p + 1)] = out.total_ticks;
    }
    out.cells.push_back({&cell, out.total_ticks});
    out.total_ticks += cell.time.Ticks();
  }
}

}  // namespace

std::optional<TitleCells> FindTitleCells(const Disc& disc, std::uint32_t title,
                                         std::string& error) {
  for (const TitleEntry& entry : DiscTitles(disc)) {
    if (entry.number != title) continue;
    TitleView view = ViewTitle(disc, entry);
    if (!view.title_set || !view.parts || !view.pgc) {
      error = "title " + std::to_string(title) + ": its title set or chain cannot be read";
      return std::nullopt;
    }
    TitleCells out{title, view.title_set, view.pgc, {}, {}, 0};
    for (std::uint16_t pgcn : PartChains(*view.parts)) {
      if (pgcn == 0 || pgcn > view.title_set->pgcs.size()) continue;
      const Pgc& pgc = view.title_set->pgcs[pgcn - 1];
      std::map<std::uint8_t, std::uint64_t> programs;
      AddChain(pgc, out, programs);
      for (const PartOfTitle& part : *view.parts) {
        if (part.pgcn == pgcn && programs.contains(part.pgn))
          out.chapter_starts.push_back(programs[part.pgn]);
      }
    }
    return out;
  }
  error = "the disc has no title " + std::to_string(title);
  return std::nullopt;
}

}  // namespace tarvex::picture
