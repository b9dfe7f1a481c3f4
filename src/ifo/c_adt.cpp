#include "ifo/c_adt.h"

#include <algorithm>
#include <string>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderBytes = 8;
constexpr std::uint32_t kCellBytes = kCellAddressBytes;
constexpr std::uint32_t kMaxVobs = 255;
constexpr std::uint32_t kMaxCellsPerVob = 99;
// Every variant reports a missing cell statement under the title set menu table's name.
constexpr const char* kMissingCaption = "Statement missing in vtsm_c_adt";

struct CAdtVariant {
  std::size_t slot;  // index into IfoState::c_adt
  const char* name;
  const char* absent;   // the absence line's text
  const char* heading;  // the heading line's text
  const char* section;
  const char* count_key;
  const char* end_key;
  const char* count_line;
  std::uint32_t (*start_sector)(const AppContext& ctx);
};

std::uint32_t VmgmStart(const AppContext& ctx) {
  return ctx.ifo.vmgi_mat.vmgm_c_adt_sa;
}
std::uint32_t VtsmStart(const AppContext& ctx) {
  return TitleSetStartSector(ctx, kVtsmCAdtSa);
}
std::uint32_t VtsStart(const AppContext& ctx) {
  return TitleSetStartSector(ctx, kVtsCAdtSa);
}

constexpr CAdtVariant kVariants[] = {
    {0, "VMGM_C_ADT", "VMGM Cell Address Table information.", "VMGM Cell Address Table information",
     "vmgm_c_adt", "vmgm_vob_ns", "vmgm_c_adt_ea", "Number of VOBs in VMGM_VOBS %d", VmgmStart},
    {1, "VTSM_C_ADT", "Video Title Set Menu Cell Address Table.",
     "Video Title Set Menu Cell Address Table", "vtsm_c_adt", "vtsm_vob_ns", "vtsm_c_adt_ea",
     "Number of VOBs in VTSM_VOBS: %d", VtsmStart},
    {2, "VTS_C_ADT", "Video Title Set Cell Address Table.", "Video Title Set Cell Address Table",
     "vts_c_adt", "vts_vob_ns", "vts_c_adt_ea", "Number of VOBs in VTS_VOBS: %d", VtsStart},
};

std::uint32_t Open(AppContext& ctx, const CAdtVariant& v, File& ifo) {
  return OpenCountedTable(ctx, ifo, v.start_sector(ctx), {v.name, v.absent, v.heading},
                          ctx.ifo.c_adt[v.slot].opened);
}

// The cell entries as the table holds them: the low 16 bits of the end address give the bytes
// read (zeros beyond the end of the file).
std::vector<std::uint8_t> ReadCells(const OpenedTable& s) {
  return ReadTableBody(s, s.end_address & 0xFFFFu);
}

// (end address - 7) / 12 cells, none when negative; a count from the 32-bit end address, so
// no cell that would start beyond the end of the file.
std::uint32_t CellCount(const OpenedTable& s) {
  std::int32_t cells = static_cast<std::int32_t>(s.end_address - 7u) / 12;
  if (cells <= 0) return 0;
  return std::min(static_cast<std::uint32_t>(cells), ItemsInFile(s, kCellBytes));
}

void Report(AppContext& ctx, const CAdtVariant& v) {
  ctx.ClearReportList();
  const OpenedTable& s = ctx.ifo.c_adt[v.slot].opened;
  if (!s.open()) return;
  ctx.AddReportLine(Format(v.count_line, {s.count}));
  ctx.AddReportLine(Format("End byte address of %s table: %d", {v.name, s.end_address}));
  std::vector<std::uint8_t> block = ReadCells(s);
  ByteView cells(block);
  std::uint32_t count = CellCount(s);
  auto layout = CellAddressLayout();
  for (std::uint32_t i = 0; i < count; ++i) {
    ByteView cell = cells.sub(std::size_t{i} * kCellBytes, kCellBytes);
    ctx.AddReportLine(
        Format("For table entry %d VOB ID %d Cell ID %d.",
               {i + 1, DiscValue(cell, layout, "vob_idn"), DiscValue(cell, layout, "c_idn")}));
    ctx.AddReportLine(Format("Start sector address is %d and end sector addres is %d.",
                             {DiscValue(cell, layout, "cp_sa"), DiscValue(cell, layout, "cp_ea")}));
  }
}

// Writes the header keys and as many cells as the header counts VOBs (later cells are left
// out: that is how this table has always been written).
void Disassemble(AppContext& ctx, const CAdtVariant& v) {
  const OpenedTable& s = ctx.ifo.c_adt[v.slot].opened;
  if (!s.open()) return;
  WriteSourceValue(ctx, v.section, v.count_key, Format("%d", {s.count}));
  WriteSourceValue(ctx, v.section, v.end_key, Format("%d", {s.end_address}));
  std::vector<std::uint8_t> block = ReadCells(s);
  ByteView cells(block);
  std::uint32_t count = std::min<std::uint32_t>(s.count, CellCount(s));
  auto layout = CellAddressLayout();
  for (std::uint32_t i = 0; i < count; ++i) {
    ByteView cell = cells.sub(std::size_t{i} * kCellBytes, kCellBytes);
    std::string prefix = Format("c_%03d_vob%03d_vts_", {DiscValue(cell, layout, "c_idn"),
                                                        DiscValue(cell, layout, "vob_idn")});
    for (const FieldDesc& field : layout) {
      WriteSourceValue(ctx, v.section, prefix + field.key, FormatSourceValue(cell, field));
    }
  }
}

// Reads the cell ID and the two sector keys of one cell; false (after the message) at the
// first missing one.
bool LoadCellFields(AppContext& ctx, const CAdtVariant& v, std::uint32_t cell, std::uint32_t vob,
                    std::array<std::uint8_t, 12>& entry) {
  ByteWriter w(entry);
  std::string value;
  // The VOB id (the first field) is read by the caller.
  for (const FieldDesc& field : CellAddressLayout().subspan(1)) {
    std::string key = Format("c_%03d_vob%03d_vts_%s", {cell, vob, field.key});
    if (!ReadRequiredValue(ctx, v.section, key, kMissingCaption, value)) return false;
    StoreSourceValue(w, field, 0, value);
  }
  return true;
}

// The cells of VOB 1, 2, ... each numbered from 1 up to the first missing one; the walk ends
// at the first VOB without a cell 1.
void Load(AppContext& ctx, const CAdtVariant& v) {
  CAdtState& s = ctx.ifo.c_adt[v.slot];
  s.cells.clear();
  s.loaded_vob_ns = 0;
  std::string value;
  if (!ReadSourceValue(ctx, v.section, v.count_key, value)) return;
  s.loaded_vob_ns = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t vob = 1; vob <= kMaxVobs; ++vob) {
    if (!ReadSourceValue(ctx, v.section, Format("c_001_vob%03d_vts_vob_idn", {vob}), value)) {
      return;
    }
    for (std::uint32_t cell = 1; cell <= kMaxCellsPerVob; ++cell) {
      std::string key = Format("c_%03d_vob%03d_vts_vob_idn", {cell, vob});
      if (!ReadSourceValue(ctx, v.section, key, value)) break;
      std::array<std::uint8_t, 12>& entry = s.cells.emplace_back();  // zeroed
      StoreSourceValue(ByteWriter(entry), CellAddressLayout()[0], 0, value);
      if (!LoadCellFields(ctx, v, cell, vob, entry)) break;
    }
  }
}

TableSize Measure(AppContext& ctx, const CAdtVariant& v) {
  const CAdtState& s = ctx.ifo.c_adt[v.slot];
  if (s.cells.empty()) return {};
  std::uint32_t bytes = kHeaderBytes + kCellBytes * static_cast<std::uint32_t>(s.cells.size());
  return {SectorsFor(bytes), bytes};
}

void Emit(AppContext& ctx, const CAdtVariant& v, File& out) {
  CAdtState& s = ctx.ifo.c_adt[v.slot];
  if (s.cells.empty()) return;
  std::uint32_t n = static_cast<std::uint32_t>(s.cells.size());
  std::vector<std::uint8_t> bytes;
  ByteAppender a(bytes);
  AppendCountedHeader(a, s.loaded_vob_ns, TableEndAddress(kHeaderBytes, n, kCellBytes));
  for (const auto& cell : s.cells) a.bytes(ByteView(cell.data(), cell.size()));
  WriteTableSectors(out, bytes);
  s.cells.clear();
  s.cells.shrink_to_fit();
  s.loaded_vob_ns = 0;
}

// Each variant's module runs the one implementation above on the variant's data.
constexpr VariantOperations<CAdtVariant> kOperations = {Open, Report,  Disassemble,
                                                        Load, Measure, Emit};

}  // namespace

const TableModule kVmgmCAdtModule = VariantModule<kOperations, kVariants, 0>(TableId::kVmgmCAdt);
const TableModule kVtsmCAdtModule = VariantModule<kOperations, kVariants, 1>(TableId::kVtsmCAdt);
const TableModule kVtsCAdtModule = VariantModule<kOperations, kVariants, 2>(TableId::kVtsCAdt);

}  // namespace tarvex
