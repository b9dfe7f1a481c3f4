// A title ripped losslessly: the packs of its cells in play order, an angle block reduced to
// the chosen angle's cell and an interleaved block to that angle's interleaved units, found by
// following the interleave links of the navigation packs (DSI SML_PBI).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "archive/vob_reader.h"
#include "disc/title_cells.h"

namespace tarvex {

// Sectors first to last (inclusive) of a VOB set.
struct SectorRun {
  std::uint64_t first = 0, last = 0;
  std::uint64_t count() const { return last - first + 1; }
};

// Calls on_run for each run of sectors a cell plays, in order: the whole cell, or for an
// interleaved cell each of its interleaved units. False (with error) when a navigation pack
// cannot be read or its links lead nowhere.
bool ForEachCellRun(VobSetReader& reader, const Cell& cell,
                    const std::function<bool(const SectorRun&)>& on_run, std::string& error);

struct RipOptions {
  std::uint32_t angle = 1;
  // Takes the bytes in order; false (with error set) stops the rip.
  std::function<bool(std::span<const std::uint8_t>, std::string& error)> write;
  // A file descriptor the bytes may instead be copied into by the kernel (a regular file open
  // for writing, where write would put them), or -1.
  int direct_fd = -1;
  // Told the bytes done and the bytes the cells' sector ranges make (an upper bound when
  // units of other angles are interleaved with them).
  std::function<void(std::uint64_t done, std::uint64_t expected)> progress = {};
};

struct RipResult {
  bool ok = true;
  std::string error;
  std::uint64_t bytes = 0;
};

// Streams the title's bytes to options.write, one block of at most 1 MiB at a time.
RipResult RipTitle(const Disc& disc, const TitleCells& plan, const RipOptions& options);

// The bytes a rip of the plan writes, or nothing when a navigation pack of an interleaved
// cell cannot be read (error then says why).
std::optional<std::uint64_t> RipSize(const Disc& disc, const TitleCells& plan, std::string& error);

// The rip size of every title of DiscTitles() for angle 1, nothing where it is not known.
std::vector<std::optional<std::uint64_t>> RipSizesOfTitles(const Disc& disc);

}  // namespace tarvex
