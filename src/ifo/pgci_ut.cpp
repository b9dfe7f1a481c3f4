#include "ifo/pgci_ut.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/pgc.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderSize = 8;
constexpr std::uint32_t kPointerSize = 8;
// A language unit is read as one block of this size; its chains are found inside it.
constexpr std::size_t kUnitBlockSize = 4096;
constexpr const char* kLoadCaption = "Illegal source format!";

// What tells the two instances apart: names, report texts and IfoSource keys.
struct Instance {
  PgciUtState IfoState::*state;
  std::uint32_t (*start_sector)(const AppContext& ctx);
  // Unit table lines.
  TableLines lines;
  const char* count_line;
  const char* end_line;
  const char* code_line;
  const char* existence_line;
  const char* start_line;
  // Language unit lines.
  const char* lu_name;
  const char* lu_description;
  const char* lu_absence;
  const char* lu_total_line;  // shown once above the units, or nullptr
  const char* lu_count_line;
  const char* lu_end_line;
  const char* pgc_category_line;
  const char* pgc_address_line;
  // Unit table section and keys.
  const char* section;
  const char* count_key;
  const char* end_key;
  const char* code_key;
  const char* existence_key;
  const char* start_key;
  // Language unit section and keys; chain sections "<unit>_<chain>".
  const char* lu_section;
  const char* lu_count_key;
  const char* lu_end_key;
  const char* pgc_section;
  const char* pgc_category_key;
  const char* pgc_address_key;
  const char* pgc_prefix;
  // Load messages.
  const char* code_missing;
  const char* existence_missing;
  const char* lu_missing;
};

constexpr Instance kTitleSetMenu = {
    .state = &IfoState::vtsm_pgci_ut,
    .start_sector = [](const AppContext& ctx) { return TitleSetStartSector(ctx, kVtsmPgciUtSa); },
    .lines = {.absent = "** VTSM_PGCI_UT File: There is no Video Title Set Menu PGCI Unit Table",
              .heading = "VTSM_PGCI_UT File: Video Title Set Menu PGCI Unit Table"},
    .count_line = "Number of VTSM_PGCI_LUs: %d",
    .end_line = "End byte address of VTSM_PGCI_LUs table: %d",
    .code_line = "  Video Title Set Menu Language Code %d: %c%c",
    .existence_line = "  Video Title Set Menu Existence %d: %x",
    .start_line = "  Video Title Set Menu Language Start Address %d: %d",
    .lu_name = "VTSM_LUI",
    .lu_description = "Video Title Set Menu Language Unit Table",
    .lu_absence = "** VTSM_LU File: There is no Video Title Set Menu Language Unit Table",
    .lu_total_line = nullptr,
    .lu_count_line = "LU %d Number of VTSM_PGCI_SRP: %d",
    .lu_end_line = "LU %d End byte address of VTSM_LU_EA table: %d",
    .pgc_category_line = "  VTSM_PGC Category %d: %x",
    .pgc_address_line = "  VTSM_PGCI byte address %d: %d",
    .section = "vtsm_pgci_ut",
    .count_key = "vtsm_lu_ns",
    .end_key = "vtsm_pgci_lu_ea",
    .code_key = "vtsm_lu_srp%02d_lcd",
    .existence_key = "vtsm_lu_srp%02d_exst",
    .start_key = "vtsm_lu_srp%02d_lu_sa",
    .lu_section = "vtsm_lu",
    .lu_count_key = "vtsm_lui%02d_pgci_srp_ns",
    .lu_end_key = "vtsm_lui%02d_lu_ea",
    .pgc_section = "vtsm_lu%02d_%02d",
    .pgc_category_key = "vtsm_lui_pgc_cat",
    .pgc_address_key = "vtsm_lui_pgc_pgci_sa",
    .pgc_prefix = "vtsm_pgc_",
    .code_missing = "VTSM_PGCI_UT is missing AN vtsm_lu_srpnn_lcd statuement",
    .existence_missing = "VTSM_PGCI_UT is missing an vtsm_lu_srpnn_exst statuement",
    .lu_missing = "VTSM_LU: is missing the %s statement",
};

constexpr Instance kVideoManagerMenu = {
    .state = &IfoState::vmgm_pgci_ut,
    .start_sector = [](const AppContext& ctx) { return ctx.ifo.vmgi_mat.vmgm_pgci_ut_sa; },
    .lines = {.absent = "** VMGM_PGCI_UT File: There is no Video Manager Menu PGCI Unit Table",
              .heading = "VMGM_PGCI_UT File: Video Manager Menu PGCI Unit Table"},
    .count_line = "Number of VMGM_PGCI_LUs: %d",
    .end_line = "End byte address of VMGM_PGCI_LUs table: %d",
    .code_line = "  Video Manager Menu Language Code %d: %c%c",
    .existence_line = "  Video Manager Menu Existence %d: %x",
    .start_line = "  Video Manager Menu Language Start Address %d: %d",
    .lu_name = "VMGM_LUI",
    .lu_description = "Video Manager Menu Language Unit Table",
    .lu_absence = "** VMGM_LU File: There is no Video Manager Menu Language Unit Table",
    .lu_total_line = "There are %d LU PGCs",
    .lu_count_line = "LU %d Number of VMGM_PGCI_SRP: %d",
    .lu_end_line = "LU %d End byte address of VMGM_LU_EA table: %d",
    .pgc_category_line = "  VMGM_PGC Category %d: %x",
    .pgc_address_line = "  VMGM_PGCI byte address %d: %d",
    .section = "vmgm_pgci_ut",
    .count_key = "vmgm_lu_ns",
    .end_key = "vmgm_pgci_lu_ea",
    .code_key = "vmgm_lu_srp%02d_lcd",
    .existence_key = "vmgm_lu_srp%02d_exst",
    .start_key = "vmgm_lu_srp%02d_lu_sa",
    .lu_section = "vmgm_lu",
    .lu_count_key = "vmgm_lui%02d_pgci_srp_ns",
    .lu_end_key = "vmgm_lui%02d_lu_ea",
    .pgc_section = "vmgm_lu%02d_%02d",
    .pgc_category_key = "vmgm_lui_pgc_cat",
    .pgc_address_key = "vmgm_lui_pgc_pgci_sa",
    .pgc_prefix = "vmgm_pgc_",
    .code_missing = "VMGM_PGCI_UT is missing AN vmgm_lu_srpnn_lcd statuement",
    .existence_missing = "VMGM_PGCI_UT is missing an vmgm_lu_srpnn_exst statuement",
    .lu_missing = "VMGM_LU: is missing the %s statement",
};

// The unit table's body read afresh (end address AND 0xFFFF bytes after the header, zeros
// beyond the end of the file). Every unit the header counts is walked; pointers beyond the
// body read as zeros, that is as units not defined.
struct UnitTable {
  std::vector<std::uint8_t> body;
  std::uint32_t units = 0;
  ByteView view() const { return ByteView(body); }
  // The search pointer of unit n (from 1): language code, existence flags, offset.
  ByteView pointer(std::uint32_t n) const {
    return view().sub(kPointerSize * (n - 1), kLanguageUnitPointerBytes);
  }
  std::uint32_t field(std::uint32_t n, std::string_view key) const {
    return DiscValue(pointer(n), LanguageUnitPointerLayout(), key);
  }
  std::uint32_t unit_offset(std::uint32_t n) const { return field(n, "lu_sa"); }
  ByteView code(std::uint32_t n) const {
    return DiscFieldBytes(pointer(n), LanguageUnitPointerLayout(), "lcd");
  }
};

UnitTable ReadUnitTable(const OpenedTable& s) {
  UnitTable t;
  t.body = ReadTableBody(s, s.end_address & 0xFFFFu);
  t.units = s.count;
  return t;
}

// A language unit read as one 4096-byte block (zeros beyond the end of the file), and how
// many of its chains are walked: every one its header counts (pointers beyond the block read
// as zeros), within what is left of the pass's chain budget.
struct LanguageUnit {
  std::vector<std::uint8_t> block;
  std::uint32_t pgcs = 0;
  ByteView view() const { return ByteView(block); }
};

// The unit's offset counts from the table start, 8 bytes before the body.
LanguageUnit ReadLanguageUnit(const OpenedTable& s, std::uint32_t offset, std::uint64_t& budget) {
  LanguageUnit lu;
  std::int64_t pos = s.body_pos - kHeaderSize + offset;
  lu.block = ReadFileBlock(*s.file, pos, kUnitBlockSize);
  lu.pgcs = static_cast<std::uint32_t>(std::min<std::uint64_t>(lu.view().be16(0), budget));
  budget -= lu.pgcs;
  return lu;
}

std::uint32_t OpenUnitTable(AppContext& ctx, const Instance& in, File& ifo) {
  return OpenCountedTable(ctx, ifo, in.start_sector(ctx), in.lines, (ctx.ifo.*in.state).opened);
}

void ReportUnitTable(AppContext& ctx, const Instance& in) {
  ctx.ClearReportList();
  const OpenedTable& s = (ctx.ifo.*in.state).opened;
  if (!s.open()) return;
  UnitTable t = ReadUnitTable(s);
  ctx.AddReportLine(Format(in.count_line, {s.count}));
  ctx.AddReportLine(Format(in.end_line, {s.end_address}));
  for (std::uint32_t n = 1; n <= t.units; ++n) {
    ctx.AddReportLine(Format(in.code_line, {n, t.code(n).u8(0), t.code(n).u8(1)}));
    ctx.AddReportLine(Format(in.existence_line, {n, t.field(n, "exst")}));
    ctx.AddReportLine(Format(in.start_line, {n, t.unit_offset(n)}));
  }
}

void DisassembleUnitTable(AppContext& ctx, const Instance& in) {
  const OpenedTable& s = (ctx.ifo.*in.state).opened;
  if (!s.open()) return;
  UnitTable t = ReadUnitTable(s);
  WriteSourceValue(ctx, in.section, in.count_key, Format("%d", {s.count}));
  WriteSourceValue(ctx, in.section, in.end_key, Format("%d", {s.end_address}));
  for (std::uint32_t n = 1; n <= t.units; ++n) {
    WriteSourceValue(ctx, in.section, Format(in.code_key, {n}),
                     Format("%c%c", {t.code(n).u8(0), t.code(n).u8(1)}));
    WriteSourceValue(ctx, in.section, Format(in.existence_key, {n}),
                     Format("%02x", {t.field(n, "exst")}));
    WriteSourceValue(ctx, in.section, Format(in.start_key, {n}), Format("%d", {t.unit_offset(n)}));
  }
}

// The unit table's open step, which always comes right before this one, has located the table
// (or forgotten it when there is none).
std::uint32_t OpenLanguageUnits(AppContext& ctx, const Instance& in, File& /*ifo*/) {
  const OpenedTable& s = (ctx.ifo.*in.state).opened;
  std::uint32_t defined = 0;
  if (s.open()) {
    UnitTable t = ReadUnitTable(s);
    for (std::uint32_t n = 1; n <= t.units; ++n) defined += t.unit_offset(n) != 0 ? 1 : 0;
  }
  if (defined != 0) {
    AddHeadingLine(ctx, in.lu_name, in.lu_description);
  } else {
    ctx.AddReportLine(in.lu_absence);
  }
  return defined;
}

void ReportLanguageUnits(AppContext& ctx, const Instance& in) {
  ctx.ClearReportList();
  const OpenedTable& s = (ctx.ifo.*in.state).opened;
  if (!s.open()) return;
  UnitTable t = ReadUnitTable(s);
  if (in.lu_total_line != nullptr) ctx.AddReportLine(Format(in.lu_total_line, {s.count}));
  std::uint64_t budget = ChainBudget(s);
  for (std::uint32_t n = 1; n <= t.units; ++n) {
    std::uint32_t offset = t.unit_offset(n);
    if (offset == 0) {
      ctx.AddReportLine(Format("Language Unit %d is not define.", {n}));
      continue;
    }
    LanguageUnit lu = ReadLanguageUnit(s, offset, budget);
    ByteView b = lu.view();
    ctx.AddReportLine(Format(in.lu_count_line, {n, b.be16(0)}));
    ctx.AddReportLine(Format(in.lu_end_line, {n, b.be32(4)}));
    for (std::uint32_t p = 1; p <= lu.pgcs; ++p) {
      ByteView pointer = b.sub(kHeaderSize + kPointerSize * (p - 1), kChainPointerBytes);
      std::uint32_t address = DiscValue(pointer, ChainPointerLayout(), "pgci_sa");
      ctx.AddReportLine(
          Format(in.pgc_category_line, {p, DiscValue(pointer, ChainPointerLayout(), "pgc_cat")}));
      ctx.AddReportLine(Format(in.pgc_address_line, {p, address}));
      PgcReport(ctx, 4, b, address);
    }
  }
}

void DisassembleLanguageUnits(AppContext& ctx, const Instance& in) {
  const OpenedTable& s = (ctx.ifo.*in.state).opened;
  if (!s.open()) return;
  UnitTable t = ReadUnitTable(s);
  std::uint64_t budget = ChainBudget(s);
  for (std::uint32_t n = 1; n <= t.units; ++n) {
    std::uint32_t offset = t.unit_offset(n);
    if (offset == 0) continue;
    LanguageUnit lu = ReadLanguageUnit(s, offset, budget);
    ByteView b = lu.view();
    WriteSourceValue(ctx, in.lu_section, Format(in.lu_count_key, {n}), Format("%d", {b.be16(0)}));
    WriteSourceValue(ctx, in.lu_section, Format(in.lu_end_key, {n}), Format("%d", {b.be32(4)}));
    for (std::uint32_t p = 1; p <= lu.pgcs; ++p) {
      ByteView pointer = b.sub(kHeaderSize + kPointerSize * (p - 1), kChainPointerBytes);
      std::uint32_t address = DiscValue(pointer, ChainPointerLayout(), "pgci_sa");
      std::string section = Format(in.pgc_section, {n, p});
      WriteSourceValue(ctx, section, in.pgc_category_key,
                       Format("%08x", {DiscValue(pointer, ChainPointerLayout(), "pgc_cat")}));
      WriteSourceValue(ctx, section, in.pgc_address_key, Format("%d", {address}));
      PgcDisassemble(ctx, b, address, in.pgc_prefix, section);
    }
  }
}

// Reads the units' search pointers; false (after the message) when one is missing.
bool LoadUnitPointers(AppContext& ctx, const Instance& in, std::vector<LoadedLanguageUnit>& units) {
  std::string value;
  for (std::uint32_t n = 1; n <= units.size(); ++n) {
    LoadedLanguageUnit& unit = units[n - 1];
    if (!ReadSourceValue(ctx, in.section, Format(in.code_key, {n}), value)) {
      ctx.ui.ShowMessage(in.code_missing, kLoadCaption);
      return false;
    }
    unit.lcd[0] = value.size() > 0 ? static_cast<std::uint8_t>(value[0]) : 0;
    unit.lcd[1] = value.size() > 1 ? static_cast<std::uint8_t>(value[1]) : 0;
    if (!ReadSourceValue(ctx, in.section, Format(in.existence_key, {n}), value)) {
      ctx.ui.ShowMessage(in.existence_missing, kLoadCaption);
      return false;
    }
    unit.exst = ParseHexByte(value);
  }
  return true;
}

// Reads unit n's chains; false (after the message) when its count or a category is missing.
bool LoadUnitChains(AppContext& ctx, const Instance& in, std::uint32_t n,
                    LoadedLanguageUnit& unit) {
  std::string value;
  std::string count_key = Format(in.lu_count_key, {n});
  if (!ReadSourceValue(ctx, in.lu_section, count_key, value)) {
    ctx.ui.ShowMessage(Format(in.lu_missing, {count_key}), kLoadCaption);
    return false;
  }
  std::uint32_t count = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t p = 1; p <= count; ++p) {
    std::string section = Format(in.pgc_section, {n, p});
    if (!ReadSourceValue(ctx, section, in.pgc_category_key, value)) {
      ctx.ui.ShowMessage(Format(in.lu_missing, {in.pgc_category_key}), kLoadCaption);
      return false;
    }
    LoadedPgc pgc;
    pgc.category = ParseHexValue(value);
    pgc.bytes = AssembleChainBytes(ctx, section, in.pgc_prefix);
    unit.pgcs.push_back(std::move(pgc));
  }
  return true;
}

// Loads the units and all their chains. A load that stops at a message keeps the units whose
// chains were all read before it; a missing search pointer statement keeps none.
void LoadUnitTable(AppContext& ctx, const Instance& in) {
  PgciUtState& s = ctx.ifo.*in.state;
  s.units.clear();
  std::string value;
  if (!ReadSourceValue(ctx, in.section, in.count_key, value)) return;
  std::vector<LoadedLanguageUnit> units(static_cast<std::uint16_t>(ParseDecimal(value)));
  if (!LoadUnitPointers(ctx, in, units)) return;
  for (std::uint32_t n = 1; n <= units.size(); ++n) {
    if (!LoadUnitChains(ctx, in, n, units[n - 1])) return;
    s.units.push_back(std::move(units[n - 1]));
  }
}

// The table's size: header, one search pointer per unit, and the units.
std::uint32_t TableBytes(const PgciUtState& s) {
  if (s.units.empty()) return 0;
  std::uint32_t bytes = kHeaderSize;
  for (const LoadedLanguageUnit& unit : s.units) bytes += kPointerSize + ChainBlockBytes(unit.pgcs);
  return bytes;
}

// The end address written (bytes - 1) is computed again when the table is written.
TableSize MeasureUnitTable(AppContext& ctx, const Instance& in) {
  std::uint32_t bytes = TableBytes(ctx.ifo.*in.state);
  if (bytes == 0) return {};
  return {SectorsFor(bytes), bytes};
}

void EmitUnitTable(AppContext& ctx, const Instance& in, File& out) {
  PgciUtState& s = ctx.ifo.*in.state;
  std::uint32_t bytes = TableBytes(s);
  if (bytes == 0) return;
  std::vector<std::uint8_t> table;
  table.reserve(bytes);
  ByteAppender a(table);
  AppendCountedHeader(a, static_cast<std::uint32_t>(s.units.size()), bytes - 1);
  std::uint32_t offset = kHeaderSize + kPointerSize * static_cast<std::uint32_t>(s.units.size());
  for (const LoadedLanguageUnit& unit : s.units) {
    a.u8(unit.lcd[0]);
    a.u8(unit.lcd[1]);
    a.u8(0);
    a.u8(unit.exst);
    a.be32(offset);
    offset += ChainBlockBytes(unit.pgcs);
  }
  for (const LoadedLanguageUnit& unit : s.units) {
    // The unit's end address field holds its size, not its size - 1 as the table's does.
    AppendChainBlock(a, unit.pgcs, ChainBlockBytes(unit.pgcs));
  }
  WriteTableSectors(out, table);
  s.units.clear();
}

constexpr Instance kInstances[] = {kTitleSetMenu, kVideoManagerMenu};

// The unit table's load loads the language units too, so their own load step is empty.
constexpr VariantOperations<Instance> kUnitTable = {OpenUnitTable,        ReportUnitTable,
                                                    DisassembleUnitTable, LoadUnitTable,
                                                    MeasureUnitTable,     EmitUnitTable};
constexpr VariantOperations<Instance> kLanguageUnits = {
    OpenLanguageUnits, ReportLanguageUnits, DisassembleLanguageUnits, nullptr, nullptr, nullptr};

}  // namespace

const TableModule kVtsmPgciUtModule =
    VariantModule<kUnitTable, kInstances, 0>(TableId::kVtsmPgciUt);
const TableModule kVtsmLuModule = VariantModule<kLanguageUnits, kInstances, 0>(TableId::kVtsmLu);
const TableModule kVmgmPgciUtModule =
    VariantModule<kUnitTable, kInstances, 1>(TableId::kVmgmPgciUt);
const TableModule kVmgmLuModule = VariantModule<kLanguageUnits, kInstances, 1>(TableId::kVmgmLu);

}  // namespace tarvex
