// A title's cells in play order, with the title time at which each starts: the cells of its
// chains in the order of its parts, the first angle of an angle block only. Title times are
// exact sums of cell times in 90 kHz ticks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex::picture {

struct PlayedCell {
  const Cell* cell = nullptr;
  std::uint64_t start_ticks = 0;  // the cell times of the title's cells before it
};

struct TitleCells {
  std::uint32_t title = 0;
  const TitleSet* title_set = nullptr;
  const Pgc* pgc = nullptr;  // the chain of the first part: its palette and stream control
  std::vector<PlayedCell> cells;
  std::vector<std::uint64_t> chapter_starts;  // ticks, one per part
  std::uint64_t total_ticks = 0;
};

// Title number (as `info` numbers titles); nothing with error set when the disc has no such
// title or its title set or chain cannot be read.
std::optional<TitleCells> FindTitleCells(const Disc& disc, std::uint32_t title, std::string& error);

}  // namespace tarvex::picture
