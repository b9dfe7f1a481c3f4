#include "ifo/vts_pgcit.h"

#include <algorithm>
#include <string>

#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/pgc.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// The absence line has no full stop.
constexpr TableNames kNames = {"VTS_PGCITI", "Video title set Program Chain Information Table",
                               "Video title set Program Chain Information Table"};
constexpr const char* kSection = "vts_pgcit";
constexpr const char* kMissingCaption = "Statement missing in vts_pgciti";
constexpr const char* kPgcPrefix = "vts_pgc_";
constexpr std::uint32_t kPointerSize = 8;

// The table's body as read afresh from the file: the low 16 bits of the end address in bytes
// from just after the header (zeros beyond the end of the file), and how many of its search
// pointers are walked: every one the header counts, within the chain budget. Pointers beyond
// the body read as zeros.
struct Body {
  std::vector<std::uint8_t> bytes;
  std::uint32_t pointers = 0;
};

Body ReadBody(const OpenedTable& s) {
  Body body;
  body.bytes = ReadTableBody(s, s.end_address & 0xFFFFu);
  body.pointers = static_cast<std::uint32_t>(std::min<std::uint64_t>(s.count, ChainBudget(s)));
  return body;
}

std::uint32_t OpenPgcit(AppContext& ctx, File& ifo) {
  return OpenCountedTable(ctx, ifo, TitleSetStartSector(ctx, kVtsPgcitSa), kNames,
                          ctx.ifo.vts_pgcit.opened);
}

void ReportPgcit(AppContext& ctx) {
  ctx.ClearReportList();
  const OpenedTable& s = ctx.ifo.vts_pgcit.opened;
  if (!s.open()) return;
  Body body = ReadBody(s);
  ByteView view(body.bytes);
  ctx.AddReportLine(Format("Number of VTS_PGCI_SRP: %d", {s.count}));
  ctx.AddReportLine(Format("End byte address of VTS_PGCI table: %d", {s.end_address}));
  for (std::uint32_t n = 1; n <= body.pointers; ++n) {
    ByteView pointer = view.sub(kPointerSize * (n - 1), kPointerSize);
    std::uint32_t offset = DiscValue(pointer, ChainPointerLayout(), "pgci_sa");
    ctx.AddReportLine(Format("  VTS_PGC Category %d: %08x",
                             {n, DiscValue(pointer, ChainPointerLayout(), "pgc_cat")}));
    ctx.AddReportLine(Format("  VTS_PGCI memory offset address %d: %d", {n, offset}));
    ctx.AddReportLine(Format("    Program Chain Information Table (PGCI) %d", {n}));
    // Chain offsets count from the start of the table; one inside the header reads as nothing.
    PgcReport(ctx, 5, BodyAt(view, offset), 0);
  }
}

void DisassemblePgcit(AppContext& ctx) {
  const OpenedTable& s = ctx.ifo.vts_pgcit.opened;
  if (!s.open()) return;
  Body body = ReadBody(s);
  ByteView view(body.bytes);
  WriteSourceValue(ctx, kSection, "vts_pgci_srp_ns", Format("%d", {s.count}));
  WriteSourceValue(ctx, kSection, "vts_pgcit_ea", Format("%d", {s.end_address}));
  for (std::uint32_t n = 1; n <= body.pointers; ++n) {
    ByteView pointer = view.sub(kPointerSize * (n - 1), kPointerSize);
    std::uint32_t offset = DiscValue(pointer, ChainPointerLayout(), "pgci_sa");
    WriteSourceValue(ctx, kSection, Format("vts_pgc_cat%02d", {n}),
                     Format("%08x", {DiscValue(pointer, ChainPointerLayout(), "pgc_cat")}));
    WriteSourceValue(ctx, kSection, Format("vts_pgci_sa%02d", {n}), Format("%d", {offset}));
    PgcDisassemble(ctx, BodyAt(view, offset), 0, kPgcPrefix, Format("vts_pgcit%02d", {n}));
  }
}

void LoadPgcit(AppContext& ctx) {
  VtsPgcitState& s = ctx.ifo.vts_pgcit;
  s.pgcs.clear();
  std::string value;
  if (!ReadRequiredValue(ctx, kSection, "vts_pgci_srp_ns", kMissingCaption, value)) return;
  auto count = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t n = 1; n <= count; ++n) {
    LoadedPgc pgc;
    std::string key = Format("vts_pgc_cat%02d", {n});
    if (ReadSourceValue(ctx, kSection, key, value)) {
      pgc.category = ParseHexValue(value);
    } else {
      ReportMissingStatement(ctx, key, kMissingCaption);
    }
    pgc.bytes = AssembleChainBytes(ctx, Format("vts_pgcit%02d", {n}), kPgcPrefix);
    s.pgcs.push_back(std::move(pgc));
  }
}

// Header, pointers and chains: 8 + 8 x count + the chain sizes.
std::uint32_t TableBytes(const VtsPgcitState& s) {
  return s.pgcs.empty() ? 0 : ChainBlockBytes(s.pgcs);
}

// The end address written (bytes - 1) is computed again when the table is written.
TableSize MeasurePgcit(AppContext& ctx) {
  std::uint32_t bytes = TableBytes(ctx.ifo.vts_pgcit);
  if (bytes == 0) return {};
  return {SectorsFor(bytes), bytes};
}

void EmitPgcit(AppContext& ctx, File& out) {
  VtsPgcitState& s = ctx.ifo.vts_pgcit;
  std::uint32_t bytes = TableBytes(s);
  if (bytes == 0) return;
  std::vector<std::uint8_t> table;
  table.reserve(bytes);
  ByteAppender a(table);
  AppendChainBlock(a, s.pgcs, bytes - 1);
  WriteTableSectors(out, table);
  s.pgcs.clear();
}

}  // namespace

const TableModule kVtsPgcitModule = {
    .id = TableId::kVtsPgcit,
    .OpenTable = OpenPgcit,
    .ReportTable = ReportPgcit,
    .DisassembleTable = DisassemblePgcit,
    .LoadTableSource = LoadPgcit,
    .MeasureTable = MeasurePgcit,
    .EmitTable = EmitPgcit,
};

}  // namespace tarvex
