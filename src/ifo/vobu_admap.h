// The VOBU address maps (VOBU_ADMAP) of the three VOB sets: the video manager's menus, a
// title set's menus and a title set's titles. One implementation; the variants differ only in
// names, section and texts.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVmgmVobuAdmapModule;
extern const TableModule kVtsmVobuAdmapModule;
extern const TableModule kVtsVobuAdmapModule;

}  // namespace tarvex
