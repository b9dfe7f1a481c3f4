#include "ifo/tt_srpt.h"

#include <array>
#include <string>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/opened_table.h"
#include "ifo/source.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr const char* kSection = "vmg_ptt_srpt";
constexpr const char* kMissingCaption = "Statement missing in vmg_ptt_srpt!";
constexpr std::uint32_t kEntryBytes = 12;
constexpr TableNames kNames = {"VMG_PTT_SRPTI", "Part of title search pointer table.",
                               "Part of title search pointer table information"};

// How an entry field is read back from the source. Most follow their field layout; three
// keep the table's own established rules.
enum class EntryLoad : std::uint8_t {
  kByField,
  kHexAfterFirstChar,  // the first character is skipped whatever it is, then two hex digits
  kDecimalHostOrder,   // decimal, stored low byte first (not converted to big-endian)
  kAlwaysOne,          // must be present; the byte is written as 1 whatever the value
};

struct EntryField {
  FieldDesc desc;
  EntryLoad load;
};

// One 12-byte title entry; the key's index and the report's "Title set %d" are the title's
// number, from 1.
constexpr EntryField kEntry[] = {
    {{.key = "tt_pb_ty%02d",
      .offset = 0,
      .width = 1,
      .store = Store::kU8,
      .form = SourceForm::kHexBytesX,
      .load = LoadRule::kHexBytes,
      .style = ReportStyle::kValue,
      .report = "    Title set %d: Title playback type: %x"},
     EntryLoad::kHexAfterFirstChar},
    {DecimalNumber("tt_agl_ns%02d", 1, 1, "    Title set %d: Number of angles: %d"),
     EntryLoad::kByField},
    {DecimalNumber("tt_ptt_ns%02d", 2, 2, "    Title set %d: Number of PTTs: %d"),
     EntryLoad::kByField},
    {DecimalNumber("tt_ptl_id_fld%02d", 4, 2, "    Title set %d: Parental ID field: %d"),
     EntryLoad::kDecimalHostOrder},
    {DecimalNumber("vtsn%02d", 6, 1, "    Title set %d: Title set number: %d"),
     EntryLoad::kByField},
    {DecimalNumber("vts_ttn%02d", 7, 1, "    Title set %d: VTS_TTN: %d"), EntryLoad::kAlwaysOne},
    {DecimalNumber("vts_sa%02d", 8, 4, "    Title set %d: Title set starting sector number: %d"),
     EntryLoad::kByField},
};

TtSrptState& State(AppContext& ctx) {
  return ctx.ifo.tt_srpt;
}

std::uint32_t Open(AppContext& ctx, File& ifo) {
  return OpenCountedTable(ctx, ifo, ctx.ifo.vmgi_mat.tt_srpt_sa, kNames, State(ctx).opened);
}

// The entry bytes: the low 16 bits of the end address after the header. The report and the
// disassembly walk every title the header counts; entries beyond these bytes or beyond the end
// of the file read as zeros.
std::vector<std::uint8_t> ReadEntries(const OpenedTable& table) {
  return ReadTableBody(table, table.end_address & 0xFFFF);
}

void Report(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  ctx.ClearReportList();
  ctx.AddReportLine(
      Format("Number of Title Unit Serch Pointers TTUs in the VTS: %d", {table.count}));
  ctx.AddReportLine(Format("End byte address of PTT_SRPT table: %d", {table.end_address}));
  std::vector<std::uint8_t> body = ReadEntries(table);
  for (std::uint32_t i = 0; i < table.count; ++i) {
    ByteView entry = ByteView(body).sub(std::size_t{i} * kEntryBytes, kEntryBytes);
    for (const EntryField& field : kEntry) {
      ctx.AddReportLine(Format(field.desc.report, {i + 1, FieldValue(entry, field.desc)}));
    }
  }
}

void Disassemble(AppContext& ctx) {
  const OpenedTable& table = State(ctx).opened;
  WriteSourceValue(ctx, kSection, "vts_ttu_ns", Format("%d", {table.count}));
  WriteSourceValue(ctx, kSection, "vts_ptt_srpt_ea", Format("%d", {table.end_address}));
  std::vector<std::uint8_t> body = ReadEntries(table);
  for (std::uint32_t i = 0; i < table.count; ++i) {
    ByteView entry = ByteView(body).sub(std::size_t{i} * kEntryBytes, kEntryBytes);
    for (const EntryField& field : kEntry) {
      WriteSourceValue(ctx, kSection, Format(field.desc.key, {i + 1}),
                       FormatSourceValue(entry, field.desc));
    }
  }
}

void StoreEntryValue(std::array<std::uint8_t, 12>& entry, const EntryField& field,
                     const std::string& value) {
  ByteWriter w(entry);
  std::size_t off = field.desc.offset;
  switch (field.load) {
    case EntryLoad::kByField:
      StoreSourceValue(w, field.desc, 0, value);
      break;
    case EntryLoad::kHexAfterFirstChar:
      w.put_u8(off, ParseHexByte(value.size() > 1 ? std::string_view(value).substr(1) : ""));
      break;
    case EntryLoad::kDecimalHostOrder:
      w.put_le16(off, ParseDecimal(value));
      break;
    case EntryLoad::kAlwaysOne:
      w.put_u8(off, 1);
      break;
  }
}

// Reads the entries; a missing key ends the loading. The entry being read when a key is
// missing stays loaded with the fields read before that key.
void Load(AppContext& ctx) {
  TtSrptState& s = State(ctx);
  s.count = 0;
  s.entries.clear();
  std::string value;
  if (!ReadRequiredValue(ctx, kSection, "vts_ttu_ns", kMissingCaption, value)) return;
  s.count = static_cast<std::uint16_t>(ParseDecimal(value));
  for (std::uint32_t i = 1; i <= s.count; ++i) {
    std::array<std::uint8_t, 12>& entry = s.entries.emplace_back();
    for (const EntryField& field : kEntry) {
      std::string key = Format(field.desc.key, {i});
      if (!ReadRequiredValue(ctx, kSection, key, kMissingCaption, value)) return;
      StoreEntryValue(entry, field, value);
    }
  }
}

// The size follows the header count from the source, whatever number of entries was read.
TableSize Measure(AppContext& ctx) {
  std::uint32_t count = State(ctx).count;
  if (count == 0) return {};
  std::uint32_t bytes = 8 + kEntryBytes * count;
  return {SectorsFor(bytes), bytes};
}

// Writes the header and the header count of entries: those read, then zero entries for any
// the source did not hold, so the table fills the size that was measured.
void Emit(AppContext& ctx, File& out) {
  TtSrptState& s = State(ctx);
  if (s.count != 0) {
    std::vector<std::uint8_t> bytes;
    ByteAppender a(bytes);
    AppendCountedHeader(a, s.count, TableEndAddress(8, s.count, kEntryBytes));
    for (const std::array<std::uint8_t, 12>& entry : s.entries) a.bytes(ByteView(entry));
    a.zeros(std::size_t{kEntryBytes} * (s.count - s.entries.size()));
    WriteTableSectors(out, bytes);
  }
  s.count = 0;
  s.entries.clear();
}

}  // namespace

const TableModule kTtSrptModule = {
    .id = TableId::kVmgPttSrpt,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = Load,
    .MeasureTable = Measure,
    .EmitTable = Emit,
};

// The descriptors of the title entry, without the table's own load rules.
std::span<const FieldDesc> TtSrptEntryLayout() {
  static const auto kLayout = [] {
    std::array<FieldDesc, std::size(kEntry)> layout{};
    for (std::size_t i = 0; i < layout.size(); ++i) layout[i] = kEntry[i].desc;
    return layout;
  }();
  return kLayout;
}

}  // namespace tarvex
