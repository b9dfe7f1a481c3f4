// The text data manager (TXTDT_MG) of the video manager: its identifier, language unit count
// and end address are reported and disassembled; the assembler never writes it.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kTxtdtMgModule;

}  // namespace tarvex
