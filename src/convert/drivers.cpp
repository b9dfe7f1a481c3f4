#include "convert/drivers.h"

#include <array>
#include <string_view>

#include "ifo/overview.h"
#include "ifo/source.h"
#include "ifo/table.h"
#include "ifo/vmgi_mat.h"
#include "ifo/vtsi_mat.h"
#include "platform/ascii.h"
#include "platform/bytes.h"
#include "platform/format.h"
#include "platform/last_path.h"
#include "platform/paths.h"

namespace tarvex {

namespace {

constexpr const char* kSourceFilter = "IFO List File(*.INI)|*.INI|";
constexpr const char* kOutputFilter = "IFO Object File(*.IFO)|*.IFO|";

// The heading-line prefixes, in the order they are compared. The disassembly compares
// "VTSM_VOBU_ADMAP" over 14 characters only.
struct HeadingPrefix {
  std::string_view prefix;
  std::size_t details_chars;
  std::size_t disassembly_chars;
  TableId table;
};

constexpr std::array<HeadingPrefix, 19> kHeadingPrefixes = {{
    {"VTSI_MAT", 8, 8, TableId::kVtsiMat},
    {"PTT_SRPTI", 9, 9, TableId::kVtsPttSrpt},
    {"VTS_PGCITI", 10, 10, TableId::kVtsPgcit},
    {"VTSM_PGCI_UT", 12, 12, TableId::kVtsmPgciUt},
    {"VTSM_LUI", 8, 8, TableId::kVtsmLu},
    {"VTS_TMAPT", 9, 9, TableId::kVtsTmapt},
    {"VTSM_C_ADT", 10, 10, TableId::kVtsmCAdt},
    {"VTSM_VOBU_ADMAP", 15, 14, TableId::kVtsmVobuAdmap},
    {"VTS_C_ADT", 9, 9, TableId::kVtsCAdt},
    {"VTS_VOBU_ADMAP", 14, 14, TableId::kVtsVobuAdmap},
    {"VMGI_MAT", 8, 8, TableId::kVmgiMat},
    {"VMG_PTT", 7, 7, TableId::kVmgPttSrpt},
    {"VMGM_PGCI_UT", 12, 12, TableId::kVmgmPgciUt},
    {"VMGM_LUI", 8, 8, TableId::kVmgmLu},
    {"VMG_MAIT", 8, 8, TableId::kVmgMait},
    {"VMG_ATRT", 8, 8, TableId::kVmgAtrt},
    {"VMG_TXTDT", 9, 9, TableId::kVmgTxtdt},
    {"VMGM_C_ADT", 10, 10, TableId::kVmgmCAdt},
    {"VMGM_VOBU_ADMAP", 15, 15, TableId::kVmgmVobuAdmap},
}};

const HeadingPrefix* MatchHeading(std::string_view line, bool disassembly) {
  for (const HeadingPrefix& h : kHeadingPrefixes) {
    std::size_t n = disassembly ? h.disassembly_chars : h.details_chars;
    if (line.substr(0, n) == h.prefix.substr(0, n)) return &h;
  }
  return nullptr;
}

// Steps shared by both assembly drivers: create the output, decide the kind from the source's
// name, load every table and run the information table's assembly. Returns false after a
// creation failure.
bool AssembleInto(AppContext& ctx) {
  File out = File::Create(ctx.convert.output_path);
  if (!out.is_open()) {
    ctx.ui.ShowMessage(Format("Can not create %s", {ctx.convert.output_path}),
                       "File system error!");
    return false;
  }
  // The created handle is already open for reading and writing; it serves as the reopened one.

  std::string name = NamePart(ctx.convert.source_path);
  if (StartsWithIgnoringAsciiCase(name, "vts")) {
    for (TableId id : {TableId::kVtsVobuAdmap, TableId::kVtsCAdt, TableId::kVtsmVobuAdmap,
                       TableId::kVtsmCAdt, TableId::kVtsTmapt, TableId::kVtsmLu,
                       TableId::kVtsmPgciUt, TableId::kVtsPgcit, TableId::kVtsPttSrpt}) {
      LoadTableSource(ctx, id);
    }
    AssembleTitleSet(ctx, out, ctx.convert.output_path);
  } else if (StartsWithIgnoringAsciiCase(name, "video_ts")) {
    for (TableId id : {TableId::kVmgmVobuAdmap, TableId::kVmgmCAdt, TableId::kVmgAtrt,
                       TableId::kVmgMait, TableId::kVmgmPgciUt, TableId::kVmgPttSrpt}) {
      LoadTableSource(ctx, id);
    }
    AssembleVideoManager(ctx, out, ctx.convert.output_path);
  } else {
    ctx.ui.ShowMessage(
        "Can not determin the type of IFO to assemble. File name should start with either "
        "VIDEO_TS or VTS_",
        "Unknown file type");
  }
  out.Close();
  return true;
}

}  // namespace

void ShowIfoDetails(AppContext& ctx) {
  if (ctx.stream.details_mode) {
    ctx.stream.details_mode = 0;
    if (ctx.open.file_type == kFileIfo) ShowIfoOverview(ctx);
    return;
  }
  std::optional<std::string> line = ctx.report.SelectedText();
  if (!line) return;
  if (ctx.open.file_type != kFileIfo) return;
  const HeadingPrefix* heading = MatchHeading(*line, false);
  if (!heading) return;
  ReportTable(ctx, heading->table);
  ctx.stream.details_mode = 1;
}

void DisassembleIfo(AppContext& ctx) {
  ChooserRequest request;
  request.purpose = ChooserPurpose::kDisassemblySource;
  request.filter = kSourceFilter;
  request.initial_dir = HomeDirectory();
  request.default_name = ReplaceExtension(ctx.open.file_path, "INI");
  request.flags = kChooserHideReadOnly | kChooserPathMustExist;
  std::optional<std::string> chosen = ctx.ui.ChooseSaveFile(request);
  if (!chosen) return;
  ctx.convert.source_path = *chosen;
  for (std::size_t i = 0; ctx.report.Select(i); ++i) {
    const HeadingPrefix* heading = MatchHeading(ctx.report.line(i), true);
    if (heading) DisassembleTable(ctx, heading->table);
  }
  ctx.profiles.Flush();
}

void AssembleInteractive(AppContext& ctx) {
  ctx.convert.assemble_dir = ReadLastPath(ctx.profiles, HomeDirectory(), "kvln_path");
  ChooserRequest source_request;
  source_request.purpose = ChooserPurpose::kAssemblySource;
  source_request.filter = kSourceFilter;
  source_request.initial_dir = ctx.convert.assemble_dir;
  source_request.flags = kChooserHideReadOnly | kChooserFileMustExist;
  std::optional<std::string> source = ctx.ui.ChooseOpenFile(source_request);
  if (!source) return;
  ctx.convert.source_path = *source;
  std::string name = NamePart(*source);
  if (!StartsWithIgnoringAsciiCase(name, "vts_") &&
      !StartsWithIgnoringAsciiCase(name, "video_ts")) {
    ctx.ui.ShowMessage(Format("The file %s is not a legal DVD-Video file type name", {*source}),
                       "Operations error!");
    return;
  }
  ctx.convert.assemble_dir = DirectoryPart(*source);
  WriteLastPath(ctx.profiles, *source, "kvln_path");

  ChooserRequest output_request;
  output_request.purpose = ChooserPurpose::kAssemblyOutput;
  output_request.filter = kOutputFilter;
  output_request.initial_dir = ctx.convert.assemble_dir;
  output_request.default_name = ReplaceExtension(name, "IFO");
  output_request.flags = kChooserHideReadOnly | kChooserPathMustExist;
  std::optional<std::string> output = ctx.ui.ChooseSaveFile(output_request);
  if (!output) return;
  ctx.convert.output_path = *output;
  ctx.ui.SetWaitCursor(true);
  AssembleInto(ctx);
  ctx.ui.SetWaitCursor(false);
  ctx.profiles.Flush();
}

void AssembleBatch(AppContext& ctx) {
  ctx.convert.source_path = ctx.batch.asm_path;
  ctx.convert.output_path = ctx.batch.obj_path;
  ctx.ui.SetWaitCursor(true);
  bool created = AssembleInto(ctx);
  ctx.ui.SetWaitCursor(false);
  ctx.profiles.Flush();
  ctx.convert.close_main_dialog = created;
}

}  // namespace tarvex
