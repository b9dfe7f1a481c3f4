#include "nav/cell_buttons.h"

#include <algorithm>

namespace tarvex::nav {

namespace {

// A menu cell is searched through at most this many VOBUs.
constexpr std::size_t kMaxVobusSearched = 512;
constexpr std::size_t kSectorSize = 2048;

bool SameButtons(const HighlightInfo& a, const HighlightInfo& b) {
  if (a.buttons.size() != b.buttons.size()) return false;
  for (std::size_t i = 0; i < a.buttons.size(); ++i) {
    if (a.buttons[i].command != b.buttons[i].command) return false;
  }
  return true;
}

}  // namespace

bool CellButtons::ReadSector(const VobSet& vobs, std::uint32_t sector,
                             std::vector<std::uint8_t>& record) {
  auto where = vobs.Locate(sector);
  if (!where || !disc_.access) return false;
  std::unique_ptr<DiscFile>& file = files_[where->first];
  if (!file) file = disc_.access->Open(where->first);
  if (!file) return false;
  record.assign(kSectorSize, 0);
  return file->ReadAt(where->second * kSectorSize, record) == kSectorSize;
}

std::vector<std::uint32_t> CellButtons::VobuStarts(const VobSet& vobs, const Cell& cell,
                                                   bool whole_cell) {
  std::vector<std::uint32_t> starts{cell.first_sector};
  if (!whole_cell) return starts;
  for (std::uint32_t s : vobs.vobu_starts) {
    if (s > cell.first_sector && s <= cell.last_sector) starts.push_back(s);
    if (starts.size() >= kMaxVobusSearched) break;
  }
  std::sort(starts.begin(), starts.end());
  starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
  return starts;
}

const std::optional<HighlightInfo>& CellButtons::Find(const VobSet& vobs, const Cell& cell,
                                                      bool whole_cell) {
  auto key = std::make_tuple(&vobs, cell.first_sector, whole_cell);
  auto it = found_.find(key);
  if (it != found_.end()) return it->second;
  std::optional<HighlightInfo>& result = found_[key];
  std::vector<std::uint8_t> record;
  for (std::uint32_t sector : VobuStarts(vobs, cell, whole_cell)) {
    if (!ReadSector(vobs, sector, record)) continue;
    HighlightInfo info = DecodeHighlight(record);
    if (info.present()) {
      result = std::move(info);
      break;
    }
  }
  return result;
}

std::vector<HighlightInfo> CellButtons::All(const VobSet& vobs, const Cell& cell) {
  std::vector<HighlightInfo> all;
  std::vector<std::uint8_t> record;
  for (std::uint32_t sector : VobuStarts(vobs, cell, true)) {
    if (!ReadSector(vobs, sector, record)) continue;
    HighlightInfo info = DecodeHighlight(record);
    if (!info.present()) continue;
    bool seen = std::any_of(all.begin(), all.end(),
                            [&](const HighlightInfo& h) { return SameButtons(h, info); });
    if (!seen) all.push_back(std::move(info));
  }
  return all;
}

}  // namespace tarvex::nav
