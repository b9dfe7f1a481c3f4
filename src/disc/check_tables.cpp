// The information tables, the table addresses, titles, parts of titles and the address tables.
#include <algorithm>

#include "disc/checks.h"
#include "ifo/layouts.h"
#include "platform/format.h"

namespace tarvex {

namespace {

std::uint64_t Sectors(std::uint64_t bytes) {
  return (bytes + 2047) / 2048;
}

// A table's place against the information part and the other tables.
void CheckTablePlaces(const std::string& file, const std::vector<TableLocation>& tables,
                      std::uint64_t info_sectors, std::uint64_t file_bytes,
                      const std::vector<std::string>& required, Findings& out) {
  std::vector<const TableLocation*> present;
  for (const TableLocation& t : tables) {
    if (t.start_sector == 0) {
      if (std::find(required.begin(), required.end(), t.name) != required.end()) {
        out.AtTable("ifo.table-address", file, t.name, 0, "the table is missing (start sector 0)");
      }
      continue;
    }
    if (t.start_sector >= info_sectors) {
      out.AtTable("ifo.table-address", file, t.name, 0,
                  Format("start sector %d lies beyond the information part (%s sectors)",
                         {t.start_sector, std::to_string(info_sectors)}));
      continue;
    }
    if (std::uint64_t{t.start_sector} * 2048 >= file_bytes) {
      out.AtTable("ifo.table-address", file, t.name, 0,
                  Format("start sector %d lies beyond the end of the file (%s bytes)",
                         {t.start_sector, std::to_string(file_bytes)}));
      continue;
    }
    if (t.end_byte > std::min<std::uint64_t>(info_sectors * 2048, file_bytes)) {
      out.AtTable("ifo.table-address", file, t.name, 0,
                  Format("the table ends at byte %s, beyond the information part",
                         {std::to_string(t.end_byte - 1)}));
    }
    present.push_back(&t);
  }
  std::sort(present.begin(), present.end(), [](const TableLocation* a, const TableLocation* b) {
    return a->start_sector < b->start_sector;
  });
  for (std::size_t i = 1; i < present.size(); ++i) {
    const TableLocation* before = present[i - 1];
    if (before->end_byte > std::uint64_t{present[i]->start_sector} * 2048) {
      out.AtTable(
          "ifo.table-address", file, present[i]->name, 0,
          Format("starts at sector %d, inside %s", {present[i]->start_sector, before->name}));
    }
  }
}

// An IFO with the VOBs and the backup (BUP) that follow it on the disc, and the end addresses
// of its information table: the information part (VMGI_EA, VTSI_EA) and the whole area (VMG_EA,
// VTS_EA), both counted in sectors from the IFO's first.
struct InformationArea {
  std::string file, bup;  // "VIDEO_TS.IFO", "VIDEO_TS.BUP"
  const char* table;      // "VMGI_MAT"
  const char* info_key;   // "VMGI_EA"
  const char* area_key;   // "VMG_EA"
  const char* vobs;       // "menu VOB", "VOBs"
  std::uint32_t info_end = 0, area_end = 0, mat_end = 0;
  std::uint64_t ifo_bytes = 0, vob_sectors = 0;
  const std::vector<TableLocation>* tables = nullptr;
};

// The information part ends inside the IFO, at or after its last table; an IFO padded beyond
// it is sound (authoring programs pad to a whole number of blocks). Returns whether it is so.
bool CheckInformationEnd(const InformationArea& a, Findings& out) {
  std::uint64_t ifo_sectors = Sectors(a.ifo_bytes);
  auto report = [&](const std::string& message) {
    out.AtTable("ifo.end-address", a.file, a.table, 0,
                Format("%s %d, but ", {a.info_key, a.info_end}) + message);
    return false;
  };
  if (ifo_sectors == 0) return report("the IFO is empty");
  if (a.info_end >= ifo_sectors) {
    return report(Format("the IFO has %s sectors (0 to %s): it ends past the file",
                         {std::to_string(ifo_sectors), std::to_string(ifo_sectors - 1)}));
  }
  std::uint64_t last = a.mat_end / 2048;
  for (const TableLocation& t : *a.tables) {
    if (t.start_sector != 0 && t.start_sector < ifo_sectors)
      last = std::max<std::uint64_t>(last, t.start_sector);
  }
  if (a.info_end < last) {
    return report(Format("the tables of the IFO reach sector %s", {std::to_string(last)}));
  }
  return true;
}

// Where the backup starts, in sectors from the IFO's first: in an image, where it lies; in a
// folder, where a mastering program puts it, after the IFO and the VOBs and at the end of the
// area when the end address leaves room (which the mastering fills).
std::uint64_t BackupStart(const Disc& disc, const InformationArea& a, const DiscFileEntry& bup) {
  const DiscFileEntry* ifo = disc.access->Find(a.file);
  if (ifo != nullptr && ifo->disc_sector && bup.disc_sector &&
      *bup.disc_sector >= *ifo->disc_sector) {
    return *bup.disc_sector - *ifo->disc_sector;
  }
  std::uint64_t after = Sectors(a.ifo_bytes) + a.vob_sectors;
  std::uint64_t area = std::uint64_t{a.area_end} + 1, bup_sectors = Sectors(bup.size);
  return area > bup_sectors ? std::max(after, area - bup_sectors) : after;
}

void CheckInformationArea(const Disc& disc, const InformationArea& a, Findings& out) {
  bool info_sound = CheckInformationEnd(a, out);
  // The area may end later than its files (authoring programs leave room that the mastering
  // fills), never earlier.
  std::uint64_t sectors = 2 * Sectors(a.ifo_bytes) + a.vob_sectors;
  if (sectors > 0 && a.area_end < sectors - 1) {
    out.AtTable("ifo.end-address", a.file, a.table, 0,
                Format("%s %d, but IFO, %s and BUP need sectors 0 to %s",
                       {a.area_key, a.area_end, a.vobs, std::to_string(sectors - 1)}));
    return;
  }
  // A player that cannot read the IFO reads its backup at area end - information end.
  const DiscFileEntry* bup = disc.access->Find(a.bup);
  if (!info_sound || bup == nullptr || a.info_end > a.area_end) return;
  std::uint64_t expected = a.area_end - a.info_end, actual = BackupStart(disc, a, *bup);
  if (expected == actual) return;
  out.AtTable("ifo.backup-address", a.file, a.table, 0,
              Format("%s %d - %s %d puts the backup at sector %s, but %s starts at sector %s: a "
                     "player that locates the backup by these addresses reads the wrong sectors",
                     {a.area_key, a.area_end, a.info_key, a.info_end, std::to_string(expected),
                      bup->name, std::to_string(actual)}));
}

void CheckVideoManagerAddresses(const Disc& disc, Findings& out) {
  const VideoManager& vmg = disc.vmg;
  const char* file = "VIDEO_TS.IFO";
  std::uint64_t ifo_sectors = Sectors(vmg.ifo_size);
  CheckInformationArea(
      disc,
      {file, "VIDEO_TS.BUP", "VMGI_MAT", "VMGI_EA", "VMG_EA", "menu VOB", vmg.vmgi_ea, vmg.vmg_ea,
       vmg.vmgi_mat_ea, vmg.ifo_size, vmg.menu_vobs.sectors, &vmg.tables},
      out);
  if (!vmg.menu_vobs.parts.empty() && vmg.menu_vobs_at != ifo_sectors) {
    out.AtTable("ifo.end-address", file, "VMGI_MAT", 0,
                Format("VMGM_VOBS_SA %d, but the menu VOB starts at sector %s",
                       {vmg.menu_vobs_at, std::to_string(ifo_sectors)}));
  }
  std::vector<std::string> required = {"TT_SRPT"};
  if (!vmg.menu_vobs.parts.empty()) {
    required.insert(required.end(), {"VMGM_PGCI_UT", "VMGM_C_ADT", "VMGM_VOBU_ADMAP"});
  }
  CheckTablePlaces(file, vmg.tables, std::uint64_t{vmg.vmgi_ea} + 1, vmg.ifo_size, required, out);
}

void CheckTitleSetAddresses(const Disc& disc, const TitleSet& ts, Findings& out) {
  std::uint64_t ifo_sectors = Sectors(ts.ifo_size);
  std::uint64_t menu = ts.menu_vobs.sectors, titles = ts.title_vobs.sectors;
  CheckInformationArea(
      disc,
      {ts.ifo_name, ts.bup_name, "VTSI_MAT", "VTSI_EA", "VTS_EA", "VOBs", ts.vtsi_ea, ts.vts_ea,
       ts.vtsi_mat_ea, ts.ifo_size, menu + titles, &ts.tables},
      out);
  if (!ts.menu_vobs.parts.empty() && ts.menu_vobs_at != ifo_sectors) {
    out.AtTable("ifo.end-address", ts.ifo_name, "VTSI_MAT", 0,
                Format("VTSM_VOBS_SA %d, but the menu VOB starts at sector %s",
                       {ts.menu_vobs_at, std::to_string(ifo_sectors)}));
  }
  if (!ts.title_vobs.parts.empty() && ts.title_vobs_at != ifo_sectors + menu) {
    out.AtTable("ifo.end-address", ts.ifo_name, "VTSI_MAT", 0,
                Format("VTSTT_VOBS_SA %d, but the title VOBs start at sector %s",
                       {ts.title_vobs_at, std::to_string(ifo_sectors + menu)}));
  }
  std::vector<std::string> required = {"VTS_PTT_SRPT", "VTS_PGCIT", "VTS_C_ADT", "VTS_VOBU_ADMAP"};
  if (!ts.menu_vobs.parts.empty()) {
    required.insert(required.end(), {"VTSM_PGCI_UT", "VTSM_C_ADT", "VTSM_VOBU_ADMAP"});
  }
  CheckTablePlaces(ts.ifo_name, ts.tables, std::uint64_t{ts.vtsi_ea} + 1, ts.ifo_size, required,
                   out);
}

// The 768 bytes of a VTS_ATRT record after its end address and category repeat VTSI_MAT from
// byte 0x100 (menu and title attributes).
void CheckAttributeRecord(const Disc& disc, const TitleSet& ts, Findings& out) {
  if (ts.number > disc.vmg.atrt_records.size()) return;
  ByteView record(disc.vmg.atrt_records[ts.number - 1]);
  ByteView vtsi(ts.ifo);
  if (DiscValue(record, VtsAtrtRecordLayout(), "vts_cat") != ts.category) {
    out.AtTable(
        "vts_atrt.attributes", "VIDEO_TS.IFO", "VTS_ATRT", ts.number,
        Format("category %08x, %s has %08x",
               {DiscValue(record, VtsAtrtRecordLayout(), "vts_cat"), ts.ifo_name, ts.category}));
  }
  for (const FieldDesc& field : VtsAtrtRecordLayout()) {
    if (field.offset < 8) continue;
    std::uint32_t items = FieldCount(record, field);
    for (std::uint32_t i = 0; i < items; ++i) {
      std::size_t off = FieldOffset(field, i);
      bool same = true;
      for (std::size_t b = 0; b < field.width; ++b) {
        same = same && record.u8(off + b) == vtsi.u8(0x100 - 8 + off + b);
      }
      if (!same) {
        out.AtTable("vts_atrt.attributes", "VIDEO_TS.IFO", "VTS_ATRT", ts.number,
                    Format("%s differs from %s (%s against %s)",
                           {FieldKey(field, i), ts.ifo_name, HexBytes(record, off, field.width),
                            HexBytes(vtsi, 0x100 - 8 + off, field.width)}));
      }
    }
  }
}

}  // namespace

void CheckInformationTables(const Disc& disc, Findings& out) {
  if (disc.vmg.ifo_found) CheckVideoManagerAddresses(disc, out);
  std::uint32_t on_disc = 0;
  for (const TitleSet& ts : disc.title_sets) {
    if (disc.access->Find(ts.ifo_name) != nullptr) on_disc = ts.number;
    if (!ts.present) continue;
    CheckTitleSetAddresses(disc, ts, out);
    CheckAttributeRecord(disc, ts, out);
  }
  if (!disc.vmg.ifo_found) return;  // file.missing says so; the title sets stand on their own
  if (on_disc != disc.vmg.title_set_count) {
    out.AtTable("ifo.title-set-count", "VIDEO_TS.IFO", "VMGI_MAT", 0,
                Format("VMG_NS %d, but the last title set on the disc is %d",
                       {disc.vmg.title_set_count, on_disc}));
  }
  if (disc.vmg.tables[3].start_sector != 0 && disc.vmg.atrt_count != disc.vmg.title_set_count) {
    out.AtTable("ifo.title-set-count", "VIDEO_TS.IFO", "VTS_ATRT", 0,
                Format("VTS_ATRT lists %d title sets, VMGI_MAT counts %d",
                       {disc.vmg.atrt_count, disc.vmg.title_set_count}));
  }
}

void CheckTitles(const Disc& disc, Findings& out) {
  const char* file = "VIDEO_TS.IFO";
  for (const TitleEntry& t : disc.vmg.titles) {
    const TitleSet* ts = disc.FindTitleSet(t.title_set);
    if (ts == nullptr) {
      out.AtTable("tt_srpt.title-set", file, "TT_SRPT", t.number,
                  Format("title %d is in title set %d, which the disc does not have",
                         {t.number, t.title_set}));
      continue;
    }
    if (t.start_sector != ts->disc_start) {
      out.AtTable("tt_srpt.start-sector", file, "TT_SRPT", t.number,
                  Format("title set %d starts at sector %d, it lies at sector %s",
                         {t.title_set, t.start_sector, std::to_string(ts->disc_start)}));
    }
    if (t.title_in_set == 0 || t.title_in_set > ts->parts.size()) {
      out.AtTable("tt_srpt.title", file, "TT_SRPT", t.number,
                  Format("title %d of title set %d, which has %d titles",
                         {t.title_in_set, t.title_set, ts->parts.size()}));
      continue;
    }
    std::size_t parts = ts->parts[t.title_in_set - 1].size();
    if (t.chapters != parts) {
      out.AtTable("tt_srpt.chapters", file, "TT_SRPT", t.number,
                  Format("%d chapters, VTS_PTT_SRPT of %s has %d parts for title %d",
                         {t.chapters, ts->ifo_name, parts, t.title_in_set}));
    }
  }
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    for (std::size_t t = 0; t < ts.parts.size(); ++t) {
      for (std::size_t p = 0; p < ts.parts[t].size(); ++p) {
        const PartOfTitle& part = ts.parts[t][p];
        std::string where = Format("title %d part %d", {t + 1, p + 1});
        if (part.pgcn == 0 || part.pgcn > ts.pgcs.size()) {
          out.AtTable("ptt.target", ts.ifo_name, "VTS_PTT_SRPT", static_cast<std::uint32_t>(t + 1),
                      Format("%s: program chain %d, the title set has %d",
                             {where, part.pgcn, ts.pgcs.size()}));
          continue;
        }
        const Pgc& pgc = ts.pgcs[part.pgcn - 1];
        if (part.pgn == 0 || part.pgn > pgc.declared_programs) {
          out.AtTable("ptt.target", ts.ifo_name, "VTS_PTT_SRPT", static_cast<std::uint32_t>(t + 1),
                      Format("%s: program %d of program chain %d, which has %d programs",
                             {where, part.pgn, part.pgcn, pgc.declared_programs}));
        }
      }
    }
  }
}

namespace {

// Cells of angle blocks: their sectors interleave with the other angles' cells.
std::set<std::pair<std::uint16_t, std::uint8_t>> AngleCells(const std::vector<Pgc>& pgcs) {
  std::set<std::pair<std::uint16_t, std::uint8_t>> cells;
  for (const Pgc& pgc : pgcs) {
    for (const Cell& c : pgc.cells) {
      if (c.block_type() != 0 || c.interleaved()) cells.insert({c.vob_id, c.cell_id});
    }
  }
  return cells;
}

void CheckCellTable(const std::string& file, const char* table, const VobSet& set, Findings& out,
                    const std::set<std::pair<std::uint16_t, std::uint8_t>>& interleaved = {}) {
  if (!set.has_cell_table) return;
  std::uint16_t highest_vob = 0;
  for (std::size_t i = 0; i < set.cells.size(); ++i) {
    const CellAddress& c = set.cells[i];
    auto entry = static_cast<std::uint32_t>(i + 1);
    highest_vob = std::max(highest_vob, c.vob_id);
    if (c.first > c.last || set.PastEnd(c.last)) {
      out.AtTable("c_adt.order", file, table, entry,
                  Format("VOB %d cell %d: sectors %d to %d, the VOBs have %s sectors",
                         {c.vob_id, c.cell_id, c.first, c.last, std::to_string(set.sectors)}));
    }
    if (i > 0) {
      const CellAddress& b = set.cells[i - 1];
      if (c.vob_id < b.vob_id || (c.vob_id == b.vob_id && c.cell_id <= b.cell_id)) {
        out.AtTable("c_adt.order", file, table, entry,
                    Format("VOB %d cell %d follows VOB %d cell %d",
                           {c.vob_id, c.cell_id, b.vob_id, b.cell_id}));
      } else if (c.first <= b.last && !interleaved.count({c.vob_id, c.cell_id}) &&
                 !interleaved.count({b.vob_id, b.cell_id})) {
        out.AtTable("c_adt.order", file, table, entry,
                    Format("VOB %d cell %d starts at sector %d, inside the cell before (to %d)",
                           {c.vob_id, c.cell_id, c.first, b.last}));
      }
    }
    if (!set.vobu_starts.empty() && !set.IsVobuStart(c.first)) {
      out.AtTable("c_adt.order", file, table, entry,
                  Format("VOB %d cell %d starts at sector %d, which is not a VOBU start",
                         {c.vob_id, c.cell_id, c.first}));
    }
  }
  if (set.vob_count != highest_vob) {
    out.AtTable("c_adt.order", file, table, 0,
                Format("the header counts %d VOBs, the cells name VOBs up to %d",
                       {set.vob_count, highest_vob}));
  }
  std::uint64_t expected_end = 7 + std::uint64_t{kCellAddressBytes} * set.cells.size();
  if (set.cell_table_end < 7 || (set.cell_table_end - 7) % kCellAddressBytes != 0) {
    out.AtTable("ifo.table-address", file, table, 0,
                Format("end address %d does not end a whole cell entry (expected %s)",
                       {set.cell_table_end, std::to_string(expected_end)}));
  }
}

void CheckAddressMap(const std::string& file, const char* table, const VobSet& set, Findings& out) {
  if (!set.has_admap) return;
  for (std::size_t i = 0; i < set.vobu_starts.size(); ++i) {
    std::uint32_t s = set.vobu_starts[i];
    auto entry = static_cast<std::uint32_t>(i + 1);
    if (set.PastEnd(s)) {
      out.AtTable(
          "vobu_admap.order", file, table, entry,
          Format("VOBU at sector %d, the VOBs have %s sectors", {s, std::to_string(set.sectors)}));
    } else if (i > 0 && s <= set.vobu_starts[i - 1]) {
      out.AtTable(
          "vobu_admap.order", file, table, entry,
          Format("VOBU at sector %d follows one at sector %d", {s, set.vobu_starts[i - 1]}));
    }
  }
  if (set.admap_end < 3 || (set.admap_end - 3) % 4 != 0) {
    out.AtTable("ifo.table-address", file, table, 0,
                Format("end address %d does not end a whole entry", {set.admap_end}));
  }
}

}  // namespace

void CheckAddressTables(const Disc& disc, Findings& out) {
  CheckCellTable("VIDEO_TS.IFO", "VMGM_C_ADT", disc.vmg.menu_vobs, out);
  CheckAddressMap("VIDEO_TS.IFO", "VMGM_VOBU_ADMAP", disc.vmg.menu_vobs, out);
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    CheckCellTable(ts.ifo_name, "VTSM_C_ADT", ts.menu_vobs, out);
    CheckAddressMap(ts.ifo_name, "VTSM_VOBU_ADMAP", ts.menu_vobs, out);
    CheckCellTable(ts.ifo_name, "VTS_C_ADT", ts.title_vobs, out, AngleCells(ts.pgcs));
    CheckAddressMap(ts.ifo_name, "VTS_VOBU_ADMAP", ts.title_vobs, out);
    for (std::size_t m = 0; m < ts.time_maps.size(); ++m) {
      const TitleTimeMap& map = ts.time_maps[m];
      for (std::size_t e = 0; e < map.entries.size(); ++e) {
        std::uint32_t sector = map.entries[e] & 0x7FFFFFFF;
        if (!ts.title_vobs.vobu_starts.empty() && !ts.title_vobs.IsVobuStart(sector)) {
          out.AtTable("tmapt.entry", ts.ifo_name, "VTS_TMAPT", static_cast<std::uint32_t>(m + 1),
                      Format("entry %d: sector %d is not a VOBU start", {e + 1, sector}));
        }
      }
    }
  }
}

}  // namespace tarvex
