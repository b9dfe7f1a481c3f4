#include "ifo/vmgi_mat.h"

#include <algorithm>
#include <array>

#include "ifo/fields.h"
#include "ifo/layouts.h"
#include "ifo/pgc.h"
#include "ifo/source.h"
#include "platform/format.h"
#include "platform/paths.h"

namespace tarvex {

namespace {

constexpr const char* kSection = "vmgi_mat";
constexpr const char* kMissingCaption = "Statement missing in vmgi_mat";
constexpr std::string_view kIdentifier = "DVDVIDEO-VMG";

void ReportVolumes(AppContext& ctx, ByteView image, const FieldDesc& field,
                   const std::string& indent) {
  ctx.AddReportLine(indent + Format("VMG Number of Vols: %d This Vol: %d Disk side ID: %d",
                                    {image.be16(field.offset), image.be16(field.offset + 2),
                                     (image.be16(field.offset + 4) >> 8) & 3}));
}

void ReportProvider(AppContext& ctx, ByteView image, const FieldDesc& field,
                    const std::string& indent) {
  if (image.u8(field.offset) != 0) {
    ctx.AddReportLine(indent + Format("VMG Provider ID: %s", {image.cstr(field.offset)}));
  } else {
    ctx.AddReportLine(indent + "VMG No Provider ID available:");
  }
}

// One line per stream with the stream's single byte of the attribute block (byte by byte).
void ReportStreamBytes(AppContext& ctx, ByteView image, const FieldDesc& field,
                       const std::string& indent, const char* format) {
  std::uint32_t count = image.u8(field.offset - 1u);
  for (std::uint32_t i = 0; i < count; ++i) {
    ctx.AddReportLine(indent + Format(format, {i + 1, image.u8(field.offset + i)}));
  }
}

void ReportAudioBytes(AppContext& ctx, ByteView image, const FieldDesc& field,
                      const std::string& indent) {
  ReportStreamBytes(ctx, image, field, indent, "  Audio %d attributes: %x");
}

void ReportSubpictureBytes(AppContext& ctx, ByteView image, const FieldDesc& field,
                           const std::string& indent) {
  ReportStreamBytes(ctx, image, field, indent, "  Subpicture stream %d attributes: %x");
}

constexpr FieldDesc StartSector(const char* key, std::uint16_t offset, const char* report) {
  return {.key = key,
          .offset = offset,
          .width = 4,
          .store = Store::kBe32,
          .form = SourceForm::kDecimal,
          .load = LoadRule::kComputed,
          .style = ReportStyle::kValue,
          .report = report};
}

// The layout of VMGI_MAT (offsets from the start of the file).
constexpr FieldDesc kVmgiMat[] = {
    {.key = "vmg_id",
     .offset = 0,
     .width = 12,
     .store = Store::kText,
     .form = SourceForm::kText,
     .load = LoadRule::kComputed,
     .style = ReportStyle::kCstr,
     .report = "VMG Identifier: %s"},
    StartSector("vmg_ea", 12, "End address of VMG: %d"),
    StartSector("vmgi_ea", 28, "End address of VMGI: %d"),
    {.key = "vern",
     .offset = 33,
     .width = 1,
     .store = Store::kU8,
     .form = SourceForm::kVersion,
     .load = LoadRule::kVersion,
     .style = ReportStyle::kVersion,
     .report = "Specification version number: %d.%d"},  // the disc's version field, vern
    {.key = "vmg_cat",
     .offset = 34,
     .width = 4,
     .store = Store::kBe32,
     .form = SourceForm::kHex32X,
     .load = LoadRule::kHexValue,
     .style = ReportStyle::kValue,
     .report = "VMG Category: %x"},
    {.key = "vlms_id",
     .offset = 38,
     .width = 8,
     .store = Store::kBytes,
     .form = SourceForm::kHexWordsX,
     .load = LoadRule::kHexWords,
     .style = ReportStyle::kHook,
     .hook = ReportVolumes},
    {.key = "vmg_ns",
     .offset = 62,
     .width = 2,
     .store = Store::kBe16,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kDecimal,
     .style = ReportStyle::kValue,
     .report = "VMG Number of Title Sets: %d",
     .missing_text = "vts_ns"},
    {.key = "pvr_id",
     .offset = 64,
     .width = 32,
     .store = Store::kText,
     .form = SourceForm::kText,
     .load = LoadRule::kText,
     .style = ReportStyle::kHook,
     .hook = ReportProvider},
    {.key = "pos_cd",
     .offset = 96,
     .width = 8,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytesX,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kBytes,
     .report = "VMG POS Code: %x%x%x%x%x%x%x%x"},
    StartSector("vmgi_mat_ea", 128, "End byte address of VMGI_MAT: %d"),
    StartSector("fp_pgci_sa", 132, "Start byte address of First Play PGC FP_PGC: %d"),
    StartSector("vmgm_vobs_sa", 192, "Start sector address of VMGM_VOBS: %d"),
    StartSector("tt_srpt_sa", 196, "Start sector address of VMG_PTT_SRPT: %d"),
    StartSector("vmgm_pgci_ut_sa", 200, "Start sector address of VMGM_PGCI_UT: %d"),
    StartSector("ptl_mait_sa", 204, "Start sector address of VMG_PTL_MAIT: %d"),
    StartSector("vts_atrt_sa", 208, "Start sector address of VMG_VTS_ATRT: %d"),
    StartSector("txtdt_mg_sa", 212, "Start sector address of VMG_TXTDT_MG: %d"),
    StartSector("vmgm_c_adt_sa", 216, "Start sector address of VMGM_C_ADT: %d"),
    StartSector("vmgm_vobu_admap_sa", 220, "Start sector address of VMGM_VOBU_ADMAP: %d"),
    {.key = "vmgm_v_atr",
     .offset = 256,
     .width = 2,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytesX,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kBytes,
     .report = "Video attributes of VMGM_VOBS: %02x%02x"},
    {.key = "vmgm_ast_ns",
     .offset = 259,
     .width = 1,
     .store = Store::kU8,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kDecimal,
     .style = ReportStyle::kValue,
     .report = "Number of audio streams in VMGM_VOBS: %d"},
    {.key = "vmgm_ast_atr",
     .offset = 260,
     .width = 8,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytesX,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kHook,
     .hook = ReportAudioBytes},
    {.key = "vmgm_spst_ns",
     .offset = 341,
     .width = 1,
     .store = Store::kU8,
     .form = SourceForm::kDecimal,
     .load = LoadRule::kDecimal,
     .style = ReportStyle::kValue,
     .report = "VMGM Number of subpicture streams: %d"},
    {.key = "vmgm_spst_atr",
     .offset = 342,
     .width = 6,
     .store = Store::kBytes,
     .form = SourceForm::kHexBytesX,
     .load = LoadRule::kHexBytes,
     .style = ReportStyle::kHook,
     .hook = ReportSubpictureBytes},
};

// The tables that follow VMGI_MAT, in file order (and in the order their sizes are summed).
constexpr std::array<TableId, 6> kFollowingTables = {
    TableId::kVmgPttSrpt, TableId::kVmgmPgciUt, TableId::kVmgMait,
    TableId::kVmgAtrt,    TableId::kVmgmCAdt,   TableId::kVmgmVobuAdmap,
};
// Where each following table's start sector lies in the image.
constexpr std::array<std::size_t, 6> kStartSectorOffsets = {196, 200, 204, 208, 216, 220};

std::uint32_t OpenModule(AppContext& ctx, File& ifo) {
  return OpenVideoManager(ctx, ifo);
}

}  // namespace

const TableModule kVmgiMatModule = {
    .id = TableId::kVmgiMat,
    .OpenTable = OpenModule,
    .ReportTable = ReportVideoManager,
    .DisassembleTable = DisassembleVideoManager,
    .LoadTableSource = nullptr,
    .MeasureTable = nullptr,
    .EmitTable = nullptr,
};

std::uint32_t OpenVideoManager(AppContext& ctx, File& ifo) {
  VmgiMatState& s = ctx.ifo.vmgi_mat;
  s = VmgiMatState{};
  s.image = ReadFileBlock(ifo, 0, kVmgiImageSize);
  ByteView image(s.image);
  if (image.cstr(0, kIdentifier.size()) != kIdentifier) {
    ctx.AddReportLine(Format("Illegal IFO file starte code %s", {image.cstr(0)}));
    return 0;
  }
  ctx.AddReportLine("VMGI_MAT IFO File: Video Manager Information Management Table");
  s.vmg_ea = image.be32(12);
  s.vmgi_ea = image.be32(28);
  s.vmg_cat = image.be32(34);
  for (std::size_t w = 0; w < 4; ++w) s.vlms_id[w] = image.be16(38 + 2 * w);
  s.vmg_ns = image.be16(62);
  s.vmgi_mat_ea = image.be32(128);
  s.fp_pgci_sa = image.be32(132);
  s.vmgm_vobs_sa = image.be32(192);
  s.tt_srpt_sa = image.be32(196);
  s.vmgm_pgci_ut_sa = image.be32(200);
  s.ptl_mait_sa = image.be32(204);
  s.vts_atrt_sa = image.be32(208);
  s.txtdt_mg_sa = image.be32(212);
  s.vmgm_c_adt_sa = image.be32(216);
  s.vmgm_vobu_admap_sa = image.be32(220);

  if (s.vmgm_vobs_sa != 0) {
    ctx.AddReportLine(
        Format("VMGM_VOB: VMG Menu VOB starts at sector address: %d", {s.vmgm_vobs_sa}));
  } else {
    ctx.AddReportLine("** VMGM_VOB: There is no VMG Menu VOB");
  }
  for (TableId id :
       {TableId::kVmgPttSrpt, TableId::kVmgmPgciUt, TableId::kVmgmLu, TableId::kVmgMait,
        TableId::kVmgAtrt, TableId::kVmgTxtdt, TableId::kVmgmCAdt, TableId::kVmgmVobuAdmap}) {
    OpenTable(ctx, id, ifo);
  }
  return 1;
}

void ReportVideoManager(AppContext& ctx) {
  ctx.ClearReportList();
  ByteView image(ctx.ifo.vmgi_mat.image);
  ReportFields(ctx, image, kVmgiMat);
  if (ctx.ifo.vmgi_mat.fp_pgci_sa != 0) {
    ctx.AddReportLine("VMG First Play PGC:");
    PgcReport(ctx, 2, image, kFirstPlayOffset);
  } else {
    ctx.AddReportLine("VMG has no First Play PGC");
  }
}

void DisassembleVideoManager(AppContext& ctx) {
  ctx.profiles.DeleteFile(ctx.convert.source_path);
  ByteView image(ctx.ifo.vmgi_mat.image);
  DisassembleFields(ctx, image, kVmgiMat, kSection);
  if (ctx.ifo.vmgi_mat.fp_pgci_sa != 0) {
    PgcDisassemble(ctx, image, kFirstPlayOffset, "pgc_", "fp_pgci");
  }
}

void AssembleVideoManager(AppContext& ctx, File& out, const std::string& output_path) {
  std::vector<std::uint8_t> image(kVmgiImageSize, 0);
  ByteWriter w(image);
  std::string value;
  if (!ReadSourceValue(ctx, kSection, "vmg_id", value)) {
    ctx.ui.ShowMessage("VMG ID is missing", "IFO assembler error!");
    return;
  }
  if (value.substr(0, kIdentifier.size()) != kIdentifier) {
    ctx.ui.ShowMessage("Illegal VIDEO_TS field", "Syntax error!");
  }
  for (std::size_t c = 0; c < kIdentifier.size(); ++c) {
    w.put_u8(c, c < value.size() ? static_cast<std::uint8_t>(value[c]) : 0);
  }
  LoadFields(ctx, w, ByteView(image), kVmgiMat, kSection, kMissingCaption);

  std::uint32_t vmgi_mat_ea = 1023;
  if (ReadSourceValue(ctx, "fp_pgci", "pgc_cnt", value)) {
    w.put_be32(132, kFirstPlayOffset);
    PgcAssemble(ctx, "fp_pgci", "pgc_");
    std::uint32_t size = PgcLayout(ctx);
    if (size > kFirstPlayMaxSize) {
      ctx.ui.ShowMessage("First Play PGC size exceeds maximum size allowed",
                         "Source code format error!");
      ctx.ifo.pgc = PgcAssembly{};
      return;
    }
    PgcCopyOut(ctx, std::span<std::uint8_t>(image).subspan(kFirstPlayOffset, size));
    vmgi_mat_ea = 1023 + size;
  }
  w.put_be32(128, vmgi_mat_ea);

  // The table's own sectors: its end address rounded up to a multiple of 2048.
  std::uint32_t own = (vmgi_mat_ea + 2047u) / 2048u;
  std::uint32_t total = own;
  for (std::size_t k = 0; k < kFollowingTables.size(); ++k) {
    TableSize size = MeasureTable(ctx, kFollowingTables[k]);
    w.put_be32(kStartSectorOffsets[k], size.sectors != 0 ? total : 0);
    total += size.sectors;
  }
  w.put_be32(212, 0);
  w.put_be32(28, total - 1);
  std::uint32_t menu_vobs_sa = total;

  std::string menu_vob =
      output_path.substr(0, output_path.size() - std::min<std::size_t>(3, output_path.size())) +
      "vob";
  std::string found = FindExistingFileIgnoringCase(menu_vob);
  std::uint32_t menu_sectors = 0;
  if (!found.empty()) {
    File vob = File::OpenRead(found);
    menu_sectors = SectorsFor(static_cast<std::uint32_t>(std::max<std::int64_t>(vob.Length(), 0)));
  } else {
    menu_vobs_sa = 0;
  }
  w.put_be32(192, menu_vobs_sa);
  w.put_be32(12, 2 * total + menu_sectors - 1);

  WriteTableSectors(out, ByteView(image.data(), vmgi_mat_ea + 1u));
  for (TableId id : kFollowingTables) EmitTable(ctx, id, out);
}

std::span<const FieldDesc> VmgiMatLayout() {
  return kVmgiMat;
}

}  // namespace tarvex
