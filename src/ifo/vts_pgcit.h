// The title set PGCI table (VTS_PGCIT): a header, one search pointer (category and byte
// offset) per program chain, and the program chains of the titles.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVtsPgcitModule;

}  // namespace tarvex
