#include "ifo/vtsi_mat.h"

#include <array>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/source.h"
#include "ifo/vmgi_mat.h"
#include "platform/format.h"
#include "platform/paths.h"

namespace tarvex {

namespace {

constexpr std::size_t kRecordSize = 2048;
constexpr const char* kSection = "vtsi_mat";
constexpr const char* kMissingCaption = "Statement missing in vtsi_mat";
constexpr const char* kQuestionCaption = "Would you like to continue?";
constexpr std::string_view kIdentifier = "DVDVIDEO-VTS";
constexpr std::uint32_t kMenuVobLimit = 0x3FFFF800;
constexpr std::uint32_t kTitleVobLimit = 0x3FFF8000;

constexpr FieldDesc Swapped(const char* key, std::uint16_t offset, const char* report) {
  return {.key = key,
          .offset = offset,
          .width = 4,
          .store = Store::kHost32,
          .form = SourceForm::kDecimal,
          .load = LoadRule::kComputed,
          .style = ReportStyle::kValue,
          .report = report};
}

constexpr FieldDesc Attributes(const char* key, std::uint16_t offset, std::uint16_t width,
                               const char* report) {
  return {.key = key,
          .offset = offset,
          .width = width,
          .store = Store::kBytes,
          .form = SourceForm::kHexBytes,
          .load = LoadRule::kHexBytes,
          .style = report ? ReportStyle::kBytes : ReportStyle::kNone,
          .report = report};
}

// The layout of VTSI_MAT (offsets from the start of the file). The 32-bit fields are held
// swapped to host order in the record in memory.
constexpr FieldDesc kVtsiMat[] = {
    {.key = "vts_id",
     .offset = 0x000,
     .width = 12,
     .store = Store::kText,
     .form = SourceForm::kText,
     .load = LoadRule::kComputed,
     .style = ReportStyle::kCstr,
     .report = "VTS Identifier: %s"},
    Swapped("vts_ea", 0x00C, "End address of VTS: %d"),
    Swapped("vtsi_ea", 0x01C, "End address of VTSI: %d"),
    {.key = "vern",
     .offset = 0x021,
     .width = 1,
     .store = Store::kU8,
     .form = SourceForm::kVersion,
     .load = LoadRule::kVersion,
     .style = ReportStyle::kVersion,
     .report = "Specification version number: %d.%d"},  // the disc's version field, vern
    {.key = "vts_cat",
     .offset = 0x022,
     .width = 4,
     .store = Store::kHost32,
     .form = SourceForm::kHex32,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kValue,
     .report = "VTS Category: %08x"},
    Swapped("vtsi_mat_ea", 0x080, "End byte address of VTSI_MAT: %d"),
    Swapped("vtsm_vobs_sa", 0x0C0, "Start sector address of VTSM_VOBS: %d"),
    Swapped("vtstt_vobs_sa", 0x0C4, "Start sector address of VTSTT_VOBS: %d"),
    Swapped("vts_ptt_srpt_sa", 0x0C8, "Start sector address of VTS_PTT_SRPT: %d"),
    Swapped("vts_pgcit_sa", 0x0CC, "Start sector address of VTS_PGCIT: %d"),
    Swapped("vtsm_pgci_ut_sa", 0x0D0, "Start sector address of VTSM_PGCI_UT: %d"),
    Swapped("vts_tmapt_sa", 0x0D4, "Start sector address of VTS_TMAPT: %d"),
    Swapped("vtsm_c_adt_sa", 0x0D8, "Start sector address of VTSM_C_ADT: %d"),
    Swapped("vtsm_vobu_admap_sa", 0x0DC, "Start sector address of VTSM_VOBU_ADMAP: %d"),
    Swapped("vts_c_adt_sa", 0x0E0, "Start sector address of VTS_C_ADT: %d"),
    Swapped("vts_vobu_admap_sa", 0x0E4, "Start sector address of VTS_VOBU_ADMAP: %d"),
    // The menu video attributes are read back as one hex number (bits 15-8, then 7-0).
    {.key = "vtsm_v_atr",
     .offset = 0x100,
     .width = 2,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kBytes,
     .report = "Video attributes of VTSM_VOBS: %02x%02x"},
    DecimalNumber("vtsm_ast_ns", 0x103, 1, "Number of audio streams in VTSM_VOBS: %d"),
    Attributes("vtsm_ast_atr", 0x104, 8, "VTSM Audio attributes: %02x%02x%02x%02x%02x%02x%02x%02x"),
    DecimalNumber("vtsm_spst_ns", 0x155, 1, "Number of VTSM subpicture streams: %d"),
    Attributes("vtsm_spst_atr", 0x156, 6, "VTSM subpicture attributes: %02x%02x%02x%02x%02x%02x"),
    Attributes("vts_v_atr", 0x200, 2, "Video attributes of VTSTT_VOBS: %02x%02x"),
    DecimalNumber("vts_ast_ns", 0x203, 1, "Number of audio streams in VTSTT_VOBS: %d"),
    {.key = "vts_ast_atrt%02d",
     .offset = 0x204,
     .width = 8,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kBytes,
     .report = "  Audio %d attributes: %02x%02x%02x%02x%02x%02x%02x%02x",
     .count_at = 0x203,
     .stride = 8},
    DecimalNumber("vts_spst_ns", 0x255, 1, "Number of subpicture streams in VTSTT_VOBS: %d"),
    {.key = "vts_spst_atrt%02d",
     .offset = 0x256,
     .width = 6,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kBytes,
     .report = "  Subpicture stream %d attributes: %02x%02x%02x%02x%02x%02x",
     .count_at = 0x255,
     .stride = 6},
    {.key = "vts_mu_ast_atrt%02d",
     .offset = 0x318,
     .width = 24,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytes,
     .load = LoadRule::kHexBytes,
     .repeat = 8,
     .stride = 24},
};

// The tables after VTSI_MAT in file order, with where their start sectors lie.
struct FollowingTable {
  TableId id;
  std::size_t start_sector_at;
};
constexpr std::array<FollowingTable, 8> kFollowingTables = {{
    {TableId::kVtsPttSrpt, kVtsPttSrptSa},
    {TableId::kVtsPgcit, kVtsPgcitSa},
    {TableId::kVtsmPgciUt, kVtsmPgciUtSa},
    {TableId::kVtsTmapt, kVtsTmaptSa},
    {TableId::kVtsmCAdt, kVtsmCAdtSa},
    {TableId::kVtsmVobuAdmap, kVtsmVobuAdmapSa},
    {TableId::kVtsCAdt, kVtsCAdtSa},
    {TableId::kVtsVobuAdmap, kVtsVobuAdmapSa},
}};

// Swaps the 32-bit fields held in host order (Store::kHost32) in place when the record is read.
void SwapToHostOrder(std::vector<std::uint8_t>& record) {
  ByteWriter w(record);
  for (const FieldDesc& field : kVtsiMat) {
    if (field.store == Store::kHost32)
      w.put_le32(field.offset, ByteView(record).be32(field.offset));
  }
}

std::uint32_t OpenModule(AppContext& ctx, File& ifo) {
  return OpenTitleSet(ctx, ifo);
}

// Size checks of one VOB file beside the output. Returns false when the assembly stops.
bool CheckVobFile(AppContext& ctx, const std::string& built_path, const std::string& found_path,
                  std::uint32_t limit, std::uint32_t& length) {
  File vob = File::OpenRead(found_path);
  if (!vob.is_open()) {
    ctx.ui.ShowMessage(Format("Can not open %s", {built_path}), "File system error!");
    return false;
  }
  length = static_cast<std::uint32_t>(vob.Length());
  if (length > limit &&
      !ctx.ui.AskYesNo(Format("Warning! Menu file %s exceeds maximum size allowed in DVD-Video "
                              "standards.",
                              {built_path}),
                       kQuestionCaption)) {
    return false;
  }
  if ((length & 0x7FF) != 0 &&
      !ctx.ui.AskYesNo(Format("Warning! Menu file %s is not divisble by 2048, a requirement of "
                              "DVD-Video standards.",
                              {built_path}),
                       kQuestionCaption)) {
    return false;
  }
  length = (length + 0x7FFu) & ~0x7FFu;
  return true;
}

// The title set size limit, compared as a 64-bit number. The running total it is given is
// kept in 32 bits, so the limit is never exceeded; that is the intended behaviour.
bool ExceedsTitleSetLimit(std::uint64_t total_bytes) {
  return total_bytes > 8000000000ull;
}

}  // namespace

const TableModule kVtsiMatModule = {
    .id = TableId::kVtsiMat,
    .OpenTable = OpenModule,
    .ReportTable = ReportTitleSet,
    .DisassembleTable = DisassembleTitleSet,
    .LoadTableSource = nullptr,
    .MeasureTable = nullptr,
    .EmitTable = nullptr,
};

std::uint32_t OpenTitleSet(AppContext& ctx, File& ifo) {
  std::vector<std::uint8_t>& record = ctx.ifo.vtsi_mat.record;
  record = ReadFileBlock(ifo, 0, kRecordSize);
  ByteView view(record);
  if (view.cstr(0, kIdentifier.size()) != kIdentifier) {
    record.clear();
    return OpenVideoManager(ctx, ifo);
  }
  ctx.AddReportLine("VTSI_MAT IFO File: Video Title Set Information Management Table");
  SwapToHostOrder(record);

  std::uint32_t menu_vobs = view.le32(0x0C0);
  std::uint32_t title_vobs = view.le32(0x0C4);
  if (menu_vobs != 0) {
    ctx.AddReportLine(Format("VTSM_VOB: VTS Menu VOB starts at sector address: %d", {menu_vobs}));
  } else {
    ctx.AddReportLine("** VTSM_VOB: There is no VTS Menu VOB");
  }
  if (title_vobs != 0) {
    ctx.AddReportLine(Format("VTS_VOB: VTS VOB starts at sector address: %d", {title_vobs}));
  } else {
    ctx.AddReportLine("** VTS_VOB: There is no VTS VOB");
  }
  for (TableId id : {TableId::kVtsPttSrpt, TableId::kVtsPgcit, TableId::kVtsmPgciUt,
                     TableId::kVtsmLu, TableId::kVtsTmapt, TableId::kVtsmCAdt,
                     TableId::kVtsmVobuAdmap, TableId::kVtsCAdt, TableId::kVtsVobuAdmap}) {
    OpenTable(ctx, id, ifo);
  }
  return 1;
}

std::uint32_t TitleSetStartSector(const AppContext& ctx, std::size_t offset) {
  return ByteView(ctx.ifo.vtsi_mat.record).le32(offset);
}

void ReportTitleSet(AppContext& ctx) {
  ctx.ClearReportList();
  ReportFields(ctx, ByteView(ctx.ifo.vtsi_mat.record), kVtsiMat);
}

void DisassembleTitleSet(AppContext& ctx) {
  ctx.profiles.DeleteFile(ctx.convert.source_path);
  DisassembleFields(ctx, ByteView(ctx.ifo.vtsi_mat.record), kVtsiMat, kSection);
}

std::array<std::uint32_t, 8> LayOutTitleSetTables(const std::array<std::uint32_t, 8>& sectors) {
  std::array<std::uint32_t, 8> starts{};
  std::uint32_t next = 1;
  for (std::size_t k = 0; k < sectors.size(); ++k) {
    starts[k] = sectors[k] != 0 ? next : 0;
    next += sectors[k];
  }
  return starts;
}

void AssembleTitleSet(AppContext& ctx, File& out, const std::string& output_path) {
  std::size_t sep = LastSeparator(output_path);
  std::string name = sep == std::string::npos ? output_path : output_path.substr(sep + 1);
  std::uint32_t title_set = ParseDecimal(name.size() > 4 ? name.substr(4, 2) : std::string());
  std::string dir = sep == std::string::npos ? std::string() : output_path.substr(0, sep + 1);

  std::vector<std::uint8_t> record(kRecordSize, 0);
  ByteWriter w(record);
  std::string value;
  if (!ReadSourceValue(ctx, kSection, "vts_id", value)) {
    ctx.ui.ShowMessage("VTS ID is missing", "IFO assembler error!");
    return;
  }
  if (value.substr(0, kIdentifier.size()) != kIdentifier) {
    ctx.ui.ShowMessage("Illegal VTS_ID field", "Syntax error!");
  }
  for (std::size_t c = 0; c < kIdentifier.size(); ++c) {
    w.put_u8(c, c < value.size() ? static_cast<std::uint8_t>(value[c]) : 0);
  }
  LoadFields(ctx, w, ByteView(record), kVtsiMat, kSection, kMissingCaption);

  std::array<std::uint32_t, 8> sizes{};
  for (std::size_t k = 0; k < kFollowingTables.size(); ++k) {
    sizes[k] = MeasureTable(ctx, kFollowingTables[k].id).sectors;
  }
  std::array<std::uint32_t, 8> starts = LayOutTitleSetTables(sizes);
  std::uint32_t sectors = 0;
  for (std::size_t k = 0; k < kFollowingTables.size(); ++k) {
    w.put_be32(kFollowingTables[k].start_sector_at, starts[k]);
    sectors += sizes[k];
  }
  std::uint32_t vtsi_ea = sectors;
  w.put_be32(0x01C, vtsi_ea);
  w.put_be32(0x080, 2047);

  std::uint32_t counter = vtsi_ea + 1;
  std::string menu_vob = dir + Format("vts_%02d_0.vob", {title_set});
  std::string found = FindExistingFileIgnoringCase(menu_vob);
  if (!found.empty()) {
    w.put_be32(0x0C0, counter);
    std::uint32_t length = 0;
    if (!CheckVobFile(ctx, menu_vob, found, kMenuVobLimit, length)) return;
    counter += length / 2048;
  }
  w.put_be32(0x0C4, counter);

  std::uint32_t total = 0;  // kept in 32 bits, as the size check below expects
  for (std::uint32_t part = 1; part <= 9; ++part) {
    std::string title_vob = dir + Format("vts_%02d_%d.vob", {title_set, part});
    std::string title_found = FindExistingFileIgnoringCase(title_vob);
    if (title_found.empty()) break;
    std::uint32_t length = 0;
    if (!CheckVobFile(ctx, title_vob, title_found, kTitleVobLimit, length)) return;
    total += length;
  }
  if (ExceedsTitleSetLimit(total)) {
    ctx.ui.ShowMessage(Format("The Video Title Set for %s exceeds the maximum size allowed in "
                              "DVD-Video standards.",
                              {output_path}),
                       "Standards violation error!");
    return;
  }
  counter += total / 2048;
  w.put_be32(0x00C, vtsi_ea + counter);

  out.Write(record.data(), record.size());
  for (const FollowingTable& table : kFollowingTables) EmitTable(ctx, table.id, out);
}

std::span<const FieldDesc> VtsiMatLayout() {
  return kVtsiMat;
}

}  // namespace tarvex
