#include <algorithm>
#include <cctype>
#include <utility>

#include "disc/load_ifo.h"
#include "disc/model.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint64_t kMaxIfoBytes = 64ull << 20;
constexpr std::uint32_t kMaxTitleSets = 99;

std::uint64_t Sectors(std::uint64_t bytes) {
  return (bytes + 2047) / 2048;
}

void AddPart(const Disc& disc, VobSet& set, const std::string& name) {
  const DiscFileEntry* entry = disc.access->Find(name);
  if (entry == nullptr) return;
  // Whole records only: a partial last record holds no pack (file.size reports it).
  set.parts.push_back({entry->name, entry->size, set.sectors});
  set.sectors += entry->size / 2048;
}

std::string TitleSetFile(std::uint32_t number, std::uint32_t part, const char* extension) {
  return Format("VTS_%02d_%d.", {number, part}) + extension;
}

std::uint64_t FileSectors(const Disc& disc, const std::string& name) {
  const DiscFileEntry* entry = disc.access->Find(name);
  return entry ? Sectors(entry->size) : 0;
}

std::optional<std::uint32_t> DiscSector(const Disc& disc, const std::string& name) {
  const DiscFileEntry* entry = disc.access->Find(name);
  return entry ? entry->disc_sector : std::nullopt;
}

// Where each title set starts, counted in sectors from VIDEO_TS.IFO: from the image's own
// layout when it has one, else as a mastering tool lays the files out: the video manager's
// IFO, menu VOB and BUP, then each title set's IFO, menu VOB, title VOBs and BUP, each area
// as long as its end address says when that is longer than its files (authoring tools may
// leave room there, which the mastering fills).
void PlaceTitleSets(Disc& disc) {
  std::optional<std::uint32_t> vmg_sector = DiscSector(disc, "VIDEO_TS.IFO");
  std::uint64_t next =
      std::max<std::uint64_t>(FileSectors(disc, "VIDEO_TS.IFO") + disc.vmg.menu_vobs.sectors +
                                  FileSectors(disc, "VIDEO_TS.BUP"),
                              disc.vmg.ifo_found ? std::uint64_t{disc.vmg.vmg_ea} + 1 : 0);
  for (TitleSet& ts : disc.title_sets) {
    std::optional<std::uint32_t> sector = DiscSector(disc, ts.ifo_name);
    if (vmg_sector && sector && *sector >= *vmg_sector) {
      ts.disc_start = *sector - *vmg_sector;
    } else {
      ts.disc_start = next;
    }
    std::uint64_t files = FileSectors(disc, ts.ifo_name) + ts.menu_vobs.sectors +
                          ts.title_vobs.sectors + FileSectors(disc, ts.bup_name);
    std::uint64_t declared = ts.present ? std::uint64_t{ts.vts_ea} + 1 : 0;
    next = ts.disc_start + std::max(files, declared);
  }
}

// The title set number of a VTS_nn_... file name, or 0.
std::uint32_t TitleSetOfFile(const std::string& n) {
  if (n.size() != 12 || (n.rfind("VTS_", 0) != 0 && n.rfind("vts_", 0) != 0) ||
      !std::isdigit(static_cast<unsigned char>(n[4])) ||
      !std::isdigit(static_cast<unsigned char>(n[5]))) {
    return 0;
  }
  return static_cast<std::uint32_t>((n[4] - '0') * 10 + (n[5] - '0'));
}

std::uint32_t HighestTitleSetFile(const Disc& disc) {
  std::uint32_t highest = 0;
  for (const DiscFileEntry& f : disc.files) highest = std::max(highest, TitleSetOfFile(f.name));
  return highest;
}

bool HasTitleSetIfo(const Disc& disc) {
  for (std::uint32_t n = 1; n <= std::min(HighestTitleSetFile(disc), kMaxTitleSets); ++n) {
    if (disc.access->Find(TitleSetFile(n, 0, "IFO")) != nullptr) return true;
  }
  return false;
}

// The angles of a chain: the cells of its largest angle block (1 without one).
std::uint8_t ChainAngles(const Pgc* pgc) {
  std::uint32_t most = 1, run = 0;
  if (pgc == nullptr) return 1;
  for (const Cell& c : pgc->cells) {
    bool angle = c.block_type() == 1;
    bool first = (c.category[0] >> 6) == 1;
    run = angle ? (first ? 1 : run + 1) : 0;
    most = std::max(most, run);
  }
  return static_cast<std::uint8_t>(std::min<std::uint32_t>(most, 9));
}

void LoadTitleSet(Disc& disc, std::uint32_t number) {
  TitleSet& ts = disc.title_sets.emplace_back();
  ts.number = number;
  ts.ifo_name = TitleSetFile(number, 0, "IFO");
  ts.bup_name = TitleSetFile(number, 0, "BUP");
  if (const DiscFileEntry* e = disc.access->Find(ts.ifo_name)) ts.ifo_name = e->name;
  AddPart(disc, ts.menu_vobs, TitleSetFile(number, 0, "VOB"));
  std::uint32_t part = 1;
  for (; part <= 9 && disc.access->Find(TitleSetFile(number, part, "VOB")) != nullptr; ++part) {
    AddPart(disc, ts.title_vobs, TitleSetFile(number, part, "VOB"));
  }
  for (; part <= 9; ++part) {
    if (disc.access->Find(TitleSetFile(number, part, "VOB")) != nullptr) {
      ts.title_vobs.missing_files = true;
    }
  }
  if (disc.access->Find(ts.ifo_name) == nullptr) return;
  auto bytes = disc.access->ReadWhole(ts.ifo_name, kMaxIfoBytes);
  if (!bytes) {
    disc.load_findings.AtFile("file.read", ts.ifo_name, "cannot be read");
    return;
  }
  ts.ifo = std::move(*bytes);
  ts.ifo_size = ts.ifo.size();
  ReadTitleSetIfo(ByteView(ts.ifo), ts);
  if (ts.title_vobs.parts.empty() && !ts.pgcs.empty()) ts.title_vobs.missing_files = true;
  if (ts.menu_vobs.parts.empty() && ts.menu_vobs_at != 0 && !ts.menus.empty()) {
    ts.menu_vobs.missing_files = true;
  }
  if (!ts.present) {
    disc.load_findings.AtTable("ifo.identifier", ts.ifo_name, "VTSI_MAT", 0,
                               "the identifier is not DVDVIDEO-VTS");
  }
}

// The menu VOB of the video manager and every title set up to the last that the video manager
// counts or that has a file on the disc, then where each lies.
void LoadTitleSets(Disc& disc) {
  AddPart(disc, disc.vmg.menu_vobs, "VIDEO_TS.VOB");
  std::uint32_t count =
      std::max<std::uint32_t>(disc.vmg.title_set_count, HighestTitleSetFile(disc));
  count = std::min(count, kMaxTitleSets);
  for (std::uint32_t n = 1; n <= count; ++n) LoadTitleSet(disc, n);
  PlaceTitleSets(disc);
}

}  // namespace

std::optional<std::pair<std::string, std::uint64_t>> VobSet::Locate(std::uint64_t sector) const {
  for (const Part& part : parts) {
    std::uint64_t n = part.size / 2048;
    if (sector >= part.first_sector && sector < part.first_sector + n) {
      return std::make_pair(part.name, sector - part.first_sector);
    }
  }
  return std::nullopt;
}

void VobSet::Index() {
  cells_by_id_.resize(cells.size());
  for (std::uint32_t i = 0; i < cells_by_id_.size(); ++i) cells_by_id_[i] = i;
  std::stable_sort(cells_by_id_.begin(), cells_by_id_.end(),
                   [this](std::uint32_t a, std::uint32_t b) {
                     return std::pair(cells[a].vob_id, cells[a].cell_id) <
                            std::pair(cells[b].vob_id, cells[b].cell_id);
                   });
  sorted_vobu_starts_ = vobu_starts;
  std::sort(sorted_vobu_starts_.begin(), sorted_vobu_starts_.end());
}

const CellAddress* VobSet::FindCell(std::uint16_t vob_id, std::uint8_t cell_id) const {
  auto key = std::pair(vob_id, cell_id);
  auto it =
      std::lower_bound(cells_by_id_.begin(), cells_by_id_.end(), key,
                       [this](std::uint32_t i, const std::pair<std::uint16_t, std::uint8_t>& k) {
                         return std::pair(cells[i].vob_id, cells[i].cell_id) < k;
                       });
  if (it == cells_by_id_.end() || std::pair(cells[*it].vob_id, cells[*it].cell_id) != key) {
    return nullptr;
  }
  return &cells[*it];
}

bool VobSet::IsVobuStart(std::uint32_t sector) const {
  return std::binary_search(sorted_vobu_starts_.begin(), sorted_vobu_starts_.end(), sector);
}

const TitleSet* Disc::FindTitleSet(std::uint32_t number) const {
  if (number == 0 || number > title_sets.size()) return nullptr;
  const TitleSet& ts = title_sets[number - 1];
  return ts.present ? &ts : nullptr;
}

std::optional<Disc> LoadDisc(std::shared_ptr<DiscAccess> access, const std::string& path,
                             std::string& error) {
  Disc disc;
  disc.path = path;
  disc.kind = access->kind();
  disc.files = access->files();
  disc.access = std::move(access);
  if (disc.access->Find("VIDEO_TS.IFO") == nullptr) {
    if (!HasTitleSetIfo(disc)) {
      error = "no VIDEO_TS.IFO and no title set IFO (VTS_nn_0.IFO)";
      return std::nullopt;
    }
    LoadTitleSets(disc);
    return disc;
  }
  disc.vmg.ifo_found = true;
  auto bytes = disc.access->ReadWhole("VIDEO_TS.IFO", kMaxIfoBytes);
  if (!bytes) {
    error = "VIDEO_TS.IFO cannot be read";
    return std::nullopt;
  }
  disc.vmg.ifo = std::move(*bytes);
  disc.vmg.ifo_size = disc.vmg.ifo.size();
  ReadVideoManager(ByteView(disc.vmg.ifo), disc.vmg);
  if (!disc.vmg.present) {
    disc.load_findings.AtTable("ifo.identifier", "VIDEO_TS.IFO", "VMGI_MAT", 0,
                               "the identifier is not DVDVIDEO-VMG");
  }
  disc.vmg.menu_vobs.missing_files =
      disc.access->Find("VIDEO_TS.VOB") == nullptr && disc.vmg.menu_vobs_at != 0;
  LoadTitleSets(disc);
  return disc;
}

std::optional<Disc> LoadDisc(const std::string& path, std::string& error) {
  std::unique_ptr<DiscAccess> access = OpenDisc(path, error);
  if (!access) return std::nullopt;
  return LoadDisc(std::shared_ptr<DiscAccess>(std::move(access)), path, error);
}

std::vector<TitleEntry> DiscTitles(const Disc& disc) {
  if (disc.vmg.ifo_found) return disc.vmg.titles;
  std::vector<TitleEntry> titles;
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    for (std::size_t t = 0; t < ts.parts.size() && t < 99; ++t) {
      TitleEntry& entry = titles.emplace_back();
      entry.number = static_cast<std::uint32_t>(t + 1);
      entry.title_set = static_cast<std::uint8_t>(ts.number);
      entry.title_in_set = static_cast<std::uint8_t>(t + 1);
      entry.chapters = static_cast<std::uint16_t>(ts.parts[t].size());
      entry.angles = ChainAngles(ViewTitle(disc, entry).pgc);
    }
  }
  return titles;
}

TitleView ViewTitle(const Disc& disc, const TitleEntry& entry) {
  TitleView view;
  view.entry = &entry;
  view.title_set = disc.FindTitleSet(entry.title_set);
  if (view.title_set == nullptr) return view;
  if (entry.title_in_set == 0 || entry.title_in_set > view.title_set->parts.size()) return view;
  view.parts = &view.title_set->parts[entry.title_in_set - 1];
  if (!view.parts->empty()) {
    std::uint16_t pgcn = view.parts->front().pgcn;
    if (pgcn >= 1 && pgcn <= view.title_set->pgcs.size())
      view.pgc = &view.title_set->pgcs[pgcn - 1];
  }
  return view;
}

}  // namespace tarvex
