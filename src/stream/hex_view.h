// The hex view of one record and the error dump that details and extraction show for a
// sector they cannot classify.
#pragma once

#include <cstdint>
#include <string_view>

#include "state/context.h"

namespace tarvex {

// File address of a record: record x 2048 for a VOB, 0 for every other file type.
std::int64_t RecordFileOffset(const AppContext& ctx, std::uint32_t record);

// Hex view of record page_end: title, blank line and 128 rows of 16 bytes. Clears the list
// first unless append is set.
void ShowRecordHex(AppContext& ctx, bool append);

// The error dump: first_line (for instance "Illegal sector type, aborting extract
// operation!"), "Error at: offset %d sector number %d", "Sector type found by
// get_sector_type: %02x %d", "Sector data:", then page_end := the sector number and the hex
// view appended. position_after_read is the file position after the record was read.
void ShowErrorDump(AppContext& ctx, std::string_view first_line, std::int64_t position_after_read,
                   std::int32_t sector_type);

}  // namespace tarvex
