#include "app/save_report.h"

#include <cstddef>
#include <string>

#include "platform/file_io.h"
#include "platform/paths.h"

namespace tarvex {

namespace {

// No more lines than this are saved, however long the list is.
constexpr std::size_t kMaxSavedLines = 1000;

}  // namespace

void SaveReportAsText(AppContext& ctx) {
  ChooserRequest request;
  request.purpose = ChooserPurpose::kSaveReport;
  request.filter = "Text File(*.TXT)|*.TXT|";
  request.initial_dir = HomeDirectory();
  request.flags = kChooserPathMustExist | kChooserHideReadOnly;  // the chooser itself does not ask
  std::optional<std::string> path = ctx.ui.ChooseSaveFile(request);
  if (!path) return;

  if (File::Exists(*path) && !ctx.ui.AskYesNo("Overwrite this file?", "File exists!")) return;

  // Creating and closing the file empties it; then it is written afresh.
  File::Create(*path).Close();
  File out = File::OpenWrite(*path);

  // Each line is reached by selecting it, as the list box is walked; the walk stops at the first
  // index that cannot be selected.
  std::string text;
  for (std::size_t i = 0; i < kMaxSavedLines; ++i) {
    if (!ctx.report.Select(i)) break;
    std::optional<std::size_t> selected = ctx.report.selection();
    if (!selected) break;
    text += ctx.report.line(*selected);
    text += "\r\n";
  }
  out.Write(text.data(), text.size());
  out.Close();
}

}  // namespace tarvex
