// A title set's time map table (VTS_TMAPT, shown as VTS_TMAPTI): for each time map, the
// sector address of the VOBU that plays at every time unit, with discontinuity flags.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVtsTmaptModule;

}  // namespace tarvex
