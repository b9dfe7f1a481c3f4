// A title set's part-of-title search pointer table (VTS_PTT_SRPT, shown as PTT_SRPTI): for
// every title unit, its parts of title as program chain and program numbers.
#pragma once

#include "ifo/table.h"

namespace tarvex {

extern const TableModule kVtsPttSrptModule;

}  // namespace tarvex
