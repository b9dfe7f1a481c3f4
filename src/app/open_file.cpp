#include "app/open_file.h"

#include <string_view>

#include "ifo/overview.h"
#include "platform/ascii.h"
#include "platform/format.h"
#include "platform/last_path.h"
#include "platform/paths.h"
#include "stream/listing.h"
#include "stream/subpicture_unit.h"

namespace tarvex {

namespace {

// The key of the remembered directory in the suite configuration file.
constexpr const char* kPathKey = "kvln_path";

// String resource 700: the open chooser's filter.
constexpr std::string_view kOpenFilter =
    "MPEG Files(*.VOB;*.M2P;*.IFO;*.SUP)|*.VOB;*.M2P;*.IFO;*.SUP|VOB Files(*.VOB)|*.VOB|"
    "System Files(*.M2P)|*.M2P|IFO Files(*.IFO)|*.IFO|SubPicture Files(*.SUP)|*.SUP|";

// Compares n characters without regard to ASCII case; stops at the first difference or at a
// zero byte in both.
bool EqualIgnoringCase(const char* a, const char* b, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
    if (a[i] == '\0') return true;
  }
  return true;
}

}  // namespace

void OpenCommand(AppContext& ctx, std::optional<std::int32_t> forced_type) {
  OpenFileState& open = ctx.open;
  open.vmg_selected = 0;
  if (open.file_handle.is_open()) {
    open.file_handle.Close();
    ctx.ClearReportList();
  }
  open.file_dir = HomeDirectory();
  open.file_dir = ReadLastPath(ctx.profiles, open.file_dir, kPathKey);

  ChooserRequest request;
  request.purpose = ChooserPurpose::kOpenInput;
  request.filter = std::string(kOpenFilter);
  request.initial_dir = open.file_dir;
  request.flags = kChooserFileMustExist | kChooserHideReadOnly;
  std::optional<std::string> answer = ctx.ui.ChooseOpenFile(request);
  if (!answer) return;
  // The chosen path is a zero-terminated text.
  std::string chosen = answer->substr(0, answer->find('\0'));

  open.file_dir.clear();
  open.file_name.clear();
  WriteLastPath(ctx.profiles, chosen, kPathKey);

  // Split at the last separator, searching back from the terminating position down to index
  // 1: a separator at index 0 is never found, and a path without one leaves the index at 0,
  // so the name then starts at the second character.
  std::size_t split = chosen.size();
  while (split > 0 && chosen[split] != kPathSeparator) --split;
  open.file_dir = chosen.substr(0, split);
  open.file_name = split + 1 <= chosen.size() ? chosen.substr(split + 1) : std::string();

  // The video manager is recognised by the text one byte after the terminating zero of the
  // chosen path in the chooser's result buffer. Our choosers hand over the path alone, so that
  // part of the buffer holds zeros and the comparison never matches: vmg_selected stays 0.
  std::string result_buffer = chosen;
  result_buffer.resize(chosen.size() + 1 + 12 + 1, '\0');
  if (EqualIgnoringCase("VIDEO_TS.IFO", result_buffer.c_str() + chosen.size() + 1, 12)) {
    open.vmg_selected = 1;
  }

  open.file_path = chosen;
  OpenSelectedFile(ctx, forced_type);
}

void OpenSelectedFile(AppContext& ctx, std::optional<std::int32_t> forced_type) {
  OpenFileState& open = ctx.open;
  open.file_type = kFileUnknown;
  std::string path = Format("%s", {open.file_path});
  if (EndsWithIgnoringAsciiCase(path, "vob")) open.file_type = kFileVob;
  if (EndsWithIgnoringAsciiCase(path, "m2p")) open.file_type = kFileM2p;
  if (EndsWithIgnoringAsciiCase(path, "ifo")) open.file_type = kFileIfo;
  if (EndsWithIgnoringAsciiCase(path, "sup")) open.file_type = kFileSup;
  if (forced_type) open.file_type = *forced_type;
  open.file_path = path;

  open.file_handle = File::OpenRead(open.file_path);
  if (!open.file_handle.is_open()) {
    ctx.ui.ShowMessage(Format("Can not open %s", {open.file_path}), "File selection error!");
    return;
  }
  open.file_open = 1;

  switch (open.file_type) {
    case kFileUnknown:
      ctx.ui.ShowMessage(
          Format("This file type, %s, is unknown or not currently supported", {open.file_path}),
          "File selection error!");
      break;
    case kFileVob: {
      std::int64_t length = open.file_handle.Length();
      open.record_count = static_cast<std::uint32_t>(length >> 11);
      if ((length & (RECORD_SIZE - 1)) != 0) {
        ctx.ui.ShowMessage(Format("Selected VOB file %s has illegal length", {open.file_path}),
                           "File format error!");
      }
      ListPage(ctx, 0, PAGE_RECORDS);
      ctx.stream.scroll_range = open.record_count >> 4;
      open.page_end = PAGE_RECORDS;
      open.scroll_page = 16;
      break;
    }
    case kFileM2p:
      // Open and current, but nothing is listed and record_count keeps its value.
      break;
    case kFileIfo:
      ShowIfoOverview(ctx);  // clears the list and reads from the start
      ctx.stream.scroll_range = open.record_count;
      open.page_end = PAGE_RECORDS;
      open.scroll_page = 16;
      break;
    case kFileSup:
      DecodeSubpictureUnit(ctx, 0);
      ctx.stream.scroll_range = open.record_count;
      open.page_end = PAGE_RECORDS;
      open.scroll_page = 16;
      break;
    default:
      break;
  }
}

}  // namespace tarvex
