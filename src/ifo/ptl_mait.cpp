#include "ifo/ptl_mait.h"

#include <string>

#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderBytes = 8;
constexpr std::uint32_t kPointerBytes = 8;  // country code, 2 reserved, start byte, 2 reserved
constexpr TableNames kNames = {"VMG_MAIT", "Parental Management Information Table.",
                               "Parental Management Information Table"};
constexpr const char* kSection = "ptl_mait";
// The country search pointers are written beside the title search pointers.
constexpr const char* kPointerSection = "vmg_ptt_srpt";

// Returns the number of countries rather than the end address.
std::uint32_t Open(AppContext& ctx, File& ifo) {
  OpenedTable& table = ctx.ifo.ptl_mait.opened;
  OpenCountedTable(ctx, ifo, ctx.ifo.vmgi_mat.ptl_mait_sa, kNames, table);
  return table.count;
}

// The header and the country search pointers as many as the open step's count says, read
// afresh in one go (zeros beyond the end of the file).
std::vector<std::uint8_t> ReadTable(const OpenedTable& table) {
  return ReadFileBlock(*table.file, table.body_pos - kHeaderBytes,
                       kHeaderBytes + std::size_t{kPointerBytes} * table.count);
}

std::size_t PointerAt(std::uint32_t i) {
  return kHeaderBytes + std::size_t{kPointerBytes} * i;
}

void Report(AppContext& ctx) {
  ctx.ClearReportList();
  const OpenedTable& table = ctx.ifo.ptl_mait.opened;
  if (!table.open()) return;
  std::vector<std::uint8_t> block = ReadTable(table);
  ByteView t(block);
  ctx.AddReportLine(Format("Number of Countries: %d", {table.count}));
  ctx.AddReportLine(Format("Number of Video Title Sets: %d", {t.be16(2)}));
  ctx.AddReportLine(Format("End byte address of PTL_MAIT table: %d", {table.end_address}));
  for (std::uint32_t i = 0; i < table.count; ++i) {
    std::size_t p = PointerAt(i);
    ctx.AddReportLine(Format("Country Code of %d: %c%c", {i + 1, t.u8(p), t.u8(p + 1)}));
    ctx.AddReportLine(Format("Start byte address of PTL_MAI of %d: %d", {i + 1, t.be16(p + 4)}));
  }
}

void Disassemble(AppContext& ctx) {
  const OpenedTable& table = ctx.ifo.ptl_mait.opened;
  if (!table.open()) return;
  std::vector<std::uint8_t> block = ReadTable(table);
  ByteView t(block);
  WriteSourceValue(ctx, kSection, "cty_ns", Format("%d", {table.count}));
  WriteSourceValue(ctx, kSection, "vts_ns", Format("%d", {t.be16(2)}));
  WriteSourceValue(ctx, kSection, "ptl_maait_ea", Format("%d", {table.end_address}));
  for (std::uint32_t i = 0; i < table.count; ++i) {
    std::size_t p = PointerAt(i);
    WriteSourceValue(ctx, kPointerSection, Format("ptl_mai_srp%02d_cty_cd", {i + 1}),
                     Format("%c%c", {t.u8(p), t.u8(p + 1)}));
    WriteSourceValue(ctx, kPointerSection, Format("ptl_mai_srp%02d_ptl_mai_sa", {i + 1}),
                     Format("%d", {t.be16(p + 4)}));
  }
}

}  // namespace

// Never assembled: nothing is loaded, measured (0 sectors) or written.
const TableModule kPtlMaitModule = {
    .id = TableId::kVmgMait,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = nullptr,
    .MeasureTable = nullptr,
    .EmitTable = nullptr,
};

}  // namespace tarvex
