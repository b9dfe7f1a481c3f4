#include "ifo/vts_atrt.h"

#include <algorithm>
#include <string>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderBytes = 8;
constexpr std::uint32_t kPointerBytes = 4;
constexpr std::uint32_t kRecordBytes = 776;
constexpr TableNames kNames = {"VMG_ATRT", "Video Title Set Attribute Table.",
                               "Video Title Set Attribute Table"};
constexpr const char* kSection = "vts_atrt";
constexpr const char* kMissingCaption = "Statement missing in vts_atrt!";

// A menu stream's single attribute byte: written as hex, read back as a decimal number after
// the "x" (so x1f comes back as 1): the established reading of these keys.
constexpr FieldDesc MenuStreamByte(const char* key, std::uint16_t offset, std::int16_t count_at,
                                   const char* report) {
  return {.key = key,
          .offset = offset,
          .width = 1,
          .store = Store::kU8,
          .form = SourceForm::kHexBytesX,
          .load = LoadRule::kXDecimal,
          .style = ReportStyle::kValue,
          .report = report,
          .count_at = count_at,
          .stride = 1};
}

constexpr FieldDesc AttributeBytes(const char* key, std::uint16_t offset, std::uint16_t width,
                                   std::int16_t count_at, const char* report) {
  return {.key = key,
          .offset = offset,
          .width = width,
          .store = Store::kBytes,
          .form = SourceForm::kHexBytesX,
          .load = LoadRule::kHexBytes,
          .style = ReportStyle::kBytes,
          .report = report,
          .count_at = count_at,
          .stride = count_at >= 0 ? width : std::uint16_t{0}};
}

// The 776-byte record of one title set (offsets within the record). Keys take the prefix
// "vts_atrt_srp%03d_" with the title set number.
constexpr FieldDesc kRecord[] = {
    {.key = "vts_atr_ea",
     .offset = 0,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kComputed,
     .style = ReportStyle::kValue,
     .report = "    VTS Attribute end byte address %d"},
    DecimalNumber("vts_cat", 4, 4, "    VTS_CAT Application type %d"),
    AttributeBytes("vtsm_v_atr", 8, 2, -1, "    Attributes of VTSM_VOBS: %x%x"),
    DecimalNumber("vtsm_ast_ns", 11, 1, "    Number of audio streams in VTSM_VOBS: %d"),
    MenuStreamByte("vtsm_ast_atr%02d", 12, 11, "      Audio %d attributes: %x"),
    DecimalNumber("vtsm_spst_ns", 93, 1, "    Number of subpicture streams: %d"),
    MenuStreamByte("vtsm_spst_atr%02d", 94, 93, "      Subpicture stream %d attributes: %x"),
    AttributeBytes("vts_v_atr", 264, 2, -1, "    Video attributes of VTSTT_VOBS: %x%x"),
    DecimalNumber("vts_ast_ns", 267, 1, "    Number of audio streams in VTSTT_VOBS: %d"),
    AttributeBytes("vts_ast_atr%02d", 268, 8, 267,
                   "      Audio %d attributes: %02x%02x%02x%02x%02x%02x%02x%02x"),
    DecimalNumber("vts_spst_ns", 349, 1, "    Number of subpicture streams in VTSTT_VOBS: %d"),
    // Reported by the first byte of each 6-byte block.
    AttributeBytes("vts_spst_atr%02d", 350, 6, 349, "      Subpicture stream %d attributes: %x"),
};

std::string RecordPrefix(std::uint32_t title_set) {
  return Format("vts_atrt_srp%03d_", {title_set});
}

// Returns the number of title sets rather than the end address.
std::uint32_t Open(AppContext& ctx, File& ifo) {
  OpenedTable& table = ctx.ifo.vts_atrt.opened;
  OpenCountedTable(ctx, ifo, ctx.ifo.vmgi_mat.vts_atrt_sa, kNames, table);
  return table.count;
}

// The end-address bytes after the header, as far as the file holds them (the end address is a
// 32-bit field); what lies beyond reads 0. Every title set the header counts is walked: search
// pointers and records beyond the area read as zeros.
std::vector<std::uint8_t> ReadArea(const OpenedTable& s) {
  return ReadTableBody(
      s, static_cast<std::size_t>(std::min<std::uint64_t>(s.end_address, BodyBytesInFile(s))));
}

void Report(AppContext& ctx) {
  ctx.ClearReportList();
  const OpenedTable& s = ctx.ifo.vts_atrt.opened;
  if (!s.open()) return;
  ctx.AddReportLine(Format("Number of Video Title Sets: %d", {s.count}));
  ctx.AddReportLine(Format("End byte address of VTS_ATR table: %d", {s.end_address}));
  std::vector<std::uint8_t> block = ReadArea(s);
  ByteView area(block);
  for (std::uint32_t i = 0; i < s.count; ++i) {
    std::uint32_t offset = area.be32(kPointerBytes * i);
    ctx.AddReportLine(Format("  VTS %d Attribute start byte address %d", {i + 1, offset}));
    ReportFields(ctx, BodyAt(area, offset), kRecord);
  }
}

void Disassemble(AppContext& ctx) {
  const OpenedTable& s = ctx.ifo.vts_atrt.opened;
  if (!s.open()) return;
  WriteSourceValue(ctx, kSection, "vts_ns", Format("%d", {s.count}));
  WriteSourceValue(ctx, kSection, "vts_atrt_ea", Format("%d", {s.end_address}));
  std::vector<std::uint8_t> block = ReadArea(s);
  ByteView area(block);
  for (std::uint32_t i = 0; i < s.count; ++i) {
    std::string prefix = RecordPrefix(i + 1);
    std::uint32_t offset = area.be32(kPointerBytes * i);
    WriteSourceValue(ctx, kSection, prefix + "vts_atr_sa", Format("%d", {offset}));
    DisassembleFields(ctx, BodyAt(area, offset), kRecord, kSection, prefix);
  }
}

// The count of title sets, then one zeroed record per title set filled key by key; a missing
// key is reported and its field stays 0.
void Load(AppContext& ctx) {
  std::vector<std::array<std::uint8_t, 776>>& records = ctx.ifo.vts_atrt.records;
  records.clear();
  std::string value;
  if (!ReadRequiredValue(ctx, kSection, "vts_ns", kMissingCaption, value)) return;
  std::uint16_t count = static_cast<std::uint16_t>(ParseDecimal(value));
  records.resize(count);  // zeroed: the records were cleared above
  for (std::uint32_t i = 0; i < count; ++i) {
    std::array<std::uint8_t, 776>& record = records[i];
    LoadFields(ctx, ByteWriter(record), ByteView(record.data(), record.size()), kRecord, kSection,
               kMissingCaption, RecordPrefix(i + 1));
  }
}

std::uint32_t TableBytes(std::uint32_t count) {
  return kHeaderBytes + (kPointerBytes + kRecordBytes) * count;
}

TableSize Measure(AppContext& ctx) {
  std::uint32_t count = static_cast<std::uint32_t>(ctx.ifo.vts_atrt.records.size());
  if (count == 0) return {};
  return {SectorsFor(TableBytes(count)), TableBytes(count)};
}

void Emit(AppContext& ctx, File& out) {
  std::vector<std::array<std::uint8_t, 776>>& records = ctx.ifo.vts_atrt.records;
  std::uint32_t count = static_cast<std::uint32_t>(records.size());
  if (count == 0) return;
  std::vector<std::uint8_t> bytes;
  ByteAppender a(bytes);
  AppendCountedHeader(a, count, TableBytes(count) - 1);
  for (std::uint32_t i = 0; i < count; ++i) {
    a.be32(kHeaderBytes + kPointerBytes * count + kRecordBytes * i);
  }
  for (std::array<std::uint8_t, 776>& record : records) {
    ByteWriter(record).put_be32(0, kRecordBytes - 1);
    a.bytes(ByteView(record.data(), record.size()));
  }
  WriteTableSectors(out, bytes);
  records.clear();
  records.shrink_to_fit();
}

}  // namespace

const TableModule kVtsAtrtModule = {
    .id = TableId::kVmgAtrt,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = Load,
    .MeasureTable = Measure,
    .EmitTable = Emit,
};

std::span<const FieldDesc> VtsAtrtRecordLayout() {
  return kRecord;
}

}  // namespace tarvex
