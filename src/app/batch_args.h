// The desktop tool's command line: "-asm=SOURCE" and "-obj=OUTPUT", and the unattended
// assembly that two of them start on the first paint of the main window.
#pragma once

#include "state/context.h"
#include "state/window_state.h"

namespace tarvex {

// Reads arguments 1 .. argc-1 (argument 0, the program's path, is never examined). An argument
// whose first 5 characters are exactly "-asm=" or "-obj=" (case-sensitive) sets asm_path or
// obj_path to the rest and counts; a repeated option overwrites the path and counts again.
// Every other argument is ignored.
void ParseBatchArguments(int argc, const char* const* argv, BatchArgs& batch);

// The batch check of the first paint: on the first call only, and only when exactly two batch
// arguments were counted, runs the assembly (AssembleBatch unless another is given). Returns
// whether it ran. Later paints do nothing.
bool FirstPaint(AppContext& ctx, WindowState& window);
bool FirstPaint(AppContext& ctx, WindowState& window, void (*assemble)(AppContext&));

}  // namespace tarvex
