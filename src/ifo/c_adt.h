// The cell address tables (C_ADT) of the three VOB sets: the video manager's menus, a title
// set's menus and a title set's titles. One implementation; the variants differ only in
// names, section, keys and texts.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVmgmCAdtModule;
extern const TableModule kVtsmCAdtModule;
extern const TableModule kVtsCAdtModule;

}  // namespace tarvex
