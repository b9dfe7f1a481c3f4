// State of the program chain tables: the title set PGCI table and the two menu PGCI unit
// tables (video manager and title set). Each keeps where the table it reads lies and its
// header, and while assembling the chains loaded from the IfoSource.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/opened_table_state.h"

namespace tarvex {

// One program chain loaded from the IfoSource: its category and its assembled bytes.
struct LoadedPgc {
  std::uint32_t category = 0;
  std::vector<std::uint8_t> bytes;
};

// One menu language unit loaded from the IfoSource.
struct LoadedLanguageUnit {
  std::array<std::uint8_t, 2> lcd{};
  std::uint8_t exst = 0;
  std::vector<LoadedPgc> pgcs;
};

// A menu PGCI unit table with its language units.
struct PgciUtState {
  OpenedTable opened;  // the table of the open IFO; loading and writing leave it alone
  std::vector<LoadedLanguageUnit> units;  // loaded; no units means nothing to write
};

// The title set PGCI table.
struct VtsPgcitState {
  OpenedTable opened;           // the table of the open IFO; loading and writing leave it alone
  std::vector<LoadedPgc> pgcs;  // loaded; none means nothing to write
};

}  // namespace tarvex
