#include "ifo/overview.h"

#include "ifo/table.h"

namespace tarvex {

void ShowIfoOverview(AppContext& ctx) {
  File& ifo = ctx.open.file_handle;
  ifo.Seek(0);
  ctx.ClearReportList();
  // The title set reading checks the identifier and hands anything else to the video manager.
  OpenTable(ctx, TableId::kVtsiMat, ifo);
}

}  // namespace tarvex
