#include "ifo/txtdt_mg.h"

#include "ifo/fields.h"
#include "ifo/source.h"
#include "platform/bytes.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kHeaderBytes = 20;
constexpr const char* kName = "VMG_TXTDT_MGI";
constexpr const char* kSection = "txtdt_mg";

// The first 20 bytes of the table (bytes 12 and 13 are not used).
constexpr FieldDesc kHeader[] = {
    {.key = "txtdt_id",
     .offset = 0,
     .width = 12,
     .store = Store::kText,
     .form = SourceForm::kText,
     .load = LoadRule::kComputed},
    {.key = "txtdt_lu_ns",
     .offset = 14,
     .width = 2,
     .store = Store::kBe16,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kComputed,
     .style = ReportStyle::kValue,
     .report = "Number of Text Language Units %d"},
    {.key = "txtdt_mg_ea",
     .offset = 16,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kComputed,
     .style = ReportStyle::kValue,
     .report = "End byte address of VMG_TXTDT_MGI table: %d"},
};

std::uint32_t Open(AppContext& ctx, File& ifo) {
  TxtdtMgState& s = ctx.ifo.txtdt_mg;
  s.file = nullptr;
  std::uint32_t start = ctx.ifo.vmgi_mat.txtdt_mg_sa;
  if (start == 0) {
    AddAbsenceLine(ctx, kName, "Text Data Manager information.");
    return 0;
  }
  s.table_pos = std::int64_t{start} * kSectorSize;
  s.file = &ifo;
  AddHeadingLine(ctx, kName, "Text Dataa Manager information");
  return ByteView(ReadFileBlock(ifo, s.table_pos, kHeaderBytes)).be32(16);
}

std::vector<std::uint8_t> ReadHeader(AppContext& ctx) {
  const TxtdtMgState& s = ctx.ifo.txtdt_mg;
  return ReadFileBlock(*s.file, s.table_pos, kHeaderBytes);
}

// Appended below the overview: this report alone leaves the list as it is.
void Report(AppContext& ctx) {
  if (ctx.ifo.txtdt_mg.file == nullptr) return;
  ReportFields(ctx, ReadHeader(ctx), kHeader);
}

void Disassemble(AppContext& ctx) {
  if (ctx.ifo.txtdt_mg.file == nullptr) return;
  DisassembleFields(ctx, ReadHeader(ctx), kHeader, kSection);
}

}  // namespace

// Never assembled: nothing is loaded, measured (0 sectors) or written.
const TableModule kTxtdtMgModule = {
    .id = TableId::kVmgTxtdt,
    .OpenTable = Open,
    .ReportTable = Report,
    .DisassembleTable = Disassemble,
    .LoadTableSource = nullptr,
    .MeasureTable = nullptr,
    .EmitTable = nullptr,
};

}  // namespace tarvex
