// State of the search pointer tables and the time map table: the header read by the open step,
// where the entries lie in the open IFO, and the entries loaded from an IfoSource until they
// are written.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/opened_table_state.h"

namespace tarvex {

// The video manager's title search pointer table (TT_SRPT).
struct TtSrptState {
  OpenedTable opened;
  // Loaded from the IfoSource: the header count as the source gave it, and the 12-byte
  // entries read so far (in file byte order).
  std::uint16_t count = 0;
  std::vector<std::array<std::uint8_t, 12>> entries;
};

// One part of title: program chain number and program number.
struct PttEntry {
  std::uint16_t pgcn = 0;
  std::uint8_t pgn = 0;
};

// A title set's part-of-title search pointer table (VTS_PTT_SRPT).
struct VtsPttSrptState {
  OpenedTable opened;
  std::uint16_t count = 0;  // "vts_ttu_ns" as read from the source
  std::vector<PttEntry> entries;
};

// One time map loaded from the source: its time unit, its declared entry count and the
// entries read (entries beyond those read are written as 0).
struct TimeMap {
  std::uint8_t time_unit = 0;
  std::uint16_t entry_count = 0;
  std::vector<std::uint32_t> entries;
};

// A title set's time map table (VTS_TMAPT).
struct VtsTmaptState {
  OpenedTable opened;
  std::uint16_t count = 0;  // "vts_tmap_ns" as read from the source
  std::vector<TimeMap> maps;
};

}  // namespace tarvex
