// The parental management information table (PTL_MAIT) of the video manager: reported and
// disassembled only; the assembler never writes it.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kPtlMaitModule;

}  // namespace tarvex
