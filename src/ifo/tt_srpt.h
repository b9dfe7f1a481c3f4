// The video manager's title search pointer table (TT_SRPT, shown as VMG_PTT_SRPTI): every
// title of the disc with the title set that holds it.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kTtSrptModule;

}  // namespace tarvex
