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

// The header and the country search pointers, read afresh.
std::vector<std::uint8_t> ReadTable(AppContext& ctx) {
  File& ifo = ctx.open.file_handle;
  std::int64_t pos = ctx.ifo.ptl_mait.opened.body_pos - kHeaderBytes;
  std::uint16_t countries = ByteView(ReadFileBlock(ifo, pos, kHeaderBytes)).be16(0);
  return ReadFileBlock(ifo, pos, kHeaderBytes + kPointerBytes * countries);
}

std::size_t PointerAt(std::uint32_t i) {
  return kHeaderBytes + std::size_t{kPointerBytes} * i;
}

void Report(AppContext& ctx) {
  ctx.ClearReportList();
  if (!ctx.ifo.ptl_mait.opened.open()) return;
  std::vector<std::uint8_t> block = ReadTable(ctx);
  ByteView t(block);
  ctx.AddReportLine(Format("Number of Countries: %d", {t.be16(0)}));
  ctx.AddReportLine(Format("Number of Video Title Sets: %d", {t.be16(2)}));
  ctx.AddReportLine(Format("End byte address of PTL_MAIT table: %d", {t.be32(4)}));
  for (std::uint32_t i = 0; i < t.be16(0); ++i) {
    std::size_t p = PointerAt(i);
    ctx.AddReportLine(Format("Country Code of %d: %c%c", {i + 1, t.u8(p), t.u8(p + 1)}));
    ctx.AddReportLine(Format("Start byte address of PTL_MAI of %d: %d", {i + 1, t.be16(p + 4)}));
  }
}

void Disassemble(AppContext& ctx) {
  if (!ctx.ifo.ptl_mait.opened.open()) return;
  std::vector<std::uint8_t> block = ReadTable(ctx);
  ByteView t(block);
  WriteSourceValue(ctx, kSection, "cty_ns", Format("%d", {t.be16(0)}));
  WriteSourceValue(ctx, kSection, "vts_ns", Format("%d", {t.be16(2)}));
  WriteSourceValue(ctx, kSection, "ptl_maait_ea", Format("%d", {t.be32(4)}));
  for (std::uint32_t i = 0; i < t.be16(0); ++i) {
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
