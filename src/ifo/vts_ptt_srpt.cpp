#include "ifo/vts_ptt_srpt.h"

#include <string>

#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "ifo/vtsi_mat.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr const char* kSection = "vts_ptt_srpt";
constexpr const char* kPartKey = "ptt_srp_pgcn_%03d_%03d";
constexpr std::uint32_t kPartsPerUnit = 256;
constexpr TableNames kNames = {"PTT_SRPTI", "Part of title search pointer table.",
                               "Part of title search pointer table information"};

// One title unit as found in the file: its offset from the table start and its parts.
struct Unit {
  std::uint32_t offset = 0;
  std::vector<PttEntry> parts;
};

VtsPttSrptState& State(AppContext& ctx) {
  return ctx.ifo.vts_ptt_srpt;
}

std::uint32_t Open(AppContext& ctx, File& ifo) {
  return OpenCountedTable(ctx, ifo, TitleSetStartSector(ctx, kVtsPttSrptSa), kNames,
                          State(ctx).opened);
}

// Reads the body afresh and walks it: unit n's parts run from its offset up to the next
// unit's offset, the last unit's up to the end address + 1; offsets count from the table
// start, 8 bytes before the body. Every unit the header counts is walked; pointers beyond the
// body or the end of the file read as zeros. The parts, whose extent comes from the 32-bit
// offsets, are bounded by the file: each unit's by the parts that begin inside it, and all
// parts together by the number of 4-byte positions it holds after the header.
std::vector<Unit> ReadUnits(const OpenedTable& table) {
  std::vector<std::uint8_t> bytes = ReadTableBody(table, table.end_address & 0xFFFF);
  ByteView body(bytes);
  std::uint64_t in_file = BodyBytesInFile(table);
  std::uint32_t budget = ItemsInFile(table, 4);
  std::vector<Unit> result(table.count);
  for (std::uint32_t n = 0; n < table.count; ++n) {
    result[n].offset = body.be32(4 * std::size_t{n});
    std::uint64_t end = n + 1u < table.count ? body.be32(4 * (std::size_t{n} + 1))
                                             : std::uint64_t{table.end_address} + 1;
    for (std::uint64_t off = result[n].offset; off < end && budget > 0; off += 4, --budget) {
      if (off < 8 || off - 8 >= in_file) break;
      auto pos = static_cast<std::size_t>(off - 8);
      ByteView part = body.sub(pos, kPartOfTitleBytes);
      result[n].parts.push_back(
          {.pgcn = static_cast<std::uint16_t>(DiscValue(part, PartOfTitleLayout(), "pgcn")),
           .pgn = static_cast<std::uint8_t>(DiscValue(part, PartOfTitleLayout(), "pgn"))});
    }
  }
  return result;
}

void Report(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  ctx.ClearReportList();
  ctx.AddReportLine(
      Format("Number of Title Unit Serch Pointers TTUs in the VTS: %d", {table.count}));
  ctx.AddReportLine(Format("End byte address of PTT_SRPT table: %d", {table.end_address}));
  std::vector<Unit> units = ReadUnits(table);
  for (std::size_t n = 0; n < units.size(); ++n) {
    ctx.AddReportLine(Format("  Starting memory address of TTU %d: %d", {n + 1, units[n].offset}));
  }
  for (const Unit& unit : units) {
    for (const PttEntry& part : unit.parts) {
      ctx.AddReportLine(Format("    Program chain number (PGCN): %d Program number (PG): %d",
                               {part.pgcn, part.pgn}));
    }
  }
}

// The part keys carry the data in their name; the value only marks them present.
void Disassemble(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  WriteSourceValue(ctx, kSection, "vts_ttu_ns", Format("%d", {table.count}));
  WriteSourceValue(ctx, kSection, "vts_ptt_srpt_ea", Format("%d", {table.end_address}));
  std::vector<Unit> units = ReadUnits(table);
  for (std::size_t n = 0; n < units.size(); ++n) {
    WriteSourceValue(ctx, kSection, Format("ttu_sa%02d", {n + 1}), Format("%d", {units[n].offset}));
    for (const PttEntry& part : units[n].parts) {
      WriteSourceValue(ctx, kSection, Format(kPartKey, {part.pgcn, part.pgn}), "true");
    }
  }
}

// Title unit n is rebuilt from the keys of program chain n: programs 1, 2, ... up to the
// first missing one. Other keys and the values are not read.
void Load(AppContext& ctx) {
  VtsPttSrptState& s = State(ctx);
  s.count = 0;
  s.entries.clear();
  std::string value;
  if (!ReadRequiredValue(ctx, kSection, "vts_ttu_ns", "IFO assembler error!", value)) return;
  s.count = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t n = 1; n <= s.count; ++n) {
    for (std::uint32_t p = 1; p <= kPartsPerUnit; ++p) {
      if (!ReadSourceValue(ctx, kSection, Format(kPartKey, {n, p}), value)) break;
      s.entries.push_back(
          {.pgcn = static_cast<std::uint16_t>(n), .pgn = static_cast<std::uint8_t>(p)});
    }
  }
}

// One 4-byte search pointer and one 4-byte entry per part, after the 8-byte header.
std::uint32_t EndAddress(const VtsPttSrptState& s) {
  return TableEndAddress(8, static_cast<std::uint32_t>(s.entries.size()), 8);
}

TableSize Measure(AppContext& ctx) {
  const VtsPttSrptState& s = State(ctx);
  if (s.entries.empty()) return {};
  std::uint32_t bytes = EndAddress(s) + 1;
  return {SectorsFor(bytes), bytes};
}

// One search pointer per part entry, each pointing at its own entry.
void Emit(AppContext& ctx, File& out) {
  VtsPttSrptState& s = State(ctx);
  if (!s.entries.empty()) {
    std::vector<std::uint8_t> bytes;
    ByteAppender a(bytes);
    auto entries = static_cast<std::uint32_t>(s.entries.size());
    AppendCountedHeader(a, s.count, EndAddress(s));
    for (std::uint32_t k = 0; k < entries; ++k) a.be32(8 + 4 * entries + 4 * k);
    for (const PttEntry& part : s.entries) {
      a.be16(part.pgcn);
      a.u8(0);
      a.u8(part.pgn);
    }
    WriteTableSectors(out, bytes);
  }
  s.count = 0;
  s.entries.clear();
}

}  // namespace

const TableModule kVtsPttSrptModule = {
    .id = TableId::kVtsPttSrpt,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = Load,
    .MeasureTable = Measure,
    .EmitTable = Emit,
};

}  // namespace tarvex
