// The buttons a cell offers: the highlight information of the first navigation pack of the cell
// that has any. Menu cells are searched VOBU by VOBU (menus are short); a title cell only at its
// first VOBU, so that following a two-hour title reads one sector per cell. Each cell is read
// once per run.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "disc/model.h"
#include "stream/nav_fields.h"

namespace tarvex::nav {

class CellButtons {
 public:
  explicit CellButtons(const Disc& disc) : disc_(disc) {}

  // The highlight information of the cell of vobs, or nothing when no navigation pack of it
  // that was read holds buttons. whole_cell: search every VOBU (menus), else the first only.
  const std::optional<HighlightInfo>& Find(const VobSet& vobs, const Cell& cell, bool whole_cell);

  // Every distinct highlight information of the cell's navigation packs (for the graph).
  std::vector<HighlightInfo> All(const VobSet& vobs, const Cell& cell);

 private:
  // Reads one sector of the set into record; false when it lies in no file or cannot be read.
  bool ReadSector(const VobSet& vobs, std::uint32_t sector, std::vector<std::uint8_t>& record);
  std::vector<std::uint32_t> VobuStarts(const VobSet& vobs, const Cell& cell, bool whole_cell);

  const Disc& disc_;
  std::map<std::string, std::unique_ptr<DiscFile>> files_;
  std::map<std::tuple<const VobSet*, std::uint32_t, bool>, std::optional<HighlightInfo>> found_;
};

}  // namespace tarvex::nav
