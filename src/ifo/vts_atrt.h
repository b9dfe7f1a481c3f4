// The title set attribute table (VTS_ATRT) of the video manager: the menu and title
// attributes of every title set, repeated from the title sets' own information tables.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVtsAtrtModule;

}  // namespace tarvex
