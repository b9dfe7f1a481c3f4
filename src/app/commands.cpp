#include "app/commands.h"

#include <cstdint>
#include <optional>
#include <string>

#include "convert/drivers.h"
#include "extract/extract.h"
#include "ifo/overview.h"
#include "stream/details.h"
#include "stream/listing.h"

namespace tarvex {

namespace {

// Back from the details to what was shown before them.
void LeaveDetails(AppContext& ctx) {
  ctx.stream.details_mode = 0;
  OpenFileState& open = ctx.open;
  if (open.file_type == kFileVob) {
    ListPageAfterView(ctx);
  } else if (open.file_type == kFileIfo) {
    open.page_end = 0;
    ShowIfoOverview(ctx);
  }
  // Other file types list nothing.
}

}  // namespace

void DetailsCommand(AppContext& ctx) {
  if (ctx.stream.hex_mode == 1) return;
  if (ctx.stream.details_mode == 1) {
    LeaveDetails(ctx);
    return;
  }
  std::optional<std::string> selected = ctx.report.SelectedText();
  if (!selected) return;
  if (ctx.open.file_type == kFileIfo) {
    // The report driver compares the selected line with its table names; on a match it shows
    // that table and sets details_mode.
    ShowIfoDetails(ctx);
    return;
  }
  ctx.open.page_end = RecordNumberOfLine(*selected);
  ShowRecordDetails(ctx);
  ctx.stream.details_mode = 1;
}

void HexCommand(AppContext& ctx) {
  SelectRecordForHex(ctx);
}

void ClearCommand(AppContext& ctx) {
  ctx.ClearReportList();
}

ExtractActions DefaultExtractActions() {
  return {ExtractAudio, ExtractVideo, ExtractStills, ExtractSubPictures, DisassembleIfo};
}

void ExtractCommand(AppContext& ctx, const ExtractRequest& ticked) {
  ExtractCommand(ctx, ticked, DefaultExtractActions());
}

void ExtractCommand(AppContext& ctx, const ExtractRequest& ticked, const ExtractActions& actions) {
  ExtractRequest& request = ctx.extract;
  request = ExtractRequest{};
  // The boxes are read when OK is pressed, in the dialog's order of ids 101, 103, 104, 105, 102.
  if (ticked.extract_audio) request.extract_audio = 1;
  if (ticked.extract_video) request.extract_video = 1;
  if (ticked.extract_stills) request.extract_stills = 1;
  if (ticked.extract_subpictures) request.extract_subpictures = 1;
  if (ticked.disassemble_ifo) request.disassemble_ifo = 1;
  request.stream_length = ctx.open.file_handle.Length();

  // Each action runs to completion before the next; none depends on another's result, but a
  // run that finds the stream shortened under it clears the request, so no later one starts.
  if (request.extract_audio == 1) actions.audio(ctx);
  if (request.extract_video == 1) actions.video(ctx);
  if (request.extract_stills == 1) actions.stills(ctx);
  if (request.extract_subpictures == 1) actions.subpictures(ctx);
  if (request.disassemble_ifo == 1) actions.disassemble(ctx);
}

void ExtractCancelled(AppContext& ctx) {
  ctx.extract = ExtractRequest{};
}

bool CloseQuery(AppContext& ctx) {
  if (ctx.open.file_handle.is_open()) {
    ctx.open.file_handle.Close();
    ctx.ClearReportList();
  }
  return true;
}

}  // namespace tarvex
