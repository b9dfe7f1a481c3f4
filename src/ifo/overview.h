// The overview of an open IFO file: one heading line per table, or a line saying the table is
// absent.
#pragma once

#include "state/context.h"

namespace tarvex {

// Clears the list and shows the overview of ctx.open.file_handle, read from its start.
void ShowIfoOverview(AppContext& ctx);

}  // namespace tarvex
