// The cells a title plays for one angle, in play order, with their title times: the chains of
// its parts in the order the parts first name them, each chain's cells in order, an angle
// block reduced to the cell of the chosen angle. Title times are exact sums of cell times in
// 90 kHz ticks (PlaybackTime::Ticks), so that chapter starts do not drift.
#pragma once

#include <cstdint>
#include <vector>

#include "disc/model.h"

namespace tarvex {

struct PlayedCell {
  const Pgc* pgc = nullptr;
  const Cell* cell = nullptr;
  std::uint64_t start_ticks = 0;  // title time at the cell's start
};

struct ChapterSpan {
  std::uint32_t number = 0;  // the part of title, from 1
  std::uint64_t start_ticks = 0, end_ticks = 0;
};

struct TitleCells {
  const TitleSet* title_set = nullptr;
  std::vector<PlayedCell> cells;
  std::vector<ChapterSpan> chapters;
  std::uint64_t total_ticks = 0;
};

// The chains of a title's parts in the order the parts first name them.
std::vector<const Pgc*> TitleChains(const TitleView& view);

// The title's cells for angle (from 1). An angle block with fewer cells than angle plays
// none of them.
TitleCells PlanTitleCells(const Disc& disc, const TitleEntry& entry, std::uint32_t angle);

// The index (from 0) of each cell of a chain within its angle block, or -1 outside any.
std::vector<int> AngleIndices(const Pgc& pgc);

// Ticks as seconds, exact to the millisecond rounded to nearest (for JSON with 3 decimals).
std::uint64_t TicksToMilliseconds(std::uint64_t ticks);

}  // namespace tarvex
