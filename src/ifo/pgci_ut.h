// The menu PGCI unit tables (VTSM_PGCI_UT of a title set, VMGM_PGCI_UT of the video manager)
// and their language units. One implementation serves both: the instances differ only in
// their names, texts and keys. The unit table module opens, reports, disassembles, loads
// (units and their menu program chains together), measures and writes the whole table; the
// language-unit module is a second report and disassembly pass over the same bytes.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVtsmPgciUtModule;
extern const TableModule kVtsmLuModule;
extern const TableModule kVmgmPgciUtModule;
extern const TableModule kVmgmLuModule;

}  // namespace tarvex
