// State of the cell address tables, the VOBU address maps and the video manager's attribute,
// parental and text data tables: what the open step read from the IFO and what the load step
// read from the IfoSource for the next assembly.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/opened_table_state.h"

namespace tarvex {

// One cell address table (C_ADT): 8-byte header, then 12 bytes per cell.
struct CAdtState {
  OpenedTable opened;  // the header count is the number of VOBs
  // Loaded for assembly: the header's VOB count and the cells in load order.
  std::uint16_t loaded_vob_ns = 0;
  std::vector<std::array<std::uint8_t, 12>> cells;
};

// One VOBU address map: a 32-bit end address, then one 32-bit start sector per VOBU.
struct VobuAdmapState {
  bool open = false;
  std::int64_t entries_pos = 0;  // byte position of the first start sector in the IFO
  std::uint32_t end_address = 0;
  // The map that is read when it is opened: its entry bytes, or no room for them.
  bool entries_failed = false;
  std::vector<std::uint8_t> entries;
  std::vector<std::uint32_t> loaded;  // start sectors loaded for assembly
};

// The title set attribute table (VTS_ATRT).
struct VtsAtrtState {
  OpenedTable opened;  // the header count is the number of title sets
  std::vector<std::array<std::uint8_t, 776>> records;  // loaded for assembly
};

// The parental management information table (PTL_MAIT).
struct PtlMaitState {
  OpenedTable opened;  // the header count is the number of countries
};

// The text data manager (TXTDT_MG).
struct TxtdtMgState {
  File* file = nullptr;  // the IFO the table was opened in; none when it is absent
  std::int64_t table_pos = 0;
};

}  // namespace tarvex
