// State of the program chain tables: the title set PGCI table and the two menu PGCI unit
// tables (video manager and title set). Each keeps the handle and position of the table it
// reads, its header, and while assembling the chains loaded from the IfoSource.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tarvex {

class File;

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
  File* file = nullptr;    // the IFO handed to the open step
  std::int64_t start = 0;  // byte position of the table
  std::uint16_t count = 0;
  std::uint32_t end_address = 0;
  std::vector<LoadedLanguageUnit> units;  // loaded; no units means nothing to write
};

// The title set PGCI table.
struct VtsPgcitState {
  File* file = nullptr;
  std::int64_t start = 0;
  std::uint16_t count = 0;
  std::uint32_t end_address = 0;
  std::vector<LoadedPgc> pgcs;  // loaded; none means nothing to write
};

}  // namespace tarvex
