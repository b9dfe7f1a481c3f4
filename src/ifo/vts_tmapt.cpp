#include "ifo/vts_tmapt.h"

#include <string>

#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr const char* kHeaderSection = "vts_tmapt";
constexpr const char* kMapSection = "vts_tmapti";
constexpr const char* kMissingCaption = "Statement missing in vts_tmapti";
constexpr std::uint32_t kDiscontinuity = 0x80000000u;
constexpr TableNames kNames = {"VTS_TMAPTI", "Video Title Set Time Map Table",
                               "Video title set Time Map Table"};

// One time map as found in the file: its offset from the table start, its head and the
// entries walked.
struct FoundMap {
  std::uint32_t offset = 0;
  std::uint8_t time_unit = 0;
  std::uint16_t entry_count = 0;
  std::vector<std::uint32_t> entries;
};

VtsTmaptState& State(AppContext& ctx) {
  return ctx.ifo.vts_tmapt;
}

std::uint32_t Open(AppContext& ctx, File& ifo) {
  return OpenCountedTable(ctx, ifo, TitleSetStartSector(ctx, kVtsTmaptSa), kNames,
                          State(ctx).opened);
}

// Entries walked over all maps in one pass: never fewer than one map's largest count, so any
// one map lists all its entries, and otherwise no more than the 4-byte positions the file
// holds after the header, so maps that share their entries cannot multiply the work.
std::uint32_t EntryBudget(const OpenedTable& table) {
  constexpr std::uint32_t kLargestCount = 0xFFFF;
  std::uint32_t in_file = ItemsInFile(table, 4);
  return in_file > kLargestCount ? in_file : kLargestCount;
}

// Reads the body afresh and walks the maps; offsets count from the table start, 8 bytes
// before the body. Every map the header counts and every entry a map counts is walked, over
// zeros beyond the body or the end of the file, within the entry budget.
std::vector<FoundMap> ReadMaps(const OpenedTable& table) {
  std::vector<std::uint8_t> bytes = ReadTableBody(table, (table.end_address & 0xFFFF) + 1);
  ByteView body(bytes);
  std::uint32_t budget = EntryBudget(table);
  std::vector<FoundMap> result(table.count);
  for (std::uint32_t n = 0; n < table.count; ++n) {
    FoundMap& map = result[n];
    map.offset = body.be32(4 * std::size_t{n});
    // A head inside the table header lies outside the body: it reads as zeros.
    ByteView head = BodyAt(body, map.offset);
    map.time_unit = head.u8(0);
    map.entry_count = head.be16(2);
    for (std::uint32_t e = 0; e < map.entry_count && budget > 0; ++e, --budget) {
      map.entries.push_back(head.be32(4 + 4 * std::size_t{e}));
    }
  }
  return result;
}

void Report(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  ctx.ClearReportList();
  ctx.AddReportLine(Format("Number of VTS_TMAPS: %d", {table.count}));
  ctx.AddReportLine(Format("End byte address of VTS_TMAPT_EA table: %d", {table.end_address}));
  std::vector<FoundMap> maps = ReadMaps(table);
  for (std::size_t n = 0; n < maps.size(); ++n) {
    const FoundMap& map = maps[n];
    ctx.AddReportLine(Format("  Time map %d byte start address %d.", {n + 1, map.offset}));
    ctx.AddReportLine(Format("  Time map %d contains %d entries using time unit of %d seconds.",
                             {n + 1, map.entry_count, map.time_unit}));
    for (std::size_t e = 0; e < map.entries.size(); ++e) {
      std::uint32_t entry = map.entries[e];
      const char* format = (entry & kDiscontinuity) == 0
                               ? "    Entry %d at sector address %d"
                               : "    Discontinuity Entry %d at sector address %d";
      ctx.AddReportLine(Format(format, {e + 1, entry & ~kDiscontinuity}));
    }
  }
}

void Disassemble(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  WriteSourceValue(ctx, kHeaderSection, "vts_tmap_ns", Format("%d", {table.count}));
  WriteSourceValue(ctx, kHeaderSection, "vts_tmapt_ea", Format("%d", {table.end_address}));
  std::vector<FoundMap> maps = ReadMaps(table);
  for (std::size_t n = 0; n < maps.size(); ++n) {
    const FoundMap& map = maps[n];
    // The start address is written for reference only (with a full stop); it is computed
    // again when the table is assembled.
    WriteSourceValue(ctx, kMapSection, Format("vts_tmap%02d_sa", {n + 1}),
                     Format("%d.", {map.offset}));
    WriteSourceValue(ctx, kMapSection, Format("vts_tmap%02d_tmu", {n + 1}),
                     Format("%d", {map.time_unit}));
    WriteSourceValue(ctx, kMapSection, Format("vts_tmap%02d_map_en_ns", {n + 1}),
                     Format("%d", {map.entry_count}));
    for (std::size_t e = 0; e < map.entries.size(); ++e) {
      std::uint32_t entry = map.entries[e];
      WriteSourceValue(ctx, kMapSection, Format("vts_tmap%02d_entry%02d_discon", {n + 1, e + 1}),
                       (entry & kDiscontinuity) != 0 ? "1" : "0");
      WriteSourceValue(ctx, kMapSection, Format("vts_tmap%02d_entry%02d_address", {n + 1, e + 1}),
                       Format("%d", {entry & ~kDiscontinuity}));
    }
  }
}

// Reads the entries of map n into map. A missing key shows the message and leaves this
// entry and the rest of the map's entries 0; the map keeps its declared entry count.
void LoadEntries(AppContext& ctx, std::uint32_t n, TimeMap& map) {
  std::string value;
  for (std::uint32_t e = 1; e <= map.entry_count; ++e) {
    std::string discon_key = Format("vts_tmap%02d_entry%02d_discon", {n, e});
    if (!ReadRequiredValue(ctx, kMapSection, discon_key, kMissingCaption, value)) return;
    bool discontinuity = !value.empty() && value[0] == '1';
    std::string address_key = Format("vts_tmap%02d_entry%02d_address", {n, e});
    if (!ReadRequiredValue(ctx, kMapSection, address_key, kMissingCaption, value)) return;
    map.entries.push_back(ParseDecimal(value) | (discontinuity ? kDiscontinuity : 0));
  }
}

// Reads the maps; a missing time unit or entry count ends the loading (maps read so far are
// kept). A missing header count loads nothing, without a message.
void Load(AppContext& ctx) {
  VtsTmaptState& s = State(ctx);
  s.count = 0;
  s.maps.clear();
  std::string value;
  if (!ReadSourceValue(ctx, kHeaderSection, "vts_tmap_ns", value)) return;
  s.count = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t n = 1; n <= s.count; ++n) {
    TimeMap map;
    std::string key = Format("vts_tmap%02d_tmu", {n});
    if (!ReadRequiredValue(ctx, kMapSection, key, kMissingCaption, value)) return;
    map.time_unit = static_cast<std::uint8_t>(ParseDecimal(value));
    key = Format("vts_tmap%02d_map_en_ns", {n});
    if (!ReadRequiredValue(ctx, kMapSection, key, kMissingCaption, value)) return;
    map.entry_count = static_cast<std::uint16_t>(ParseDecimal(value));
    LoadEntries(ctx, n, map);
    s.maps.push_back(std::move(map));
  }
}

std::uint32_t MapBytes(const TimeMap& map) {
  return 4 + 4 * std::uint32_t{map.entry_count};
}

TableSize Measure(AppContext& ctx) {
  const VtsTmaptState& s = State(ctx);
  if (s.maps.empty()) return {};
  std::uint32_t bytes = 8 + 4 * static_cast<std::uint32_t>(s.maps.size());
  for (const TimeMap& map : s.maps) bytes += MapBytes(map);
  return {SectorsFor(bytes), bytes};
}

void Emit(AppContext& ctx, File& out) {
  VtsTmaptState& s = State(ctx);
  if (!s.maps.empty()) {
    std::vector<std::uint8_t> bytes;
    ByteAppender a(bytes);
    AppendCountedHeader(a, s.count, Measure(ctx).bytes - 1);
    std::uint32_t offset = 8 + 4 * static_cast<std::uint32_t>(s.maps.size());
    for (const TimeMap& map : s.maps) {
      a.be32(offset);
      offset += MapBytes(map);
    }
    for (const TimeMap& map : s.maps) {
      a.u8(map.time_unit);
      a.u8(0);
      a.be16(map.entry_count);
      for (std::uint32_t entry : map.entries) a.be32(entry);
      a.zeros(4 * (std::size_t{map.entry_count} - map.entries.size()));
    }
    WriteTableSectors(out, bytes);
  }
  s.count = 0;
  s.maps.clear();
}

}  // namespace

const TableModule kVtsTmaptModule = {
    .id = TableId::kVtsTmapt,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = Load,
    .MeasureTable = Measure,
    .EmitTable = Emit,
};

}  // namespace tarvex
