// The IFO report, disassembly and assembly drivers.
#pragma once

#include "state/context.h"

namespace tarvex {

// Details command on an IFO: toggles between the overview and the selected table's report.
void ShowIfoDetails(AppContext& ctx);
// Extract > "Disassemble *.IFO file to *.INI file".
void DisassembleIfo(AppContext& ctx);
// The Assemble command: asks for source and output and assembles.
void AssembleInteractive(AppContext& ctx);
// Batch assembly of ctx.batch.asm_path into ctx.batch.obj_path.
void AssembleBatch(AppContext& ctx);

}  // namespace tarvex
