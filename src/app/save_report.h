// File > Save As Text *.TXT: writes the report list to a text file.
#pragma once

#include "state/context.h"

namespace tarvex {

// Asks for a file (save chooser, kSaveReport), asks before overwriting an existing file, and
// writes at most the first 1000 lines, each ended by CR LF. The list's selection is left on
// the last line written. Creation and write failures are not reported.
void SaveReportAsText(AppContext& ctx);

}  // namespace tarvex
